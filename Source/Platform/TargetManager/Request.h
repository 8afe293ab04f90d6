// What every TargetManager operation does before its own work: check its
// pointers, find the built topology and the devices it names, and post a
// refusal with a message that names the operation.
//
//   Request request("TargetManager.GetParentIdForDevice");
//   const Node* device = request.NotNull(parentId, "parentId").Device(deviceId);
//   if (device == nullptr) return request.code();
//
// The first refusal is posted and kept; every later check then does nothing.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "Target/TargetModel.h"

namespace voxtrel::platform::target_manager {

// Internal codes of the TargetManager's refusals.
inline constexpr uint32_t kNullArgument = 0x20000;         // A required pointer is null
inline constexpr uint32_t kValueOutOfRange = 0x20001;      // An unknown property name, phase or TAP controller field
inline constexpr uint32_t kWrongDeviceType = 0x2000d;      // A device of another type than the operation needs
inline constexpr uint32_t kClientNotRegistered = 0x10000;  // The calling thread acts for no client
inline constexpr uint32_t kDeviceNotFound = 0xe0002;       // No device of that id, identifier, or relation
inline constexpr uint32_t kLockTimedOut = 0xe0005;         // Another client held a device until the timeout
inline constexpr uint32_t kTopologyNotBuilt = 0xe000c;     // Outside FinishInitialization..Uninitialize
inline constexpr uint32_t kCoreGroupNotFound = 0xe0012;    // A device in no core group, or no such group

// "0x04000000"
std::string HexId(uint32_t deviceId);
// "0x04000000 (Core0)"
std::string DeviceName(const target::Node& device);
// "LogicalCore", or the number for a value past the names.
std::string NodeTypeText(uint32_t nodeType);

class Request {
 public:
  explicit Request(const char* operation) : operation_(operation) {}
  Request(const Request&) = delete;
  Request& operator=(const Request&) = delete;

  bool failed() const { return code_ != 0; }
  uint32_t code() const { return code_; }
  const char* operation() const { return operation_; }

  // Posts "<operation><text>" with `code` unless the request failed already;
  // the request's code.
  uint32_t Refuse(uint32_t code, const std::string& text);

  // "<operation> was given a null <argument>"
  Request& NotNull(const void* pointer, const char* argument);
  // The built topology, or null with kTopologyNotBuilt.
  target::LiveTopology* Topology();
  // The topology Topology() found, to keep beyond the request.
  const std::shared_ptr<target::LiveTopology>& SharedTopology() const { return topology_; }
  // The device of that id, or null with kDeviceNotFound.
  const target::Node* Device(uint32_t deviceId);
  // The device if it is of `type`, or null with kWrongDeviceType.
  const target::Node* DeviceOfType(uint32_t deviceId, target::NodeType type);

 private:
  const char* operation_;
  uint32_t code_ = 0;
  std::shared_ptr<target::LiveTopology> topology_;
};

// Copies `text` into a buffer of `size` characters, cut to size - 1 and
// terminated.
void CopyText(const std::string& text, char* buffer, size_t size);

}  // namespace voxtrel::platform::target_manager
