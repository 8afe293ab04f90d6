// The General service's shared memory operations and the clean-up of a
// departed client's regions.
#include <cstring>
#include <string>

#include <boost/interprocess/exceptions.hpp>

#include "InProc_General.h"
#include "SharedRegions.h"
#include "frame/Frame.h"

namespace vxt {
namespace {

using namespace frame;

// The calling thread's client, with Common's code examined.
uint32_t CallingClient(const CommonComponent& common, int32_t& clientId) {
  clientId = 0;
  return common.GetClientId(&clientId);
}

// The address a region is mapped at, as hex16, read after the call.
struct MappedAddress {
  void* const* address;
  friend std::ostream& operator<<(std::ostream& out, const MappedAddress& text) {
    if (text.address == nullptr) return out << "<NULL>";
    return out << Hex16{static_cast<uint64_t>(reinterpret_cast<uintptr_t>(*text.address))};
  }
};

Call& ValidHandle(Call& call, uint64_t handle) {
  if (handle == 0) call.ArgumentError(code::kInvalidHandle, "handle", "Invalid handle");
  return call;
}

// Runs `use` on the calling client's region `handle` under regionsMutex;
// an unknown handle fails the call.
template <class Use>
uint32_t WithRegion(Call& call, const CommonComponent& common, uint64_t handle, Use use) {
  int32_t clientId = 0;
  if (const uint32_t code = CallingClient(common, clientId); code != 0) return code;
  SharedRegions& shared = SharedRegions::Get();
  std::lock_guard lock(shared.regionsMutex);
  ClientRegions& client = shared.regionsByClient[static_cast<uint32_t>(clientId)];
  const auto found = client.regions.find(handle);
  if (found == client.regions.end()) {
    call.Fail(code::kInvalidHandle, call.prefix(), " Unknown shared memory region handle: ", Hex16{handle});
    return call.code();
  }
  use(client, found);
  return code::kSuccess;
}

uint32_t Allocate(Call& call, const CommonComponent& common, const ServiceLogger& logger, uint32_t memorySize,
                  uint64_t* handle) {
  int32_t clientId = 0;
  if (const uint32_t code = CallingClient(common, clientId); code != 0) return code;
  bool isLocal = false;
  if (const uint32_t code = common.IsClientLocal(static_cast<uint32_t>(clientId), &isLocal); code != 0) {
    call.message() << "AllocateSharedMemory(): Failed to determine whether the client is local or not";
    return code;
  }
  if (!isLocal) {
    call.Fail(code::kNotSupported,
              "AllocateSharedMemory(): The client and the server are not running on the same machine. Allocating "
              "shared memory makes no sense in such cases");
    return call.code();
  }

  SharedRegions& shared = SharedRegions::Get();
  std::lock_guard lock(shared.regionsMutex);
  const std::string identifier = shared.NewIdentifier();
  ClientRegions& client = shared.regionsByClient[static_cast<uint32_t>(clientId)];
  *handle = ++client.lastHandle;
  try {
    client.regions.emplace(*handle, std::make_unique<SharedRegion>(identifier, memorySize));
  } catch (const boost::interprocess::interprocess_exception& failure) {
    --client.lastHandle;
    *handle = 0;
    call.Fail(code::kException, "Failed to create a shared memory region with the following identifier: '", identifier,
              "'. Error: ", failure.what());
    return call.code();
  }
  TraceLine(logger, 1, "Allocated a new shared memory region with identifier = ", Quoted{identifier.c_str()},
            " and handle = ", Hex16{*handle}, kTrailer);
  return code::kSuccess;
}

}  // namespace

VXT_Result InProc_General::AllocateSharedMemory(uint32_t memorySize, uint64_t* handle) {
  return RunOperation(logger, VXT_OPERATION(General, AllocateSharedMemory), TraceArgs("memorySize", Dec{memorySize}),
                      TraceArgs("handle", Out<Hex16>(handle)), [&](Call& call) {
                        return call.NotNull(handle, "handle").Core(common, [&](const CommonComponent& c) {
                          return Allocate(call, c, logger, memorySize, handle);
                        });
                      });
}

VXT_Result InProc_General::GetSharedMemoryAddress(uint64_t handle, void** address) {
  return RunOperation(logger, VXT_OPERATION(General, GetSharedMemoryAddress), TraceArgs("handle", Hex16{handle}),
                      TraceArgs("address", MappedAddress{address}), [&](Call& call) {
                        call.NotNull(address, "address");
                        return ValidHandle(call, handle).Core(common, [&](const CommonComponent& c) {
                          return WithRegion(call, c, handle,
                                            [&](ClientRegions&, auto region) { *address = region->second->address(); });
                        });
                      });
}

VXT_Result InProc_General::GetSharedMemoryIdentifier(uint64_t handle, char* identifier) {
  return RunOperation(logger, VXT_OPERATION(General, GetSharedMemoryIdentifier), TraceArgs("handle", Hex16{handle}),
                      // Read within the buffer: a failed call leaves it as the caller gave it.
                      TraceArgs("identifier", Quoted{identifier, VXT_SHARED_MEMORY_IDENTIFIER_SIZE}), [&](Call& call) {
                        call.NotNull(identifier, "identifier");
                        return ValidHandle(call, handle).Core(common, [&](const CommonComponent& c) {
                          return WithRegion(call, c, handle, [&](ClientRegions&, auto region) {
                            const std::string& name = region->second->identifier();
                            const size_t length = std::min<size_t>(name.size(), VXT_SHARED_MEMORY_IDENTIFIER_SIZE - 1);
                            std::memcpy(identifier, name.data(), length);
                            identifier[length] = '\0';
                          });
                        });
                      });
}

VXT_Result InProc_General::FreeSharedMemory(uint64_t handle) {
  return RunOperation(
      logger, VXT_OPERATION(General, FreeSharedMemory), TraceArgs("handle", Hex16{handle}), NoArgs{}, [&](Call& call) {
        return ValidHandle(call, handle).Core(common, [&](const CommonComponent& c) {
          return WithRegion(call, c, handle, [](ClientRegions& client, auto region) { client.regions.erase(region); });
        });
      });
}

uint64_t InProc_General::_GetSharedMemorySize(uint64_t handle) const {
  int32_t clientId = 0;
  if (common == nullptr || CallingClient(*common, clientId) != 0) return 0;
  SharedRegions& shared = SharedRegions::Get();
  std::lock_guard lock(shared.regionsMutex);
  const auto client = shared.regionsByClient.find(static_cast<uint32_t>(clientId));
  if (client == shared.regionsByClient.end()) return 0;
  const auto found = client->second.regions.find(handle);
  return found == client->second.regions.end() ? 0 : found->second->size();
}

void InProc_General::_ClientCloseCallback(void*, const char* eventName, const void* eventData) {
  if (eventName == nullptr || eventData == nullptr || std::strcmp(eventName, "Disconnected") != 0) return;
  const auto& client = *static_cast<const VXT_Client*>(eventData);
  SharedRegions& shared = SharedRegions::Get();
  std::lock_guard lock(shared.regionsMutex);
  shared.regionsByClient.erase(client.clientId);
}

void InProc_General::_ClearRegions() {
  SharedRegions& shared = SharedRegions::Get();
  std::lock_guard lock(shared.regionsMutex);
  shared.regionsByClient.clear();
}

}  // namespace vxt
