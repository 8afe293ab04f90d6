// RunControl.LoadMemory and SaveMemory: memory images in files, raw bytes
// ("bin") or Intel HEX ("hex"). An image is placed from fromAddress on; its
// addresses (those of Intel HEX records) count from there, and toAddress,
// the last byte, bounds it. A load that cannot place every byte places
// none; a save replaces an existing file only when asked to.
#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <string>
#include <vector>

#include "CpuThreads.h"
#include "IntelHex.h"
#include "MemoryAccess.h"
#include "OperationResult.h"
#include "RunControlCodes.h"
#include "RunControlOperations.h"
#include "Support/ComponentCall.h"

namespace voxtrel::platform::run_control {
namespace {

// A file name in single quotes. Built by appending: optimizing compilers warn
// wrongly of an overlapping copy in chains that start with a literal.
std::string Quoted(const char* text) {
  std::string quoted = "'";
  quoted += text;
  quoted += '\'';
  return quoted;
}

using receipts::ReceiptValue;
using target::Failure;
using target::Outcome;

enum class FileType { Binary, IntelHex };

Outcome ParseFileType(const char* fileType, FileType& type) {
  std::string name(fileType);
  std::transform(name.begin(), name.end(), name.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  if (name == "bin") {
    type = FileType::Binary;
  } else if (name == "hex") {
    type = FileType::IntelHex;
  } else {
    return Failure{kNotSupported, "the file type '" + std::string(fileType) + "' is not \"bin\" or \"hex\""};
  }
  return std::nullopt;
}

Outcome CheckNoOptions(const char* options, const char* argument) {
  if (options != nullptr && options[0] != '\0')
    return Failure{kNotSupported, std::string(argument) + " '" + options + "' are not supported; pass \"\""};
  return std::nullopt;
}

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

Outcome ReadFile(const std::string& fileName, uint64_t maxSize, std::string& contents) {
  std::error_code error;
  const auto size = std::filesystem::file_size(fileName, error);
  if (error) return Failure{kOperationFailed, "cannot read '" + fileName + "': " + error.message()};
  if (size > maxSize) return Failure{kMemoryLengthInvalid, "'" + fileName + "' is larger than memory can take here"};
  std::ifstream file(fileName, std::ios::binary);
  contents.assign(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
  if (!file && !file.eof()) return Failure{kOperationFailed, "cannot read '" + fileName + "'"};
  return std::nullopt;
}

// Adjacent chunks as one, so that a load writes as few pieces as it can.
std::vector<HexChunk> Merged(std::vector<HexChunk> chunks) {
  std::sort(chunks.begin(), chunks.end(), [](const HexChunk& a, const HexChunk& b) { return a.address < b.address; });
  std::vector<HexChunk> merged;
  for (HexChunk& chunk : chunks) {
    if (!merged.empty() && merged.back().address + merged.back().bytes.size() == chunk.address) {
      merged.back().bytes.insert(merged.back().bytes.end(), chunk.bytes.begin(), chunk.bytes.end());
    } else {
      merged.push_back(std::move(chunk));
    }
  }
  return merged;
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
  FileType type = FileType::Binary;
  uint64_t limit = 0;
  std::string contents;
  std::vector<HexChunk> chunks;
  CpuThread cpu;
  if (auto refused = CheckNotNull(fileName, "fileName")) return refused;
  if (auto refused = CheckNotNull(fileType, "fileType")) return refused;
  if (auto refused = CheckNotNull(operationToken, "operationToken")) return refused;
  if (auto refused = CheckAddressRecord(fromAddress, "fromAddress")) return refused;
  if (toAddress != nullptr) {
    if (auto refused = CheckAddressRecord(toAddress, "toAddress")) return refused;
  }
  if (auto refused = ParseFileType(fileType, type)) return refused;
  if (auto refused = CheckNoOptions(loadOptions, "loadOptions")) return refused;
  if (auto refused = RangeLimit(*fromAddress, toAddress, limit)) return refused;
  // Intel HEX takes a little over twice as many characters as bytes.
  if (auto refused = ReadFile(fileName, type == FileType::Binary ? limit : 4 * limit + 1024, contents)) return refused;
  if (type == FileType::Binary) {
    chunks.push_back({0, std::vector<uint8_t>(contents.begin(), contents.end())});
  } else if (auto refused = ParseIntelHex(contents, chunks)) {
    return refused;
  }
  chunks = Merged(std::move(chunks));
  uint64_t loaded = 0;
  for (const HexChunk& chunk : chunks) {
    if (chunk.address + chunk.bytes.size() > limit)
      return Failure{kMemoryLengthInvalid, Quoted(fileName) + " reaches beyond toAddress"};
    loaded += chunk.bytes.size();
  }
  if (auto refused = FindCpu(deviceId, cpu)) return refused;
  if (auto refused = WriteChunks(cpu, *fromAddress, chunks)) return refused;
  GiveCompleted(operationToken, ReceiptValue::Number(loaded));
  return std::nullopt;
}

Outcome SaveMemoryWork(uint32_t deviceId, const char* fileName, const VXT_Address* fromAddress,
                       const VXT_Address* toAddress, bool overwriteFile, const char* fileType, const char* saveOptions,
                       uint64_t* operationToken) {
  FileType type = FileType::Binary;
  uint64_t size = 0;
  CpuThread cpu;
  if (auto refused = CheckNotNull(fileName, "fileName")) return refused;
  if (auto refused = CheckNotNull(fileType, "fileType")) return refused;
  if (auto refused = CheckNotNull(operationToken, "operationToken")) return refused;
  if (auto refused = CheckAddressRecord(fromAddress, "fromAddress")) return refused;
  if (auto refused = CheckAddressRecord(toAddress, "toAddress")) return refused;
  if (auto refused = ParseFileType(fileType, type)) return refused;
  if (auto refused = CheckNoOptions(saveOptions, "saveOptions")) return refused;
  if (auto refused = RangeLimit(*fromAddress, toAddress, size)) return refused;
  if (!overwriteFile && std::filesystem::exists(fileName))
    return Failure{kAccessDenied,
                   Quoted(fileName) + " exists; it is replaced only when asked to overwrite it"};
  if (auto refused = FindCpu(deviceId, cpu)) return refused;
  std::vector<uint8_t> bytes(size);
  if (auto refused = ReadMemoryAt(cpu.backend(), cpu.thread, *fromAddress, bytes)) return refused;

  std::ofstream file(fileName, std::ios::binary | std::ios::trunc);
  if (type == FileType::Binary) {
    file.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
  } else {
    file << WriteIntelHex(bytes);
  }
  file.close();
  if (!file) return Failure{kOperationFailed, "cannot write '" + std::string(fileName) + "': " + std::strerror(errno)};
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
