// Changes of the topology through the Device service: enabled flags, TAP
// controllers declared on a JTAG chain, and updates of a part of the tree.
#include <cstring>
#include <ostream>
#include <vector>

#include "InProc_Device.h"
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

// "{deviceType = CPU deviceSubType = Core stepping = B0 irLength = 8}": the
// texts without quotes, read no further than their fields.
struct TapControllerText {
  const VXT_TapController* record;
  friend std::ostream& operator<<(std::ostream& out, TapControllerText value) {
    const VXT_TapController& tap = *value.record;
    const auto field = [&out](const char* text) {
      out.write(text, static_cast<std::streamsize>(strnlen(text, VXT_TAP_CONTROLLER_TEXT_SIZE)));
    };
    out << "{deviceType = ";
    field(tap.deviceType);
    out << " deviceSubType = ";
    field(tap.deviceSubType);
    out << " stepping = ";
    field(tap.stepping);
    return out << " irLength = " << Dec{tap.irLength} << "}";
  }
};

// Copies a public text field into the component's, cut to size - 1 and
// terminated.
void CopyField(char (&target)[VXT_TAP_CONTROLLER_TEXT_SIZE], const char (&source)[VXT_TAP_CONTROLLER_TEXT_SIZE]) {
  std::memcpy(target, source, strnlen(source, VXT_TAP_CONTROLLER_TEXT_SIZE - 1));
}

// The component's form of the caller's records, zero-filled first; their
// structureSize is not read.
std::vector<TargetManager_TapController> ComponentRecords(const VXT_TapController* tapControllers, uint32_t count) {
  std::vector<TargetManager_TapController> records(count, TargetManager_TapController{});
  for (uint32_t index = 0; index < count; ++index) {
    CopyField(records[index].deviceType, tapControllers[index].deviceType);
    CopyField(records[index].deviceSubType, tapControllers[index].deviceSubType);
    CopyField(records[index].stepping, tapControllers[index].stepping);
    records[index].irLength = tapControllers[index].irLength;
  }
  return records;
}

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
