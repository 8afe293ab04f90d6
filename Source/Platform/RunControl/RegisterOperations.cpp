// RunControl's register operations: registers by name, MSRs, CPUID, APIC id
// and the register list of a thread. Names are matched in any case. The
// operations on several registers check every name, value and MSR first
// and change nothing unless all can be done; a write that the thread
// refuses part way puts back the registers written before it.
#include <algorithm>
#include <cctype>
#include <cstring>
#include <initializer_list>
#include <string>
#include <utility>
#include <vector>

#include "Authorization/AuthorizationLevels.h"
#include "CpuThreads.h"
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

std::string Lower(std::string_view name) {
  std::string lower(name);
  std::transform(lower.begin(), lower.end(), lower.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  return lower;
}

Outcome FindRegister(const CpuThread& cpu, const char* name, const cpu::RegisterInfo*& info) {
  const auto& registers = cpu.backend().Registers();
  const std::string lower = Lower(name);
  const auto found =
      std::find_if(registers.begin(), registers.end(), [&](const cpu::RegisterInfo& r) { return r.name == lower; });
  if (found == registers.end())
    return Failure{kRegisterNotFound, "the thread has no register '" + std::string(name) + "'"};
  info = &*found;
  return std::nullopt;
}

// The register's bytes from a value no wider than the register.
Outcome ValueBytes(const cpu::RegisterInfo& info, const BitData* value, std::vector<uint8_t>& bytes) {
  if (auto refused = CheckNotNull(value, "value")) return refused;
  bytes.assign(info.bitWidth / 8, 0);
  uint64_t highest = BITDATA_NOT_FOUND;
  BitData_FindLast(value, 0, value->bitSize, &highest);
  if (highest != BITDATA_NOT_FOUND && highest >= info.bitWidth)
    return Failure{kValueOutOfRange,
                   "the value does not fit the " + std::to_string(info.bitWidth) + " bits of '" + info.name + "'"};
  BitData_GetBuffer(value, 0, bytes.data(), bytes.size());
  return std::nullopt;
}

// The thread of an operation on `count` registers; its arrays must be
// there when it names any.
Outcome ThreadForMany(uint32_t deviceId, uint32_t count,
                      std::initializer_list<std::pair<const void*, const char*>> arrays, CpuThread& cpu) {
  for (const auto& [array, argument] : arrays) {
    if (count == 0) break;
    if (auto refused = CheckNotNull(array, argument)) return refused;
  }
  return FindThread(deviceId, cpu);
}

Outcome ReadRegisterValue(const CpuThread& cpu, const cpu::RegisterInfo& info, ReceiptValue& value) {
  std::vector<uint8_t> bytes(info.bitWidth / 8);
  if (const auto result = cpu.backend().ReadRegister(cpu.thread, info.name, bytes); result != cpu::CpuResult::Ok)
    return CpuFailure(result, "reading '" + info.name + "'");
  value = ReceiptValue::Bytes(bytes.data(), info.bitWidth);
  return std::nullopt;
}

Outcome ReadRegistersWork(uint32_t deviceId, const char* const* names, uint32_t count, uint64_t* tokens) {
  CpuThread cpu;
  if (auto refused = ThreadForMany(deviceId, count, {{names, "registerNames"}, {tokens, "operationTokens"}}, cpu))
    return refused;
  std::vector<ReceiptValue> values(count);
  for (uint32_t i = 0; i < count; ++i) {
    const cpu::RegisterInfo* info = nullptr;
    if (auto refused = CheckNotNull(names[i], "a register name")) return refused;
    if (auto refused = FindRegister(cpu, names[i], info)) return refused;
    if (auto refused = ReadRegisterValue(cpu, *info, values[i])) return refused;
  }
  for (uint32_t i = 0; i < count; ++i) GiveCompleted(&tokens[i], std::move(values[i]));
  return std::nullopt;
}

Outcome WriteRegistersWork(uint32_t deviceId, const char* const* names, uint32_t count, const BitData* const* values,
                           uint64_t* tokens) {
  CpuThread cpu;
  if (auto refused = ThreadForMany(deviceId, count,
                                   {{names, "registerNames"}, {values, "values"}, {tokens, "operationTokens"}}, cpu))
    return refused;
  std::vector<const cpu::RegisterInfo*> infos(count);
  std::vector<std::vector<uint8_t>> bytes(count);
  std::vector<ReceiptValue> before(count);
  for (uint32_t i = 0; i < count; ++i) {
    if (auto refused = CheckNotNull(names[i], "a register name")) return refused;
    if (auto refused = FindRegister(cpu, names[i], infos[i])) return refused;
    if (auto refused = ValueBytes(*infos[i], values[i], bytes[i])) return refused;
    if (auto refused = ReadRegisterValue(cpu, *infos[i], before[i])) return refused;
  }
  for (uint32_t i = 0; i < count; ++i) {
    if (const auto result = cpu.backend().WriteRegister(cpu.thread, infos[i]->name, bytes[i]);
        result != cpu::CpuResult::Ok) {
      for (uint32_t j = 0; j < i; ++j) {
        std::vector<uint8_t> old(infos[j]->bitWidth / 8);
        BitData_GetBuffer(&before[j].bits(), 0, old.data(), old.size());
        cpu.backend().WriteRegister(cpu.thread, infos[j]->name, old);
      }
      return CpuFailure(result, "writing '" + infos[i]->name + "'");
    }
  }
  for (uint32_t i = 0; i < count; ++i) GiveCompleted(&tokens[i]);
  return std::nullopt;
}

Outcome ReadMsrsWork(uint32_t deviceId, const uint32_t* msrs, uint32_t count, uint64_t* tokens) {
  CpuThread cpu;
  if (auto refused = ThreadForMany(deviceId, count, {{msrs, "msrs"}, {tokens, "operationTokens"}}, cpu)) return refused;
  std::vector<uint64_t> values(count);
  for (uint32_t i = 0; i < count; ++i) {
    if (const auto result = cpu.backend().ReadMsr(cpu.thread, msrs[i], values[i]); result != cpu::CpuResult::Ok)
      return CpuFailure(result, "reading MSR " + HexText(msrs[i]));
  }
  for (uint32_t i = 0; i < count; ++i) GiveCompleted(&tokens[i], ReceiptValue::Number(values[i]));
  return std::nullopt;
}

Outcome WriteMsrsWork(uint32_t deviceId, const uint32_t* msrs, uint32_t count, const BitData* const* values,
                      uint64_t* tokens) {
  CpuThread cpu;
  if (auto refused =
          ThreadForMany(deviceId, count, {{msrs, "msrs"}, {values, "values"}, {tokens, "operationTokens"}}, cpu))
    return refused;
  // A device may keep its MSRs from clients below an authorization level.
  if (auto refused = authorization::GrantOutcome(deviceId, "WriteMsr")) return refused;
  std::vector<uint64_t> numbers(count);
  std::vector<uint64_t> before(count);
  const cpu::RegisterInfo msrWidth{"msr", 64, cpu::RegisterGroup::Model};
  for (uint32_t i = 0; i < count; ++i) {
    std::vector<uint8_t> bytes;
    if (auto refused = ValueBytes(msrWidth, values[i], bytes)) return refused;
    std::memcpy(&numbers[i], bytes.data(), sizeof numbers[i]);
    if (const auto result = cpu.backend().ReadMsr(cpu.thread, msrs[i], before[i]); result != cpu::CpuResult::Ok)
      return CpuFailure(result, "reading MSR " + HexText(msrs[i]));
  }
  for (uint32_t i = 0; i < count; ++i) {
    if (const auto result = cpu.backend().WriteMsr(cpu.thread, msrs[i], numbers[i]); result != cpu::CpuResult::Ok) {
      for (uint32_t j = 0; j < i; ++j) cpu.backend().WriteMsr(cpu.thread, msrs[j], before[j]);
      return CpuFailure(result, "writing MSR " + HexText(msrs[i]));
    }
  }
  for (uint32_t i = 0; i < count; ++i) GiveCompleted(&tokens[i]);
  return std::nullopt;
}

Outcome ReadCpuidWork(uint32_t deviceId, uint32_t leaf, uint32_t subleaf, uint32_t whichRegister,
                      uint32_t valueWidthInDwords, uint64_t* operationToken) {
  CpuThread cpu;
  cpu::CpuidResult result;
  if (auto refused = CheckNotNull(operationToken, "operationToken")) return refused;
  if (whichRegister > 3) return Failure{kValueOutOfRange, "CPUID has no register " + std::to_string(whichRegister)};
  if (valueWidthInDwords != 1)
    return Failure{kValueOutOfRange, "a CPUID value is 1 dword wide, not " + std::to_string(valueWidthInDwords)};
  if (auto refused = FindThread(deviceId, cpu)) return refused;
  if (const auto status = cpu.backend().Cpuid(cpu.thread, leaf, subleaf, result); status != cpu::CpuResult::Ok)
    return CpuFailure(status, "reading CPUID " + HexText(leaf));
  const uint32_t values[] = {result.eax, result.ebx, result.ecx, result.edx};
  GiveCompleted(operationToken, ReceiptValue::Number(values[whichRegister], 32));
  return std::nullopt;
}

Outcome ReadApicIdWork(uint32_t deviceId, uint64_t* operationToken) {
  CpuThread cpu;
  uint32_t apicId = 0;
  if (auto refused = CheckNotNull(operationToken, "operationToken")) return refused;
  if (auto refused = FindThread(deviceId, cpu)) return refused;
  if (const auto result = cpu.backend().ApicId(cpu.thread, apicId); result != cpu::CpuResult::Ok)
    return CpuFailure(result, "reading the APIC id");
  GiveCompleted(operationToken, ReceiptValue::Number(apicId, 32));
  return std::nullopt;
}

// Any device with threads: they all have the same register file.
Outcome GetNumRegistersWork(uint32_t deviceId, uint32_t* numRegisters) {
  CpuThread cpu;
  if (auto refused = CheckNotNull(numRegisters, "numRegisters")) return refused;
  if (auto refused = FindCpu(deviceId, cpu)) return refused;
  *numRegisters = static_cast<uint32_t>(cpu.backend().Registers().size());
  return std::nullopt;
}

// As many names as fit; a list cut short gives "Buffer too small".
Outcome GetRegistersWork(uint32_t deviceId, uint32_t maxNumRegisters, char (*registerNames)[kRegisterNameSize]) {
  CpuThread cpu;
  if (maxNumRegisters > 0) {
    if (auto refused = CheckNotNull(registerNames, "registerNames")) return refused;
  }
  if (auto refused = FindCpu(deviceId, cpu)) return refused;
  const auto& registers = cpu.backend().Registers();
  const size_t count = std::min<size_t>(registers.size(), maxNumRegisters);
  for (size_t i = 0; i < count; ++i) {
    std::strncpy(registerNames[i], registers[i].name.c_str(), kRegisterNameSize - 1);
    registerNames[i][kRegisterNameSize - 1] = '\0';
  }
  if (count < registers.size())
    return Failure{kBufferTooSmall, "the thread has " + std::to_string(registers.size()) +
                                        " registers, room was made for " + std::to_string(maxNumRegisters)};
  return std::nullopt;
}

}  // namespace

