#include "InProc_InterfacePort.h"

#include <algorithm>
#include <cstring>

#include "InProc_Device.h"
#include "RegionTransfer.h"
#include "frame/Frame.h"

namespace vxt {
namespace {

InProc_InterfacePort instance;

using frame::Bool;
using frame::Call;
using frame::Dec;
using frame::Hex16;
using frame::Hex8;
using frame::Out;
using frame::Quoted;
using frame::TraceArgs;
using frame::WithDetail;
using Table = InterfacePortComponent;
using State = frame::Enum<&frame::InterfacePortStateName>;
using CaptureType = frame::Enum<&frame::InterfacePortCaptureTypeName>;
using AccessMode = frame::Enum<&frame::InterfacePortAccessModeName>;

// "{dataCaptureType = Stream fileName = '' filePath = '' accessMode = Read}";
// a record too short to hold `accessMode` leaves it out.
struct PortConfiguration {
  const VXT_InterfacePortConfiguration* record;
  friend std::ostream& operator<<(std::ostream& out, PortConfiguration value) {
    const VXT_InterfacePortConfiguration* record = value.record;
    if (record == nullptr) return out << "<NULL>";
    out << "{dataCaptureType = " << CaptureType{record->dataCaptureType}
        << " fileName = " << Quoted{record->fileName, sizeof record->fileName}
        << " filePath = " << Quoted{record->filePath, sizeof record->filePath};
    if (record->structureSize >= VXT_INTERFACE_PORT_CONFIGURATION_SIZE)
      out << " accessMode = " << AccessMode{record->accessMode};
    return out << "}";
  }
};

// The bytes a read gave: as many as it returned, never more than the buffer.
struct BytesRead {
  const uint8_t* buffer;
  uint32_t bufferSize;
  const uint32_t* returned;
  friend std::ostream& operator<<(std::ostream& out, BytesRead value) {
    const uint32_t count = value.returned == nullptr ? value.bufferSize : std::min(*value.returned, value.bufferSize);
    return out << frame::Bytes(value.buffer, count);
  }
};

// Transfers count "InterfacePort::<Op>(<port identifier>)".
auto PortDetail(uint32_t portId) {
  return WithDetail([portId] { return InProc_Device::Instance().IdentifierOf(portId); });
}

// The configuration record's own check, first in the operations that take one.
Call& CheckConfiguration(Call& call, const VXT_InterfacePortConfiguration* configuration) {
  return call.NotNull(configuration, "configuration")
      .StructureSize(configuration, VXT_INTERFACE_PORT_CONFIGURATION_SIZE, "configuration");
}

// The connection check on its own, for the operations that have more to do
// between it and the component.
Call& Connected(Call& call, const Table* table) {
  call.Core(table, [](const Table&) { return code::kSuccess; });
  return call;
}

// Read's Out line goes at level 2, with the client trailer.
constexpr frame::OperationSite ReadSite(frame::OperationSite site) {
  site.outLevel = 2;
  return site;
}

}  // namespace

InProc_InterfacePort& InProc_InterfacePort::Instance() { return instance; }

VXT_Result InProc_InterfacePort::GetInterfacePortConfiguration(uint32_t portId,
                                                               VXT_InterfacePortConfiguration* configuration) {
  return RunOperation(logger, VXT_OPERATION(InterfacePort, GetInterfacePortConfiguration),
                      TraceArgs("portId", Hex8{portId}),
                      TraceArgs("configuration", PortConfiguration{configuration}), [&](Call& call) {
                        return CheckConfiguration(call, configuration).Core(interfacePort, [&](const Table& t) {
                          VXT_InterfacePortConfiguration local{};
                          local.structureSize = VXT_INTERFACE_PORT_CONFIGURATION_SIZE;
                          const uint32_t result = t.GetInterfacePortConfiguration(portId, &local);
                          // Copied whatever the result: a failure leaves zeros and empty texts.
                          configuration->dataCaptureType = local.dataCaptureType;
                          std::memcpy(configuration->fileName, local.fileName, sizeof local.fileName);
                          std::memcpy(configuration->filePath, local.filePath, sizeof local.filePath);
                          configuration->accessMode = local.accessMode;
                          return result;
                        });
                      });
}

VXT_Result InProc_InterfacePort::GetInterfacePortState(uint32_t portId, VXT_InterfacePortState* state) {
  return RunOperation(logger, VXT_OPERATION(InterfacePort, GetInterfacePortState),
                      TraceArgs("portId", Hex8{portId}), TraceArgs("state", Out<State>(state)), [&](Call& call) {
                        return call.NotNull(state, "state").Core(interfacePort, [&](const Table& t) {
                          VXT_InterfacePortState local = VXT_InterfacePortState_Unknown;
                          const uint32_t result = t.GetInterfacePortState(portId, &local);
                          *state = local;
                          return result;
                        });
                      });
}

VXT_Result InProc_InterfacePort::Read(uint32_t portId, uint32_t bufferSize, uint8_t* buffer,
                                      uint32_t* returnedDataLength) {
  return RunOperation(logger, ReadSite(VXT_OPERATION(InterfacePort, Read)),
                      TraceArgs("portId", Hex8{portId}, "bufferSize", Dec{bufferSize}),
                      TraceArgs("buffer", BytesRead{buffer, bufferSize, returnedDataLength}, "returnedDataLength",
                                Out<Dec>(returnedDataLength)),
                      PortDetail(portId), [&](Call& call) {
                        return call.NotNull(buffer, "buffer")
                            .NotNull(returnedDataLength, "returnedDataLength")
                            .Core(interfacePort, [&](const Table& t) {
                              return t.Read(portId, bufferSize, buffer, returnedDataLength);
                            });
                      });
}

VXT_Result InProc_InterfacePort::OpenWindow(uint32_t portId, const VXT_InterfacePortConfiguration* configuration) {
  return RunOperation(logger, VXT_OPERATION(InterfacePort, OpenWindow),
                      TraceArgs("portId", Hex8{portId}, "configuration", PortConfiguration{configuration}),
                      TraceArgs(), [&](Call& call) {
                        return CheckConfiguration(call, configuration).Core(interfacePort, [&](const Table& t) {
                          return t.OpenWindow(portId, configuration);
                        });
                      });
}

VXT_Result InProc_InterfacePort::CloseWindow(uint32_t portId) {
  return RunOperation(logger, VXT_OPERATION(InterfacePort, CloseWindow), TraceArgs("portId", Hex8{portId}),
                      TraceArgs(), [&](Call& call) {
                        return call.Core(interfacePort, [&](const Table& t) { return t.CloseWindow(portId); });
                      });
}

VXT_Result InProc_InterfacePort::IsDataAvailable(uint32_t portId, uint32_t* isDataAvailable) {
  return RunOperation(logger, VXT_OPERATION(InterfacePort, IsDataAvailable), TraceArgs("portId", Hex8{portId}),
                      TraceArgs("isDataAvailable", Out<Bool>(isDataAvailable)), [&](Call& call) {
                        return call.NotNull(isDataAvailable, "isDataAvailable").Core(interfacePort, [&](const Table& t) {
                          uint8_t local = 0;
                          const uint32_t result = t.IsDataAvailable(portId, &local);
                          *isDataAvailable = local != 0 ? 1 : 0;
                          return result;
                        });
                      });
}

VXT_Result InProc_InterfacePort::Write(uint32_t portId, uint32_t bufferSize, const uint8_t* buffer,
                                       uint32_t* writtenDataLength) {
  return RunOperation(logger, VXT_OPERATION(InterfacePort, Write),
                      TraceArgs("portId", Hex8{portId}, "bufferSize", Dec{bufferSize}),
                      TraceArgs("buffer", frame::Bytes(buffer, bufferSize), "writtenDataLength",
                                Out<Dec>(writtenDataLength)),
                      PortDetail(portId), [&](Call& call) {
                        return call.NotNull(buffer, "buffer")
                            .NotNull(writtenDataLength, "writtenDataLength")
                            .Core(interfacePort, [&](const Table& t) {
                              return t.Write(portId, bufferSize, buffer, writtenDataLength);
                            });
                      });
}

VXT_Result InProc_InterfacePort::ReadToSharedMemory(uint32_t portId, uint32_t bytesToRead, uint32_t bufferOffset,
                                                    uint64_t sharedMemoryHandle, uint32_t* returnedDataLength) {
  return RunOperation(logger, VXT_OPERATION(InterfacePort, ReadToSharedMemory),
                      TraceArgs("portId", Hex8{portId}, "bytesToRead", Dec{bytesToRead}, "bufferOffset",
                                Dec{bufferOffset}, "sharedMemoryHandle", Hex16{sharedMemoryHandle}),
                      TraceArgs("returnedDataLength", Out<Dec>(returnedDataLength)), PortDetail(portId),
                      [&](Call& call) {
                        call.NotNull(returnedDataLength, "returnedDataLength");
                        return ThroughRegion(Connected(call, interfacePort), interfacePort, sharedMemoryHandle,
                                             bufferOffset, bytesToRead, [&](const Table& t, uint8_t* at) {
                                               return t.Read(portId, bytesToRead, at, returnedDataLength);
                                             });
                      });
}

VXT_Result InProc_InterfacePort::WriteFromSharedMemory(uint32_t portId, uint32_t bytesToWrite,
                                                       uint32_t bufferOffset, uint64_t sharedMemoryHandle,
                                                       uint32_t* writtenDataLength) {
  return RunOperation(logger, VXT_OPERATION(InterfacePort, WriteFromSharedMemory),
                      TraceArgs("portId", Hex8{portId}, "bytesToWrite", Dec{bytesToWrite}, "bufferOffset",
                                Dec{bufferOffset}, "sharedMemoryHandle", Hex16{sharedMemoryHandle}),
                      TraceArgs("writtenDataLength", Out<Dec>(writtenDataLength)), PortDetail(portId),
                      [&](Call& call) {
                        call.NotNull(writtenDataLength, "writtenDataLength");
                        return ThroughRegion(Connected(call, interfacePort), interfacePort, sharedMemoryHandle,
                                             bufferOffset, bytesToWrite, [&](const Table& t, const uint8_t* at) {
                                               return t.Write(portId, bytesToWrite, at, writtenDataLength);
                                             });
                      });
}

}  // namespace vxt
