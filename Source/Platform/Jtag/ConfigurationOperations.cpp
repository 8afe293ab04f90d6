// The Jtag component's configuration table, and the encrypted debug switch
// the TargetManager turns.
#include "Jtag.h"
#include "Jtag/EncryptedDebug.h"
#include "Jtag/JtagModel.h"
#include "Jtag/Scans.h"
#include "Support/ComponentCall.h"

namespace voxtrel::platform::jtag {
namespace {

using target_manager::HexId;
using target_manager::Request;

uint32_t GetDeviceIrLength(uint32_t deviceId, uint32_t* irLength) {
  VOXTREL_COMPONENT_CALL("Jtag.GetDeviceIrLength", "deviceId=", HexId(deviceId));
  Request request("Jtag.GetDeviceIrLength");
  if (request.NotNull(irLength, "irLength").failed()) return request.code();
  size_t tap = 0;
  const auto slot = JtagModel::Instance().Find(request, deviceId, tap);
  if (!slot) return request.code();
  std::lock_guard lock(slot->mutex);
  *irLength = static_cast<uint32_t>(IrScanLength(ChainTarget{*slot, slot->chain, tap}));
  return 0;
}

uint32_t GetEncryptedDebugStatus(uint32_t deviceId, uint32_t* status) {
  VOXTREL_COMPONENT_CALL("Jtag.GetEncryptedDebugStatus", "deviceId=", HexId(deviceId));
  Request request("Jtag.GetEncryptedDebugStatus");
  if (request.NotNull(status, "status").Device(deviceId) == nullptr) return request.code();
  *status = JtagModel::Instance().EncryptedDebugRunning(deviceId) ? 1 : 0;
  return 0;
}

constexpr JtagConfigurationComponent kConfiguration{&GetDeviceIrLength, &GetEncryptedDebugStatus};

uint32_t SwitchEncryptedDebug(const char* operation, uint32_t deviceId, bool running) {
  Request request(operation);
  if (request.Device(deviceId) == nullptr) return request.code();
  JtagModel::Instance().SetEncryptedDebug(deviceId, running);
  return 0;
}

}  // namespace

const JtagConfigurationComponent* ConfigurationTable() { return &kConfiguration; }

uint32_t StartEncryptedDebug(uint32_t deviceId) {
  VOXTREL_COMPONENT_CALL("TargetManager.StartEncryptedDebug", "deviceId=", HexId(deviceId));
  return SwitchEncryptedDebug("TargetManager.StartEncryptedDebug", deviceId, true);
}

uint32_t StopEncryptedDebug(uint32_t deviceId) {
  VOXTREL_COMPONENT_CALL("TargetManager.StopEncryptedDebug", "deviceId=", HexId(deviceId));
  return SwitchEncryptedDebug("TargetManager.StopEncryptedDebug", deviceId, false);
}

}  // namespace voxtrel::platform::jtag
