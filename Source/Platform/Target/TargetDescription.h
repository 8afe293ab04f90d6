// Reading a target description: the JSON text of a configuration, checked
// whole before anything is built from it.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

#include "Failure.h"
#include "Parameters.h"
#include "Topology.h"

namespace voxtrel::platform::target {

inline constexpr uint64_t kDescriptionFormatVersion = 1;
inline constexpr size_t kMaxDescriptionSize = 16u << 20;
inline constexpr size_t kMaxNestingDepth = 64;

struct DescriptionOrigin {
  std::string name;   // The configuration's name: "Default", a file's stem
  std::string where;  // How messages name it: a file's path, or "Default (built in)"
};

struct ParsedDescription {
  std::shared_ptr<const Topology> topology;
  // The declared parameters with their default texts, in declaration order.
  std::vector<std::pair<std::string, std::string>> parameters;
};

// Checks the text and builds its topology with `values` in place of the
// declared defaults. A failure's message names the origin, the place (line
// and column, or a JSON pointer) and what is wrong:
//   Target description 'Broken.json' is invalid at /targetDomains/0/packages: expected an array, found object
// Codes: kInvalidDescription, or kUnknownParameter for a name in `values`
// that the description does not declare.
VOXTREL_PLATFORM_API std::variant<ParsedDescription, Failure> ParseTargetDescription(std::string_view text,
                                                                                     const DescriptionOrigin& origin,
                                                                                     const ParameterValues& values);

}  // namespace voxtrel::platform::target
