// The transport settings of a target domain: whether high-bandwidth
// transports are preferred, and each feature's survivability preset. They
// are kept per domain for the life of the process; a domain never set reads
// "Dont_Care" and "PlatformDefault".
#include <map>
#include <mutex>
#include <utility>

#include "PlatformControl/PlatformControlOperations.h"
#include "Support/ComponentCall.h"

namespace voxtrel::platform::platform_control {
namespace {

using target_manager::HexId;
using target_manager::Request;

struct Settings {
  std::mutex mutex;
  std::map<uint32_t, VXT_Preference> preferences;
  std::map<std::pair<uint32_t, uint32_t>, VXT_SurvivabilityPreset> presets;
};

Settings& Stored() {
  static Settings settings;
  return settings;
}

// The target domain of that id, refused unless it is one.
bool FindDomain(Request& request, uint32_t targetDomainId) {
  return request.DeviceOfType(targetDomainId, target::NodeType::TargetDomain) != nullptr;
}

bool KnownFeature(Request& request, VXT_TransportFeature feature) {
  if (feature <= VXT_TransportFeature_Trace) return true;
  request.Refuse(kUnknownName, ": " + std::to_string(feature) + " is no transport feature (0 Transport, 1 Trace)");
  return false;
}

}  // namespace

uint32_t SetPreferHighBandwidthTransports(uint32_t targetDomainId, VXT_Preference prefer) {
  VOXTREL_COMPONENT_CALL("PlatformControl.SetPreferHighBandwidthTransports", "targetDomainId=", HexId(targetDomainId),
                         ",prefer=", static_cast<uint32_t>(prefer));
  Request request("PlatformControl.SetPreferHighBandwidthTransports");
  if (!FindDomain(request, targetDomainId)) return request.code();
  if (prefer > VXT_Preference_Disfavor)
    return request.Refuse(kUnknownName, ": " + std::to_string(prefer) + " is no preference (0 Dont_Care, 1 Prefer, 2 Disfavor)");
  Settings& settings = Stored();
  std::lock_guard lock(settings.mutex);
  settings.preferences[targetDomainId] = prefer;
  return 0;
}

uint32_t GetPreferHighBandwidthTransports(uint32_t targetDomainId, VXT_Preference* prefer) {
  VOXTREL_COMPONENT_CALL("PlatformControl.GetPreferHighBandwidthTransports", "targetDomainId=", HexId(targetDomainId));
  Request request("PlatformControl.GetPreferHighBandwidthTransports");
  if (!FindDomain(request.NotNull(prefer, "prefer"), targetDomainId)) return request.code();
  Settings& settings = Stored();
  std::lock_guard lock(settings.mutex);
  const auto found = settings.preferences.find(targetDomainId);
  *prefer = found == settings.preferences.end() ? VXT_Preference_Dont_Care : found->second;
  return 0;
}

uint32_t SetFeatureSurvivabilityPreset(uint32_t targetDomainId, VXT_TransportFeature feature,
                                       VXT_SurvivabilityPreset preset) {
  VOXTREL_COMPONENT_CALL("PlatformControl.SetFeatureSurvivabilityPreset", "targetDomainId=", HexId(targetDomainId),
                         ",feature=", static_cast<uint32_t>(feature), ",preset=", static_cast<uint32_t>(preset));
  Request request("PlatformControl.SetFeatureSurvivabilityPreset");
  if (!FindDomain(request, targetDomainId) || !KnownFeature(request, feature)) return request.code();
  if (preset > VXT_SurvivabilityPreset_Custom)
    return request.Refuse(kUnknownName, ": " + std::to_string(preset) + " is no survivability preset (0 to 3)");
  Settings& settings = Stored();
  std::lock_guard lock(settings.mutex);
  settings.presets[{targetDomainId, feature}] = preset;
  return 0;
}

uint32_t GetFeatureSurvivabilityPreset(uint32_t targetDomainId, VXT_TransportFeature feature,
                                       VXT_SurvivabilityPreset* preset) {
  VOXTREL_COMPONENT_CALL("PlatformControl.GetFeatureSurvivabilityPreset", "targetDomainId=", HexId(targetDomainId),
                         ",feature=", static_cast<uint32_t>(feature));
  Request request("PlatformControl.GetFeatureSurvivabilityPreset");
  if (!FindDomain(request.NotNull(preset, "preset"), targetDomainId) || !KnownFeature(request, feature))
    return request.code();
  Settings& settings = Stored();
  std::lock_guard lock(settings.mutex);
  const auto found = settings.presets.find({targetDomainId, feature});
  *preset = found == settings.presets.end() ? VXT_SurvivabilityPreset_PlatformDefault : found->second;
  return 0;
}

}  // namespace voxtrel::platform::platform_control
