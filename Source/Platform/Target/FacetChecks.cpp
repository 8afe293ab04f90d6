#include "FacetChecks.h"

#include <mutex>
#include <utility>
#include <vector>

#include "JsonReader.h"

namespace voxtrel::platform::target {

namespace {

struct Registry {
  std::mutex mutex;
  std::vector<std::pair<std::string, FacetCheck>> checks;
};

Registry& Checks() {
  static Registry registry;
  return registry;
}

}  // namespace

void RegisterFacetCheck(std::string_view member, FacetCheck check) {
  Registry& registry = Checks();
  std::lock_guard lock(registry.mutex);
  registry.checks.emplace_back(std::string(member), check);
}

void CheckFacet(std::string_view member, const Json& facet, const std::string& place, const Node& node) {
  if (!facet.is_array()) Fail(place, "expected an array, found " + Describe(facet));
  std::vector<FacetCheck> checks;
  {
    Registry& registry = Checks();
    std::lock_guard lock(registry.mutex);
    for (const auto& [name, check] : registry.checks)
      if (name == member) checks.push_back(check);
  }
  for (FacetCheck check : checks) check(facet, place, node);
}

}  // namespace voxtrel::platform::target
