#include "AddressText.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <charconv>
#include <cstdio>
#include <optional>
#include <utility>
#include <vector>

#include "RunControlCodes.h"

namespace voxtrel::platform::run_control {
namespace {

using Prefix = std::pair<std::string_view, VXT_AddressType>;
constexpr std::array kPrefixes{
    Prefix{"phys", VXT_AddressType_Physical},          Prefix{"lin", VXT_AddressType_Linear},
    Prefix{"gphys", VXT_AddressType_GuestPhysical},    Prefix{"cs", VXT_AddressType_OneFieldCodeLogical},
    Prefix{"ds", VXT_AddressType_OneFieldDataLogical}, Prefix{"ss", VXT_AddressType_OneFieldStackLogical},
};

std::string Selector(uint16_t selector) {
  char text[8];
  std::snprintf(text, sizeof text, "0x%04x", selector);
  return text;
}

std::string_view Trim(std::string_view text) {
  while (!text.empty() && std::isspace(static_cast<unsigned char>(text.front()))) text.remove_prefix(1);
  while (!text.empty() && std::isspace(static_cast<unsigned char>(text.back()))) text.remove_suffix(1);
  return text;
}

std::optional<uint64_t> Number(std::string_view text, uint64_t max) {
  text = Trim(text);
  int base = 10;
  if (text.size() > 2 && text[0] == '0' && (text[1] == 'x' || text[1] == 'X')) {
    text.remove_prefix(2);
    base = 16;
  }
  uint64_t value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value, base);
  if (text.empty() || error != std::errc{} || end != text.data() + text.size() || value > max) return std::nullopt;
  return value;
}

target::Failure Unreadable(std::string_view text) {
  std::string what = "'";
  what += text;
  what += "' is no address; write phys:0x1000, lin:0x1000, gphys:0x1000, cs:0x1000, ds:0x1000, "
          "ss:0x1000, segsel:offset or ldtsel:segsel:offset";
  return {kInvalidAddress, std::move(what)};
}

}  // namespace

target::Outcome AddressToText(const VXT_Address& address, std::string& text) {
  const std::string offset = HexText(address.offset);
  for (const auto& [prefix, type] : kPrefixes) {
    if (address.addressType == type) {
      text = std::string(prefix) + ":" + offset;
      return std::nullopt;
    }
  }
  if (address.addressType == VXT_AddressType_TwoFieldLogical) {
    text = Selector(address.segsel) + ":" + offset;
  } else if (address.addressType == VXT_AddressType_ThreeFieldLogical) {
    text = Selector(address.ldtsel) + ":" + Selector(address.segsel) + ":" + offset;
  } else {
    return target::Failure{kAddressTypeNotSupported,
                           "address type " + std::to_string(address.addressType) + " has no text form"};
  }
  return std::nullopt;
}

target::Outcome AddressFromText(std::string_view text, VXT_Address& address) {
  std::vector<std::string_view> parts;
  for (std::string_view rest = text;;) {
    const size_t colon = rest.find(':');
    parts.push_back(Trim(rest.substr(0, colon)));
    if (colon == std::string_view::npos) break;
    rest.remove_prefix(colon + 1);
  }
  VXT_Address parsed{VXT_ADDRESS_SIZE, 0, 0, 0, VXT_AddressType_Physical};
  std::string head(parts.front());
  std::transform(head.begin(), head.end(), head.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  const auto prefix =
      std::find_if(kPrefixes.begin(), kPrefixes.end(), [&](const Prefix& p) { return p.first == head; });
  std::optional<uint64_t> offset = Number(parts.back(), UINT64_MAX);
  if (parts.size() == 2 && prefix != kPrefixes.end()) {
    parsed.addressType = prefix->second;
  } else if (parts.size() == 2 || parts.size() == 3) {
    const auto segsel = Number(parts[parts.size() - 2], 0xFFFF);
    const auto ldtsel = parts.size() == 3 ? Number(parts[0], 0xFFFF) : std::optional<uint64_t>(0);
    if (!segsel || !ldtsel) return Unreadable(text);
    parsed.segsel = static_cast<uint16_t>(*segsel);
    parsed.ldtsel = static_cast<uint16_t>(*ldtsel);
    parsed.addressType = parts.size() == 3 ? VXT_AddressType_ThreeFieldLogical : VXT_AddressType_TwoFieldLogical;
  } else {
    return Unreadable(text);
  }
  if (!offset) return Unreadable(text);
  parsed.offset = *offset;
  address = parsed;
  return std::nullopt;
}

}  // namespace voxtrel::platform::run_control
