// The Authorization service object.
#pragma once

#include "Authorization.h"
#include "SingletonService.h"
#include "frame/ServiceLogger.h"

namespace vxt {

class InProc_Authorization : public SingletonService<InProc_Authorization> {
 public:
  InProc_Authorization();
  static InProc_Authorization& Instance();

  frame::ServiceLogger logger;
  // Component tables. Bound when the library is loaded.
  const AuthorizationComponent* authorization = nullptr;
};

}  // namespace vxt