uint32_t ReadMsr(uint32_t deviceId, uint32_t msr, uint64_t* operationToken) {
  VOXTREL_COMPONENT_CALL("RunControl.ReadMsr", "deviceId=", HexText(deviceId), ", msr=", HexText(msr));
  if (const uint32_t refused = VOXTREL_ANSWER(CheckNotNull(operationToken, "operationToken"))) return refused;
  return VOXTREL_ANSWER(ReadMsrsWork(deviceId, &msr, 1, operationToken));
}

uint32_t WriteMsr(uint32_t deviceId, uint32_t msr, const BitData* value, uint64_t* operationToken) {
  VOXTREL_COMPONENT_CALL("RunControl.WriteMsr", "deviceId=", HexText(deviceId), ", msr=", HexText(msr));
  if (const uint32_t refused = VOXTREL_ANSWER(CheckNotNull(operationToken, "operationToken"))) return refused;
  return VOXTREL_ANSWER(WriteMsrsWork(deviceId, &msr, 1, &value, operationToken));
}

uint32_t ReadMsrs(uint32_t deviceId, const uint32_t* msrs, uint32_t numRegisters, uint64_t* operationTokens) {
  VOXTREL_COMPONENT_CALL("RunControl.ReadMsrs", "deviceId=", HexText(deviceId), ", numRegisters=", numRegisters);
  return VOXTREL_ANSWER(ReadMsrsWork(deviceId, msrs, numRegisters, operationTokens));
}

