#include "frame/RenderComposites.h"

#include "frame/EnumNames.h"

namespace vxt::frame {

std::ostream& operator<<(std::ostream& out, BitDataText value) {
  if (value.record == nullptr) return out << "<NULL>";
  return out << "{bitSize = " << Dec{value.record->bitSize} << " dataHandle = " << Hex16{value.record->dataHandle}
             << "}";
}

std::ostream& operator<<(std::ostream& out, AddressText value) {
  if (value.record == nullptr) return out << "<NULL>";
  const VXT_Address& address = *value.record;
  return out << "{ldtsel = " << Hex4{address.ldtsel} << " segsel = " << Hex4{address.segsel}
             << " offset = " << Hex16{address.offset} << " addressType = " << Enum<AddressTypeName>{address.addressType}
             << "}";
}

}  // namespace vxt::frame
