// The named properties of devices, as the description gives them.
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

#include "Support/ComponentCall.h"
#include "Target/CallArguments.h"
#include "TargetManager/DeviceQueries.h"
#include "TargetManager/ListAnswers.h"
#include "TargetManager/Request.h"

namespace voxtrel::platform::target_manager {

using target::Node;

namespace {

// A caller's name, read no further than a name buffer: a longer text names
// no property anyway.
std::string_view NameText(const char* name) { return {name, strnlen(name, VXT_PROPERTY_NAME_SIZE)}; }

const std::string* FindOrRefuse(Request& request, const Node& device, std::string_view name) {
  const std::string* value = device.FindProperty(name);
  if (value == nullptr)
    request.Refuse(kValueOutOfRange, " finds no property '" + std::string(name) + "' on device " + DeviceName(device));
  return value;
}

// The device's properties; none for a device that is not known.
std::vector<target::Property> PropertiesOf(Request& request, uint32_t deviceId) {
  const Node* device = request.Device(deviceId);
  return device ? device->properties : std::vector<target::Property>{};
}

}  // namespace

uint32_t GetNumDevicePropertyNames(uint32_t deviceId, uint32_t* propertyNameCount) {
  VOXTREL_COMPONENT_CALL("TargetManager.GetNumDevicePropertyNames", "deviceId=", HexId(deviceId));
  Request request("TargetManager.GetNumDevicePropertyNames");
  return AnswerCount(request, propertyNameCount, "propertyNameCount", [&] { return PropertiesOf(request, deviceId); });
}

uint32_t GetDevicePropertyNames(uint32_t deviceId, uint32_t maxPropertyNames, VXT_PropertyName* propertyNames) {
  VOXTREL_COMPONENT_CALL("TargetManager.GetDevicePropertyNames", "deviceId=", HexId(deviceId),
                         ", maxPropertyNames=", maxPropertyNames);
  Request request("TargetManager.GetDevicePropertyNames");
  // Each name is followed by zero bytes to its field's end.
  const auto zeroPadded = [&](const auto& properties, VXT_PropertyName* names) {
    std::memset(names, 0, sizeof(VXT_PropertyName) * maxPropertyNames);
    NameFields{maxPropertyNames, VXT_PROPERTY_NAME_SIZE, PastTheList::Untouched}(properties, names);
  };
  return AnswerFill(request, propertyNames, "propertyNames", zeroPadded,
                    [&] { return PropertiesOf(request, deviceId); });
}

uint32_t GetDeviceProperty(uint32_t deviceId, const char* propertyName, char* propertyValue) {
  VOXTREL_COMPONENT_CALL("TargetManager.GetDeviceProperty", "deviceId=", HexId(deviceId), ", propertyName=",
                         propertyName ? target::QuotedArgument(NameText(propertyName)) : "<NULL>");
  Request request("TargetManager.GetDeviceProperty");
  const Node* device =
      request.NotNull(propertyName, "propertyName").NotNull(propertyValue, "propertyValue").Device(deviceId);
  if (device == nullptr) return request.code();
  const std::string* value = FindOrRefuse(request, *device, NameText(propertyName));
  if (value == nullptr) return request.code();
  CopyText(*value, propertyValue, VXT_PROPERTY_VALUE_SIZE);
  return 0;
}

uint32_t GetDeviceProperties(uint32_t deviceId, uint32_t propertyNameCount, const VXT_PropertyName* propertyNames,
                             VXT_PropertyValue* propertyValues) {
  VOXTREL_COMPONENT_CALL("TargetManager.GetDeviceProperties", "deviceId=", HexId(deviceId),
                         ", propertyNameCount=", propertyNameCount);
  Request request("TargetManager.GetDeviceProperties");
  const Node* device =
      request.NotNull(propertyNames, "propertyNames").NotNull(propertyValues, "propertyValues").Device(deviceId);
  if (device == nullptr) return request.code();
  std::vector<const std::string*> values;
  for (uint32_t index = 0; index < propertyNameCount; ++index) {
    const std::string* value = FindOrRefuse(request, *device, NameText(propertyNames[index]));
    if (value == nullptr) return request.code();
    values.push_back(value);
  }
  for (uint32_t index = 0; index < propertyNameCount; ++index)
    CopyText(*values[index], propertyValues[index], VXT_PROPERTY_VALUE_SIZE);
  return 0;
}

}  // namespace voxtrel::platform::target_manager