uint32_t WriteMsrs(uint32_t deviceId, const uint32_t* msrs, uint32_t numRegisters, const BitData* const* values,
                   uint64_t* operationTokens) {
  VOXTREL_COMPONENT_CALL("RunControl.WriteMsrs", "deviceId=", HexText(deviceId), ", numRegisters=", numRegisters);
  return VOXTREL_ANSWER(WriteMsrsWork(deviceId, msrs, numRegisters, values, operationTokens));
}

uint32_t ReadRegister(uint32_t deviceId, const char* registerName, uint64_t* operationToken) {
  VOXTREL_COMPONENT_CALL("RunControl.ReadRegister", "deviceId=", HexText(deviceId));
  if (const uint32_t refused = VOXTREL_ANSWER(CheckNotNull(operationToken, "operationToken"))) return refused;
  return VOXTREL_ANSWER(ReadRegistersWork(deviceId, &registerName, 1, operationToken));
}

uint32_t WriteRegister(uint32_t deviceId, const char* registerName, const BitData* value, uint64_t* operationToken) {
  VOXTREL_COMPONENT_CALL("RunControl.WriteRegister", "deviceId=", HexText(deviceId),
                         ", valueBits=", value == nullptr ? 0 : value->bitSize);
  if (const uint32_t refused = VOXTREL_ANSWER(CheckNotNull(operationToken, "operationToken"))) return refused;
  return VOXTREL_ANSWER(WriteRegistersWork(deviceId, &registerName, 1, &value, operationToken));
}

