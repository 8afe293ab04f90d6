#include "StatePortStore.h"

#include <map>
#include <mutex>
#include <tuple>

#include "StatePortState.h"

namespace voxtrel::platform::state_port {
namespace {

using target_manager::HexId;

using ValueKey = std::tuple<uint32_t, std::string, std::vector<uint64_t>>;

struct Store {
  std::mutex mutex;
  std::weak_ptr<target::LiveTopology> builtFor;
  std::map<uint32_t, std::vector<PortDescription>> portsOf;
  std::map<ValueKey, uint64_t> values;

  // Drops what belonged to another topology; call under the mutex.
  void Follow(const std::shared_ptr<target::LiveTopology>& topology) {
    if (builtFor.lock() == topology) return;
    builtFor = topology;
    portsOf.clear();
    values.clear();
  }
};

Store& TheStore() {
  static Store store;
  return store;
}

}  // namespace

std::optional<std::vector<PortDescription>> PortsOf(target_manager::Request& request, uint32_t deviceId,
                                                    std::shared_ptr<target::LiveTopology>* keep) {
  std::shared_ptr<target::LiveTopology> topology = StatePortTopology().Topology();
  if (!topology) {
    request.Refuse(kNotInitialized, ": the StatePort component is not initialized");
    return std::nullopt;
  }
  const target::Node* device = topology->Layout().Find(deviceId);
  if (device == nullptr) {
    request.Refuse(target_manager::kDeviceNotFound, " knows no device " + HexId(deviceId));
    return std::nullopt;
  }
  if (keep != nullptr) *keep = topology;
  Store& store = TheStore();
  std::lock_guard lock(store.mutex);
  store.Follow(topology);
  auto found = store.portsOf.find(deviceId);
  // The description was checked when it was selected: reading it again cannot fail.
  if (found == store.portsOf.end()) found = store.portsOf.emplace(deviceId, ReadStatePorts(*device)).first;
  return found->second;
}

std::optional<FoundPort> FindPort(target_manager::Request& request, uint32_t deviceId, const char* name) {
  FoundPort found;
  const auto ports = PortsOf(request.NotNull(name, "statePortName"), deviceId, &found.topology);
  if (!ports) return std::nullopt;
  found.device = found.topology->Layout().Find(deviceId);
  for (const PortDescription& port : *ports) {
    if (port.name != name) continue;
    found.port = port;
    return found;
  }
  request.Refuse(kValueOutOfRange, ": device " + target_manager::DeviceName(*found.device) + " has no state port '" +
                                       name + "'");
  return std::nullopt;
}

uint64_t StoredValue(const FoundPort& found, const std::vector<uint64_t>& address) {
  Store& store = TheStore();
  std::lock_guard lock(store.mutex);
  store.Follow(found.topology);
  const auto value = store.values.find(ValueKey{found.device->id, found.port.name, address});
  return value == store.values.end() ? found.port.resetValue : value->second;
}

uint64_t UpdateValue(const FoundPort& found, const std::vector<uint64_t>& address,
                     const std::function<uint64_t(uint64_t former)>& change) {
  Store& store = TheStore();
  std::lock_guard lock(store.mutex);
  store.Follow(found.topology);
  const auto [slot, added] = store.values.try_emplace(ValueKey{found.device->id, found.port.name, address},
                                                      found.port.resetValue);
  const uint64_t former = slot->second;
  slot->second = change(former);
  return former;
}

}  // namespace voxtrel::platform::state_port
