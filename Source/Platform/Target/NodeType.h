// Kinds of nodes in the target's topology.
#pragma once

#include <cstdint>
#include <string_view>

namespace voxtrel::platform::target {

// The values are those of the public VXT_NodeType; a device id carries its
// node's type in its top byte (see Topology.h).
enum class NodeType : uint32_t {
  Unknown = 0,
  LogicalRoot = 1,
  TargetDomain = 2,
  LogicalThread = 3,
  LogicalCore = 4,
  LogicalUncore = 5,
  LogicalChipset = 6,
  LogicalBox = 7,
  LogicalDie = 8,
  LogicalPackage = 9,
  LogicalGroupDomain = 10,
  LogicalGroupCore = 11,
  Debugport = 12,
  JTAGScanChain = 13,
  TAPController = 14,
  InterfacePort = 15,
  LogicalModule = 16,
  I2cBus = 17,
  PinsInterface = 18,
  VirtualJTAGScanChain = 19,
};

inline constexpr uint32_t kNodeTypeCount = 20;

// "Unknown", "LogicalRoot", ... as clients see them; "<UNKNOWN>" past the table.
constexpr std::string_view NodeTypeName(NodeType type) {
  constexpr std::string_view names[kNodeTypeCount] = {
      "Unknown",       "LogicalRoot",    "TargetDomain",       "LogicalThread",
      "LogicalCore",   "LogicalUncore",  "LogicalChipset",     "LogicalBox",
      "LogicalDie",    "LogicalPackage", "LogicalGroupDomain", "LogicalGroupCore",
      "Debugport",     "JTAGScanChain",  "TAPController",      "InterfacePort",
      "LogicalModule", "I2cBus",         "PinsInterface",      "VirtualJTAGScanChain",
  };
  const auto index = static_cast<uint32_t>(type);
  return index < kNodeTypeCount ? names[index] : std::string_view("<UNKNOWN>");
}

}  // namespace voxtrel::platform::target
