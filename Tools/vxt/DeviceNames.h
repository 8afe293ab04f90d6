// Devices as a user names them on the command line: by id ("0x04000000")
// or by identifier ("Core0"), which may carry its target domain when the
// identifier is used in several ("Bmc/DebugPort0").
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "InProc_Vxt.h"

namespace vxt::cli {

// "LogicalCore", or the number for a value past the names.
std::string NodeTypeText(VXT_NodeType type);

// The target domains, then the root above them.
struct TargetDomains {
  uint32_t rootId = 0;
  std::vector<uint32_t> ids;
};
TargetDomains ReadTargetDomains(IInternalService_Device& devices);

// The device's identifier; throws CallFailed when it has none.
std::string IdentifierOf(IInternalService_Device& devices, uint32_t deviceId);

// Throws std::invalid_argument naming the device when no device, or more
// than one, answers to the name.
uint32_t ResolveDevice(IInternalService_Device& devices, const std::string& name);

}  // namespace vxt::cli
