// The Authorization service: a traced doorway to the Authorization
// component. The password goes from the caller to the component untouched:
// no line renders it, not even on failure.
#pragma once

#include "Authorization.h"
#include "IInternalService_Authorization.h"
#include "SingletonService.h"
#include "frame/ServiceLogger.h"

namespace vxt {

class InProc_Authorization : public SingletonService<InProc_Authorization>, public IInternalService_Authorization {
 public:
  InProc_Authorization();
  static InProc_Authorization& Instance();

  VXT_Result SetCredentials(const char* username, const char* password) override;
  VXT_Result ClearCredentials() override;
  VXT_Result GetNumAuthorizationLevels(uint32_t deviceId, uint32_t* numLevelNames) override;
  VXT_Result GetAuthorizationLevels(uint32_t deviceId, uint32_t numLevelNames, char* levelNames) override;
  VXT_Result QueryAuthorizationLevel(uint32_t deviceId, char* levelName) override;
  VXT_Result Authorize(uint32_t deviceId, const char* levelName) override;
  VXT_Result HasCredentials(uint32_t* hasCredentials) override;

  frame::ServiceLogger logger;
  // Component tables. Bound when the library is loaded.
  const AuthorizationComponent* authorization = nullptr;
};

}  // namespace vxt
