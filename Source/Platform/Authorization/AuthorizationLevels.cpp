// The Authorization component's operations and the levels in force.
#include "Authorization/AuthorizationLevels.h"

#include <algorithm>
#include <cstring>
#include <map>
#include <mutex>
#include <optional>

#include "Authorization.h"
#include "Authorization/Credentials.h"
#include "Support/ComponentCall.h"
#include "Target/FacetChecks.h"
#include "Target/FacetOwner.h"
#include "Target/JsonReader.h"
#include "Target/PerTarget.h"
#include "Target/TargetModel.h"
#include "TargetManager/ListAnswers.h"

namespace voxtrel::platform::authorization {
namespace {

using target::Json;
using target::Node;
using target_manager::AnswerCount;
using target_manager::AnswerFill;
using target_manager::ListOf;
using target_manager::NameFields;
using target_manager::Request;

constexpr size_t kLevelFieldSize = kMaxLevelNameLength + 1;

std::vector<Level> ReadLevels(const Json& facet, const std::string& place) {
  std::vector<Level> levels;
  for (size_t index = 0; index < facet.size(); ++index) {
    const std::string at = target::PlaceOf(place, index);
    const target::ObjectReader object(facet[index], at, {"level", "grants", "users"});
    Level level{object.RequiredString("level", kMaxLevelNameLength), {}, {}};
    if (level.name.empty()) target::Fail(at, "a level needs a name");
    for (const Level& before : levels)
      if (before.name == level.name) target::Fail(at, "level '" + level.name + "' is given twice");
    if (const Json* grants = object.OptionalArray("grants"))
      for (size_t g = 0; g < grants->size(); ++g) {
        if (!(*grants)[g].is_string()) target::Fail(target::PlaceOf(object.Place("grants"), g), "expected a text");
        level.grants.push_back((*grants)[g].get<std::string>());
      }
    if (const Json* users = object.OptionalArray("users"))
      for (size_t u = 0; u < users->size(); ++u) {
        const target::ObjectReader user((*users)[u], target::PlaceOf(object.Place("users"), u), {"name", "passwordHash"});
        User entry{user.RequiredString("name", kMaxCredentialLength), user.RequiredString("passwordHash", 512)};
        if (entry.passwordHash.empty() || entry.passwordHash[0] != '$')
          target::Fail(user.Place("passwordHash"), "expected a salted crypt hash such as \"$6$...\", never a password");
        level.users.push_back(std::move(entry));
      }
    levels.push_back(std::move(level));
  }
  return levels;
}

void CheckFacet(const Json& facet, const std::string& place, const Node&) { ReadLevels(facet, place); }

const bool registered = [] {
  target::RegisterFacetCheck("authorization", &CheckFacet);
  return true;
}();

// The levels in force on the built target, by the device whose member
// describes them: an index into its levels.
using InForce = target::PerTarget<std::map<uint32_t, size_t>>;

InForce& Current() {
  static InForce inForce;
  return inForce;
}

// The device and the levels it offers: the first device from `deviceId` up
// that has the member, or the device itself with no levels.
struct Offer {
  std::shared_ptr<target::LiveTopology> topology;
  const Node* owner = nullptr;
  std::vector<Level> levels;
};

Offer OfferOf(const std::shared_ptr<target::LiveTopology>& topology, const Node& device) {
  if (const Node* owner = target::FacetOwner(*topology, device, "authorization"))
    return Offer{topology, owner, ReadLevels(*owner->FindFacet("authorization"), "authorization")};
  return Offer{topology, &device, {}};
}

std::optional<Offer> OfferFor(Request& request, uint32_t deviceId) {
  const Node* device = request.Device(deviceId);
  if (device == nullptr) return std::nullopt;
  return OfferOf(request.SharedTopology(), *device);
}

size_t InForceIndex(const Offer& offer) {
  InForce& current = Current();
  std::lock_guard lock(current.mutex);
  const auto& levels = current.For(offer.topology);
  const auto found = levels.find(offer.owner->id);
  return found == levels.end() ? 0 : found->second;
}

void CopyField(const std::string& text, char* field) { target_manager::CopyText(text, field, kLevelFieldSize); }

// The component's operations let nothing out: the service calls them with
// no catch-all.
template <class Work>
uint32_t Guarded(Request& request, Work&& work) noexcept {
  try {
    return work();
  } catch (const std::exception& failure) {
    return request.Refuse(0x20009, std::string(": ") + failure.what());
  } catch (...) {
    return request.Refuse(0x20009, ": an unexpected failure");
  }
}

uint32_t SetCredentials(const char* username, const char* password) {
  // The password stands in no recorded argument.
  VOXTREL_COMPONENT_CALL("Authorization.SetCredentials");
  Request request("Authorization.SetCredentials");
  return Guarded(request, [&] {
    if (HoldCredentials(username, password)) return 0u;
    return request.Refuse(kUnknownLevel, ": a user name or password is longer than " +
                                                     std::to_string(kMaxCredentialLength) + " characters");
  });
}

uint32_t ClearCredentials() {
  VOXTREL_COMPONENT_CALL("Authorization.ClearCredentials");
  WipeCredentials();
  return 0;
}

uint32_t HasCredentials(uint8_t* hasCredentials) {
  VOXTREL_COMPONENT_CALL("Authorization.HasCredentials");
  Request request("Authorization.HasCredentials");
  if (request.NotNull(hasCredentials, "hasCredentials").failed()) return request.code();
  *hasCredentials = CredentialsHeld() ? 1 : 0;
  return 0;
}

uint32_t GetNumAuthorizationLevels(uint32_t deviceId, uint32_t* numLevelNames) {
  VOXTREL_COMPONENT_CALL("Authorization.GetNumAuthorizationLevels", "deviceId=", target_manager::HexId(deviceId));
  Request request("Authorization.GetNumAuthorizationLevels");
  return Guarded(request, [&] {
    return AnswerCount(request, numLevelNames, "numLevelNames",
                       [&] { return ListOf(OfferFor(request, deviceId), &Offer::levels); });
  });
}

uint32_t GetAuthorizationLevels(uint32_t deviceId, uint32_t numLevelNames, char* levelNames) {
  VOXTREL_COMPONENT_CALL("Authorization.GetAuthorizationLevels", "deviceId=", target_manager::HexId(deviceId),
                         ",numLevelNames=", numLevelNames);
  Request request("Authorization.GetAuthorizationLevels");
  return Guarded(request, [&] {
    return AnswerFill(request, levelNames, "levelNames",
                      NameFields{numLevelNames, kLevelFieldSize, target_manager::PastTheList::Emptied},
                      [&] { return ListOf(OfferFor(request, deviceId), &Offer::levels); });
  });
}

uint32_t QueryAuthorizationLevel(uint32_t deviceId, char* levelName) {
  VOXTREL_COMPONENT_CALL("Authorization.QueryAuthorizationLevel", "deviceId=", target_manager::HexId(deviceId));
  Request request("Authorization.QueryAuthorizationLevel");
  return Guarded(request, [&] {
    const auto offer = OfferFor(request.NotNull(levelName, "levelName"), deviceId);
    if (!offer) return request.code();
    CopyField(offer->levels.empty() ? std::string() : offer->levels[InForceIndex(*offer)].name, levelName);
    return 0u;
  });
}

uint32_t Authorize(uint32_t deviceId, const char* levelName) {
  VOXTREL_COMPONENT_CALL("Authorization.Authorize", "deviceId=", target_manager::HexId(deviceId));
  Request request("Authorization.Authorize");
  return Guarded(request, [&] {
    const auto offer = OfferFor(request.NotNull(levelName, "levelName"), deviceId);
    if (!offer) return request.code();
    const auto& levels = offer->levels;
    const auto wanted = std::find_if(levels.begin(), levels.end(), [&](const Level& l) { return l.name == levelName; });
    if (wanted == levels.end())
      return request.Refuse(kUnknownLevel, ": device " + target_manager::DeviceName(*offer->owner) +
                                               " has no authorization level \"" + std::string(levelName) + "\"");
    // The lowest level is anyone's; a higher one needs the credentials of
    // a user named at it or above it.
    bool granted = wanted == levels.begin();
    for (auto level = wanted; level != levels.end() && !granted; ++level)
      for (const User& user : level->users) granted = granted || CredentialsMatch(user.name, user.passwordHash);
    if (!granted)
      return request.Refuse(kNotAuthorized, CredentialsHeld()
                                                ? ": the credentials held do not grant level \"" + wanted->name + "\""
                                                : ": no credentials are held; SetCredentials gives them");
    InForce& current = Current();
    std::lock_guard lock(current.mutex);
    current.For(offer->topology)[offer->owner->id] = static_cast<size_t>(wanted - levels.begin());
    return 0u;
  });
}

// The text of a refusal when the level in force is below the one that
// grants `operation`.
std::optional<std::string> MissingLevel(const Offer& offer, std::string_view operation) {
  const size_t inForce = offer.levels.empty() ? 0 : InForceIndex(offer);
  for (size_t i = inForce + 1; i < offer.levels.size(); ++i) {
    const auto& grants = offer.levels[i].grants;
    if (std::find(grants.begin(), grants.end(), operation) != grants.end())
      return std::string(operation) + " needs authorization level \"" + offer.levels[i].name + "\" on device " +
             target_manager::DeviceName(*offer.owner) + ", and \"" + offer.levels[inForce].name + "\" is in force";
  }
  return std::nullopt;
}

}  // namespace

uint32_t RequireGrant(Request& request, uint32_t deviceId, std::string_view operation) {
  return Guarded(request, [&] {
    const auto offer = OfferFor(request, deviceId);
    if (!offer) return request.code();
    if (const auto missing = MissingLevel(*offer, operation)) return request.Refuse(kNotAuthorized, ": " + *missing);
    return 0u;
  });
}

target::Outcome GrantOutcome(uint32_t deviceId, std::string_view operation) {
  try {
    const auto topology = target::TargetModel::Instance().Topology();
    const Node* device = topology ? topology->Layout().Find(deviceId) : nullptr;
    if (device == nullptr) return std::nullopt;
    if (const auto missing = MissingLevel(OfferOf(topology, *device), operation))
      return target::Failure{kNotAuthorized, *missing};
    return std::nullopt;
  } catch (const std::exception& failure) {
    return target::Failure{0x20009, failure.what()};
  }
}

const AuthorizationComponent* Table() {
  static constexpr AuthorizationComponent kTable{&SetCredentials,         &ClearCredentials,
                                                 &HasCredentials,         &GetNumAuthorizationLevels,
                                                 &GetAuthorizationLevels, &QueryAuthorizationLevel,
                                                 &Authorize};
  return &kTable;
}

}  // namespace voxtrel::platform::authorization
