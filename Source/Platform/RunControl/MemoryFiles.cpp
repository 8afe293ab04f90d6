// RunControl.LoadMemory and SaveMemory: memory images in files, raw bytes
// ("bin") or Intel HEX ("hex"). An image is placed from fromAddress on; its
// addresses (those of Intel HEX records) count from there, and toAddress,
// the last byte, bounds it. A load that cannot place every byte places
// none; a save replaces an existing file only when asked to.
#include <string>
#include <vector>

#include "CpuThreads.h"
#include "ImageFiles.h"
#include "MemoryAccess.h"
#include "OperationResult.h"
#include "RunControlCodes.h"
#include "RunControlOperations.h"
#include "Support/ComponentCall.h"

namespace voxtrel::platform::run_control {
namespace {

using receipts::ReceiptValue;
using target::Failure;
using target::Outcome;

// The bytes from `from` up to `to` (null: no bound), both of one kind.
Outcome RangeLimit(const VXT_Address& from, const VXT_Address* to, uint64_t& limit) {
  limit = cpu::kMaxTransferBytes;
  if (to == nullptr) return std::nullopt;
  if (to->addressType != from.addressType || to->segsel != from.segsel || to->ldtsel != from.ldtsel)
    return Failure{kInvalidAddress, "toAddress is not of the same kind as fromAddress"};
  if (to->offset < from.offset) return Failure{kInvalidAddress, "toAddress lies before fromAddress"};
  if (to->offset - from.offset >= cpu::kMaxTransferBytes) return CheckTransferSize(to->offset - from.offset + 1);
  limit = to->offset - from.offset + 1;
  return std::nullopt;
}

// Writes every chunk or none: what was there is read first and put back
// when a later chunk cannot be written.
Outcome WriteChunks(const CpuThread& cpu, const VXT_Address& from, const std::vector<HexChunk>& chunks) {
  std::vector<std::vector<uint8_t>> before;
  auto at = [&](const HexChunk& chunk) {
    VXT_Address address = from;
    address.offset += chunk.address;
    return address;
  };
  for (const HexChunk& chunk : chunks) {
    before.emplace_back(chunk.bytes.size());
    if (auto refused = ReadMemoryAt(cpu.backend(), cpu.thread, at(chunk), before.back())) return refused;
  }
  for (size_t i = 0; i < chunks.size(); ++i) {
    if (auto refused = WriteMemoryAt(cpu.backend(), cpu.thread, at(chunks[i]), chunks[i].bytes)) {
      for (size_t j = 0; j < i; ++j) WriteMemoryAt(cpu.backend(), cpu.thread, at(chunks[j]), before[j]);
      return refused;
    }
  }
  return std::nullopt;
}

Outcome LoadMemoryWork(uint32_t deviceId, const char* fileName, const VXT_Address* fromAddress,
                       const VXT_Address* toAddress, const char* fileType, const char* loadOptions,
                       uint64_t* operationToken) {
  ImageType type = ImageType::Binary;
  uint64_t limit = 0;
  std::vector<HexChunk> chunks;
  CpuThread cpu;
  if (auto refused = CheckNotNull(fileName, "fileName")) return refused;
  if (auto refused = CheckNotNull(fileType, "fileType")) return refused;
  if (auto refused = CheckNotNull(operationToken, "operationToken")) return refused;
  if (auto refused = CheckAddressRecord(fromAddress, "fromAddress")) return refused;
  if (toAddress != nullptr) {
    if (auto refused = CheckAddressRecord(toAddress, "toAddress")) return refused;
  }
  if (auto refused = ParseImageType(fileType, type)) return refused;
  if (auto refused = CheckNoOptions(loadOptions, "loadOptions")) return refused;
  if (auto refused = RangeLimit(*fromAddress, toAddress, limit)) return refused;
  if (auto refused = ReadImage(fileName, type, limit, "toAddress", chunks)) return refused;
  uint64_t loaded = 0;
  for (const HexChunk& chunk : chunks) loaded += chunk.bytes.size();
  if (auto refused = FindCpu(deviceId, cpu)) return refused;
  if (auto refused = WriteChunks(cpu, *fromAddress, chunks)) return refused;
  GiveCompleted(operationToken, ReceiptValue::Number(loaded));
  return std::nullopt;
}

Outcome SaveMemoryWork(uint32_t deviceId, const char* fileName, const VXT_Address* fromAddress,
                       const VXT_Address* toAddress, bool overwriteFile, const char* fileType, const char* saveOptions,
                       uint64_t* operationToken) {
  ImageType type = ImageType::Binary;
  uint64_t size = 0;
  CpuThread cpu;
  if (auto refused = CheckNotNull(fileName, "fileName")) return refused;
  if (auto refused = CheckNotNull(fileType, "fileType")) return refused;
  if (auto refused = CheckNotNull(operationToken, "operationToken")) return refused;
  if (auto refused = CheckAddressRecord(fromAddress, "fromAddress")) return refused;
  if (auto refused = CheckAddressRecord(toAddress, "toAddress")) return refused;
  if (auto refused = ParseImageType(fileType, type)) return refused;
  if (auto refused = CheckNoOptions(saveOptions, "saveOptions")) return refused;
  if (auto refused = RangeLimit(*fromAddress, toAddress, size)) return refused;
  if (auto refused = CheckOverwrite(fileName, overwriteFile)) return refused;
  if (auto refused = FindCpu(deviceId, cpu)) return refused;
  std::vector<uint8_t> bytes(size);
  if (auto refused = ReadMemoryAt(cpu.backend(), cpu.thread, *fromAddress, bytes)) return refused;
  if (auto refused = WriteImage(fileName, type, bytes)) return refused;
  GiveCompleted(operationToken, ReceiptValue::Number(size));
  return std::nullopt;
}

}  // namespace

uint32_t LoadMemory(uint32_t deviceId, const char* fileName, const VXT_Address* fromAddress,
                    const VXT_Address* toAddress, const char* fileType, const char* loadOptions,
                    uint64_t* operationToken) {
  VOXTREL_COMPONENT_CALL("RunControl.LoadMemory", "deviceId=", HexText(deviceId));
  return VOXTREL_ANSWER(
      LoadMemoryWork(deviceId, fileName, fromAddress, toAddress, fileType, loadOptions, operationToken));
}

uint32_t SaveMemory(uint32_t deviceId, const char* fileName, const VXT_Address* fromAddress,
                    const VXT_Address* toAddress, bool overwriteFile, const char* fileType, const char* saveOptions,
                    uint64_t* operationToken) {
  VOXTREL_COMPONENT_CALL("RunControl.SaveMemory", "deviceId=", HexText(deviceId), ", overwriteFile=", overwriteFile);
  return VOXTREL_ANSWER(
      SaveMemoryWork(deviceId, fileName, fromAddress, toAddress, overwriteFile, fileType, saveOptions, operationToken));
}

}  // namespace voxtrel::platform::run_control
