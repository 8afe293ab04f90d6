// RunControl.ReadMemory, WriteMemory, ReadIO, WriteIO, ConvertAddress,
// AddressToString, AddressFromString and InvalidateCache.
#include <cstring>
#include <string>
#include <utility>
#include <vector>

#include "AddressText.h"
#include "CpuThreads.h"
#include "MemoryAccess.h"
#include "OperationResult.h"
#include "RunControlCodes.h"
#include "RunControlOperations.h"
#include "Support/ComponentCall.h"
#include "ThreadAddressing.h"

namespace voxtrel::platform::run_control {
namespace {

using receipts::ReceiptValue;
using target::Failure;
using target::Outcome;

constexpr uint32_t kInvalidMemoryAccessWidth = 0x1f0006;

// The bytes `count` units of `accessWidth` bytes take; 0 means bytes.
Outcome TransferSize(int32_t count, uint32_t accessWidth, uint64_t& size) {
  if (count <= 0) return Failure{kValueOutOfRange, "the count " + std::to_string(count) + " is not greater than zero"};
  if (accessWidth != 0 && accessWidth != 1 && accessWidth != 2 && accessWidth != 4 && accessWidth != 8)
    return Failure{kInvalidMemoryAccessWidth,
                   "the access width " + std::to_string(accessWidth) + " is not 1, 2, 4 or 8"};
  size = static_cast<uint64_t>(count) * (accessWidth == 0 ? 1 : accessWidth);
  return std::nullopt;
}

Outcome ReadMemoryWork(uint32_t deviceId, const VXT_Address* address, int32_t count, uint32_t accessWidth,
                       uint64_t* operationToken) {
  uint64_t size = 0;
  CpuThread cpu;
  if (auto refused = CheckAddressRecord(address, "address")) return refused;
  if (auto refused = CheckNotNull(operationToken, "operationToken")) return refused;
  if (auto refused = TransferSize(count, accessWidth, size)) return refused;
  if (auto refused = CheckTransferSize(size)) return refused;
  if (auto refused = FindCpu(deviceId, cpu)) return refused;
  ReceiptValue value = ReceiptValue::ByteBuffer(size);
  if (auto refused = ReadMemoryAt(cpu.backend(), cpu.thread, *address, value.WritableBytes())) return refused;
  GiveCompleted(operationToken, std::move(value));
  return std::nullopt;
}

Outcome WriteMemoryWork(uint32_t deviceId, const VXT_Address* address, int32_t count, uint32_t accessWidth,
                        const BitData* data, uint64_t* operationToken) {
  uint64_t size = 0;
  CpuThread cpu;
  if (auto refused = CheckAddressRecord(address, "address")) return refused;
  if (auto refused = CheckNotNull(data, "data")) return refused;
  if (auto refused = CheckNotNull(operationToken, "operationToken")) return refused;
  if (auto refused = TransferSize(count, accessWidth, size)) return refused;
  if (data->bitSize / 8 < size)
    return Failure{kValueOutOfRange, "the data holds " + std::to_string(data->bitSize) + " bits, fewer than the " +
                                         std::to_string(size) + " bytes to write"};
  if (auto refused = CheckTransferSize(size)) return refused;
  if (auto refused = FindCpu(deviceId, cpu)) return refused;
  std::vector<uint8_t> bytes(size);
  // A longer vector gives its first bytes; that is no failure here.
  BitData_GetBuffer(data, 0, bytes.data(), bytes.size());
  if (auto refused = WriteMemoryAt(cpu.backend(), cpu.thread, *address, bytes)) return refused;
  GiveCompleted(operationToken);
  return std::nullopt;
}

Outcome CheckPort(int32_t port) {
  if (port < 0 || port > 0xFFFF)
    return Failure{kValueOutOfRange,
                   "the port " + HexText(static_cast<uint32_t>(port)) + " is not one of 0x0 to 0xffff"};
  return std::nullopt;
}

Outcome ReadIoWork(uint32_t deviceId, int32_t port, uint32_t portByteSize, uint64_t* operationToken) {
  CpuThread cpu;
  uint32_t value = 0;
  if (auto refused = CheckNotNull(operationToken, "operationToken")) return refused;
  if (auto refused = CheckPort(port)) return refused;
  if (auto refused = FindCpu(deviceId, cpu)) return refused;
  if (const auto result = cpu.backend().ReadIo(static_cast<uint16_t>(port), portByteSize, value);
      result != cpu::CpuResult::Ok)
    return CpuFailure(result, "reading " + std::to_string(portByteSize) + " bytes of port " + HexText(port));
  GiveCompleted(operationToken, ReceiptValue::Number(value, portByteSize * 8));
  return std::nullopt;
}

Outcome WriteIoWork(uint32_t deviceId, int32_t port, uint32_t portByteSize, const BitData* value,
                    uint64_t* operationToken) {
  CpuThread cpu;
  if (auto refused = CheckNotNull(value, "value")) return refused;
  if (auto refused = CheckNotNull(operationToken, "operationToken")) return refused;
  if (auto refused = CheckPort(port)) return refused;
  const uint64_t number = BitData_GetUpToUInt64(value, 0, value->bitSize);
  if (value->bitSize > 64 || (portByteSize < 4 && (number >> (portByteSize * 8)) != 0))
    return Failure{kValueOutOfRange, "the value does not fit a port of " + std::to_string(portByteSize) + " bytes"};
  if (auto refused = FindCpu(deviceId, cpu)) return refused;
  if (const auto result =
          cpu.backend().WriteIo(static_cast<uint16_t>(port), portByteSize, static_cast<uint32_t>(number));
      result != cpu::CpuResult::Ok)
    return CpuFailure(result, "writing " + std::to_string(portByteSize) + " bytes to port " + HexText(port));
  GiveCompleted(operationToken);
  return std::nullopt;
}

Outcome ConvertAddressWork(uint32_t deviceId, const VXT_Address* sourceAddress, VXT_AddressType destAddressType,
                           VXT_Address* destAddress) {
  CpuThread cpu;
  VXT_Address converted{};
  if (auto refused = CheckAddressRecord(sourceAddress, "sourceAddress")) return refused;
  if (auto refused = CheckAddressRecord(destAddress, "destAddress")) return refused;
  if (auto refused = FindCpu(deviceId, cpu)) return refused;
  if (auto refused = ThreadAddressing(cpu.backend(), cpu.thread).Convert(*sourceAddress, destAddressType, converted))
    return refused;
  *destAddress = converted;
  return std::nullopt;
}

Outcome AddressToStringWork(const VXT_Address* address, char* buffer) {
  std::string text;
  if (auto refused = CheckAddressRecord(address, "address")) return refused;
  if (auto refused = CheckNotNull(buffer, "buffer")) return refused;
  if (auto refused = AddressToText(*address, text)) return refused;
  // The longest text, "0xffff:0xffff:0xffffffffffffffff", fits with room to spare.
  static_assert(VXT_ADDRESS_TEXT_SIZE > 33);
  std::memcpy(buffer, text.c_str(), text.size() + 1);
  return std::nullopt;
}

Outcome AddressFromStringWork(const char* addressAsString, VXT_Address* address) {
  if (auto refused = CheckNotNull(addressAsString, "addressAsString")) return refused;
  if (auto refused = CheckAddressRecord(address, "address")) return refused;
  return AddressFromText(addressAsString, *address);
}

Outcome InvalidateCacheWork(uint32_t deviceId, uint64_t* operationToken) {
  CpuThread cpu;
  if (auto refused = CheckNotNull(operationToken, "operationToken")) return refused;
  // The emulated CPUs keep no data cache: memory is always current.
  if (auto refused = FindCpu(deviceId, cpu)) return refused;
  GiveCompleted(operationToken);
  return std::nullopt;
}

}  // namespace

uint32_t ReadMemory(uint32_t deviceId, const VXT_Address* address, int32_t byteCount, uint32_t accessWidth,
                    uint64_t* operationToken) {
  VOXTREL_COMPONENT_CALL("RunControl.ReadMemory", "deviceId=", HexText(deviceId), ", byteCount=", byteCount,
                         ", accessWidth=", accessWidth);
  return VOXTREL_ANSWER(ReadMemoryWork(deviceId, address, byteCount, accessWidth, operationToken));
}

uint32_t WriteMemory(uint32_t deviceId, const VXT_Address* address, int32_t byteCount, uint32_t accessWidth,
                     const BitData* data, uint64_t* operationToken) {
  VOXTREL_COMPONENT_CALL("RunControl.WriteMemory", "deviceId=", HexText(deviceId), ", byteCount=", byteCount,
                         ", accessWidth=", accessWidth, ", dataBits=", data == nullptr ? 0 : data->bitSize);
  return VOXTREL_ANSWER(WriteMemoryWork(deviceId, address, byteCount, accessWidth, data, operationToken));
}

uint32_t ReadIO(uint32_t deviceId, int32_t port, uint32_t portByteSize, uint64_t* operationToken) {
  VOXTREL_COMPONENT_CALL("RunControl.ReadIO", "deviceId=", HexText(deviceId), ", port=", port,
                         ", portByteSize=", portByteSize);
  return VOXTREL_ANSWER(ReadIoWork(deviceId, port, portByteSize, operationToken));
}

uint32_t WriteIO(uint32_t deviceId, int32_t port, uint32_t portByteSize, const BitData* value,
                 uint64_t* operationToken) {
  VOXTREL_COMPONENT_CALL("RunControl.WriteIO", "deviceId=", HexText(deviceId), ", port=", port,
                         ", portByteSize=", portByteSize, ", valueBits=", value == nullptr ? 0 : value->bitSize);
  return VOXTREL_ANSWER(WriteIoWork(deviceId, port, portByteSize, value, operationToken));
}

uint32_t ConvertAddress(uint32_t deviceId, const VXT_Address* sourceAddress, VXT_AddressType destAddressType,
                        VXT_Address* destAddress) {
  VOXTREL_COMPONENT_CALL("RunControl.ConvertAddress", "deviceId=", HexText(deviceId),
                         ", destAddressType=", static_cast<uint32_t>(destAddressType));
  return VOXTREL_ANSWER(ConvertAddressWork(deviceId, sourceAddress, destAddressType, destAddress));
}

uint32_t AddressToString(const VXT_Address* address, char* buffer) {
  VOXTREL_COMPONENT_CALL("RunControl.AddressToString");
  return VOXTREL_ANSWER(AddressToStringWork(address, buffer));
}

uint32_t AddressFromString(const char* addressAsString, VXT_Address* address) {
  VOXTREL_COMPONENT_CALL("RunControl.AddressFromString");
  return VOXTREL_ANSWER(AddressFromStringWork(addressAsString, address));
}

uint32_t InvalidateCache(uint32_t deviceId, bool writeModifiedCacheToMainMemory, uint64_t* operationToken) {
  VOXTREL_COMPONENT_CALL("RunControl.InvalidateCache", "deviceId=", HexText(deviceId),
                         ", writeBack=", writeModifiedCacheToMainMemory);
  return VOXTREL_ANSWER(InvalidateCacheWork(deviceId, operationToken));
}

}  // namespace voxtrel::platform::run_control
