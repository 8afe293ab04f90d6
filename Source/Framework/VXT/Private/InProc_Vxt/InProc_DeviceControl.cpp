// The DeviceControl service. Its frame opens the error context ahead of the
// In line and checks nothing of what goes to the component; the three
// operations on modified configs go to the target manager library's
// classes and take the code of a Voxtrel_Error_Exception they throw.
#include "InProc_DeviceControl.h"

#include <algorithm>
#include <cstring>

#include "BindTable.h"
#include "DeviceConfigManager.h"
#include "InProc_Device.h"
#include "frame/Frame.h"

namespace vxt {
namespace {

InProc_DeviceControl instance;

using frame::Call;
using frame::CodeInParentheses;
using frame::Dec;
using frame::Hex8;
using Table = DeviceControlComponent;

constexpr uint32_t kNullArgument = 0x20000;
constexpr uint32_t kUnknownDevice = 0x20005;
constexpr size_t kNameSize = 64;
constexpr size_t kValueSize = 128;

// "deviceId: 0x00000001", with the maximum when the operation has one:
// ", maxNumDeviceConfigNames: 8" (after a blank alone in GetModifiedDeviceConfigs).
struct DeviceArgs {
  uint32_t deviceId;
  const char* countName = nullptr;
  uint32_t count = 0;
  const char* separator = ", ";
  friend std::ostream& operator<<(std::ostream& out, const DeviceArgs& args) {
    out << "deviceId: " << Hex8{args.deviceId};
    if (args.countName != nullptr) out << args.separator << args.countName << ": " << Dec{args.count};
    return out;
  }
};


// One component call in the service's frame.
template <class Core>
VXT_Result OnComponent(frame::OperationSite site, const DeviceArgs& in, const Core& core) {
  InProc_DeviceControl& service = InProc_DeviceControl::Instance();
  return RunOperation(service.logger, site.ContextFirst(), in, CodeInParentheses{},
                      [&](Call& call) { return call.Core(service.deviceControl, core); });
}

// The modified configs of a device's node: the work gets the manager and
// the node, or the operation fails with 0x20005, posted with no text.
template <class Work>
VXT_Result OnNode(frame::OperationSite site, const DeviceArgs& in, bool argumentsNull, const Work& work) {
  InProc_DeviceControl& service = InProc_DeviceControl::Instance();
  return RunOperation(service.logger, site.ContextFirst(), in, CodeInParentheses{}, [&](Call& call) -> uint32_t {
    const auto fail = [&](uint32_t code) {
      Voxtrel_ErrorPostError(code, "", call.site().file, call.site().line);
      return code;
    };
    try {
      if (argumentsNull) return fail(kNullArgument);
      TargetManager& targetManager = TargetManager::GetInstance();
      const Node* node = targetManager.GetNodeForDeviceId(in.deviceId);
      if (node == nullptr) return fail(kUnknownDevice);
      work(*targetManager.GetDeviceConfigManager(), *node);
      return 0;
    } catch (const Voxtrel_Error_Exception& failure) {
      return failure.code;
    }
  });
}

const char* TextOrEmpty(const char* text) { return text != nullptr ? text : ""; }

void CopyCut(const std::string& text, char* field, size_t size) {
  const size_t length = std::min(text.size(), size - 1);
  std::memcpy(field, text.data(), length);
  field[length] = '\0';
}

}  // namespace

InProc_DeviceControl::InProc_DeviceControl() {
  // The component is there from load on; the result is looked at by the
  // operations, which find a null table when it failed.
  BindTable(&Voxtrel_GetDeviceControl, deviceControl);
}

InProc_DeviceControl& InProc_DeviceControl::Instance() { return instance; }

VXT_Result InProc_DeviceControl::GetNumDeviceConfigNames(uint32_t deviceId, uint32_t* numDeviceConfigNames) {
  return OnComponent(VXT_OPERATION(DeviceControl, GetNumDeviceConfigNames), {deviceId},
                     [&](const Table& t) { return t.GetNumDeviceConfigNames(deviceId, numDeviceConfigNames); });
}

VXT_Result InProc_DeviceControl::GetDeviceConfigNames(uint32_t deviceId, uint32_t maxNumDeviceConfigNames,
                                                      char* deviceConfigNames) {
  return OnComponent(VXT_OPERATION(DeviceControl, GetDeviceConfigNames),
                     {deviceId, "maxNumDeviceConfigNames", maxNumDeviceConfigNames}, [&](const Table& t) {
                       return t.GetDeviceConfigNames(deviceId, maxNumDeviceConfigNames, deviceConfigNames);
                     });
}

VXT_Result InProc_DeviceControl::SetDeviceConfig(uint32_t deviceId, const char* deviceConfigName, const char* value) {
  const frame::OperationSite site = VXT_OPERATION(DeviceControl, SetDeviceConfig).ContextFirst();
  return RunOperation(logger, site, DeviceArgs{deviceId}, CodeInParentheses{},
                      frame::WithDetail([&] {
                        std::string detail = "device=" + InProc_Device::Instance().IdentifierOf(deviceId);
                        detail += ",deviceConfigName=";
                        detail += TextOrEmpty(deviceConfigName);
                        detail += ",value=";
                        return detail + TextOrEmpty(value);
                      }),
                      [&](Call& call) {
                        return call.Core(deviceControl, [&](const Table& t) {
                          return t.SetDeviceConfig(deviceId, deviceConfigName, value);
                        });
                      });
}

VXT_Result InProc_DeviceControl::GetDeviceConfig(uint32_t deviceId, const char* deviceConfigName, char* value) {
  return OnComponent(VXT_OPERATION(DeviceControl, GetDeviceConfig), {deviceId},
                     [&](const Table& t) { return t.GetDeviceConfig(deviceId, deviceConfigName, value); });
}

VXT_Result InProc_DeviceControl::GetNumDeviceActionNames(uint32_t deviceId, uint32_t* numDeviceActionNames) {
  return OnComponent(VXT_OPERATION(DeviceControl, GetNumDeviceActionNames), {deviceId},
                     [&](const Table& t) { return t.GetNumDeviceActionNames(deviceId, numDeviceActionNames); });
}

VXT_Result InProc_DeviceControl::GetDeviceActionNames(uint32_t deviceId, uint32_t maxNumDeviceActionNames,
                                                      char* deviceActionNames) {
  return OnComponent(VXT_OPERATION(DeviceControl, GetDeviceActionNames),
                     {deviceId, "maxNumDeviceActionNames", maxNumDeviceActionNames}, [&](const Table& t) {
                       return t.GetDeviceActionNames(deviceId, maxNumDeviceActionNames, deviceActionNames);
                     });
}

VXT_Result InProc_DeviceControl::GetDeviceActionDescription(uint32_t deviceId, const char* deviceActionName,
                                                            char* description) {
  return OnComponent(VXT_OPERATION(DeviceControl, GetDeviceActionDescription), {deviceId}, [&](const Table& t) {
    return t.GetDeviceActionDescription(deviceId, deviceActionName, description);
  });
}

VXT_Result InProc_DeviceControl::ExecuteDeviceAction(uint32_t deviceId, const char* deviceActionName,
                                                     const char* input, char* result) {
  const frame::OperationSite site = VXT_OPERATION(DeviceControl, ExecuteDeviceAction).ContextFirst();
  return RunOperation(logger, site, DeviceArgs{deviceId}, CodeInParentheses{}, [&](Call& call) {
    const uint32_t code = call.Core(
        deviceControl, [&](const Table& t) { return t.ExecuteDeviceAction(deviceId, deviceActionName, input, result); });
    // Counted after the call, so that the count tells how it went.
    char text[11];
    std::snprintf(text, sizeof text, "0x%08x", code);
    std::string detail = "device=" + InProc_Device::Instance().IdentifierOf(deviceId);
    detail += ",deviceActionName=";
    detail += TextOrEmpty(deviceActionName);
    detail += ",input=";
    detail += TextOrEmpty(input);
    detail += ",result=";
    detail += TextOrEmpty(result);
    detail += ",errorCode";
    frame::CountMethodCall(site.method, detail + text);
    return code;
  });
}

VXT_Result InProc_DeviceControl::GetDeviceConfigDescription(uint32_t deviceId, const char* deviceConfigName,
                                                            char* description) {
  return OnComponent(VXT_OPERATION(DeviceControl, GetDeviceConfigDescription), {deviceId}, [&](const Table& t) {
    return t.GetDeviceConfigDescription(deviceId, deviceConfigName, description);
  });
}

VXT_Result InProc_DeviceControl::GetNumDeviceConfigOptions(uint32_t deviceId, const char* deviceConfigName,
                                                           uint32_t* numDeviceConfigOptions) {
  return OnComponent(VXT_OPERATION(DeviceControl, GetNumDeviceConfigOptions), {deviceId}, [&](const Table& t) {
    return t.GetNumDeviceConfigOptions(deviceId, deviceConfigName, numDeviceConfigOptions);
  });
}

VXT_Result InProc_DeviceControl::GetDeviceConfigOptions(uint32_t deviceId, const char* deviceConfigName,
                                                        uint32_t maxNumDeviceConfigOptions,
                                                        char* deviceConfigOptions) {
  return OnComponent(VXT_OPERATION(DeviceControl, GetDeviceConfigOptions),
                     {deviceId, "maxNumDeviceConfigOptions", maxNumDeviceConfigOptions}, [&](const Table& t) {
                       return t.GetDeviceConfigOptions(deviceId, deviceConfigName, maxNumDeviceConfigOptions,
                                                       deviceConfigOptions);
                     });
}

VXT_Result InProc_DeviceControl::GetNumModifiedDeviceConfigs(uint32_t deviceId, uint32_t* numModifiedDeviceConfigs) {
  return OnNode(VXT_OPERATION(DeviceControl, GetNumModifiedDeviceConfigs), {deviceId},
                numModifiedDeviceConfigs == nullptr, [&](DeviceConfigManager& manager, const Node& node) {
                  *numModifiedDeviceConfigs = static_cast<uint32_t>(manager.GetModifiedConfigs(node).size());
                });
}

VXT_Result InProc_DeviceControl::GetModifiedDeviceConfigs(uint32_t deviceId, uint32_t maxNumModifiedDeviceConfigs,
                                                          char* names, char* firstValues, char* secondValues) {
  return OnNode(VXT_OPERATION(DeviceControl, GetModifiedDeviceConfigs),
                {deviceId, "maxNumModifiedDeviceConfigs", maxNumModifiedDeviceConfigs, " "},
                names == nullptr || firstValues == nullptr || secondValues == nullptr,
                [&](DeviceConfigManager& manager, const Node& node) {
                  const std::vector<ModifiedDeviceConfig> modified = manager.GetModifiedConfigs(node);
                  const size_t n = std::min<size_t>(maxNumModifiedDeviceConfigs, modified.size());
                  for (size_t i = 0; i < n; ++i) {
                    CopyCut(modified[i].name, names + i * kNameSize, kNameSize);
                    CopyCut(modified[i].firstValue, firstValues + i * kValueSize, kValueSize);
                    CopyCut(modified[i].secondValue, secondValues + i * kValueSize, kValueSize);
                  }
                });
}

VXT_Result InProc_DeviceControl::RevertModifiedDeviceConfigs(uint32_t deviceId) {
  return OnNode(VXT_OPERATION(DeviceControl, RevertModifiedDeviceConfigs), {deviceId}, false,
                [](DeviceConfigManager& manager, const Node& node) { manager.RevertModifiedConfigs(node); });
}

}  // namespace vxt
