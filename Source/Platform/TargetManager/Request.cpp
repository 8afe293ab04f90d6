#include "TargetManager/Request.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

#include "Error.h"

namespace voxtrel::platform::target_manager {

using target::LiveTopology;
using target::Node;
using target::NodeType;

std::string HexId(uint32_t deviceId) {
  char text[11];
  std::snprintf(text, sizeof text, "0x%08x", deviceId);
  return text;
}

std::string DeviceName(const Node& device) { return HexId(device.id) + " (" + device.identifier + ")"; }

std::string NodeTypeText(uint32_t nodeType) {
  if (nodeType >= target::kNodeTypeCount) return std::to_string(nodeType);
  return std::string(target::NodeTypeName(static_cast<NodeType>(nodeType)));
}

uint32_t Request::Refuse(uint32_t code, const std::string& text) {
  if (failed()) return code_;
  code_ = code;
  const std::string message = operation_ + text;
  Voxtrel_ErrorPostError(code, message.c_str(), __FILE__, __LINE__);
  return code_;
}

Request& Request::NotNull(const void* pointer, const char* argument) {
  if (pointer == nullptr) Refuse(kNullArgument, std::string(" was given a null ") + argument);
  return *this;
}

LiveTopology* Request::Topology() {
  if (failed()) return nullptr;
  if (!topology_) topology_ = target::TargetModel::Instance().Topology();
  if (!topology_) {
    Refuse(kTopologyNotBuilt, ": the target's topology is not built; FinishInitialization builds it");
    return nullptr;
  }
  return topology_.get();
}

const Node* Request::Device(uint32_t deviceId) {
  LiveTopology* topology = Topology();
  if (topology == nullptr) return nullptr;
  const Node* device = topology->Layout().Find(deviceId);
  if (device == nullptr) Refuse(kDeviceNotFound, " knows no device " + HexId(deviceId));
  return device;
}

const Node* Request::DeviceOfType(uint32_t deviceId, NodeType type) {
  const Node* device = Device(deviceId);
  if (device == nullptr || device->type == type) return device;
  Refuse(kWrongDeviceType, " needs a " + std::string(target::NodeTypeName(type)) + ", and device " +
                               DeviceName(*device) + " is a " + std::string(target::NodeTypeName(device->type)));
  return nullptr;
}

void CopyText(const std::string& text, char* buffer, size_t size) {
  const size_t length = std::min(text.size(), size - 1);
  std::memcpy(buffer, text.data(), length);
  buffer[length] = '\0';
}

}  // namespace voxtrel::platform::target_manager
