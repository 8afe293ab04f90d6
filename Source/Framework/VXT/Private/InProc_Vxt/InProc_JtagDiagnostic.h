// The JtagDiagnostic service object.
#pragma once

#include "Jtag.h"
#include "SingletonService.h"
#include "frame/ServiceLogger.h"

namespace vxt {

class InProc_JtagDiagnostic : public SingletonService<InProc_JtagDiagnostic> {
 public:
  InProc_JtagDiagnostic();
  static InProc_JtagDiagnostic& Instance();

  frame::ServiceLogger logger;
  // Component tables. Bound when the library is loaded.
  const JtagComponent* jtag = nullptr;
};

}  // namespace vxt