uint32_t ReadRegisters(uint32_t deviceId, const char* const* registerNames, uint32_t numRegisters,
                       uint64_t* operationTokens) {
  VOXTREL_COMPONENT_CALL("RunControl.ReadRegisters", "deviceId=", HexText(deviceId), ", numRegisters=", numRegisters);
  return VOXTREL_ANSWER(ReadRegistersWork(deviceId, registerNames, numRegisters, operationTokens));
}

uint32_t WriteRegisters(uint32_t deviceId, const char* const* registerNames, uint32_t numRegisters,
                        const BitData* const* values, uint64_t* operationTokens) {
  VOXTREL_COMPONENT_CALL("RunControl.WriteRegisters", "deviceId=", HexText(deviceId), ", numRegisters=", numRegisters);
  return VOXTREL_ANSWER(WriteRegistersWork(deviceId, registerNames, numRegisters, values, operationTokens));
}

uint32_t ReadCPUIDValue(uint32_t deviceId, uint32_t inputEax, uint32_t inputEcx, uint32_t whichRegister,
                        uint32_t valueWidthInDwords, uint64_t* operationToken) {
  VOXTREL_COMPONENT_CALL("RunControl.ReadCPUIDValue", "deviceId=", HexText(deviceId), ", inputEax=", HexText(inputEax),
                         ", inputEcx=", HexText(inputEcx), ", whichRegister=", whichRegister,
                         ", width=", valueWidthInDwords);
  return VOXTREL_ANSWER(ReadCpuidWork(deviceId, inputEax, inputEcx, whichRegister, valueWidthInDwords, operationToken));
}

uint32_t ReadAPICIDValue(uint32_t deviceId, uint64_t* operationToken) {
  VOXTREL_COMPONENT_CALL("RunControl.ReadAPICIDValue", "deviceId=", HexText(deviceId));
  return VOXTREL_ANSWER(ReadApicIdWork(deviceId, operationToken));
}

uint32_t GetNumRegisters(uint32_t deviceId, uint32_t* numRegisters) {
  VOXTREL_COMPONENT_CALL("RunControl.GetNumRegisters", "deviceId=", HexText(deviceId));
  return VOXTREL_ANSWER(GetNumRegistersWork(deviceId, numRegisters));
}

uint32_t GetRegisters(uint32_t deviceId, uint32_t maxNumRegisters, char (*registerNames)[kRegisterNameSize]) {
  VOXTREL_COMPONENT_CALL("RunControl.GetRegisters", "deviceId=", HexText(deviceId),
                         ", maxNumRegisters=", maxNumRegisters);
  return VOXTREL_ANSWER(GetRegistersWork(deviceId, maxNumRegisters, registerNames));
}

}  // namespace voxtrel::platform::run_control
