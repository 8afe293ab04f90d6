// The JtagConfiguration service object.
#pragma once

#include "Jtag.h"
#include "SingletonService.h"
#include "TargetManager.h"
#include "frame/ServiceLogger.h"

namespace vxt {

class InProc_JtagConfiguration : public SingletonService<InProc_JtagConfiguration> {
 public:
  InProc_JtagConfiguration();
  static InProc_JtagConfiguration& Instance();

  frame::ServiceLogger logger;
  // Component tables. Bound when the library is loaded.
  const JtagComponent* jtag = nullptr;
  const TargetManagerComponent* targetManager = nullptr;
};

}  // namespace vxt
