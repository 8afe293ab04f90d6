// The Dma service's operations. Its lines separate arguments with ", ",
// except that `address` follows `configMethod` with a blank only.
#include "InProc_Dma.h"

#include "ArgumentErrorReporter.h"
#include "GluedArg.h"
#include "InProc_General.h"
#include "InProc_Memory.h"
#include "RegionTransfer.h"
#include "frame/Frame.h"

namespace vxt {
namespace {

InProc_Dma instance;

using frame::AddressText;
using frame::Bool;
using frame::Call;
using frame::CommaArgs;
using frame::Dec;
using frame::Hex8;
using frame::List;
using frame::Out;
using frame::Quoted;
using Table = DmaComponent;

// A region's handle: "0x" and at least eight lower-case digits.
struct HandleText {
  uint64_t handle;
  friend std::ostream& operator<<(std::ostream& out, HandleText text) {
    const auto flags = out.flags();
    const char fill = out.fill('0');
    out << "0x" << std::hex << std::nouppercase;
    out.width(8);
    out << text.handle;
    out.fill(fill);
    out.flags(flags);
    return out;
  }
};

// "configMethod = 'x' address = {...}": the one pair without a comma.
auto MethodAndAddress(const char* configMethod, const VXT_Address* address) {
  return Glued(Quoted{configMethod}, " address", AddressText{address});
}

Call& CheckAddress(Call& call, const VXT_Address* address) {
  call.Core([&] { return InProc_Memory::_CheckAddress(address, ReportArgument{call, "address"}); });
  return call;
}

}  // namespace

InProc_Dma& InProc_Dma::Instance() { return instance; }

VXT_Result InProc_Dma::GetNumSupportedConfigurationAccessMethods(uint32_t deviceId,
                                                                 uint32_t* numSupportedConfigurationAccessMethods) {
  return RunOperation(logger, VXT_OPERATION(Dma, GetNumSupportedConfigurationAccessMethods),
                      CommaArgs("deviceId", Hex8{deviceId}),
                      CommaArgs("numSupportedConfigurationAccessMethods",
                                Out<Dec>(numSupportedConfigurationAccessMethods)),
                      [&](Call& call) {
                        return call.NotNull(numSupportedConfigurationAccessMethods,
                                            "numSupportedConfigurationAccessMethods")
                            .Core(dma, [&](const Table& t) {
                              return t.GetSupportedConfigurationAccessMethods(deviceId, 0, nullptr,
                                                                              numSupportedConfigurationAccessMethods);
                            });
                      });
}

VXT_Result InProc_Dma::GetSupportedConfigurationAccessMethods(
    uint32_t deviceId, uint32_t maxNumMethods, char (*configAccessMethods)[VXT_CONFIG_ACCESS_METHOD_SIZE]) {
  return RunOperation(logger, VXT_OPERATION(Dma, GetSupportedConfigurationAccessMethods),
                      CommaArgs("deviceId", Hex8{deviceId}, "maxNumMethods", Dec{maxNumMethods}),
                      CommaArgs("configAccessMethods", List<Quoted>(configAccessMethods, maxNumMethods)),
                      [&](Call& call) {
                        return call.NotNull(configAccessMethods, "configAccessMethods").Core(dma, [&](const Table& t) {
                          uint32_t count = 0;
                          return t.GetSupportedConfigurationAccessMethods(deviceId, maxNumMethods,
                                                                          configAccessMethods, &count);
                        });
                      });
}

VXT_Result InProc_Dma::GetDefaultConfigurationAccessMethod(uint32_t deviceId, char* configMethod) {
  return RunOperation(logger, VXT_OPERATION(Dma, GetDefaultConfigurationAccessMethod),
                      CommaArgs("deviceId", Hex8{deviceId}),
                      // Read within the buffer: a failed call may leave it unterminated.
                      CommaArgs("configMethod", Quoted{configMethod, VXT_CONFIG_ACCESS_METHOD_SIZE}),
                      [&](Call& call) {
                        return call.NotNull(configMethod, "configMethod").Core(dma, [&](const Table& t) {
                          return t.GetDefaultConfigurationAccessMethod(deviceId, configMethod);
                        });
                      });
}

VXT_Result InProc_Dma::ReadMemory(uint32_t deviceId, const char* configMethod, const VXT_Address* address,
                                  uint32_t byteCount, uint8_t* buffer, uint32_t* numBytesRead) {
  return RunOperation(logger, VXT_OPERATION(Dma, ReadMemory).Counted(),
                      CommaArgs("deviceId", Hex8{deviceId}, "configMethod", MethodAndAddress(configMethod, address),
                                "byteCount", Dec{byteCount}),
                      CommaArgs("numBytesRead", Out<Dec>(numBytesRead)), [&](Call& call) {
                        call.NotNull(configMethod, "configMethod")
                            .NotNull(address, "address")
                            .NotNull(buffer, "buffer")
                            .NotNull(numBytesRead, "numBytesRead");
                        return CheckAddress(call, address).Core(dma, [&](const Table& t) {
                          return t.ReadMemory(deviceId, configMethod, address, byteCount, buffer, numBytesRead);
                        });
                      });
}

VXT_Result InProc_Dma::WriteMemory(uint32_t deviceId, const char* configMethod, const VXT_Address* address,
                                   uint32_t byteCount, const uint8_t* buffer, uint32_t* numBytesWritten) {
  return RunOperation(logger, VXT_OPERATION(Dma, WriteMemory).Counted(),
                      CommaArgs("deviceId", Hex8{deviceId}, "configMethod", MethodAndAddress(configMethod, address),
                                "byteCount", Dec{byteCount}),
                      CommaArgs("numBytesWritten", Out<Dec>(numBytesWritten)), [&](Call& call) {
                        call.NotNull(configMethod, "configMethod")
                            .NotNull(address, "address")
                            .NotNull(buffer, "buffer")
                            .NotNull(numBytesWritten, "numBytesWritten");
                        return CheckAddress(call, address).Core(dma, [&](const Table& t) {
                          return t.WriteMemory(deviceId, configMethod, address, byteCount, buffer, numBytesWritten);
                        });
                      });
}

VXT_Result InProc_Dma::ReadToSharedMemory(uint32_t deviceId, const char* configMethod, const VXT_Address* address,
                                          uint32_t byteCount, uint32_t bufferOffset, uint64_t sharedMemoryHandle,
                                          uint32_t* numBytesRead) {
  return RunOperation(logger, VXT_OPERATION(Dma, ReadToSharedMemory).Counted(),
                      CommaArgs("deviceId", Hex8{deviceId}, "configMethod", MethodAndAddress(configMethod, address),
                                "byteCount", Dec{byteCount}, "bufferOffset", Dec{bufferOffset}, "sharedMemoryHandle",
                                HandleText{sharedMemoryHandle}),
                      CommaArgs("numBytesRead", Out<Dec>(numBytesRead)), [&](Call& call) {
                        call.NotNull(configMethod, "configMethod")
                            .NotNull(address, "address")
                            .NotNull(numBytesRead, "numBytesRead");
                        return ThroughRegion(CheckAddress(call, address), dma, sharedMemoryHandle, bufferOffset,
                                             byteCount, [&](const Table& t, uint8_t* at) {
                                               return t.ReadMemory(deviceId, configMethod, address, byteCount, at,
                                                                   numBytesRead);
                                             });
                      });
}

VXT_Result InProc_Dma::WriteFromSharedMemory(uint32_t deviceId, const char* configMethod,
                                             const VXT_Address* address, uint32_t byteCount, uint32_t bufferOffset,
                                             uint64_t sharedMemoryHandle, uint32_t* numBytesWritten) {
  return RunOperation(logger, VXT_OPERATION(Dma, WriteFromSharedMemory).Counted(),
                      CommaArgs("deviceId", Hex8{deviceId}, "configMethod", MethodAndAddress(configMethod, address),
                                "byteCount", Dec{byteCount}, "bufferOffset", Dec{bufferOffset}, "sharedMemoryHandle",
                                HandleText{sharedMemoryHandle}),
                      CommaArgs("numBytesWritten", Out<Dec>(numBytesWritten)), [&](Call& call) {
                        call.NotNull(configMethod, "configMethod")
                            .NotNull(address, "address")
                            .NotNull(numBytesWritten, "numBytesWritten");
                        return ThroughRegion(CheckAddress(call, address), dma, sharedMemoryHandle, bufferOffset,
                                             byteCount, [&](const Table& t, const uint8_t* at) {
                                               return t.WriteMemory(deviceId, configMethod, address, byteCount, at,
                                                                    numBytesWritten);
                                             });
                      });
}

VXT_Result InProc_Dma::SaveMemory(uint32_t deviceId, const char* configMethod, const VXT_Address* address,
                                  uint32_t byteCount, const char* fileName, uint32_t overwriteFile,
                                  const char* fileType, const char* saveOptions, uint32_t* numBytesRead) {
  return RunOperation(
      logger, VXT_OPERATION(Dma, SaveMemory).Counted(),
      CommaArgs("deviceId", Hex8{deviceId}, "configMethod", MethodAndAddress(configMethod, address), "byteCount",
                Dec{byteCount}, "fileName", Quoted{fileName}, "overwriteFile", Bool{overwriteFile}, "fileType",
                Quoted{fileType}, "saveOptions", Quoted{saveOptions}),
      CommaArgs("numBytesRead", Out<Dec>(numBytesRead)), [&](Call& call) {
        call.NotNull(configMethod, "configMethod")
            .NotNull(address, "address")
            .NotNull(fileName, "fileName")
            .NotNull(fileType, "fileType")
            .NotNull(numBytesRead, "numBytesRead");
        return CheckAddress(call, address).Core(dma, [&](const Table& t) {
          return t.SaveMemory(deviceId, configMethod, address, byteCount, fileName, overwriteFile, fileType,
                              saveOptions, numBytesRead);
        });
      });
}

VXT_Result InProc_Dma::LoadMemory(uint32_t deviceId, const char* configMethod, const VXT_Address* address,
                                  uint32_t byteCount, const char* fileName, const char* fileType,
                                  const char* loadOptions, uint32_t* numBytesWritten) {
  return RunOperation(
      logger, VXT_OPERATION(Dma, LoadMemory).Counted(),
      CommaArgs("deviceId", Hex8{deviceId}, "configMethod", MethodAndAddress(configMethod, address), "byteCount",
                Dec{byteCount}, "fileName", Quoted{fileName}, "fileType", Quoted{fileType}, "loadOptions",
                Quoted{loadOptions}),
      CommaArgs("numBytesWritten", Out<Dec>(numBytesWritten)), [&](Call& call) {
        call.NotNull(configMethod, "configMethod")
            .NotNull(address, "address")
            .NotNull(fileName, "fileName")
            .NotNull(fileType, "fileType")
            .NotNull(numBytesWritten, "numBytesWritten");
        return CheckAddress(call, address).Core(dma, [&](const Table& t) {
          return t.LoadMemory(deviceId, configMethod, address, byteCount, fileName, fileType, loadOptions,
                              numBytesWritten);
        });
      });
}

VXT_Result InProc_Dma::ClearError(uint32_t deviceId, const char* configMethod, uint32_t force) {
  return RunOperation(logger, VXT_OPERATION(Dma, ClearError).Counted(),
                      CommaArgs("deviceId", Hex8{deviceId}, "configMethod", Quoted{configMethod}, "force", Bool{force}),
                      frame::NoArgs{}, [&](Call& call) {
                        return call.NotNull(configMethod, "configMethod").Core(dma, [&](const Table& t) {
                          return t.ClearError(deviceId, configMethod, force);
                        });
                      });
}

}  // namespace vxt
