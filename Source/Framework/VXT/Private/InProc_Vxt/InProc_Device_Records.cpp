// What the Device service tells of one device: its record, node type,
// identifier and properties.
#include <cstring>
#include <ostream>

#include "Error.h"
#include "InProc_Device.h"
#include "frame/Frame.h"

namespace vxt {
namespace {

using frame::Call;
using frame::Dec;
using frame::Enum;
using frame::Hex16;
using frame::Hex8;
using frame::List;
using frame::NodeTypeName;
using frame::Out;
using frame::Quoted;
using frame::TraceArgs;
using NodeTypeText = Enum<&NodeTypeName>;
using Table = TargetManagerComponent;

// A record shown by its address, as sixteen hexadecimal digits.
struct RecordAddress {
  const void* record;
  friend std::ostream& operator<<(std::ostream& out, RecordAddress value) {
    if (value.record == nullptr) return out << "<NULL>";
    return out << Hex16{reinterpret_cast<uintptr_t>(value.record)};
  }
};

// "deviceId = 0x00000001 2 propertyNames = {'a', 'b'}": the count stands
// without a label.
struct DevicePropertiesInArgs {
  uint32_t deviceId;
  uint32_t propertyNameCount;
  const VXT_PropertyName* propertyNames;
  friend std::ostream& operator<<(std::ostream& out, const DevicePropertiesInArgs& args) {
    return out << "deviceId = " << Hex8{args.deviceId} << " " << Dec{args.propertyNameCount}
               << " propertyNames = " << List<Quoted>(args.propertyNames, args.propertyNameCount);
  }
};

}  // namespace

uint32_t InProc_Device::_GetIdentifierForDeviceId(uint32_t deviceId, char* identifier,
                                                  const ArgumentErrorReporter& report) {
  if (identifier == nullptr) {
    report("(identifier) : Null pointer");
    return code::kInvalidArgument;
  }
  const uint32_t code = targetManager->GetIdentifierForDeviceId(deviceId, identifier);
  if (code != code::kSuccess) Voxtrel_ErrorPostError(code, "", __FILE__, __LINE__);
  return code;
}

uint32_t InProc_Device::_GetNodeType(uint32_t deviceId, VXT_NodeType* nodeType, const ArgumentErrorReporter& report) {
  if (nodeType == nullptr) {
    report("(nodeType) : Null pointer");
    return code::kInvalidArgument;
  }
  const uint32_t code = targetManager->GetNodeType(deviceId, nodeType);
  if (code != code::kSuccess) Voxtrel_ErrorPostError(code, "", __FILE__, __LINE__);
  return code;
}

std::string InProc_Device::IdentifierOf(uint32_t deviceId) {
  char identifier[VXT_DEVICE_IDENTIFIER_SIZE] = {};
  if (GetIdentifierForDeviceId(deviceId, identifier) != VXT_SUCCESS) return {};
  return std::string(identifier, strnlen(identifier, sizeof identifier));
}

// The record is written only once both queries have answered.
VXT_Result InProc_Device::GetDevice(uint32_t deviceId, VXT_Device* device) {
  return RunOperation(logger, VXT_OPERATION(Device, GetDevice),
                      TraceArgs("deviceId", Hex8{deviceId}, "device", RecordAddress{device}),
                      TraceArgs("device", RecordAddress{device}), [&](Call& call) {
                        return call.NotNull(device, "device")
                            .StructureSize(device, VXT_DEVICE_SIZE, "device")
                            .Core(targetManager, [&](const Table&) {
                              const ReportArgument report{call};
                              char identifier[VXT_DEVICE_IDENTIFIER_SIZE] = {};
                              if (const uint32_t code = _GetIdentifierForDeviceId(deviceId, identifier, report))
                                return code;
                              VXT_NodeType nodeType = VXT_NodeType_Unknown;
                              if (const uint32_t code = _GetNodeType(deviceId, &nodeType, report)) return code;
                              device->deviceId = deviceId;
                              device->nodeType = nodeType;
                              std::memset(device->identifier, 0, sizeof device->identifier);
                              std::memcpy(device->identifier, identifier, strnlen(identifier, sizeof identifier - 1));
                              return code::kSuccess;
                            });
                      });
}

VXT_Result InProc_Device::GetNodeType(uint32_t deviceId, VXT_NodeType* nodeType) {
  return RunOperation(logger, VXT_OPERATION(Device, GetNodeType), TraceArgs("deviceId", Hex8{deviceId}),
                      TraceArgs("nodeType", Out<NodeTypeText>(nodeType)), [&](Call& call) {
                        return call.Core(targetManager, [&](const Table&) {
                          return _GetNodeType(deviceId, nodeType, ReportArgument{call});
                        });
                      });
}

VXT_Result InProc_Device::GetIdentifierForDeviceId(uint32_t deviceId, char* identifier) {
  return RunOperation(logger, VXT_OPERATION(Device, GetIdentifierForDeviceId), TraceArgs("deviceId", Hex8{deviceId}),
                      TraceArgs("identifier", Quoted{identifier, VXT_DEVICE_IDENTIFIER_SIZE}), [&](Call& call) {
                        return call.Core(targetManager, [&](const Table&) {
                          return _GetIdentifierForDeviceId(deviceId, identifier, ReportArgument{call});
                        });
                      });
}

VXT_Result InProc_Device::GetDeviceIdForIdentifier(uint32_t targetDomainId, const char* identifier,
                                                   uint32_t* deviceId) {
  return RunOperation(logger, VXT_OPERATION(Device, GetDeviceIdForIdentifier),
                      TraceArgs("targetDomainId", Hex8{targetDomainId}, "identifier", Quoted{identifier}),
                      TraceArgs("deviceId", Out<Hex8>(deviceId)), [&](Call& call) {
                        return call.NotNull(identifier, "identifier")
                            .NotNull(deviceId, "deviceId")
                            .Core(targetManager, [&](const Table& t) {
                              return t.GetDeviceIdForIdentifier(targetDomainId, identifier, deviceId);
                            });
                      });
}

VXT_Result InProc_Device::GetNumDevicePropertyNames(uint32_t deviceId, uint32_t* propertyNameCount) {
  return RunOperation(
      logger, VXT_OPERATION(Device, GetNumDevicePropertyNames), TraceArgs("deviceId", Hex8{deviceId}),
      TraceArgs("propertyNameCount", Out<Dec>(propertyNameCount)), [&](Call& call) {
        return call.NotNull(propertyNameCount, "propertyNameCount").Core(targetManager, [&](const Table& t) {
          return t.GetNumDevicePropertyNames(deviceId, propertyNameCount);
        });
      });
}

VXT_Result InProc_Device::GetDevicePropertyNames(uint32_t deviceId, uint32_t maxPropertyNames,
                                                 VXT_PropertyName* propertyNames) {
  return RunOperation(logger, VXT_OPERATION(Device, GetDevicePropertyNames),
                      TraceArgs("deviceId", Hex8{deviceId}, "maxPropertyNames", Dec{maxPropertyNames}),
                      TraceArgs("propertyNames", List<Quoted>(propertyNames, maxPropertyNames)), [&](Call& call) {
                        return call.NotNull(propertyNames, "propertyNames").Core(targetManager, [&](const Table& t) {
                          return t.GetDevicePropertyNames(deviceId, maxPropertyNames, propertyNames);
                        });
                      });
}

VXT_Result InProc_Device::GetDeviceProperty(uint32_t deviceId, const char* propertyName, char* propertyValue) {
  return RunOperation(logger, VXT_OPERATION(Device, GetDeviceProperty),
                      TraceArgs("deviceId", Hex8{deviceId}, "propertyName", Quoted{propertyName}),
                      TraceArgs("propertyValue", Quoted{propertyValue, VXT_PROPERTY_VALUE_SIZE}), [&](Call& call) {
                        return call.NotNull(propertyName, "propertyName")
                            .NotNull(propertyValue, "propertyValue")
                            .Core(targetManager, [&](const Table& t) {
                              return t.GetDeviceProperty(deviceId, propertyName, propertyValue);
                            });
                      });
}

VXT_Result InProc_Device::GetDeviceProperties(uint32_t deviceId, uint32_t propertyNameCount,
                                              const VXT_PropertyName* propertyNames,
                                              VXT_PropertyValue* propertyValues) {
  return RunOperation(logger, VXT_OPERATION(Device, GetDeviceProperties),
                      DevicePropertiesInArgs{deviceId, propertyNameCount, propertyNames},
                      TraceArgs("propertyValues", List<Quoted>(propertyValues, propertyNameCount)), [&](Call& call) {
                        return call.NotNull(propertyNames, "propertyNames")
                            .NotNull(propertyValues, "propertyValues")
                            .Core(targetManager, [&](const Table& t) {
                              return t.GetDeviceProperties(deviceId, propertyNameCount, propertyNames, propertyValues);
                            });
                      });
}

}  // namespace vxt
