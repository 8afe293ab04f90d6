#include "JsonReader.h"

#include <algorithm>
#include <charconv>

namespace voxtrel::platform::target {

namespace {

constexpr size_t kQuotedTextLimit = 40;

std::string EscapeForPointer(std::string_view member) {
  std::string escaped;
  escaped.reserve(member.size());
  for (char c : member) {
    if (c == '~')
      escaped += "~0";
    else if (c == '/')
      escaped += "~1";
    else
      escaped += c;
  }
  return escaped;
}

std::optional<uint64_t> ParseUnsignedText(std::string_view text) {
  int base = 10;
  if (text.size() > 2 && text[0] == '0' && (text[1] == 'x' || text[1] == 'X')) {
    base = 16;
    text.remove_prefix(2);
  }
  if (text.empty()) return std::nullopt;
  uint64_t value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value, base);
  if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
  return value;
}

}  // namespace

void Fail(const std::string& place, std::string what) { throw DescriptionProblem(place, std::move(what)); }

std::string PlaceOf(const std::string& place, std::string_view member) {
  return place + "/" + EscapeForPointer(member);
}

std::string PlaceOf(const std::string& place, size_t index) { return place + "/" + std::to_string(index); }

std::string Describe(const Json& value) {
  switch (value.type()) {
    case Json::value_t::string: {
      const std::string& text = value.get_ref<const std::string&>();
      if (text.size() <= kQuotedTextLimit) return "string \"" + text + "\"";
      return "string \"" + text.substr(0, kQuotedTextLimit) + "...\"";
    }
    case Json::value_t::number_integer:
    case Json::value_t::number_unsigned:
    case Json::value_t::number_float:
      return "number " + value.dump();
    case Json::value_t::boolean:
      return value.dump();
    default:
      return value.type_name();
  }
}

uint64_t ReadUnsigned(const Json& value, const std::string& place, uint64_t min, uint64_t max) {
  std::optional<uint64_t> number;
  if (value.is_number_unsigned())
    number = value.get<uint64_t>();
  else if (value.is_string())
    number = ParseUnsignedText(value.get_ref<const std::string&>());
  if (!number) Fail(place, "expected an unsigned integer (or a string holding one), found " + Describe(value));
  if (*number < min || *number > max)
    Fail(place,
         "value " + std::to_string(*number) + " is out of range " + std::to_string(min) + ".." + std::to_string(max));
  return *number;
}

std::string ReadString(const Json& value, const std::string& place, size_t maxLength) {
  if (!value.is_string()) Fail(place, "expected a string, found " + Describe(value));
  const std::string& text = value.get_ref<const std::string&>();
  if (text.size() > maxLength)
    Fail(place, "text of " + std::to_string(text.size()) + " characters is longer than " + std::to_string(maxLength));
  return text;
}

ObjectReader::ObjectReader(const Json& value, std::string place, std::initializer_list<std::string_view> knownMembers,
                           std::initializer_list<std::string_view> moreKnownMembers)
    : value_(value), place_(std::move(place)) {
  if (!value_.is_object()) Fail(place_, "expected an object, found " + Describe(value_));
  auto known = [](std::initializer_list<std::string_view> names, const std::string& member) {
    return std::find(names.begin(), names.end(), member) != names.end();
  };
  for (const auto& [member, ignored] : value_.items()) {
    if (member == "comment" || known(knownMembers, member) || known(moreKnownMembers, member)) continue;
    Fail(Place(member), "unknown member '" + member + "'");
  }
}

const Json* ObjectReader::Find(std::string_view member) const {
  const auto found = value_.find(std::string(member));
  return found == value_.end() ? nullptr : &*found;
}

std::string ObjectReader::RequiredString(std::string_view member, size_t maxLength) const {
  const Json* value = Find(member);
  if (!value) Fail(place_, "missing member '" + std::string(member) + "'");
  return ReadString(*value, Place(member), maxLength);
}

std::string ObjectReader::OptionalString(std::string_view member, size_t maxLength, std::string fallback) const {
  const Json* value = Find(member);
  return value ? ReadString(*value, Place(member), maxLength) : fallback;
}

uint64_t ObjectReader::RequiredUnsigned(std::string_view member, uint64_t min, uint64_t max) const {
  const Json* value = Find(member);
  if (!value) Fail(place_, "missing member '" + std::string(member) + "'");
  return ReadUnsigned(*value, Place(member), min, max);
}

uint64_t ObjectReader::OptionalUnsigned(std::string_view member, uint64_t min, uint64_t max, uint64_t fallback) const {
  const Json* value = Find(member);
  return value ? ReadUnsigned(*value, Place(member), min, max) : fallback;
}

bool ObjectReader::OptionalBool(std::string_view member, bool fallback) const {
  const Json* value = Find(member);
  if (!value) return fallback;
  if (value->is_boolean()) return value->get<bool>();
  // A parameter can only give text.
  if (value->is_string()) {
    const std::string& text = value->get_ref<const std::string&>();
    if (text == "true") return true;
    if (text == "false") return false;
  }
  Fail(Place(member), "expected true or false, found " + Describe(*value));
}

const Json& ObjectReader::RequiredArray(std::string_view member, bool nonEmpty) const {
  const Json* value = Find(member);
  if (!value) Fail(place_, "missing member '" + std::string(member) + "'");
  if (!value->is_array()) Fail(Place(member), "expected an array, found " + Describe(*value));
  if (nonEmpty && value->empty()) Fail(Place(member), "expected at least one element");
  return *value;
}

const Json* ObjectReader::OptionalArray(std::string_view member) const {
  const Json* value = Find(member);
  if (value && !value->is_array()) Fail(Place(member), "expected an array, found " + Describe(*value));
  return value;
}

const Json* ObjectReader::OptionalObject(std::string_view member) const {
  const Json* value = Find(member);
  if (value && !value->is_object()) Fail(Place(member), "expected an object, found " + Describe(*value));
  return value;
}

}  // namespace voxtrel::platform::target
