// vxt-example: connects to the library, makes a failing and a succeeding
// call, reads the last error and disconnects.
//
// Run it with VXT_LOG_LEVEL=1 to see the library's whole trace on stderr,
// or VXT_LOG_FILE=trace.txt VXT_LOG_FORMAT=raw to get it as plain lines.
#include <cstdio>

#include "InProc_Vxt.h"

int main() {
  VXT_Client client{};
  client.structureSize = VXT_CLIENT_SIZE;
  client.clientId = 7;
  std::snprintf(client.identifier, sizeof client.identifier, "example_7@localhost");

  if (StartNewInstance(&client, 1, VXT_ServerHostingType_In_Process, nullptr) != VXT_SUCCESS ||
      FinishInitialization() != VXT_SUCCESS) {
    std::fprintf(stderr, "example: cannot start: %s\n", GetLastErrorMessage());
    Disconnect(client.clientId);
    return 1;
  }

  void* service = nullptr;
  GetService(nullptr, VXT_Service_General, &service);
  auto* general = static_cast<IInternalService_General*>(service);

  // Fails: the record's size is not set.
  VXT_Version version{};
  VXT_Result result = general->GetImplementationVersion(&version);
  std::printf("GetImplementationVersion without a size: 0x%08x, \"%s\"\n", static_cast<unsigned>(result),
              GetLastErrorMessage());

  version.structureSize = VXT_VERSION_SIZE;
  result = general->GetImplementationVersion(&version);
  std::printf("GetImplementationVersion: 0x%08x, version %u.%u.%u\n", static_cast<unsigned>(result), version.major,
              version.minor, version.build);
  // A successful call leaves the last error as it was.
  std::printf("Last error: \"%s\"\n", GetLastErrorMessage());

  return Disconnect(client.clientId) == VXT_SUCCESS ? 0 : 1;
}
