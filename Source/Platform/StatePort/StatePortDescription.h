// The state ports a device declares in its "statePorts" member:
//
//   { "name": "Scratch", "accessSize": 4, "description": "...",
//     "addressFields": [ { "name": "Index", "values": 16, "description": "..." } ],
//     "resetValue": "0x0", "readOnly": false, "source": "postCode" | "runState" }
//
// A port with a `source` shows the target's state and is read-only:
// "postCode" the last POST code the domain's firmware wrote, "runState"
// 1 while the thread its one address field selects (by index in the
// domain) is halted, else 0.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "../Target/Topology.h"

namespace voxtrel::platform::state_port {

struct AddressField {
  std::string name;
  std::string description;
  uint64_t values = 1;  // The field takes 0 .. values - 1
};

enum class PortSource : uint8_t { Stored, PostCode, RunState };

struct PortDescription {
  std::string name;
  std::string description;
  uint32_t accessSize = 1;  // Bytes: 1, 2, 4 or 8
  std::vector<AddressField> addressFields;
  uint64_t resetValue = 0;
  bool readOnly = false;
  PortSource source = PortSource::Stored;

  uint64_t Mask() const { return accessSize == 8 ? ~0ull : (1ull << (8 * accessSize)) - 1; }
};

// The device's ports in the order declared; none when it declares none.
// Throws target::DescriptionProblem for a member it cannot use.
std::vector<PortDescription> ReadStatePorts(const target::Node& device);

}  // namespace voxtrel::platform::state_port
