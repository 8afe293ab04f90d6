// Parameters of a target description. A description declares them in its
// "parameters" object, each with a default text, and uses them as "${name}"
// inside any string value; "$${" writes a literal "${".
#pragma once

#include <map>
#include <string>
#include <utility>
#include <vector>

#include "Topology.h"

namespace voxtrel::platform::target {

using ParameterValues = std::map<std::string, std::string, std::less<>>;

// The declared parameters with their defaults, in declaration order. Throws
// DescriptionProblem for a malformed declaration.
std::vector<std::pair<std::string, std::string>> ReadParameterDeclarations(const Json& root);

// A copy of `value` with every reference in its string values replaced.
// Member names are left alone. Throws DescriptionProblem for a reference to
// a parameter not in `values` or one without its closing brace.
Json SubstituteParameters(const Json& value, const std::string& place, const ParameterValues& values);

}  // namespace voxtrel::platform::target
