#include "InProc_JtagConfiguration.h"

#include "BindTable.h"
#include "Error.h"
#include "frame/Frame.h"

namespace vxt {
namespace {

InProc_JtagConfiguration instance;

using frame::Bool;
using frame::Call;
using frame::Dec;
using frame::Hex8;
using frame::List;
using frame::Out;
using frame::TraceArgs;
using Table = JtagConfigurationComponent;

const Table* Configuration(const JtagComponent* jtag) { return jtag != nullptr ? jtag->configuration : nullptr; }

// A chain query this version does not offer: after its null check, code
// 0x20003 is posted with an empty text, so the message is the code's own.
uint32_t NotImplemented(Call& call, const void* pointer, const char* argument, const frame::OperationSite& site) {
  return call.NotNull(pointer, argument).Core([&] {
    Voxtrel_ErrorPostError(code::kNotImplemented, "", site.file, site.line);
    return code::kNotImplemented;
  });
}

}  // namespace

InProc_JtagConfiguration::InProc_JtagConfiguration() {
  // The components are there from load on; the results are looked at by
  // the operations, which find a null table when a getter failed.
  BindTable(&Voxtrel_GetJtag, jtag);
  BindTable(&Voxtrel_GetTargetManager, targetManager);
}

InProc_JtagConfiguration& InProc_JtagConfiguration::Instance() { return instance; }

VXT_Result InProc_JtagConfiguration::GetJtagChainCount(uint32_t targetDomainId, uint32_t* numJtagChains) {
  static constexpr frame::OperationSite site = VXT_OPERATION(JtagConfiguration, GetJtagChainCount);
  return RunOperation(logger, site, TraceArgs("targetDomainId", Hex8{targetDomainId}),
                      TraceArgs("numJtagChains", Out<Dec>(numJtagChains)),
                      [&](Call& call) { return NotImplemented(call, numJtagChains, "numJtagChains", site); });
}

VXT_Result InProc_JtagConfiguration::GetJtagChains(uint32_t targetDomainId, uint32_t maxNumJtagChains,
                                                   uint32_t* jtagChains) {
  static constexpr frame::OperationSite site = VXT_OPERATION(JtagConfiguration, GetJtagChains);
  return RunOperation(logger, site,
                      TraceArgs("targetDomainId", Hex8{targetDomainId}, "maxNumJtagChains", Dec{maxNumJtagChains}),
                      TraceArgs("jtagChains", List<Hex8>(jtagChains, maxNumJtagChains)),
                      [&](Call& call) { return NotImplemented(call, jtagChains, "jtagChains", site); });
}

VXT_Result InProc_JtagConfiguration::GetDeviceIrLength(uint32_t deviceId, uint32_t* irLength) {
  return RunOperation(logger, VXT_OPERATION(JtagConfiguration, GetDeviceIrLength), TraceArgs("deviceId", Hex8{deviceId}),
                      TraceArgs("irLength", Out<Dec>(irLength)), [&](Call& call) {
                        return call.NotNull(irLength, "irLength").Core(Configuration(jtag), [&](const Table& t) {
                          return t.GetDeviceIrLength(deviceId, irLength);
                        });
                      });
}

VXT_Result InProc_JtagConfiguration::GetJtagChainDeviceCount(uint32_t jtagChainId, uint32_t* numDevices) {
  static constexpr frame::OperationSite site = VXT_OPERATION(JtagConfiguration, GetJtagChainDeviceCount);
  return RunOperation(logger, site, TraceArgs("jtagChainId", Hex8{jtagChainId}),
                      TraceArgs("numDevices", Out<Dec>(numDevices)),
                      [&](Call& call) { return NotImplemented(call, numDevices, "numDevices", site); });
}

VXT_Result InProc_JtagConfiguration::GetJtagChainDevices(uint32_t jtagChainId, uint32_t maxNumDeviceIds,
                                                         uint32_t* deviceIds) {
  static constexpr frame::OperationSite site = VXT_OPERATION(JtagConfiguration, GetJtagChainDevices);
  return RunOperation(logger, site,
                      TraceArgs("jtagChainId", Hex8{jtagChainId}, "maxNumDeviceIds", Dec{maxNumDeviceIds}),
                      TraceArgs("deviceIds", List<Hex8>(deviceIds, maxNumDeviceIds)),
                      [&](Call& call) { return NotImplemented(call, deviceIds, "deviceIds", site); });
}

VXT_Result InProc_JtagConfiguration::StartEncryptedDebug(uint32_t deviceId) {
  return RunOperation(logger, VXT_OPERATION(JtagConfiguration, StartEncryptedDebug).Counted(),
                      TraceArgs("deviceId", Hex8{deviceId}), TraceArgs(), [&](Call& call) {
                        return call.Core(targetManager, [&](const TargetManagerComponent& t) {
                          return t.StartEncryptedDebug(deviceId);
                        });
                      });
}

// Only a component answer of exactly 1 counts as on; the component's code
// is posted with an empty text whatever it is, and the frame goes on with it.
VXT_Result InProc_JtagConfiguration::GetEncryptedDebugStatus(uint32_t deviceId, uint32_t* status) {
  static constexpr frame::OperationSite site = VXT_OPERATION(JtagConfiguration, GetEncryptedDebugStatus);
  return RunOperation(logger, site, TraceArgs("deviceId", Hex8{deviceId}), TraceArgs("status", Out<Bool>(status)),
                      [&](Call& call) {
                        return call.NotNull(status, "status").Core(Configuration(jtag), [&](const Table& t) {
                          uint32_t localStatus = 0;
                          const uint32_t code = t.GetEncryptedDebugStatus(deviceId, &localStatus);
                          *status = localStatus == 1 ? 1 : 0;
                          Voxtrel_ErrorPostError(code, "", site.file, site.line);
                          return code;
                        });
                      });
}

VXT_Result InProc_JtagConfiguration::StopEncryptedDebug(uint32_t deviceId) {
  return RunOperation(logger, VXT_OPERATION(JtagConfiguration, StopEncryptedDebug).Counted(),
                      TraceArgs("deviceId", Hex8{deviceId}), TraceArgs(), [&](Call& call) {
                        return call.Core(targetManager, [&](const TargetManagerComponent& t) {
                          return t.StopEncryptedDebug(deviceId);
                        });
                      });
}

}  // namespace vxt
