#include "InProc_I2cAccess.h"

#include "I2c.h"
#include "frame/Frame.h"

namespace vxt {
namespace {

InProc_I2cAccess instance;

using frame::Call;
using frame::Dec;
using frame::Hex16;
using frame::Hex8;
using frame::Out;
using frame::TraceArgs;
using Table = I2cAccessComponent;

auto TokenOut(uint64_t* operationToken) { return TraceArgs("operationToken", Out<Hex16>(operationToken)); }

// The core of every operation: the table is got for this call only; a
// failing getter is the call's code and the component is not called.
template <class CoreFn>
uint32_t WithI2c(Call& call, CoreFn&& core) {
  const I2cComponent* record = nullptr;
  const uint32_t got = Voxtrel_GetI2c(&record);
  if (got != 0) return call.Core([got] { return got; });
  return call.Core(record != nullptr ? record->access : nullptr, core);
}

}  // namespace

InProc_I2cAccess& InProc_I2cAccess::Instance() { return instance; }

VXT_Result InProc_I2cAccess::I2cRawRead(uint32_t i2cBusId, uint8_t idbyte, uint32_t bytecnt, uint32_t options,
                                        uint64_t* operationToken) {
  return RunOperation(logger, VXT_OPERATION(I2cAccess, I2cRawRead).Counted(),
                      TraceArgs("i2cBusId", Hex8{i2cBusId}, "idbyte", Dec{idbyte}, "bytecnt", Dec{bytecnt},
                                "options", Hex8{options}),
                      TokenOut(operationToken), [&](Call& call) {
                        return WithI2c(call, [&](const Table& t) {
                          return t.I2cRawRead(i2cBusId, idbyte, bytecnt, options, operationToken);
                        });
                      });
}

VXT_Result InProc_I2cAccess::I2cRawWrite(uint32_t i2cBusId, uint8_t idbyte, const uint8_t* bytebuffer,
                                         uint32_t bytecnt, uint32_t options, uint64_t* operationToken) {
  return RunOperation(logger, VXT_OPERATION(I2cAccess, I2cRawWrite).Counted(),
                      TraceArgs("i2cBusId", Hex8{i2cBusId}, "idbyte", Dec{idbyte}, "bytebuffer",
                                frame::Bytes(bytebuffer, bytecnt), "bytecnt", Dec{bytecnt}, "options", Hex8{options}),
                      TokenOut(operationToken), [&](Call& call) {
                        return WithI2c(call, [&](const Table& t) {
                          return t.I2cRawWrite(i2cBusId, idbyte, bytebuffer, bytecnt, options, operationToken);
                        });
                      });
}

VXT_Result InProc_I2cAccess::Lock(uint32_t i2cBusId, uint64_t* operationToken) {
  return RunOperation(logger, VXT_OPERATION(I2cAccess, Lock), TraceArgs("i2cBusId", Hex8{i2cBusId}),
                      TokenOut(operationToken), [&](Call& call) {
                        return WithI2c(call, [&](const Table& t) { return t.Lock(i2cBusId, operationToken); });
                      });
}

VXT_Result InProc_I2cAccess::Unlock(uint32_t i2cBusId, uint64_t* operationToken) {
  return RunOperation(logger, VXT_OPERATION(I2cAccess, Unlock), TraceArgs("i2cBusId", Hex8{i2cBusId}),
                      TokenOut(operationToken), [&](Call& call) {
                        return WithI2c(call, [&](const Table& t) { return t.Unlock(i2cBusId, operationToken); });
                      });
}

VXT_Result InProc_I2cAccess::BundleScan(uint32_t i2cBusId, const void* bundleBuffer, uint32_t bundleBufferSize,
                                        uint64_t* operationToken) {
  return RunOperation(logger, VXT_OPERATION(I2cAccess, BundleScan).Counted(),
                      TraceArgs("i2cBusId", Hex8{i2cBusId}, "bundleBuffer", frame::NotListed{bundleBuffer},
                                "bundleBufferSize", Dec{bundleBufferSize}),
                      TokenOut(operationToken), [&](Call& call) {
                        if (call.NotNull(bundleBuffer, "bundleBuffer").failed()) return call.code();
                        return WithI2c(call, [&](const Table& t) {
                          return t.BundleScan(i2cBusId, bundleBuffer, bundleBufferSize, operationToken);
                        });
                      });
}

}  // namespace vxt
