// GDB's memory map of a target domain ("qXfer:memory-map:read"), from the
// regions its description gives.
#pragma once

#include <string>
#include <vector>

#include "TargetAccess.h"

namespace vxt::gdb {

// The XML document; empty for no regions, so that no map is offered.
std::string MemoryMapDocument(const std::vector<MemoryRegion>& regions);

}  // namespace vxt::gdb
