// The PlatformControl component's operations on the target as a whole, as
// its table (PlatformControl.h) holds them.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "PlatformControl.h"
#include "TargetManager/Request.h"

namespace voxtrel::platform::platform_control {

inline constexpr uint32_t kUnknownName = 0x20001;   // An action, status or setting value it does not know
inline constexpr uint32_t kActionFailed = 0x20002;  // The target could not do the action (receipt failure)

// The name held by a 64-byte field, or none (refused) when the field is
// not a name and then zero bytes to its end.
std::optional<std::string> FieldName(target_manager::Request& request, const char* field, const char* argument);

// Power and reset (PowerActions.cpp).
void ForcePowerReading(std::optional<uint32_t> value);
uint32_t ExecuteAction(uint32_t debugPortId, const char* actionName, uint64_t* operationToken);
uint32_t ReadStatus(uint32_t debugPortId, const char* statusName, uint32_t* value);

// Transport settings of a target domain (TransportSettings.cpp).
uint32_t SetPreferHighBandwidthTransports(uint32_t targetDomainId, VXT_Preference prefer);
uint32_t GetPreferHighBandwidthTransports(uint32_t targetDomainId, VXT_Preference* prefer);
uint32_t SetFeatureSurvivabilityPreset(uint32_t targetDomainId, VXT_TransportFeature feature,
                                       VXT_SurvivabilityPreset preset);
uint32_t GetFeatureSurvivabilityPreset(uint32_t targetDomainId, VXT_TransportFeature feature,
                                       VXT_SurvivabilityPreset* preset);

}  // namespace voxtrel::platform::platform_control
