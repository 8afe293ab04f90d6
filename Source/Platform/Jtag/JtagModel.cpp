#include "Jtag/JtagModel.h"

#include <cstring>
#include <optional>

#include "Common/ClientRegistry.h"

namespace voxtrel::platform::jtag {

using target::Node;
using target::NodeType;
using target_manager::Request;

JtagModel& JtagModel::Instance() {
  static JtagModel model;
  return model;
}

std::map<uint32_t, std::shared_ptr<ChainSlot>>* JtagModel::Current(Request* request) {
  std::shared_ptr<target::LiveTopology> live;
  if (request != nullptr) {
    if (request->Topology() == nullptr) return nullptr;
    live = request->SharedTopology();
  } else {
    live = target::TargetModel::Instance().Topology();
    if (!live) return nullptr;
  }
  if (builtFrom_.lock() == live) return &chains_;
  chains_.clear();
  chainOfTap_.clear();
  encrypted_.clear();
  for (const Node& node : live->Layout().Nodes()) {
    if (node.type != NodeType::JTAGScanChain) continue;
    std::vector<TapController> taps;
    for (uint32_t childId : node.childIds) {
      const Node* child = live->Layout().Find(childId);
      const auto* details = child ? child->As<target::TapControllerDetails>() : nullptr;
      if (details == nullptr) continue;
      taps.emplace_back(*child, *details);
      chainOfTap_[childId] = node.id;
    }
    const auto* chainDetails = node.As<target::JtagChainDetails>();
    const ChainFault fault = chainDetails ? ChainFaultFromName(chainDetails->fault) : ChainFault::None;
    chains_[node.id] = std::make_shared<ChainSlot>(ScanChain(node.id, node.identifier, std::move(taps), fault));
  }
  builtFrom_ = live;
  return &chains_;
}

std::shared_ptr<ChainSlot> JtagModel::Find(Request& request, uint32_t id, size_t& tap) {
  std::lock_guard lock(mutex_);
  auto* chains = Current(&request);
  const Node* device = chains ? request.Device(id) : nullptr;
  if (device == nullptr) return nullptr;
  if (device->type != NodeType::JTAGScanChain && device->type != NodeType::TAPController) {
    request.Refuse(target_manager::kWrongDeviceType, " needs a JTAG chain or a TAP controller, and device " +
                                                         target_manager::DeviceName(*device) + " is a " +
                                                         std::string(target::NodeTypeName(device->type)));
    return nullptr;
  }
  const uint32_t chainId = device->type == NodeType::JTAGScanChain ? id : chainOfTap_.at(id);
  std::shared_ptr<ChainSlot> slot = chains->at(chainId);
  tap = device->type == NodeType::JTAGScanChain ? slot->chain.Taps().size() : slot->chain.IndexOf(id);
  return slot;
}

std::vector<std::shared_ptr<ChainSlot>> JtagModel::Chains() {
  std::lock_guard lock(mutex_);
  std::vector<std::shared_ptr<ChainSlot>> slots;
  if (auto* chains = Current(nullptr))
    for (auto& [id, slot] : *chains) slots.push_back(slot);
  return slots;
}

bool JtagModel::EncryptedDebugRunning(uint32_t deviceId) {
  std::lock_guard lock(mutex_);
  return encrypted_.count(deviceId) != 0;
}

void JtagModel::SetEncryptedDebug(uint32_t deviceId, bool running) {
  std::lock_guard lock(mutex_);
  if (running) {
    encrypted_.insert(deviceId);
  } else {
    encrypted_.erase(deviceId);
  }
}

uint32_t CallingClient() { return common::ClientRegistry::Instance().BoundClientId().value_or(0); }

std::string ClientName(uint32_t clientId) {
  const std::optional<VXT_Client> client = common::ClientRegistry::Instance().Find(clientId);
  const std::string identifier =
      client ? std::string(client->identifier, strnlen(client->identifier, sizeof client->identifier)) : "";
  return "client " + std::to_string(clientId) + " ('" + identifier + "')";
}

std::string HolderIdentifier(ChainSlot& slot) {
  if (slot.holder == 0) return {};
  const std::optional<VXT_Client> client = common::ClientRegistry::Instance().Find(slot.holder);
  if (!client) {
    slot.holder = 0;
    return {};
  }
  return std::string(client->identifier, strnlen(client->identifier, sizeof client->identifier));
}

uint32_t RunScan(const char* operation, uint32_t id, uint64_t* operationToken, const ScanWork& work, bool recorded) {
  Request request(operation);
  if (request.NotNull(operationToken, "operationToken").failed()) return request.code();
  size_t tap = 0;
  const std::shared_ptr<ChainSlot> slot = JtagModel::Instance().Find(request, id, tap);
  if (!slot) return request.code();
  const uint32_t client = CallingClient();
  std::lock_guard lock(slot->mutex);
  HolderIdentifier(*slot);
  if (slot->holder != 0 && slot->holder != client)
    return request.Refuse(kChainLocked, ": chain " + slot->chain.Identifier() + " is locked by " +
                                            ClientName(slot->holder));
  ChainTarget target{*slot, slot->chain, tap};
  receipts::ReceiptOutcome outcome;
  if (const uint32_t code = work(target, request, outcome); code != 0) return code;
  if (recorded)
    if (auto mark = slot->marked.find(client); mark != slot->marked.end()) mark->second.push_back(work);
  *operationToken = receipts::FinishedReceipt(std::move(outcome));
  return 0;
}

}  // namespace voxtrel::platform::jtag
