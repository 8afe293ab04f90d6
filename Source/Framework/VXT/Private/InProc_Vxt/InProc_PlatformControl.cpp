// The PlatformControl service. Power cycle, reset and the power status are
// not operations of their own in the component: each becomes its generic
// action or status operation with the name in a 64-byte field.
#include "InProc_PlatformControl.h"

#include <cstring>

#include "GluedArg.h"
#include "frame/Frame.h"

namespace vxt {
namespace {

InProc_PlatformControl instance;

using frame::Bool;
using frame::Call;
using frame::Enum;
using frame::Hex16;
using frame::Hex8;
using frame::Out;
using frame::PreferenceName;
using frame::SurvivabilityPresetName;
using frame::TraceArgs;
using frame::TransportFeatureName;
using Table = PlatformControlComponent;

// The name, then zero bytes to the end of the field.
struct NameField {
  explicit NameField(const char* name) { std::strncpy(text, name, sizeof text - 1); }
  char text[kPlatformControlNameSize] = {};
};

// PowerCycleTarget and ResetTarget: the token is checked, then the named
// action starts.
VXT_Result RunAction(const frame::OperationSite& site, const char* action, uint32_t debugPortId,
                     uint64_t* operationToken) {
  InProc_PlatformControl& service = InProc_PlatformControl::Instance();
  return RunOperation(service.logger, site.Counted(), TraceArgs("debugPortId", Hex8{debugPortId}),
                      TraceArgs("operationToken", Out<Hex16>(operationToken)), [&](Call& call) {
                        return call.NotNull(operationToken, "operationToken")
                            .Core(service.platformControl, [&](const Table& t) {
                              const NameField field(action);
                              return t.ExecuteAction(debugPortId, field.text, operationToken);
                            });
                      });
}

}  // namespace

InProc_PlatformControl& InProc_PlatformControl::Instance() { return instance; }

VXT_Result InProc_PlatformControl::PowerCycleTarget(uint32_t debugPortId, uint64_t* operationToken) {
  return RunAction(VXT_OPERATION(PlatformControl, PowerCycleTarget), "PowerCycleTarget", debugPortId, operationToken);
}

// Kept in its place in the table for clients built against it; it reaches
// no component and writes no In or Out line, only the failure.
VXT_Result InProc_PlatformControl::GetTargetPowerStatus(uint32_t, uint32_t*) {
  constexpr uint32_t kDeprecated = 0x20004;
  const frame::ErrorContextScope context;
  Voxtrel_ErrorPostError(kDeprecated, "GetTargetPowerStatus() has been deprecated, please use GetDebugPortPowerStatus()",
                         __FILE__, __LINE__);
  return frame::ReportFailure(context.id(), kDeprecated).publicCode;
}

VXT_Result InProc_PlatformControl::ResetTarget(uint32_t debugPortId, uint64_t* operationToken) {
  return RunAction(VXT_OPERATION(PlatformControl, ResetTarget), "ResetTarget", debugPortId, operationToken);
}

VXT_Result InProc_PlatformControl::GetDebugPortPowerStatus(uint32_t debugPortId, uint32_t* status) {
  return RunOperation(logger, VXT_OPERATION(PlatformControl, GetDebugPortPowerStatus).Counted(), TraceArgs(),
                      TraceArgs("status", Out<Bool>(status)), [&](Call& call) {
                        return call.NotNull(status, "status").Core(platformControl, [&](const Table& t) {
                          const NameField field("Power");
                          uint32_t value = 0;
                          if (const uint32_t code = t.ReadStatus(debugPortId, field.text, &value); code != 0)
                            return code;
                          if (value > 1) return call.Fail(0x20002, "Unable to determine Power status").code();
                          *status = value;
                          return 0u;
                        });
                      });
}

VXT_Result InProc_PlatformControl::SetPreferHighBandwidthTransports(uint32_t targetDomainId, VXT_Preference prefer) {
  return RunOperation(logger, VXT_OPERATION(PlatformControl, SetPreferHighBandwidthTransports).Counted(),
                      TraceArgs("targetDomainId", Glued(Hex8{targetDomainId}, ", prefer", Enum<&PreferenceName>{prefer})),
                      TraceArgs(), [&](Call& call) {
                        return call.Core(platformControl, [&](const Table& t) {
                          return t.SetPreferHighBandwidthTransports(targetDomainId, prefer);
                        });
                      });
}

VXT_Result InProc_PlatformControl::GetPreferHighBandwidthTransports(uint32_t targetDomainId, VXT_Preference* prefer) {
  return RunOperation(logger, VXT_OPERATION(PlatformControl, GetPreferHighBandwidthTransports),
                      TraceArgs("targetDomainId", Hex8{targetDomainId}),
                      TraceArgs("prefer", Out<Enum<&PreferenceName>>(prefer)), [&](Call& call) {
                        return call.NotNull(prefer, "prefer").Core(platformControl, [&](const Table& t) {
                          return t.GetPreferHighBandwidthTransports(targetDomainId, prefer);
                        });
                      });
}

VXT_Result InProc_PlatformControl::SetFeatureSurvivabilityPreset(uint32_t targetDomainId, VXT_TransportFeature feature,
                                                                 VXT_SurvivabilityPreset preset) {
  return RunOperation(logger, VXT_OPERATION(PlatformControl, SetFeatureSurvivabilityPreset).Counted(),
                      TraceArgs("targetDomainId",
                                Glued(Glued(Hex8{targetDomainId}, ", feature", Enum<&TransportFeatureName>{feature}),
                                      ", preset", Enum<&SurvivabilityPresetName>{preset})),
                      TraceArgs(), [&](Call& call) {
                        return call.Core(platformControl, [&](const Table& t) {
                          return t.SetFeatureSurvivabilityPreset(targetDomainId, feature, preset);
                        });
                      });
}

VXT_Result InProc_PlatformControl::GetFeatureSurvivabilityPreset(uint32_t targetDomainId, VXT_TransportFeature feature,
                                                                 VXT_SurvivabilityPreset* preset) {
  return RunOperation(logger, VXT_OPERATION(PlatformControl, GetFeatureSurvivabilityPreset),
                      TraceArgs("targetDomainId",
                                Glued(Hex8{targetDomainId}, ", feature", Enum<&TransportFeatureName>{feature})),
                      TraceArgs("preset", Out<Enum<&SurvivabilityPresetName>>(preset)), [&](Call& call) {
                        return call.NotNull(preset, "preset").Core(platformControl, [&](const Table& t) {
                          return t.GetFeatureSurvivabilityPreset(targetDomainId, feature, preset);
                        });
                      });
}

}  // namespace vxt
