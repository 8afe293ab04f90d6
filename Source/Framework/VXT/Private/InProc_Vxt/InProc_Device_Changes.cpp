// Changes of the topology through the Device service: enabled flags, TAP
// controllers declared on a JTAG chain, and updates of a part of the tree.
#include <cstring>
#include <ostream>
#include <vector>

#include "InProc_Device.h"
#include "TapControllerRecords.h"
#include "frame/Frame.h"

namespace vxt {
namespace {

using frame::Bool;
using frame::Call;
using frame::Dec;
using frame::Hex8;
using frame::List;
using frame::NoArgs;
using frame::TraceArgs;
using Table = TargetManagerComponent;

}  // namespace

VXT_Result InProc_Device::UpdateTopology(uint32_t deviceId, int32_t phases) {
  return RunOperation(logger, VXT_OPERATION(Device, UpdateTopology).Counted(),
                      TraceArgs("deviceId", Hex8{deviceId}, "phases", Hex8{phases}), NoArgs{}, [&](Call& call) {
                        return call.Core(targetManager,
                                         [&](const Table& t) { return t.UpdateTopology(deviceId, phases); });
                      });
}

VXT_Result InProc_Device::SpecifyTopology(uint32_t jtagChainId, uint32_t tapControllerCount,
                                          const VXT_TapController* tapControllers) {
  return RunOperation(
      logger, VXT_OPERATION(Device, SpecifyTopology).Counted(),
      TraceArgs("jtagChainId", Hex8{jtagChainId}, "tapControllerCount", Dec{tapControllerCount}, "tapControllers",
                List<TapControllerText>(tapControllers, tapControllerCount)),
      NoArgs{}, [&](Call& call) {
        if (tapControllerCount != 0) call.NotNull(tapControllers, "tapControllers");
        return call.Core(targetManager, [&](const Table& t) {
          const std::vector<TargetManager_TapController> records = ComponentRecords(tapControllers, tapControllerCount);
          return t.SpecifyTopology(jtagChainId, tapControllerCount, tapControllerCount == 0 ? nullptr : records.data());
        });
      });
}

VXT_Result InProc_Device::SetDeviceEnabled(uint32_t deviceId, uint32_t enabled) {
  return RunOperation(logger, VXT_OPERATION(Device, SetDeviceEnabled).Counted(),
                      TraceArgs("deviceId", Hex8{deviceId}, "enabled", Bool{enabled}), NoArgs{}, [&](Call& call) {
                        return call.Core(targetManager,
                                         [&](const Table& t) { return t.SetDeviceEnabled(deviceId, enabled != 0); });
                      });
}

// `*enabled` is written whatever the component answers: 0 unless it said
// the device is enabled.
VXT_Result InProc_Device::IsDeviceEnabled(uint32_t deviceId, uint32_t* enabled) {
  return RunOperation(logger, VXT_OPERATION(Device, IsDeviceEnabled).Counted(), TraceArgs("deviceId", Hex8{deviceId}),
                      NoArgs{}, [&](Call& call) {
                        return call.NotNull(enabled, "enabled").Core(targetManager, [&](const Table& t) {
                          bool isEnabled = false;
                          const uint32_t code = t.IsDeviceEnabled(deviceId, &isEnabled);
                          *enabled = isEnabled ? 1 : 0;
                          return code;
                        });
                      });
}

}  // namespace vxt
