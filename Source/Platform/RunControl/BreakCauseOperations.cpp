// RunControl's answers to why a thread stopped and its operating modes.
#include <algorithm>
#include <cstring>

#include "CpuThreads.h"
#include "MemoryAccess.h"
#include "OperationResult.h"
#include "RunControlCodes.h"
#include "RunOperations.h"
#include "StopRecords.h"
#include "Support/ComponentCall.h"

namespace voxtrel::platform::run_control {
namespace {

using target::Failure;
using target::Outcome;

// The modes an emulated thread runs code in, by their code width: real,
// protected and long mode.
constexpr uint32_t kOperatingModes[] = {16, 32, 64};
constexpr uint32_t kNumOperatingModes = std::size(kOperatingModes);

// A thread that never stopped has an empty record: its break texts are
// empty and its address 0.
Outcome StopOf(uint32_t threadId, StopRecord& record) {
  CpuThread cpu;
  if (auto refused = FindThread(threadId, cpu)) return refused;
  LastStop(threadId, record);
  return std::nullopt;
}

Outcome CopyBreakText(uint32_t threadId, char* buffer, const char* argument, std::string StopRecord::*text) {
  StopRecord record;
  if (auto refused = CheckNotNull(buffer, argument)) return refused;
  if (auto refused = StopOf(threadId, record)) return refused;
  const std::string& value = record.*text;
  const size_t length = std::min<size_t>(value.size(), kBreakTextSize - 1);
  std::memcpy(buffer, value.data(), length);
  buffer[length] = '\0';
  return std::nullopt;
}

Outcome BreakAddressWork(uint32_t threadId, VXT_Address* breakAddress) {
  StopRecord record;
  if (auto refused = CheckNotNull(breakAddress, "breakAddress")) return refused;
  if (auto refused = StopOf(threadId, record)) return refused;
  *breakAddress = VXT_Address{VXT_ADDRESS_SIZE, 0, 0, record.address, VXT_AddressType_Linear};
  return std::nullopt;
}

Outcome OperatingModesWork(uint32_t deviceId, uint32_t numOperatingModes, uint32_t* operatingModes) {
  CpuThread cpu;
  if (auto refused = CheckNotNull(operatingModes, "operatingModes")) return refused;
  if (auto refused = FindCpu(deviceId, cpu)) return refused;
  std::copy_n(kOperatingModes, std::min(numOperatingModes, kNumOperatingModes), operatingModes);
  if (numOperatingModes < kNumOperatingModes)
    return Failure{kBufferTooSmall, "the thread has " + std::to_string(kNumOperatingModes) +
                                        " operating modes, room was made for " + std::to_string(numOperatingModes)};
  return std::nullopt;
}

}  // namespace

uint32_t GetBreakType(uint32_t threadId, char* breakType) {
  VOXTREL_COMPONENT_CALL("RunControl.GetBreakType", "threadId=", HexText(threadId));
  return VOXTREL_ANSWER(CopyBreakText(threadId, breakType, "breakType", &StopRecord::breakType));
}

uint32_t GetBreakSubtype(uint32_t threadId, char* breakSubtype) {
  VOXTREL_COMPONENT_CALL("RunControl.GetBreakSubtype", "threadId=", HexText(threadId));
  return VOXTREL_ANSWER(CopyBreakText(threadId, breakSubtype, "breakSubtype", &StopRecord::breakSubtype));
}

uint32_t GetBreakAddress(uint32_t threadId, VXT_Address* breakAddress) {
  VOXTREL_COMPONENT_CALL("RunControl.GetBreakAddress", "threadId=", HexText(threadId));
  return VOXTREL_ANSWER(BreakAddressWork(threadId, breakAddress));
}

uint32_t GetNumOperatingModes(uint32_t deviceId, uint32_t* numOperatingModes) {
  VOXTREL_COMPONENT_CALL("RunControl.GetNumOperatingModes", "deviceId=", HexText(deviceId));
  CpuThread cpu;
  if (const uint32_t refused = VOXTREL_ANSWER(CheckNotNull(numOperatingModes, "numOperatingModes"))) return refused;
  if (const uint32_t refused = VOXTREL_ANSWER(FindCpu(deviceId, cpu))) return refused;
  *numOperatingModes = kNumOperatingModes;
  return 0;
}

uint32_t GetOperatingModes(uint32_t deviceId, uint32_t numOperatingModes, uint32_t* operatingModes) {
  VOXTREL_COMPONENT_CALL("RunControl.GetOperatingModes", "deviceId=", HexText(deviceId));
  return VOXTREL_ANSWER(OperatingModesWork(deviceId, numOperatingModes, operatingModes));
}

}  // namespace voxtrel::platform::run_control
