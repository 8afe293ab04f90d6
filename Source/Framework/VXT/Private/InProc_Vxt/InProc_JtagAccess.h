// The JtagAccess service object.
#pragma once

#include "Jtag.h"
#include "SingletonService.h"
#include "frame/ServiceLogger.h"

namespace vxt {

class InProc_JtagAccess : public SingletonService<InProc_JtagAccess> {
 public:
  InProc_JtagAccess();
  static InProc_JtagAccess& Instance();

  frame::ServiceLogger logger;
  // Component tables. Bound when the library is loaded.
  const JtagComponent* jtag = nullptr;
};

}  // namespace vxt
