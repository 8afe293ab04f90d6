// The Memory service's reads and writes of memory and IO ports, and the
// VMCS operations it refuses.
#include "InProc_Memory.h"

#include <algorithm>
#include <cstdint>
#include <limits>
#include <memory>

#include "BitDataHandles.h"
#include "frame/Frame.h"

namespace vxt {
namespace {

InProc_Memory instance;

using frame::AccessWidthName;
using frame::AddressText;
using frame::BitDataText;
using frame::Call;
using frame::Dec;
using frame::Enum;
using frame::Hex16;
using frame::Hex8;
using frame::Out;
using frame::PortByteSizeName;
using frame::TraceArgs;
using Table = RunControlComponent;
using WidthText = Enum<&AccessWidthName>;
using PortSizeText = Enum<&PortByteSizeName>;

struct FreeObject {
  void operator()(BitData* object) const { BitData_FreeManaged(object); }
};
using OwnedObject = std::unique_ptr<BitData, FreeObject>;

// The `address` check of every operation that takes one.
Call& CheckAddress(Call& call, const VXT_Address* address, const char* argument) {
  call.Core([&] { return InProc_Memory::_CheckAddress(address, ReportArgument{call, argument}); });
  return call;
}

bool IsAccessWidth(uint32_t accessWidth) {
  return accessWidth == 1 || accessWidth == 2 || accessWidth == 4 || accessWidth == 8;
}

// Writes hand the component a library object at least as long as the
// request and as the client's vector, with the client's bits at its front.
// The request is counted in 64 bits and refused past 32: a vector that long
// would not be the client's, and the component could not take it.
uint32_t WriteThroughObject(Call& call, const char* countArgument, const char* tooLarge, uint64_t requestedBits,
                            const VXT_BitData* data, const auto& write) {
  if (requestedBits > std::numeric_limits<uint32_t>::max())
    return call.ArgumentError(code::kOutOfRange, countArgument, tooLarge).code();
  const OwnedObject object(BitData_CreateManaged(std::max<uint64_t>(requestedBits, data->bitSize)));
  const uint32_t extracted = InProc_BitData::Instance()._ExtractAsRawBits(
      data, 0, data->bitSize, reinterpret_cast<uint8_t*>(object->words), (data->bitSize + 7) / 8, ReportArgument{call});
  if (extracted != code::kSuccess) return extracted;
  return write(*object);
}

// The refusal of every VMCS operation: "not implemented", posted with no
// text of its own, so that the client reads the code's standing text.
uint32_t RefuseVmcs(Call& call) {
  if (call.failed()) return call.code();
  Voxtrel_ErrorPostError(code::kNotImplemented, "", call.site().file, call.site().line);
  return code::kNotImplemented;
}

}  // namespace

InProc_Memory& InProc_Memory::Instance() { return instance; }

uint32_t InProc_Memory::_CheckAddress(const VXT_Address* address, const ArgumentErrorReporter& report) {
  if (address == nullptr) {
    report("Null pointer");
    return code::kInvalidArgument;
  }
  if (address->structureSize != VXT_ADDRESS_SIZE) {
    report("Structure size not initialized");
    return code::kStructureSize;
  }
  return code::kSuccess;
}

VXT_Result InProc_Memory::ReadMemory(uint32_t deviceId, const VXT_Address* address, int32_t byteCount,
                                     uint64_t* operationToken) {
  return RunOperation(
      logger, VXT_OPERATION(Memory, ReadMemory).Counted(),
      TraceArgs("deviceId", Hex8{deviceId}, "address", AddressText{address}, "byteCount", Dec{byteCount}),
      TraceArgs("operationToken", Out<Hex16>(operationToken)), [&](Call& call) {
        return CheckAddress(call, address, "address")
            .NotNull(operationToken, "operationToken")
            .Require(byteCount > 0, code::kCountNotPositive, call.prefix(),
                     " argument error (byteCount) : Byte count must be greater than zero.")
            .Core(runControl,
                  [&](const Table& t) { return t.ReadMemory(deviceId, address, byteCount, 0, operationToken); });
      });
}

VXT_Result InProc_Memory::WriteMemory(uint32_t deviceId, const VXT_Address* address, int32_t byteCount,
                                      const VXT_BitData* data, uint64_t* operationToken) {
  return RunOperation(logger, VXT_OPERATION(Memory, WriteMemory).Counted(),
                      TraceArgs("deviceId", Hex8{deviceId}, "address", AddressText{address}, "byteCount",
                                Dec{byteCount}, "data", BitDataText{data}),
                      TraceArgs("operationToken", Out<Hex16>(operationToken)), [&](Call& call) {
                        CheckAddress(call, address, "address");
                        BitDataChecks(call).Holding(data, "data");
                        call.Require(byteCount > 0, code::kCountNotPositive, call.prefix(),
                                     " argument error (byteCount) : Byte count must be greater than zero.");
                        return call.Core(runControl, [&](const Table& t) {
                          return WriteThroughObject(
                              call, "byteCount", "Byte count too large", static_cast<uint64_t>(byteCount) * 8, data,
                              [&](const BitData& object) {
                                return t.WriteMemory(deviceId, address, byteCount, 0, &object, operationToken);
                              });
                        });
                      });
}

VXT_Result InProc_Memory::ReadIO(uint32_t deviceId, int32_t port, uint32_t portByteSize, uint64_t* operationToken) {
  return RunOperation(
      logger, VXT_OPERATION(Memory, ReadIO).Counted(),
      TraceArgs("deviceId", Hex8{deviceId}, "port", Hex8{port}, "portByteSize", PortSizeText{portByteSize}),
      TraceArgs("operationToken", Out<Hex16>(operationToken)), [&](Call& call) {
        return call.NotNull(operationToken, "operationToken").Core(runControl, [&](const Table& t) {
          return t.ReadIO(deviceId, port, portByteSize, operationToken);
        });
      });
}

// The value goes down as a 32-bit vector whatever the port's size.
VXT_Result InProc_Memory::WriteIO(uint32_t deviceId, int32_t port, uint32_t portByteSize, uint32_t value,
                                  uint64_t* operationToken) {
  return RunOperation(logger, VXT_OPERATION(Memory, WriteIO).Counted(),
                      TraceArgs("deviceId", Hex8{deviceId}, "port", Hex8{port}, "portByteSize",
                                PortSizeText{portByteSize}, "value", Hex8{value}),
                      TraceArgs("operationToken", Out<Hex16>(operationToken)), [&](Call& call) {
                        return call.Core(runControl, [&](const Table& t) {
                          const OwnedObject object(BitData_CreateManagedFromUInt64(32, value));
                          return t.WriteIO(deviceId, port, portByteSize, object.get(), operationToken);
                        });
                      });
}

// The VMCS of a thread is not reachable through this service: each
// operation fails with "not implemented" and no text, reaching no component.
VXT_Result InProc_Memory::VMCSRead32(uint32_t deviceId, uint32_t fieldOffset, uint64_t* operationToken) {
  return RunOperation(logger, VXT_OPERATION(Memory, VMCSRead32).Counted(),
                      TraceArgs("deviceId", Hex8{deviceId}, "fieldOffset", Hex8{fieldOffset}),
                      TraceArgs("operationToken", Out<Hex16>(operationToken)),
                      [&](Call& call) { return RefuseVmcs(call.NotNull(operationToken, "operationToken")); });
}

VXT_Result InProc_Memory::VMCSRead64(uint32_t deviceId, uint64_t fieldOffset, uint64_t* operationToken) {
  return RunOperation(logger, VXT_OPERATION(Memory, VMCSRead64).Counted(),
                      TraceArgs("deviceId", Hex8{deviceId}, "fieldOffset", Hex16{fieldOffset}),
                      TraceArgs("operationToken", Out<Hex16>(operationToken)),
                      [&](Call& call) { return RefuseVmcs(call.NotNull(operationToken, "operationToken")); });
}

VXT_Result InProc_Memory::VMCSWrite32(uint32_t deviceId, uint32_t fieldOffset, uint32_t value,
                                      uint64_t* operationToken) {
  return RunOperation(logger, VXT_OPERATION(Memory, VMCSWrite32).Counted(),
                      TraceArgs("deviceId", Hex8{deviceId}, "fieldOffset", Hex8{fieldOffset}, "value", Hex8{value}),
                      TraceArgs("operationToken", Out<Hex16>(operationToken)),
                      [&](Call& call) { return RefuseVmcs(call); });
}

VXT_Result InProc_Memory::VMCSWrite64(uint32_t deviceId, uint64_t fieldOffset, uint64_t value,
                                      uint64_t* operationToken) {
  return RunOperation(logger, VXT_OPERATION(Memory, VMCSWrite64).Counted(),
                      TraceArgs("deviceId", Hex8{deviceId}, "fieldOffset", Hex16{fieldOffset}, "value", Hex16{value}),
                      TraceArgs("operationToken", Out<Hex16>(operationToken)),
                      [&](Call& call) { return RefuseVmcs(call); });
}

VXT_Result InProc_Memory::ReadMemoryWithAccessWidth(uint32_t deviceId, const VXT_Address* address, int32_t count,
                                                    uint32_t accessWidth, uint64_t* operationToken) {
  return RunOperation(logger, VXT_OPERATION(Memory, ReadMemoryWithAccessWidth).Counted(),
                      TraceArgs("deviceId", Hex8{deviceId}, "address", AddressText{address}, "count", Dec{count},
                                "accessWidth", WidthText{accessWidth}),
                      TraceArgs("operationToken", Out<Hex16>(operationToken)), [&](Call& call) {
                        return CheckAddress(call, address, "address")
                            .NotNull(operationToken, "operationToken")
                            .Require(count > 0, code::kCountNotPositive, call.prefix(),
                                     " argument error (count) : Count must be greater than zero.")
                            .Require(IsAccessWidth(accessWidth), code::kInvalidMemoryAccessWidth, call.prefix(),
                                     " argument error (accessWidth) : Invalid memory access width")
                            .Core(runControl, [&](const Table& t) {
                              return t.ReadMemory(deviceId, address, count, accessWidth, operationToken);
                            });
                      });
}

VXT_Result InProc_Memory::WriteMemoryWithAccessWidth(uint32_t deviceId, const VXT_Address* address, int32_t count,
                                                     uint32_t accessWidth, const VXT_BitData* data,
                                                     uint64_t* operationToken) {
  return RunOperation(logger, VXT_OPERATION(Memory, WriteMemoryWithAccessWidth).Counted(),
                      TraceArgs("deviceId", Hex8{deviceId}, "address", AddressText{address}, "count", Dec{count},
                                "accessWidth", WidthText{accessWidth}, "data", BitDataText{data}),
                      TraceArgs("operationToken", Out<Hex16>(operationToken)), [&](Call& call) {
                        CheckAddress(call, address, "address");
                        BitDataChecks(call).Holding(data, "data");
                        call.Require(count > 0, code::kCountNotPositive, call.prefix(),
                                     " argument error (count) : Count must be greater than zero.")
                            .Require(IsAccessWidth(accessWidth), code::kInvalidMemoryAccessWidth, call.prefix(),
                                     " argument error (accessWidth) : Invalid memory access width");
                        return call.Core(runControl, [&](const Table& t) {
                          return WriteThroughObject(
                              call, "count", "Count too large", static_cast<uint64_t>(count) * accessWidth * 8, data,
                              [&](const BitData& object) {
                                return t.WriteMemory(deviceId, address, count, accessWidth, &object, operationToken);
                              });
                        });
                      });
}

}  // namespace vxt
