#include "frame/RenderScalars.h"

#include <cstring>
#include <iomanip>

namespace vxt::frame {
namespace detail {

std::ostream& WriteHex(std::ostream& out, uint64_t value, int digits) {
  return out << "0x" << std::hex << std::setfill('0') << std::setw(digits) << value;
}

}  // namespace detail

std::ostream& operator<<(std::ostream& out, Hex2 value) { return detail::WriteHex(out, value.value, 2); }
std::ostream& operator<<(std::ostream& out, Hex4 value) { return detail::WriteHex(out, value.value, 4); }
std::ostream& operator<<(std::ostream& out, Hex8 value) { return detail::WriteHex(out, value.value, 8); }
std::ostream& operator<<(std::ostream& out, Hex16 value) { return detail::WriteHex(out, value.value, 16); }

std::ostream& operator<<(std::ostream& out, Dec value) {
  out << std::dec;
  if (value.isSigned) return out << static_cast<long long>(value.bits);
  return out << static_cast<unsigned long long>(value.bits);
}

std::ostream& operator<<(std::ostream& out, Pointer value) {
  // Upper case is for this class alone; every other digit is lower case.
  return out << std::hex << std::uppercase << std::setfill('0') << std::setw(16)
             << reinterpret_cast<uintptr_t>(value.value) << std::nouppercase;
}

std::ostream& operator<<(std::ostream& out, Bool value) { return out << (value.value ? "True" : "False"); }

std::ostream& operator<<(std::ostream& out, Quoted value) {
  if (value.text == nullptr) return out << "<NULL>";
  out << '\'';
  out.write(value.text, static_cast<std::streamsize>(strnlen(value.text, value.maxLength)));
  return out << '\'';
}

std::ostream& operator<<(std::ostream& out, Timeout value) {
  if (value.milliseconds == 0xFFFFFFFFu) return out << "<INFINITE>";
  return out << Dec{value.milliseconds};
}

std::ostream& operator<<(std::ostream& out, Omitted) { return out << "<OMITTED>"; }

std::ostream& operator<<(std::ostream& out, NotListed value) {
  return out << (value.buffer == nullptr ? "<NULL>" : "{...}");
}

}  // namespace vxt::frame
