// Device locks: the Device service hands lock requests to the TargetManager,
// which keeps the locks and answers through operation tokens.
#include "InProc_Device.h"
#include "VXT_Client.h"
#include "frame/Frame.h"

namespace vxt {
namespace {

using frame::Bool;
using frame::Call;
using frame::Dec;
using frame::Hex16;
using frame::Hex8;
using frame::List;
using frame::NoArgs;
using frame::Out;
using frame::Quoted;
using frame::Timeout;
using frame::TraceArgs;
using Table = TargetManagerComponent;

}  // namespace

VXT_Result InProc_Device::Lock(uint32_t deviceId, uint32_t timeout, uint64_t* operationToken) {
  return RunOperation(
      logger, VXT_OPERATION(Device, Lock), TraceArgs("deviceId", Hex8{deviceId}, "timeout", Timeout{timeout}),
      TraceArgs("operationToken", Out<Hex16>(operationToken)), [&](Call& call) {
        return call.Core(targetManager, [&](const Table& t) { return t.Lock(deviceId, timeout, operationToken); });
      });
}

VXT_Result InProc_Device::LockMany(const uint32_t* deviceIds, uint32_t deviceIdCount, uint32_t timeout,
                                   uint64_t* operationToken) {
  return RunOperation(logger, VXT_OPERATION(Device, LockMany),
                      TraceArgs("deviceIds", List<Hex8>(deviceIds, deviceIdCount), "deviceIdCount", Dec{deviceIdCount},
                                "timeout", Timeout{timeout}),
                      TraceArgs("operationToken", Out<Hex16>(operationToken)), [&](Call& call) {
                        return call.NotNull(deviceIds, "deviceIds").Core(targetManager, [&](const Table& t) {
                          return t.LockMany(deviceIds, deviceIdCount, timeout, operationToken);
                        });
                      });
}

VXT_Result InProc_Device::Unlock(uint64_t* operationToken) {
  return RunOperation(
      logger, VXT_OPERATION(Device, Unlock), NoArgs{}, TraceArgs("operationToken", Out<Hex16>(operationToken)),
      [&](Call& call) { return call.Core(targetManager, [&](const Table& t) { return t.Unlock(operationToken); }); });
}

// The component answers into a local; `brokeLock` may be null and then
// only the lock is broken.
VXT_Result InProc_Device::BreakLock(uint32_t deviceId, uint32_t* brokeLock) {
  return RunOperation(logger, VXT_OPERATION(Device, BreakLock).Counted(), TraceArgs("deviceId", Hex8{deviceId}),
                      TraceArgs("brokeLock", Out<Bool>(brokeLock)), [&](Call& call) {
                        return call.Core(targetManager, [&](const Table& t) {
                          bool broke = false;
                          const uint32_t code = t.BreakLock(deviceId, &broke);
                          if (brokeLock != nullptr) *brokeLock = broke ? 1 : 0;
                          return code;
                        });
                      });
}

VXT_Result InProc_Device::GetLockingClient(uint32_t deviceId, char* clientIdentifier) {
  return RunOperation(
      logger, VXT_OPERATION(Device, GetLockingClient), TraceArgs("deviceId", Hex8{deviceId}),
      TraceArgs("clientIdentifier", Quoted{clientIdentifier, VXT_CLIENT_TEXT_SIZE}), [&](Call& call) {
        return call.NotNull(clientIdentifier, "clientIdentifier").Core(targetManager, [&](const Table& t) {
          return t.GetLockingClient(deviceId, clientIdentifier);
        });
      });
}

}  // namespace vxt
