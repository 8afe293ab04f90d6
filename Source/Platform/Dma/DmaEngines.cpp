#include "DmaEngines.h"

#include <map>
#include <mutex>
#include <utility>

#include "../RunControl/CpuThreads.h"
#include "../Target/PostFailure.h"

namespace voxtrel::platform::dma {
namespace {

using target::NodeType;
using target_manager::DeviceName;
using target_manager::HexId;
using target_manager::Request;

constexpr uint32_t kNotSupported = 0x20002;
constexpr uint32_t kOperationFailed = 0x20004;

bool ReachesMemory(NodeType type) {
  switch (type) {
    case NodeType::TargetDomain:
    case NodeType::LogicalPackage:
    case NodeType::LogicalDie:
    case NodeType::LogicalModule:
    case NodeType::LogicalCore:
    case NodeType::LogicalThread:
    case NodeType::LogicalUncore:
    case NodeType::LogicalChipset:
      return true;
    default:
      return false;
  }
}

// The errors methods hold, by target domain and method. An entry of a
// domain that has since been built again is stale and counts as none.
struct ErrorEntry {
  std::weak_ptr<const cpu::CpuDomain> domain;
  PendingError error;
};
std::mutex errorsMutex;
std::map<std::pair<uint32_t, std::string>, ErrorEntry> errors;

std::pair<uint32_t, std::string> KeyOf(const Engine& engine) {
  return {engine.domain->targetDomainId, engine.method};
}

// The method's error, if it has one; call under errorsMutex.
const PendingError* Pending(const Engine& engine) {
  const auto found = errors.find(KeyOf(engine));
  if (found == errors.end()) return nullptr;
  if (found->second.domain.lock() != engine.domain) {
    errors.erase(found);
    return nullptr;
  }
  return &found->second.error;
}

}  // namespace

std::vector<std::string> MethodsOf(const target::Node& device) {
  if (!ReachesMemory(device.type)) return {};
  std::shared_ptr<const cpu::CpuDomain> domain;
  if (run_control::FindDomain(device.targetDomainId, domain)) return {};
  return {device.type == NodeType::LogicalChipset ? "ChipsetDma" : "SystemBus", "DebugPort"};
}

std::unique_ptr<Engine> FindEngine(Request& request, uint32_t deviceId, const char* configMethod) {
  const target::Node* device = request.NotNull(configMethod, "configMethod").Device(deviceId);
  if (device == nullptr) return nullptr;
  const std::vector<std::string> methods = MethodsOf(*device);
  if (methods.empty()) {
    request.Refuse(kNotSupported, ": device " + DeviceName(*device) + " reaches no memory by DMA");
    return nullptr;
  }
  std::string method(configMethod);
  if (method != methods[0] && method != methods[1]) {
    request.Refuse(kNotSupported, ": device " + DeviceName(*device) + " has no method '" + method + "' (it has " +
                                      methods[0] + ", " + methods[1] + ")");
    return nullptr;
  }
  auto engine = std::make_unique<Engine>();
  if (auto refused = run_control::FindDomain(device->targetDomainId, engine->domain)) {
    request.Refuse(refused->code, ": " + refused->message);
    return nullptr;
  }
  engine->maxTransferBytes = method == "DebugPort" ? kDebugPortTransferBytes : cpu::kMaxTransferBytes;
  engine->where = method + " of " + DeviceName(*device);
  engine->method = std::move(method);
  return engine;
}

uint32_t RefuseIfPending(Request& request, const Engine& engine) {
  std::lock_guard lock(errorsMutex);
  if (const PendingError* error = Pending(engine))
    return request.Refuse(kOperationFailed, ": " + engine.where + " holds the error of an earlier transfer (" +
                                                error->message + "); ClearError ends it");
  return 0;
}

void LeaveError(const Engine& engine, uint32_t clientId, const std::string& message) {
  std::lock_guard lock(errorsMutex);
  errors[KeyOf(engine)] = ErrorEntry{engine.domain, PendingError{clientId, message}};
}

uint32_t EndError(Request& request, const Engine& engine, uint32_t clientId, bool force) {
  std::lock_guard lock(errorsMutex);
  const PendingError* error = Pending(engine);
  if (error == nullptr) return 0;
  if (!force && error->clientId != clientId)
    return request.Refuse(kNotSupported, ": the error of " + engine.where + " was left by client " +
                                             std::to_string(error->clientId) +
                                             "; only that client clears it, unless forced");
  errors.erase(KeyOf(engine));
  return 0;
}

}  // namespace voxtrel::platform::dma
