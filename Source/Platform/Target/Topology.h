// The target's topology as a description declares it: a tree of nodes under
// one root, with what each kind of node carries. A Topology never changes once
// built; what changes while the target runs (enabled flags) is LiveTopology's.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <variant>
#include <vector>

#include <nlohmann/json.hpp>

#include "NodeType.h"
#include "PlatformApi.h"

namespace voxtrel::platform::target {

using Json = nlohmann::ordered_json;

// A device id holds its node's type in the top byte and, in the low 24 bits,
// the node's ordinal among the nodes of that type in traversal order. So the
// first thread is 0x03000000 and the first core 0x04000000; 0 is never an id.
constexpr uint32_t MakeDeviceId(NodeType type, uint32_t ordinal) {
  return (static_cast<uint32_t>(type) << 24) | (ordinal & 0x00ffffffu);
}
constexpr NodeType DeviceIdNodeType(uint32_t deviceId) { return static_cast<NodeType>(deviceId >> 24); }
inline constexpr uint32_t kMaxOrdinal = 0x00ffffffu;

struct Property {
  std::string name;
  std::string value;
};

struct TapInstruction {
  std::string name;
  uint64_t opcode = 0;
  uint32_t drLength = 0;  // Bits of the data register the instruction selects
  // The register's value after Test-Logic-Reset and the bits a scan cannot
  // change, both from bit 0 (bits above 64 are 0). For an instruction other
  // than IDCODE, USERCODE and BYPASS.
  uint64_t resetValue = 0;
  uint64_t readOnlyMask = 0;
  // What the register reaches beyond the TAP: the domain's physical memory
  // at the address register's value, through the data register.
  enum class Reach : uint8_t { None, MemoryAddress, MemoryData };
  Reach reaches = Reach::None;
};

struct VOXTREL_PLATFORM_API TapControllerDetails {
  std::string deviceType;
  std::string deviceSubType;
  std::string stepping;
  uint32_t idcode = 0;
  uint32_t irLength = 0;
  std::vector<TapInstruction> instructions;  // In the order described
  size_t resetInstruction = 0;               // Index of the instruction Test-Logic-Reset selects
  uint32_t usercode = 0;                     // What USERCODE captures, where described

  const TapInstruction* FindInstruction(std::string_view name) const;
};

// The probe that reaches a debug port.
struct ProbeDetails {
  std::string type;              // At most 63 characters
  std::string uniqueIdentifier;  // At most 127
  std::string details;           // At most 511
};

struct DebugPortDetails {
  std::optional<ProbeDetails> probe;
};

struct I2cDevice {
  uint8_t address = 0;  // 7-bit
  std::string name;
  uint32_t size = 0;  // Bytes the device answers for
  // What answers at the address: "eeprom" (the default) or "temperature".
  std::string kind = "eeprom";
  uint32_t pageSize = 8;          // An EEPROM's write page, in bytes
  std::vector<uint8_t> contents;  // An EEPROM's first bytes; the rest reads 0xff
  int32_t temperature = 25;       // A sensor's reading, in degrees Celsius
};

struct I2cBusDetails {
  std::vector<I2cDevice> devices;  // In the order described
};

enum class PinDirection : uint8_t { Input, Output, Bidirectional };

struct Pin {
  std::string name;
  PinDirection direction = PinDirection::Input;
  uint8_t level = 0;  // Level after reset, 0 or 1
};

struct PinsInterfaceDetails {
  std::vector<Pin> pins;
};

struct CoreGroupDetails {
  std::vector<uint32_t> coreIds;  // In the order the members name them
};

// The TAP controller and instruction through which a device is debugged.
struct DebugAccess {
  uint32_t tapControllerId = 0;
  std::string instruction;
};

// A fault the description puts on a JTAG chain's TDI-TDO path: "" (none),
// "open", "short", "inverted" or "corrupted".
struct JtagChainDetails {
  std::string fault;
};

using NodeDetails = std::variant<std::monostate, TapControllerDetails, DebugPortDetails, I2cBusDetails,
                                 PinsInterfaceDetails, CoreGroupDetails, JtagChainDetails>;

struct VOXTREL_PLATFORM_API Node {
  uint32_t id = 0;
  NodeType type = NodeType::Unknown;
  std::string identifier;                  // At most 63 characters, unique in its target domain
  uint32_t parentId = 0;                   // 0 for the root
  uint32_t targetDomainId = 0;             // The domain's own id for a domain; 0 for the root
  std::vector<uint32_t> childIds;          // In traversal order
  bool enabled = true;                     // As described
  std::vector<Property> properties;        // In the order described
  uint32_t debugPortId = 0;                // The debug port that reaches the node; 0 if none does
  uint32_t coreGroupId = 0;                // Cores and their threads: their group; 0 if none
  std::optional<DebugAccess> debugAccess;  // Own or inherited from the nearest ancestor
  NodeDetails details;
  // Members such as "memory", "registers", "statePorts", kept for the
  // components that read them, in the order described.
  std::vector<std::pair<std::string, Json>> facets;

  const std::string* FindProperty(std::string_view name) const;
  const Json* FindFacet(std::string_view name) const;

  template <class Details>
  const Details* As() const {
    return std::get_if<Details>(&details);
  }
};

class VOXTREL_PLATFORM_API Topology {
 public:
  // `nodes` in traversal order, the root first; ids and links already set.
  Topology(std::string name, std::string origin, std::string description, std::vector<std::string> scenarios,
           std::vector<Node> nodes);

  // The configuration's name ("Default", a file's stem) and where it came from.
  const std::string& Name() const { return name_; }
  const std::string& Origin() const { return origin_; }
  const std::string& Description() const { return description_; }
  const std::vector<std::string>& Scenarios() const { return scenarios_; }

  const std::vector<Node>& Nodes() const { return nodes_; }
  const Node& Root() const { return nodes_.front(); }
  const std::vector<uint32_t>& TargetDomainIds() const { return Root().childIds; }

  const Node* Find(uint32_t deviceId) const;
  // Position of the node in Nodes(), for tables kept beside the topology.
  std::optional<size_t> IndexOf(uint32_t deviceId) const;
  const Node* FindByIdentifier(uint32_t targetDomainId, std::string_view identifier) const;

 private:
  std::string name_;
  std::string origin_;
  std::string description_;
  std::vector<std::string> scenarios_;
  std::vector<Node> nodes_;
  std::unordered_map<uint32_t, size_t> indexById_;
  std::unordered_map<uint32_t, std::map<std::string, uint32_t, std::less<>>> idByIdentifier_;
};

}  // namespace voxtrel::platform::target
