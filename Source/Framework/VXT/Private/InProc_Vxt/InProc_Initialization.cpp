// The Initialization service. Its own work is the checks and the
// conversion between the public records and the TargetManager's; the
// component answers everything else, in whatever order the client asks.
#include "InProc_Initialization.h"

#include <cstring>
#include <ostream>
#include <vector>

#include "BindTable.h"
#include "TapControllerRecords.h"
#include "frame/Frame.h"

namespace vxt {
namespace {

InProc_Initialization instance;

using frame::Bool;
using frame::Call;
using frame::Dec;
using frame::Hex8;
using frame::List;
using frame::Out;
using frame::Quoted;
using frame::TraceArgs;
using Table = TargetManagerComponent;
using NameField = char[VXT_INITIALIZATION_NAME_SIZE];

// "{type = X uniqueIdentifier = Y}", the texts without quotes.
struct ProbeText {
  const VXT_Probe* record;
  friend std::ostream& operator<<(std::ostream& out, ProbeText value) {
    if (value.record == nullptr) return out << "<NULL>";
    const auto field = [&out](const char* text, size_t size) {
      out.write(text, static_cast<std::streamsize>(strnlen(text, size)));
    };
    out << "{type = ";
    field(value.record->type, sizeof value.record->type);
    out << " uniqueIdentifier = ";
    field(value.record->uniqueIdentifier, sizeof value.record->uniqueIdentifier);
    return out << "}";
  }
};

const NameField* NameFields(const char* fields) { return reinterpret_cast<const NameField*>(fields); }

void ToPublic(const TargetManager_Probe& from, VXT_Probe& to) {
  CopyField(to.type, from.type);
  CopyField(to.uniqueIdentifier, from.uniqueIdentifier);
  CopyField(to.details, from.details);
}

void ToComponent(const VXT_Probe& from, TargetManager_Probe& to) {
  CopyField(to.type, from.type);
  CopyField(to.uniqueIdentifier, from.uniqueIdentifier);
  CopyField(to.details, from.details);
}

// The fill of the supported or discovered TAP controllers: a maximum of 0
// succeeds without asking the component; the caller's records are written
// only on success, every one of them.
template <class Fill>
uint32_t FillTapControllers(const Table& table, uint32_t maxCount, VXT_TapController* tapControllers,
                            const Fill& fill) {
  if (maxCount == 0) return 0;
  std::vector<TargetManager_TapController> records(maxCount, TargetManager_TapController{});
  const uint32_t code = fill(table, records.data());
  if (code != 0) return code;
  for (uint32_t i = 0; i < maxCount; ++i) {
    VXT_TapController& to = tapControllers[i];
    to.structureSize = VXT_TAP_CONTROLLER_SIZE;
    CopyField(to.deviceType, records[i].deviceType);
    CopyField(to.deviceSubType, records[i].deviceSubType);
    CopyField(to.stepping, records[i].stepping);
    to.irLength = records[i].irLength;
  }
  return 0;
}

// SaveConfiguration and RestoreConfiguration post the component's result,
// with no text, whatever it is.
VXT_Result Posting(const frame::OperationSite& site, uint32_t (*Table::*operation)()) {
  InProc_Initialization& service = InProc_Initialization::Instance();
  return RunOperation(service.logger, site, TraceArgs(), TraceArgs(), [&](Call& call) {
    return call.Core(service.targetManager, [&](const Table& t) {
      const uint32_t code = (t.*operation)();
      Voxtrel_ErrorPostError(code, "", call.site().file, call.site().line);
      return code;
    });
  });
}

}  // namespace

InProc_Initialization::InProc_Initialization() {
  // The component is there from load on; the result is looked at by the
  // operations, which find a null table when it failed.
  BindTable(&Voxtrel_GetTargetManager, targetManager);
}

InProc_Initialization& InProc_Initialization::Instance() { return instance; }

VXT_Result InProc_Initialization::GetProbeTypeCount(uint32_t* probeTypeCount) {
  return RunOperation(logger, VXT_OPERATION(Initialization, GetProbeTypeCount), TraceArgs(),
                      TraceArgs("probeTypeCount", Out<Dec>(probeTypeCount)), [&](Call& call) {
                        return call.NotNull(probeTypeCount, "probeTypeCount").Core(targetManager, [&](const Table& t) {
                          return t.GetProbeTypeCount(probeTypeCount);
                        });
                      });
}

VXT_Result InProc_Initialization::GetProbeTypes(uint32_t maxProbeTypeCount, char* probeTypes) {
  return RunOperation(logger, VXT_OPERATION(Initialization, GetProbeTypes),
                      TraceArgs("maxProbeTypeCount", Dec{maxProbeTypeCount}),
                      TraceArgs("probeTypes", List<Quoted>(NameFields(probeTypes), maxProbeTypeCount)),
                      [&](Call& call) {
                        return call.NotNull(probeTypes, "probeTypes").Core(targetManager, [&](const Table& t) {
                          return t.GetProbeTypes(maxProbeTypeCount, probeTypes);
                        });
                      });
}

VXT_Result InProc_Initialization::GetConnectedProbeCount(uint32_t* probeCount) {
  return RunOperation(logger, VXT_OPERATION(Initialization, GetConnectedProbeCount), TraceArgs(),
                      TraceArgs("probeCount", Out<Dec>(probeCount)), [&](Call& call) {
                        return call.NotNull(probeCount, "probeCount").Core(targetManager, [&](const Table& t) {
                          return t.GetConnectedProbeCount(probeCount);
                        });
                      });
}

VXT_Result InProc_Initialization::GetConnectedProbes(uint32_t maxProbeCount, VXT_Probe* probes) {
  return RunOperation(logger, VXT_OPERATION(Initialization, GetConnectedProbes),
                      TraceArgs("maxProbeCount", Dec{maxProbeCount}),
                      TraceArgs("probes", List<ProbeText>(probes, maxProbeCount)), [&](Call& call) {
                        return call.NotNull(probes, "probes").Core(targetManager, [&](const Table& t) {
                          std::vector<TargetManager_Probe> records(maxProbeCount, TargetManager_Probe{});
                          const uint32_t code = t.GetConnectedProbes(maxProbeCount, records.data());
                          if (code != 0) return code;
                          // Every record the caller gave, filled or not.
                          for (uint32_t i = 0; i < maxProbeCount; ++i) {
                            probes[i].structureSize = VXT_PROBE_SIZE;
                            ToPublic(records[i], probes[i]);
                          }
                          return 0u;
                        });
                      });
}

VXT_Result InProc_Initialization::SelectProbe(VXT_Probe* probe, void* selection) {
  return RunOperation(logger, VXT_OPERATION(Initialization, SelectProbe), TraceArgs("probe", ProbeText{probe}),
                      TraceArgs("probe", ProbeText{probe}), [&](Call& call) {
                        return call.NotNull(probe, "probe").Core(targetManager, [&](const Table& t) {
                          TargetManager_Probe record{};
                          ToComponent(*probe, record);
                          const uint32_t code = t.SelectProbe(&record, selection);
                          if (code == 0) ToPublic(record, *probe);
                          return code;
                        });
                      });
}

VXT_Result InProc_Initialization::InitializeProbe(uint32_t debugPortId) {
  return RunOperation(logger, VXT_OPERATION(Initialization, InitializeProbe),
                      TraceArgs("debugPortId", Hex8{debugPortId}), TraceArgs(), [&](Call& call) {
                        return call.Core(targetManager, [&](const Table& t) { return t.InitializeProbe(debugPortId); });
                      });
}

VXT_Result InProc_Initialization::GetSupportedTapControllerCount(uint32_t* tapControllerCount) {
  return RunOperation(logger, VXT_OPERATION(Initialization, GetSupportedTapControllerCount), TraceArgs(),
                      TraceArgs("tapControllerCount", Out<Dec>(tapControllerCount)), [&](Call& call) {
                        return call.NotNull(tapControllerCount, "tapControllerCount")
                            .Core(targetManager,
                                  [&](const Table& t) { return t.GetSupportedTapControllerCount(tapControllerCount); });
                      });
}

VXT_Result InProc_Initialization::GetSupportedTapControllers(uint32_t maxTapControllerCount,
                                                             VXT_TapController* tapControllers) {
  return RunOperation(logger, VXT_OPERATION(Initialization, GetSupportedTapControllers),
                      TraceArgs("maxTapControllerCount", Dec{maxTapControllerCount}),
                      TraceArgs("tapControllers", List<TapControllerText>(tapControllers, maxTapControllerCount)),
                      [&](Call& call) {
                        return call.NotNull(tapControllers, "tapControllers").Core(targetManager, [&](const Table& t) {
                          return FillTapControllers(t, maxTapControllerCount, tapControllers,
                                                    [&](const Table& table, TargetManager_TapController* records) {
                                                      return table.GetSupportedTapControllers(maxTapControllerCount,
                                                                                              records);
                                                    });
                        });
                      });
}

VXT_Result InProc_Initialization::GetDiscoveredTapControllerCount(uint32_t jtagChainId, uint32_t* tapControllerCount) {
  return RunOperation(logger, VXT_OPERATION(Initialization, GetDiscoveredTapControllerCount),
                      TraceArgs("jtagChainId", Hex8{jtagChainId}),
                      TraceArgs("tapControllerCount", Out<Dec>(tapControllerCount)), [&](Call& call) {
                        return call.NotNull(tapControllerCount, "tapControllerCount")
                            .Core(targetManager, [&](const Table& t) {
                              return t.GetDiscoveredTapControllerCount(jtagChainId, tapControllerCount);
                            });
                      });
}

VXT_Result InProc_Initialization::GetDiscoveredTapControllers(uint32_t jtagChainId, uint32_t maxTapControllerCount,
                                                              VXT_TapController* tapControllers) {
  return RunOperation(logger, VXT_OPERATION(Initialization, GetDiscoveredTapControllers),
                      TraceArgs("jtagChainId", Hex8{jtagChainId}, "maxTapControllerCount", Dec{maxTapControllerCount}),
                      TraceArgs("tapControllers", List<TapControllerText>(tapControllers, maxTapControllerCount)),
                      [&](Call& call) {
                        return call.NotNull(tapControllers, "tapControllers").Core(targetManager, [&](const Table& t) {
                          return FillTapControllers(t, maxTapControllerCount, tapControllers,
                                                    [&](const Table& table, TargetManager_TapController* records) {
                                                      return table.GetDiscoveredTapControllers(
                                                          jtagChainId, maxTapControllerCount, records);
                                                    });
                        });
                      });
}

VXT_Result InProc_Initialization::SpecifyTapControllers(uint32_t jtagChainId, uint32_t tapControllerCount,
                                                        const VXT_TapController* tapControllers) {
  return RunOperation(
      logger, VXT_OPERATION(Initialization, SpecifyTapControllers),
      TraceArgs("jtagChainId", Hex8{jtagChainId}, "tapControllerCount", Dec{tapControllerCount}, "tapControllers",
                List<TapControllerText>(tapControllers, tapControllerCount)),
      TraceArgs(), [&](Call& call) {
        if (tapControllerCount != 0) call.NotNull(tapControllers, "tapControllers");
        return call.Core(targetManager, [&](const Table& t) {
          const std::vector<TargetManager_TapController> records = ComponentRecords(tapControllers, tapControllerCount);
          return t.SpecifyTapControllers(jtagChainId, tapControllerCount,
                                         tapControllerCount == 0 ? nullptr : records.data());
        });
      });
}

VXT_Result InProc_Initialization::IsSavedConfigurationAvailable(uint32_t* savedConfigurationAvailable) {
  return RunOperation(logger, VXT_OPERATION(Initialization, IsSavedConfigurationAvailable), TraceArgs(),
                      TraceArgs("savedConfigurationAvailable", Out<Bool>(savedConfigurationAvailable)),
                      [&](Call& call) {
                        return call.NotNull(savedConfigurationAvailable, "savedConfigurationAvailable")
                            .Core(targetManager, [&](const Table& t) {
                              return t.IsSavedConfigurationAvailable(savedConfigurationAvailable);
                            });
                      });
}

VXT_Result InProc_Initialization::SaveConfiguration() {
  return Posting(VXT_OPERATION(Initialization, SaveConfiguration), &Table::SaveConfiguration);
}

VXT_Result InProc_Initialization::RestoreConfiguration() {
  return Posting(VXT_OPERATION(Initialization, RestoreConfiguration), &Table::RestoreConfiguration);
}

VXT_Result InProc_Initialization::GetAvailableScenarioCount(uint32_t* scenarioCount) {
  return RunOperation(logger, VXT_OPERATION(Initialization, GetAvailableScenarioCount), TraceArgs(),
                      TraceArgs("scenarioCount", Out<Dec>(scenarioCount)), [&](Call& call) {
                        return call.NotNull(scenarioCount, "scenarioCount").Core(targetManager, [&](const Table& t) {
                          return t.GetAvailableScenarioCount(scenarioCount);
                        });
                      });
}

VXT_Result InProc_Initialization::GetAvailableScenarios(uint32_t maxScenarioCount, char* scenarioNames) {
  // The Out line's label is "scenarios", though the check names scenarioNames.
  return RunOperation(logger, VXT_OPERATION(Initialization, GetAvailableScenarios),
                      TraceArgs("maxScenarioCount", Dec{maxScenarioCount}),
                      TraceArgs("scenarios", List<Quoted>(NameFields(scenarioNames), maxScenarioCount)),
                      [&](Call& call) {
                        return call.NotNull(scenarioNames, "scenarioNames").Core(targetManager, [&](const Table& t) {
                          return t.GetAvailableScenarios(maxScenarioCount, scenarioNames);
                        });
                      });
}

VXT_Result InProc_Initialization::SelectScenario(const char* scenarioName) {
  return RunOperation(logger, VXT_OPERATION(Initialization, SelectScenario),
                      TraceArgs("scenarioName", Quoted{scenarioName}), TraceArgs(), [&](Call& call) {
                        return call.NotNull(scenarioName, "scenarioName").Core(targetManager, [&](const Table& t) {
                          return t.SelectScenario(scenarioName);
                        });
                      });
}

}  // namespace vxt
