// The Register service: reads and writes of registers by name and number,
// CPUID, APIC id and the register list.
#include "InProc_Register.h"

#include <string>
#include <vector>

#include "BitDataHandles.h"
#include "NoteNull.h"
#include "frame/Frame.h"

namespace vxt {
namespace {

InProc_Register instance;

using frame::BitDataText;
using frame::Call;
using frame::CpuidRegisterName;
using frame::Dec;
using frame::Enum;
using frame::Hex16;
using frame::Hex8;
using frame::List;
using frame::Out;
using frame::Quoted;
using frame::TraceArgs;
using Table = RunControlComponent;

// Every null entry of `registerNames` adds its own sentence; the walk does
// not stop at the first.
Call& WalkRegisterNames(Call& call, const char* const* registerNames, uint32_t numRegisters) {
  if (call.failed()) return call;
  for (uint32_t i = 0; i < numRegisters; ++i) {
    if (registerNames[i] == nullptr) NoteNull(call, nullptr, "registerNames[" + std::to_string(i) + "]");
  }
  return call;
}

// The client's vectors behind `values`, in order; the first that is not
// the calling client's ends the lookup, and the component is not called.
uint32_t WithClientVectors(Call& call, const VXT_BitData* values, uint32_t numRegisters, const auto& write) {
  if (numRegisters == 0) return code::kSuccess;
  std::vector<const BitData*> objects(numRegisters, nullptr);
  for (uint32_t i = 0; i < numRegisters; ++i) {
    BitData* object = nullptr;
    if (const uint32_t failure = InProc_BitData::Instance()._GetManaged(&values[i], object, ReportArgument{call});
        failure != code::kSuccess)
      return failure;
    objects[i] = object;
  }
  return write(objects.data());
}

}  // namespace

InProc_Register& InProc_Register::Instance() { return instance; }

VXT_Result InProc_Register::ReadMsr(uint32_t deviceId, uint32_t msr, uint64_t* operationToken) {
  return RunOperation(logger, VXT_OPERATION(Register, ReadMsr).Counted(),
                      TraceArgs("deviceId", Hex8{deviceId}, "msr", Hex8{msr}),
                      TraceArgs("operationToken", Out<Hex16>(operationToken)), [&](Call& call) {
                        return call.NotNull(operationToken, "operationToken").Core(runControl, [&](const Table& t) {
                          return t.ReadMsr(deviceId, msr, operationToken);
                        });
                      });
}

VXT_Result InProc_Register::WriteMsr(uint32_t deviceId, uint32_t msr, const VXT_BitData* value,
                                     uint64_t* operationToken) {
  return RunOperation(
      logger, VXT_OPERATION(Register, WriteMsr).Counted(),
      TraceArgs("deviceId", Hex8{deviceId}, "msr", Hex8{msr}, "value", BitDataText{value}),
      TraceArgs("operationToken", Out<Hex16>(operationToken)), [&](Call& call) {
        BitData* object = nullptr;
        BitDataChecks(call).Holding(value, "value").Managed(value, object, nullptr);
        return call.Core(runControl, [&](const Table& t) { return t.WriteMsr(deviceId, msr, object, operationToken); });
      });
}

VXT_Result InProc_Register::ReadMsrs(uint32_t deviceId, const uint32_t* msrs, uint64_t* operationTokens,
                                     uint32_t numRegisters) {
  return RunOperation(
      logger, VXT_OPERATION(Register, ReadMsrs).Counted(),
      TraceArgs("deviceId", Hex8{deviceId}, "msrs", List<Hex8>(msrs, numRegisters), "numRegisters", Dec{numRegisters}),
      TraceArgs("operationTokens", List<Hex16>(operationTokens, numRegisters)), [&](Call& call) {
        call.NotNull(msrs, "msrs").NotNull(operationTokens, "operationTokens");
        return call.Core(runControl, [&](const Table& t) {
          if (numRegisters == 0) return code::kSuccess;
          return t.ReadMsrs(deviceId, msrs, numRegisters, operationTokens);
        });
      });
}

VXT_Result InProc_Register::WriteMsrs(uint32_t deviceId, const uint32_t* msrs, const VXT_BitData* values,
                                      uint64_t* operationTokens, uint32_t numRegisters) {
  return RunOperation(logger, VXT_OPERATION(Register, WriteMsrs).Counted(),
                      TraceArgs("deviceId", Hex8{deviceId}, "msrs", List<Hex8>(msrs, numRegisters), "values",
                                List<BitDataText>(values, numRegisters), "numRegisters", Dec{numRegisters}),
                      TraceArgs("operationTokens", List<Hex16>(operationTokens, numRegisters)), [&](Call& call) {
                        call.NotNull(msrs, "msrs").NotNull(values, "values");
                        return call.Core(runControl, [&](const Table& t) {
                          return WithClientVectors(call, values, numRegisters, [&](const BitData* const* objects) {
                            return t.WriteMsrs(deviceId, msrs, numRegisters, objects, operationTokens);
                          });
                        });
                      });
}

VXT_Result InProc_Register::ReadRegister(uint32_t deviceId, const char* registerName, uint64_t* operationToken) {
  return RunOperation(
      logger, VXT_OPERATION(Register, ReadRegister).Counted(),
      TraceArgs("deviceId", Hex8{deviceId}, "registerName", Quoted{registerName}),
      TraceArgs("operationToken", Out<Hex16>(operationToken)), [&](Call& call) {
        return call.NotNull(registerName, "registerName")
            .NotNull(operationToken, "operationToken")
            .Core(runControl, [&](const Table& t) { return t.ReadRegister(deviceId, registerName, operationToken); });
      });
}

VXT_Result InProc_Register::WriteRegister(uint32_t deviceId, const char* registerName, const VXT_BitData* value,
                                          uint64_t* operationToken) {
  return RunOperation(
      logger, VXT_OPERATION(Register, WriteRegister).Counted(),
      TraceArgs("deviceId", Hex8{deviceId}, "registerName", Quoted{registerName}, "value", BitDataText{value}),
      TraceArgs("operationToken", Out<Hex16>(operationToken)), [&](Call& call) {
        BitData* object = nullptr;
        BitDataChecks(call)
            .NotNull(registerName, "registerName")
            .Holding(value, "value")
            .Managed(value, object, nullptr);
        return call.Core(runControl, [&](const Table& t) {
          return t.WriteRegister(deviceId, registerName, object, operationToken);
        });
      });
}

VXT_Result InProc_Register::ReadRegisters(uint32_t deviceId, const char* const* registerNames,
                                          uint64_t* operationTokens, uint32_t numRegisters) {
  return RunOperation(logger, VXT_OPERATION(Register, ReadRegisters).Counted(),
                      TraceArgs("deviceId", Hex8{deviceId}, "registerNames", List<Quoted>(registerNames, numRegisters),
                                "numRegisters", Dec{numRegisters}),
                      TraceArgs("operationTokens", List<Hex16>(operationTokens, numRegisters)), [&](Call& call) {
                        WalkRegisterNames(call.NotNull(registerNames, "registerNames"), registerNames, numRegisters)
                            .NotNull(operationTokens, "operationTokens");
                        return call.Core(runControl, [&](const Table& t) {
                          return t.ReadRegisters(deviceId, registerNames, numRegisters, operationTokens);
                        });
                      });
}

VXT_Result InProc_Register::WriteRegisters(uint32_t deviceId, const char* const* registerNames,
                                           const VXT_BitData* values, uint64_t* operationTokens,
                                           uint32_t numRegisters) {
  return RunOperation(logger, VXT_OPERATION(Register, WriteRegisters).Counted(),
                      TraceArgs("deviceId", Hex8{deviceId}, "registerNames", List<Quoted>(registerNames, numRegisters),
                                "values", List<BitDataText>(values, numRegisters), "numRegisters", Dec{numRegisters}),
                      TraceArgs("operationTokens", List<Hex16>(operationTokens, numRegisters)), [&](Call& call) {
                        WalkRegisterNames(call.NotNull(registerNames, "registerNames"), registerNames, numRegisters)
                            .NotNull(values, "values")
                            .NotNull(operationTokens, "operationTokens");
                        return call.Core(runControl, [&](const Table& t) {
                          return WithClientVectors(call, values, numRegisters, [&](const BitData* const* objects) {
                            return t.WriteRegisters(deviceId, registerNames, numRegisters, objects, operationTokens);
                          });
                        });
                      });
}

VXT_Result InProc_Register::ReadCPUIDValue(uint32_t deviceId, uint32_t inputEax, uint32_t inputEcx,
                                           VXT_CpuidRegister whichRegister, uint64_t* operationToken) {
  return RunOperation(logger, VXT_OPERATION(Register, ReadCPUIDValue).Counted(),
                      TraceArgs("deviceId", Hex8{deviceId}, "inputEax", Hex8{inputEax}, "inputEcx", Hex8{inputEcx},
                                "whichRegister", Enum<&CpuidRegisterName>{whichRegister}),
                      TraceArgs("operationToken", Out<Hex16>(operationToken)), [&](Call& call) {
                        return call.NotNull(operationToken, "operationToken").Core(runControl, [&](const Table& t) {
                          return t.ReadCPUIDValue(deviceId, inputEax, inputEcx, whichRegister, 1, operationToken);
                        });
                      });
}

VXT_Result InProc_Register::ReadAPICIDValue(uint32_t deviceId, uint64_t* operationToken) {
  return RunOperation(logger, VXT_OPERATION(Register, ReadAPICIDValue).Counted(), TraceArgs("deviceId", Hex8{deviceId}),
                      TraceArgs("operationToken", Out<Hex16>(operationToken)), [&](Call& call) {
                        return call.NotNull(operationToken, "operationToken").Core(runControl, [&](const Table& t) {
                          return t.ReadAPICIDValue(deviceId, operationToken);
                        });
                      });
}

VXT_Result InProc_Register::GetNumRegisters(uint32_t deviceId, uint32_t* numRegisters) {
  return RunOperation(logger, VXT_OPERATION(Register, GetNumRegisters), TraceArgs("deviceId", Hex8{deviceId}),
                      TraceArgs("numRegisters", Out<Dec>(numRegisters)), [&](Call& call) {
                        return call.NotNull(numRegisters, "numRegisters").Core(runControl, [&](const Table& t) {
                          return t.GetNumRegisters(deviceId, numRegisters);
                        });
                      });
}

// The names may be many: the Out line ends after the code.
VXT_Result InProc_Register::GetRegisters(uint32_t deviceId, uint32_t maxNumRegisters,
                                         char (*registerNames)[VXT_REGISTER_NAME_SIZE]) {
  return RunOperation(logger, VXT_OPERATION(Register, GetRegisters).UntrailedOut(),
                      TraceArgs("deviceId", Hex8{deviceId}, "maxNumRegisters", Dec{maxNumRegisters}),
                      TraceArgs("registerNames", List<Quoted>(registerNames, maxNumRegisters)), [&](Call& call) {
                        return call.NotNull(registerNames, "registerNames").Core(runControl, [&](const Table& t) {
                          return t.GetRegisters(deviceId, maxNumRegisters, registerNames);
                        });
                      });
}

}  // namespace vxt
