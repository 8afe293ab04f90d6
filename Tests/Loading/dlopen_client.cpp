// A script host's way in: the library loaded with dlopen() at run time (as
// a language's foreign-function module loads it), not linked. Connects,
// makes a service call and leaves; the library and its platform must load
// this way, thread-local storage and all.
#include <dlfcn.h>

#include <cstdio>

#include "InProc_Vxt.h"

template <class Function>
Function* Find(void* library, const char* name) {
  return reinterpret_cast<Function*>(dlsym(library, name));
}

int main(int argc, char** argv) {
  if (argc != 2) return 2;
  void* library = dlopen(argv[1], RTLD_NOW | RTLD_LOCAL);
  if (library == nullptr) {
    std::fprintf(stderr, "dlopen_client: %s\n", dlerror());
    return 1;
  }
  auto* start = Find<decltype(StartNewInstance)>(library, "StartNewInstance");
  auto* getService = Find<decltype(GetService)>(library, "GetService");
  auto* finish = Find<decltype(FinishInitialization)>(library, "FinishInitialization");
  auto* disconnect = Find<decltype(Disconnect)>(library, "Disconnect");
  if (start == nullptr || getService == nullptr || finish == nullptr || disconnect == nullptr) return 1;

  VXT_Client client{};
  client.structureSize = VXT_CLIENT_SIZE;
  client.clientId = 1;
  std::snprintf(client.identifier, sizeof client.identifier, "dlopen_client");
  if (start(&client, 1, VXT_ServerHostingType_In_Process, nullptr) != VXT_SUCCESS || finish() != VXT_SUCCESS)
    return 1;
  void* service = nullptr;
  uint32_t clients = 0;
  const bool ok = getService(nullptr, VXT_Service_General, &service) == VXT_SUCCESS &&
                  static_cast<IInternalService_General*>(service)->GetNumConnectedClients(&clients) == VXT_SUCCESS &&
                  clients == 1;
  std::printf("dlopen_client: %u client(s) connected\n", clients);
  return disconnect(client.clientId) == VXT_SUCCESS && ok ? 0 : 1;
}
