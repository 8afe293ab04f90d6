// The Dma component's table. A transfer is whole or nothing: it moves all
// its bytes with one copy between the target domain's physical memory and
// the caller's buffer, or none, and then reports 0 bytes. A transfer that
// the memory refuses (a hole, ROM) leaves its error on the method, which
// refuses every later transfer until ClearError.
#include <algorithm>
#include <functional>
#include <span>
#include <string>
#include <vector>

#include "Dma.h"
#include "Dma/DmaEngines.h"
#include "Jtag/JtagModel.h"
#include "RunControl/ImageFiles.h"
#include "RunControl/RunControlCodes.h"
#include "Support/ComponentCall.h"
#include "TargetManager/ListAnswers.h"

namespace voxtrel::platform::dma {
namespace {

using run_control::HexText;
using target::Outcome;
using target_manager::CopyText;
using target_manager::HexId;
using target_manager::Request;

constexpr uint32_t kNameSize = 64;

// What a transfer does on the memory once it is checked: moves its bytes
// from or to `physical` and says how many moved.
using Move = std::function<Outcome(const Engine&, uint64_t physical, uint32_t& moved)>;

uint32_t Posted(Request& request, const target::Failure& failure) {
  return request.Refuse(failure.code, ": " + failure.message);
}

uint32_t CheckAddress(Request& request, const VXT_Address& address) {
  if (address.structureSize != VXT_ADDRESS_SIZE)
    return request.Refuse(run_control::kStructureSize, ": address: structure size not initialized");
  if (address.addressType != VXT_AddressType_Physical && address.addressType != VXT_AddressType_GuestPhysical)
    return request.Refuse(run_control::kAddressTypeNotSupported,
                          ": DMA reaches physical memory only; the address is not physical");
  return 0;
}

// The checks every transfer makes, its pending error, then `move`.
uint32_t RunTransfer(Request& request, uint32_t deviceId, const char* configMethod, const VXT_Address* address,
                     uint32_t byteCount, uint32_t* numBytes, const char* numBytesName, const Move& move) {
  if (request.NotNull(address, "address").NotNull(numBytes, numBytesName).failed()) return request.code();
  *numBytes = 0;
  if (CheckAddress(request, *address) != 0) return request.code();
  const std::unique_ptr<Engine> engine = FindEngine(request, deviceId, configMethod);
  if (!engine) return request.code();
  if (byteCount > engine->maxTransferBytes)
    return request.Refuse(run_control::kMemoryLengthInvalid, ": " + HexText(byteCount) + " bytes are more than " +
                                                                 engine->where + " moves at once (" +
                                                                 HexText(engine->maxTransferBytes) + ")");
  if (RefuseIfPending(request, *engine) != 0) return request.code();
  uint32_t moved = 0;
  if (auto failed = move(*engine, address->offset, moved)) {
    LeaveError(*engine, jtag::CallingClient(), failed->message);
    return request.Refuse(failed->code, ": " + engine->where + ": " + failed->message);
  }
  *numBytes = moved;
  return 0;
}

Outcome ReadPhysical(const Engine& engine, uint64_t physical, std::span<uint8_t> bytes) {
  if (const auto result = engine.domain->backend->ReadPhysical(physical, bytes); result != cpu::CpuResult::Ok)
    return run_control::CpuFailure(result,
                                   "reading " + HexText(bytes.size()) + " bytes at physical " + HexText(physical));
  return std::nullopt;
}

Outcome WritePhysical(const Engine& engine, uint64_t physical, std::span<const uint8_t> bytes) {
  if (const auto result = engine.domain->backend->WritePhysical(physical, bytes); result != cpu::CpuResult::Ok)
    return run_control::CpuFailure(result,
                                   "writing " + HexText(bytes.size()) + " bytes at physical " + HexText(physical));
  return std::nullopt;
}

uint32_t GetSupportedConfigurationAccessMethods(uint32_t deviceId, uint32_t maxNumMethods,
                                                char (*configAccessMethods)[kNameSize], uint32_t* numMethods) {
  VOXTREL_COMPONENT_CALL("Dma.GetSupportedConfigurationAccessMethods", "deviceId=", HexId(deviceId),
                         ", max=", maxNumMethods);
  Request request("Dma.GetSupportedConfigurationAccessMethods");
  if (maxNumMethods > 0) request.NotNull(configAccessMethods, "configAccessMethods");
  const target::Node* device = request.NotNull(numMethods, "numMethods").Device(deviceId);
  if (device == nullptr) return request.code();
  const std::vector<std::string> methods = MethodsOf(*device);
  *numMethods = static_cast<uint32_t>(methods.size());
  const target_manager::NameFields names{maxNumMethods, kNameSize, target_manager::PastTheList::Emptied};
  names(methods, configAccessMethods);
  return 0;
}

uint32_t GetDefaultConfigurationAccessMethod(uint32_t deviceId, char* configMethod) {
  VOXTREL_COMPONENT_CALL("Dma.GetDefaultConfigurationAccessMethod", "deviceId=", HexId(deviceId));
  Request request("Dma.GetDefaultConfigurationAccessMethod");
  const target::Node* device = request.NotNull(configMethod, "configMethod").Device(deviceId);
  if (device == nullptr) return request.code();
  const std::vector<std::string> methods = MethodsOf(*device);
  if (methods.empty())
    return request.Refuse(0x20002, ": device " + target_manager::DeviceName(*device) + " reaches no memory by DMA");
  CopyText(methods.front(), configMethod, kNameSize);
  return 0;
}

uint32_t ReadMemory(uint32_t deviceId, const char* configMethod, const VXT_Address* address, uint32_t byteCount,
                    uint8_t* buffer, uint32_t* numBytesRead) {
  VOXTREL_COMPONENT_CALL("Dma.ReadMemory", "deviceId=", HexId(deviceId), ", byteCount=", byteCount);
  Request request("Dma.ReadMemory");
  if (request.NotNull(buffer, "buffer").failed()) return request.code();
  return RunTransfer(request, deviceId, configMethod, address, byteCount, numBytesRead, "numBytesRead",
                     [&](const Engine& engine, uint64_t physical, uint32_t& moved) -> Outcome {
                       if (auto refused = ReadPhysical(engine, physical, std::span(buffer, byteCount))) return refused;
                       moved = byteCount;
                       return std::nullopt;
                     });
}

uint32_t WriteMemory(uint32_t deviceId, const char* configMethod, const VXT_Address* address, uint32_t byteCount,
                     const uint8_t* buffer, uint32_t* numBytesWritten) {
  VOXTREL_COMPONENT_CALL("Dma.WriteMemory", "deviceId=", HexId(deviceId), ", byteCount=", byteCount);
  Request request("Dma.WriteMemory");
  if (request.NotNull(buffer, "buffer").failed()) return request.code();
  return RunTransfer(request, deviceId, configMethod, address, byteCount, numBytesWritten, "numBytesWritten",
                     [&](const Engine& engine, uint64_t physical, uint32_t& moved) -> Outcome {
                       if (auto refused = WritePhysical(engine, physical, std::span(buffer, byteCount)))
                         return refused;
                       moved = byteCount;
                       return std::nullopt;
                     });
}

// Files: the checks of the file come first, and their refusals leave no
// error on the method: only the memory's do.
uint32_t SaveMemory(uint32_t deviceId, const char* configMethod, const VXT_Address* address, uint32_t byteCount,
                    const char* fileName, uint32_t overwriteFile, const char* fileType, const char* saveOptions,
                    uint32_t* numBytesRead) {
  VOXTREL_COMPONENT_CALL("Dma.SaveMemory", "deviceId=", HexId(deviceId), ", byteCount=", byteCount,
                         ", overwriteFile=", overwriteFile);
  Request request("Dma.SaveMemory");
  if (numBytesRead != nullptr) *numBytesRead = 0;
  if (request.NotNull(fileName, "fileName").NotNull(fileType, "fileType").failed()) return request.code();
  run_control::ImageType type{};
  if (auto refused = run_control::ParseImageType(fileType, type)) return Posted(request, *refused);
  if (auto refused = run_control::CheckNoOptions(saveOptions, "saveOptions")) return Posted(request, *refused);
  if (auto refused = run_control::CheckOverwrite(fileName, overwriteFile != 0)) return Posted(request, *refused);
  std::vector<uint8_t> bytes;
  const uint32_t code = RunTransfer(request, deviceId, configMethod, address, byteCount, numBytesRead, "numBytesRead",
                                    [&](const Engine& engine, uint64_t physical, uint32_t& moved) -> Outcome {
                                      bytes.resize(byteCount);
                                      if (auto refused = ReadPhysical(engine, physical, bytes)) return refused;
                                      moved = byteCount;
                                      return std::nullopt;
                                    });
  if (code != 0) return code;
  if (auto refused = run_control::WriteImage(fileName, type, bytes)) {
    *numBytesRead = 0;
    return Posted(request, *refused);
  }
  return 0;
}

// An image fills at most `byteCount` bytes from the address; the bytes it
// leaves out between its records keep what they held.
uint32_t LoadMemory(uint32_t deviceId, const char* configMethod, const VXT_Address* address, uint32_t byteCount,
                    const char* fileName, const char* fileType, const char* loadOptions, uint32_t* numBytesWritten) {
  VOXTREL_COMPONENT_CALL("Dma.LoadMemory", "deviceId=", HexId(deviceId), ", byteCount=", byteCount);
  Request request("Dma.LoadMemory");
  if (numBytesWritten != nullptr) *numBytesWritten = 0;
  if (request.NotNull(fileName, "fileName").NotNull(fileType, "fileType").failed()) return request.code();
  run_control::ImageType type{};
  std::vector<run_control::HexChunk> chunks;
  if (auto refused = run_control::ParseImageType(fileType, type)) return Posted(request, *refused);
  if (auto refused = run_control::CheckNoOptions(loadOptions, "loadOptions")) return Posted(request, *refused);
  if (auto refused = run_control::ReadImage(fileName, type, byteCount, "byteCount", chunks))
    return Posted(request, *refused);
  return RunTransfer(request, deviceId, configMethod, address, byteCount, numBytesWritten, "numBytesWritten",
                     [&](const Engine& engine, uint64_t physical, uint32_t& moved) -> Outcome {
                       if (chunks.empty()) return std::nullopt;
                       // One span from the image's first byte to its last: read, patched, written whole.
                       const uint64_t first = chunks.front().address;
                       const uint64_t end = chunks.back().address + chunks.back().bytes.size();
                       std::vector<uint8_t> span(end - first);
                       if (chunks.size() > 1) {
                         if (auto refused = ReadPhysical(engine, physical + first, span)) return refused;
                       }
                       uint64_t loaded = 0;
                       for (const run_control::HexChunk& chunk : chunks) {
                         std::copy(chunk.bytes.begin(), chunk.bytes.end(), span.begin() + (chunk.address - first));
                         loaded += chunk.bytes.size();
                       }
                       if (auto refused = WritePhysical(engine, physical + first, span)) return refused;
                       moved = static_cast<uint32_t>(loaded);
                       return std::nullopt;
                     });
}

uint32_t ClearError(uint32_t deviceId, const char* configMethod, uint32_t force) {
  VOXTREL_COMPONENT_CALL("Dma.ClearError", "deviceId=", HexId(deviceId), ", force=", force);
  Request request("Dma.ClearError");
  const std::unique_ptr<Engine> engine = FindEngine(request, deviceId, configMethod);
  if (!engine) return request.code();
  return EndError(request, *engine, jtag::CallingClient(), force != 0);
}

constexpr DmaComponent kDma{&GetSupportedConfigurationAccessMethods,
                            &GetDefaultConfigurationAccessMethod,
                            &ReadMemory,
                            &WriteMemory,
                            &SaveMemory,
                            &LoadMemory,
                            &ClearError};

}  // namespace
}  // namespace voxtrel::platform::dma

uint32_t Voxtrel_GetDma(const DmaComponent** table) {
  VOXTREL_COMPONENT_CALL("Voxtrel_GetDma");
  if (!table) return voxtrel::platform::target::kNullArgument;
  *table = &voxtrel::platform::dma::kDma;
  return 0;
}
