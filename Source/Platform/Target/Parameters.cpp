#include "Parameters.h"

#include "JsonReader.h"

namespace voxtrel::platform::target {

namespace {

constexpr size_t kMaxParameterNameLength = 63;
constexpr size_t kMaxParameterValueLength = 4096;

bool IsParameterName(std::string_view name) {
  if (name.empty() || name.size() > kMaxParameterNameLength) return false;
  auto letter = [](char c) { return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '_'; };
  auto digit = [](char c) { return c >= '0' && c <= '9'; };
  if (!letter(name.front())) return false;
  for (char c : name)
    if (!letter(c) && !digit(c)) return false;
  return true;
}

std::string Substitute(const std::string& text, const std::string& place, const ParameterValues& values) {
  std::string result;
  result.reserve(text.size());
  size_t position = 0;
  while (position < text.size()) {
    if (text.compare(position, 3, "$${") == 0) {
      result += "${";
      position += 3;
    } else if (text.compare(position, 2, "${") == 0) {
      const size_t close = text.find('}', position + 2);
      if (close == std::string::npos) Fail(place, "parameter reference without its closing '}' in " + Describe(text));
      const std::string name = text.substr(position + 2, close - position - 2);
      const auto value = values.find(name);
      if (value == values.end()) Fail(place, "unknown parameter '" + name + "'");
      result += value->second;
      position = close + 1;
    } else {
      result += text[position++];
    }
  }
  return result;
}

}  // namespace

std::vector<std::pair<std::string, std::string>> ReadParameterDeclarations(const Json& root) {
  std::vector<std::pair<std::string, std::string>> declared;
  const auto found = root.find("parameters");
  if (found == root.end()) return declared;
  const std::string place = "/parameters";
  if (!found->is_object())
    Fail(place, "expected an object of parameter names and default texts, found " + Describe(*found));
  for (const auto& [name, value] : found->items()) {
    if (!IsParameterName(name))
      Fail(PlaceOf(place, name), "parameter name '" + name +
                                     "' is not a name of letters, digits and '_' (starting with a letter or '_', at "
                                     "most 63 characters)");
    declared.emplace_back(name, ReadString(value, PlaceOf(place, name), kMaxParameterValueLength));
  }
  return declared;
}

Json SubstituteParameters(const Json& value, const std::string& place, const ParameterValues& values) {
  switch (value.type()) {
    case Json::value_t::string:
      return Substitute(value.get_ref<const std::string&>(), place, values);
    case Json::value_t::array: {
      Json copy = Json::array();
      for (size_t index = 0; index < value.size(); ++index)
        copy.push_back(SubstituteParameters(value[index], PlaceOf(place, index), values));
      return copy;
    }
    case Json::value_t::object: {
      Json copy = Json::object();
      for (const auto& [member, element] : value.items())
        copy[member] = SubstituteParameters(element, PlaceOf(place, member), values);
      return copy;
    }
    default:
      return value;
  }
}

}  // namespace voxtrel::platform::target
