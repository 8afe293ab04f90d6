// The InterfacePort component: the target's interface ports.
#include <atomic>

#include "InterfacePort/InterfacePortState.h"
#include "InterfacePort/InterfacePorts.h"
#include "Support/ComponentCall.h"
#include "Target/PostFailure.h"
#include "TargetManager/Request.h"

namespace voxtrel::platform::interface_port {

namespace {

using target_manager::DeviceName;
using target_manager::HexId;
using target_manager::Request;

// Read by the port's own threads while a client may replace it.
std::atomic<InterfacePortEventCallbackFn> eventCallback{nullptr};

uint32_t Initialize() {
  VOXTREL_COMPONENT_CALL("InterfacePort.Initialize");
  if (target::Outcome refused = InterfacePortTopology().Bind()) return VOXTREL_POST_FAILURE(*refused);
  Ports::Instance().Restart();
  return 0;
}

// A null callback stops the delivery of events.
uint32_t SetEventCallback(InterfacePortEventCallbackFn callback) {
  VOXTREL_COMPONENT_CALL("InterfacePort.SetEventCallback", "callback=", reinterpret_cast<const void*>(callback));
  eventCallback.store(callback, std::memory_order_release);
  return 0;
}

// The port of that id and the request's code; `work` runs on it when the
// request's checks passed.
template <class Work>
uint32_t OnPort(Request& request, uint32_t portId, Work&& work) {
  if (request.failed()) return request.code();
  const target::Node* node = request.DeviceOfType(portId, target::NodeType::InterfacePort);
  if (node == nullptr) return request.code();
  const std::string name = "interface port " + DeviceName(*node);
  const PortPlace place{portId, node->targetDomainId, name};
  if (target::Outcome refused = work(place)) return request.Refuse(refused->code, ": " + refused->message);
  return 0;
}

uint32_t GetInterfacePortConfiguration(uint32_t portId, VXT_InterfacePortConfiguration* configuration) {
  VOXTREL_COMPONENT_CALL("InterfacePort.GetInterfacePortConfiguration", "portId=", HexId(portId));
  Request request("InterfacePort.GetInterfacePortConfiguration");
  return OnPort(request.NotNull(configuration, "configuration"), portId, [&](const PortPlace& place) {
    Ports::Instance().Configuration(place, *configuration);
    return target::Outcome{};
  });
}

uint32_t GetInterfacePortState(uint32_t portId, VXT_InterfacePortState* state) {
  VOXTREL_COMPONENT_CALL("InterfacePort.GetInterfacePortState", "portId=", HexId(portId));
  Request request("InterfacePort.GetInterfacePortState");
  return OnPort(request.NotNull(state, "state"), portId, [&](const PortPlace& place) {
    *state = Ports::Instance().State(place);
    return target::Outcome{};
  });
}

uint32_t Read(uint32_t portId, uint32_t bufferSize, uint8_t* buffer, uint32_t* returnedDataLength) {
  VOXTREL_COMPONENT_CALL("InterfacePort.Read", "portId=", HexId(portId), ", bufferSize=", bufferSize);
  Request request("InterfacePort.Read");
  if (returnedDataLength != nullptr) *returnedDataLength = 0;
  return OnPort(request.NotNull(buffer, "buffer").NotNull(returnedDataLength, "returnedDataLength"), portId,
                [&](const PortPlace& place) {
                  return Ports::Instance().Read(place, std::span(buffer, bufferSize), *returnedDataLength);
                });
}

uint32_t OpenWindow(uint32_t portId, const VXT_InterfacePortConfiguration* configuration) {
  VOXTREL_COMPONENT_CALL("InterfacePort.OpenWindow", "portId=", HexId(portId));
  Request request("InterfacePort.OpenWindow");
  return OnPort(request.NotNull(configuration, "configuration"), portId,
                [&](const PortPlace& place) { return Ports::Instance().Open(place, *configuration); });
}

uint32_t CloseWindow(uint32_t portId) {
  VOXTREL_COMPONENT_CALL("InterfacePort.CloseWindow", "portId=", HexId(portId));
  Request request("InterfacePort.CloseWindow");
  return OnPort(request, portId, [&](const PortPlace& place) { return Ports::Instance().Close(place); });
}

uint32_t IsDataAvailable(uint32_t portId, uint8_t* isDataAvailable) {
  VOXTREL_COMPONENT_CALL("InterfacePort.IsDataAvailable", "portId=", HexId(portId));
  Request request("InterfacePort.IsDataAvailable");
  return OnPort(request.NotNull(isDataAvailable, "isDataAvailable"), portId, [&](const PortPlace& place) {
    *isDataAvailable = Ports::Instance().Available(place) ? 1 : 0;
    return target::Outcome{};
  });
}

uint32_t Write(uint32_t portId, uint32_t bufferSize, const uint8_t* buffer, uint32_t* writtenDataLength) {
  VOXTREL_COMPONENT_CALL("InterfacePort.Write", "portId=", HexId(portId), ", bufferSize=", bufferSize);
  Request request("InterfacePort.Write");
  if (writtenDataLength != nullptr) *writtenDataLength = 0;
  return OnPort(request.NotNull(buffer, "buffer").NotNull(writtenDataLength, "writtenDataLength"), portId,
                [&](const PortPlace& place) {
                  return Ports::Instance().Write(place, std::span(buffer, bufferSize), *writtenDataLength);
                });
}

constexpr InterfacePortComponent kInterfacePort{
    &Initialize, &SetEventCallback, &GetInterfacePortConfiguration, &GetInterfacePortState, &Read,
    &OpenWindow, &CloseWindow,      &IsDataAvailable,               &Write};

}  // namespace

target::TopologyBinding& InterfacePortTopology() {
  static target::TopologyBinding binding("InterfacePort");
  return binding;
}

uint32_t DeliverInterfacePortEvent(const void* record) {
  const InterfacePortEventCallbackFn callback = eventCallback.load(std::memory_order_acquire);
  return callback ? callback(record) : 0;
}

}  // namespace voxtrel::platform::interface_port

uint32_t Voxtrel_GetInterfacePort(const InterfacePortComponent** table) {
  VOXTREL_COMPONENT_CALL("Voxtrel_GetInterfacePort");
  if (!table) return voxtrel::platform::target::kNullArgument;
  *table = &voxtrel::platform::interface_port::kInterfacePort;
  return 0;
}
