#include "MemoryMapDocument.h"

#include "RspPacket.h"

namespace vxt::gdb {

std::string MemoryMapDocument(const std::vector<MemoryRegion>& regions) {
  if (regions.empty()) return {};
  std::string xml =
      "<?xml version=\"1.0\"?>\n"
      "<!DOCTYPE memory-map PUBLIC \"+//IDN gnu.org//DTD GDB Memory Map V1.0//EN\" "
      "\"http://sourceware.org/gdb/gdb-memory-map.dtd\">\n"
      "<memory-map>\n";
  for (const MemoryRegion& region : regions)
    xml += "  <memory type=\"" + region.kind + "\" start=\"0x" + HexNumber(region.base) + "\" length=\"0x" +
           HexNumber(region.size) + "\"/>\n";
  return xml + "</memory-map>\n";
}

}  // namespace vxt::gdb
