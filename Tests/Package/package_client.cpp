// Connects through the installed library and reads its version: proves the
// package's headers, library and platform are found without help.
#include <cstdio>

#include "InProc_Vxt.h"

int main() {
  VXT_Client client{};
  client.structureSize = VXT_CLIENT_SIZE;
  client.clientId = 1;
  std::snprintf(client.identifier, sizeof client.identifier, "package_client");

  if (StartNewInstance(&client, 1, VXT_ServerHostingType_In_Process, nullptr) != VXT_SUCCESS) {
    std::fprintf(stderr, "package_client: cannot connect: %s\n", GetLastErrorMessage());
    return 1;
  }
  void* service = nullptr;
  VXT_Version version{};
  version.structureSize = VXT_VERSION_SIZE;
  const bool ok = GetService(nullptr, VXT_Service_General, &service) == VXT_SUCCESS &&
                  static_cast<IInternalService_General*>(service)->GetImplementationVersion(&version) == VXT_SUCCESS;
  std::printf("package_client: version %u.%u.%u\n", version.major, version.minor, version.build);
  return Disconnect(client.clientId) == VXT_SUCCESS && ok ? 0 : 1;
}
