// Members of a device that belong to the components that use them: "memory",
// "registers", "statePorts". The topology keeps them as written (after
// parameter substitution); a component that reads one registers a check, so
// that a description whose member it cannot use is refused when selected and
// nothing is half-built.
#pragma once

#include <string>
#include <string_view>

#include "PlatformApi.h"
#include "Topology.h"

namespace voxtrel::platform::target {

// The member names a device may carry for its components. A target domain's
// CPUs read "memoryMap", "ioDevices", "cpuid", "msrs" and "apicIds"; the
// Authorization component reads "authorization", the Precondition component
// "preconditions", the DeviceControl component "deviceConfigs" and
// "deviceActions".
inline constexpr std::string_view kFacetMembers[] = {"memory",    "registers", "statePorts", "memoryMap",
                                                     "ioDevices", "cpuid",     "msrs",       "apicIds",
                                                     "authorization",
                                                     "preconditions",
                                                     "deviceConfigs",
                                                     "deviceActions"};

// Throws DescriptionProblem (see JsonReader.h) when `facet` is not usable;
// `node` is the device it belongs to, as far as it is built.
using FacetCheck = void (*)(const Json& facet, const std::string& place, const Node& node);

// Adds a check for a member; several checks of one member all run. Meant for
// static initialisation of the component that reads the member.
VOXTREL_PLATFORM_API void RegisterFacetCheck(std::string_view member, FacetCheck check);

// Runs the registered checks of `member`. Every facet must be an array.
void CheckFacet(std::string_view member, const Json& facet, const std::string& place, const Node& node);

}  // namespace voxtrel::platform::target
