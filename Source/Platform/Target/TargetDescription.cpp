#include "TargetDescription.h"

#include <set>

#include "JsonReader.h"
#include "TopologyBuilder.h"

namespace voxtrel::platform::target {

namespace {

constexpr size_t kMaxDescriptionTextLength = 1024;
constexpr size_t kMaxScenarioNameLength = 63;

struct TextPosition {
  size_t line = 1;
  size_t column = 1;
};

// Line and column of the character at `offset`, both counted from 1.
TextPosition PositionOf(std::string_view text, size_t offset) {
  TextPosition position;
  for (size_t index = 0; index < offset && index < text.size(); ++index) {
    if (text[index] == '\n') {
      ++position.line;
      position.column = 1;
    } else {
      ++position.column;
    }
  }
  return position;
}

std::string AtPosition(TextPosition position) {
  return "line " + std::to_string(position.line) + ", column " + std::to_string(position.column);
}

// The parser builds nested values recursively when they are copied and
// checked, so nesting is bounded before parsing. Offset of the first bracket
// too deep, if any.
std::optional<size_t> FindTooDeepNesting(std::string_view text) {
  size_t depth = 0;
  bool inString = false;
  for (size_t index = 0; index < text.size(); ++index) {
    const char c = text[index];
    if (inString) {
      if (c == '\\')
        ++index;
      else if (c == '"')
        inString = false;
    } else if (c == '"') {
      inString = true;
    } else if (c == '[' || c == '{') {
      if (++depth > kMaxNestingDepth) return index;
    } else if ((c == ']' || c == '}') && depth > 0) {
      --depth;
    }
  }
  return std::nullopt;
}

// The parser's reason without its own prefix and place, e.g.
// "syntax error while parsing object - unexpected '}'; expected string literal".
std::string ParseErrorReason(const nlohmann::json::parse_error& error) {
  std::string text = error.what();
  const size_t column = text.find("column ");
  const size_t start = column == std::string::npos ? std::string::npos : text.find(": ", column);
  if (start != std::string::npos) return text.substr(start + 2);
  const size_t prefixEnd = text.find("] ");
  return prefixEnd == std::string::npos ? text : text.substr(prefixEnd + 2);
}

std::string JoinNames(const std::vector<std::pair<std::string, std::string>>& parameters) {
  if (parameters.empty()) return "none";
  std::string names;
  for (const auto& [name, ignored] : parameters) names += (names.empty() ? "" : ", ") + name;
  return names;
}

Failure Invalid(const DescriptionOrigin& origin, const std::string& place, const std::string& what) {
  return {kInvalidDescription, "Target description '" + origin.where + "' is invalid at " + place + ": " + what};
}

std::vector<std::string> ReadScenarios(const ObjectReader& root) {
  std::vector<std::string> scenarios;
  const Json* list = root.OptionalArray("scenarios");
  if (!list) return scenarios;
  std::set<std::string, std::less<>> seen;
  for (size_t index = 0; index < list->size(); ++index) {
    const std::string place = PlaceOf(root.Place("scenarios"), index);
    std::string name = ReadString((*list)[index], place, kMaxScenarioNameLength);
    if (name.empty()) Fail(place, "a scenario name cannot be empty");
    if (!seen.insert(name).second) Fail(place, "duplicate scenario '" + name + "'");
    scenarios.push_back(std::move(name));
  }
  return scenarios;
}

ParsedDescription Build(const Json& document, const DescriptionOrigin& origin,
                        std::vector<std::pair<std::string, std::string>> declared, const ParameterValues& values) {
  ParameterValues effective;
  for (const auto& [name, fallback] : declared) {
    const auto given = values.find(name);
    effective.emplace(name, given == values.end() ? fallback : given->second);
  }
  Json substituted = document;
  substituted.erase("parameters");
  substituted = SubstituteParameters(substituted, "", effective);

  const ObjectReader root(substituted, "",
                          {"formatVersion", "description", "parameters", "scenarios", "targetDomains"});
  const uint64_t version = root.RequiredUnsigned("formatVersion", 0, UINT32_MAX);
  if (version != kDescriptionFormatVersion)
    Fail(root.Place("formatVersion"), "format version " + std::to_string(version) + " is not supported (expected " +
                                          std::to_string(kDescriptionFormatVersion) + ")");
  std::string description = root.OptionalString("description", kMaxDescriptionTextLength);
  std::vector<std::string> scenarios = ReadScenarios(root);
  std::vector<Node> nodes = BuildNodes(root.RequiredArray("targetDomains", true), root.Place("targetDomains"));
  return {std::make_shared<const Topology>(origin.name, origin.where, std::move(description), std::move(scenarios),
                                           std::move(nodes)),
          std::move(declared)};
}

}  // namespace

std::variant<ParsedDescription, Failure> ParseTargetDescription(std::string_view text, const DescriptionOrigin& origin,
                                                                const ParameterValues& values) {
  if (text.size() > kMaxDescriptionSize)
    return Invalid(
        origin, "the top level",
        "the text of " + std::to_string(text.size()) + " bytes is larger than " + std::to_string(kMaxDescriptionSize));
  if (const std::optional<size_t> tooDeep = FindTooDeepNesting(text))
    return Invalid(origin, AtPosition(PositionOf(text, *tooDeep)),
                   "values are nested deeper than " + std::to_string(kMaxNestingDepth) + " levels");

  Json document;
  try {
    document = Json::parse(text);
  } catch (const nlohmann::json::parse_error& error) {
    // `byte` counts the characters read, the offending one included.
    const size_t offset = error.byte > 0 ? error.byte - 1 : 0;
    return Invalid(origin, AtPosition(PositionOf(text, offset)), ParseErrorReason(error));
  }

  try {
    if (!document.is_object()) Fail("", "expected an object, found " + Describe(document));
    std::vector<std::pair<std::string, std::string>> declared = ReadParameterDeclarations(document);
    for (const auto& [name, ignored] : values) {
      bool known = false;
      for (const auto& declaration : declared) known = known || declaration.first == name;
      if (!known)
        return Failure{kUnknownParameter, "Configuration parameter '" + name +
                                              "' is not declared by target description '" + origin.where +
                                              "' (it declares: " + JoinNames(declared) + ")"};
    }
    return Build(document, origin, std::move(declared), values);
  } catch (const DescriptionProblem& problem) {
    return Invalid(origin, problem.Place().empty() ? "the top level" : problem.Place(), problem.what());
  } catch (const nlohmann::json::exception& error) {
    return Invalid(origin, "the top level", error.what());
  }
}

}  // namespace voxtrel::platform::target
