// The Event service's operations: editing the subscriber lists, and firing
// an event to one list.
#include "InProc_Event.h"

#include <atomic>

#include "frame/CallbackAddress.h"
#include "frame/Frame.h"

namespace vxt {
namespace {

// Constant-initialized, so it is null before the instance is built and
// again after it is destroyed.
std::atomic<InProc_Event*> liveInstance{nullptr};

InProc_Event instance;

using namespace frame;

// A function pointer as the address a null check reads.
template <class Callback>
const void* AddressOf(Callback callback) {
  return reinterpret_cast<const void*>(callback);
}

template <class Callback>
VXT_Result Subscribe(const ServiceLogger& logger, const OperationSite& site, SubscriberList<Callback>& list,
                     Callback callback, void* userData) {
  const auto in = TraceArgs("callback", CallbackAddress{callback}, "userData", Hex16{reinterpret_cast<uintptr_t>(userData)});
  return RunOperation(logger, site, in, NoArgs{}, [&](Call& call) {
    return call.NotNull(AddressOf(callback), "callback").Core([&] {
      list.Add(callback, userData);
      return code::kSuccess;
    });
  });
}

template <class Callback>
VXT_Result Unsubscribe(const ServiceLogger& logger, const OperationSite& site, SubscriberList<Callback>& list,
                       Callback callback) {
  return RunOperation(logger, site, TraceArgs("callback", CallbackAddress{callback}), NoArgs{}, [&](Call& call) {
    return call.NotNull(AddressOf(callback), "callback").Core([&] {
      list.Remove(callback);
      return code::kSuccess;
    });
  });
}

}  // namespace

InProc_Event::InProc_Event() { liveInstance.store(this, std::memory_order_release); }

InProc_Event::~InProc_Event() { liveInstance.store(nullptr, std::memory_order_release); }

InProc_Event& InProc_Event::Instance() { return instance; }

IInternal_FireEvent* InProc_Event::Delivery() {
  InProc_Event* live = liveInstance.load(std::memory_order_acquire);
  return live == nullptr ? nullptr : live->GetFireEvent();
}

IInternal_FireEvent* InProc_Event::GetFireEvent() { return this; }

const char* InProc_Event::GetEmptyText() { return ""; }

VXT_Result InProc_Event::SubscribeTargetEvents(VXT_TargetEventCallback callback, void* userData) {
  return Subscribe(logger, VXT_OPERATION(Event, SubscribeTargetEvents).Counted(), targetSubscribers, callback,
                   userData);
}
VXT_Result InProc_Event::UnsubscribeTargetEvents(VXT_TargetEventCallback callback) {
  return Unsubscribe(logger, VXT_OPERATION(Event, UnsubscribeTargetEvents), targetSubscribers, callback);
}

VXT_Result InProc_Event::SubscribeMessageEvents(VXT_MessageEventCallback callback, void* userData) {
  return Subscribe(logger, VXT_OPERATION(Event, SubscribeMessageEvents).Counted(), messageSubscribers, callback,
                   userData);
}
VXT_Result InProc_Event::UnsubscribeMessageEvents(VXT_MessageEventCallback callback) {
  return Unsubscribe(logger, VXT_OPERATION(Event, UnsubscribeMessageEvents), messageSubscribers, callback);
}

VXT_Result InProc_Event::SubscribeRunControlEvents(VXT_RunControlEventCallback callback, void* userData) {
  return Subscribe(logger, VXT_OPERATION(Event, SubscribeRunControlEvents).Counted(), runControlSubscribers,
                   callback, userData);
}
VXT_Result InProc_Event::UnsubscribeRunControlEvents(VXT_RunControlEventCallback callback) {
  return Unsubscribe(logger, VXT_OPERATION(Event, UnsubscribeRunControlEvents), runControlSubscribers, callback);
}

VXT_Result InProc_Event::SubscribeBreakStateChangeEvents(VXT_BreakStateChangeEventCallback callback,
                                                         void* userData) {
  return Subscribe(logger, VXT_OPERATION(Event, SubscribeBreakStateChangeEvents).Counted(),
                   breakStateChangeSubscribers, callback, userData);
}
VXT_Result InProc_Event::UnsubscribeBreakStateChangeEvents(VXT_BreakStateChangeEventCallback callback) {
  return Unsubscribe(logger, VXT_OPERATION(Event, UnsubscribeBreakStateChangeEvents), breakStateChangeSubscribers,
                     callback);
}

VXT_Result InProc_Event::SubscribeReconfigurationEvents(VXT_ReconfigurationEventCallback callback, void* userData) {
  return Subscribe(logger, VXT_OPERATION(Event, SubscribeReconfigurationEvents).Counted(),
                   reconfigurationSubscribers, callback, userData);
}
VXT_Result InProc_Event::UnsubscribeReconfigurationEvents(VXT_ReconfigurationEventCallback callback) {
  return Unsubscribe(logger, VXT_OPERATION(Event, UnsubscribeReconfigurationEvents), reconfigurationSubscribers,
                     callback);
}

VXT_Result InProc_Event::SubscribeInterfacePortErrorEvents(VXT_InterfacePortErrorEventCallback callback,
                                                           void* userData) {
  return Subscribe(logger, VXT_OPERATION(Event, SubscribeInterfacePortErrorEvents).Counted(),
                   interfacePortErrorSubscribers, callback, userData);
}
VXT_Result InProc_Event::UnsubscribeInterfacePortErrorEvents(VXT_InterfacePortErrorEventCallback callback) {
  return Unsubscribe(logger, VXT_OPERATION(Event, UnsubscribeInterfacePortErrorEvents), interfacePortErrorSubscribers,
                     callback);
}

VXT_Result InProc_Event::SubscribeInterfacePortStateChangeEvents(VXT_InterfacePortStateChangeEventCallback callback,
                                                                 void* userData) {
  return Subscribe(logger, VXT_OPERATION(Event, SubscribeInterfacePortStateChangeEvents).Counted(),
                   interfacePortStateChangeSubscribers, callback, userData);
}
VXT_Result InProc_Event::UnsubscribeInterfacePortStateChangeEvents(
    VXT_InterfacePortStateChangeEventCallback callback) {
  return Unsubscribe(logger, VXT_OPERATION(Event, UnsubscribeInterfacePortStateChangeEvents),
                     interfacePortStateChangeSubscribers, callback);
}

VXT_Result InProc_Event::SubscribeInterfacePortServiceReconfigEvents(
    VXT_InterfacePortServiceReconfigEventCallback callback, void* userData) {
  return Subscribe(logger, VXT_OPERATION(Event, SubscribeInterfacePortServiceReconfigEvents).Counted(),
                   interfacePortServiceReconfigSubscribers, callback, userData);
}
VXT_Result InProc_Event::UnsubscribeInterfacePortServiceReconfigEvents(
    VXT_InterfacePortServiceReconfigEventCallback callback) {
  return Unsubscribe(logger, VXT_OPERATION(Event, UnsubscribeInterfacePortServiceReconfigEvents),
                     interfacePortServiceReconfigSubscribers, callback);
}

VXT_Result InProc_Event::SubscribeNotificationEvents(VXT_NotificationEventCallback callback, void* userData) {
  return Subscribe(logger, VXT_OPERATION(Event, SubscribeNotificationEvents).Counted(), notificationSubscribers,
                   callback, userData);
}
VXT_Result InProc_Event::UnsubscribeNotificationEvents(VXT_NotificationEventCallback callback) {
  return Unsubscribe(logger, VXT_OPERATION(Event, UnsubscribeNotificationEvents), notificationSubscribers, callback);
}

VXT_Result InProc_Event::SubscribeSystemStallEvents(VXT_SystemStallEventCallback callback, void* userData) {
  return Subscribe(logger, VXT_OPERATION(Event, SubscribeSystemStallEvents).Counted(), systemStallSubscribers,
                   callback, userData);
}
VXT_Result InProc_Event::UnsubscribeSystemStallEvents(VXT_SystemStallEventCallback callback) {
  return Unsubscribe(logger, VXT_OPERATION(Event, UnsubscribeSystemStallEvents), systemStallSubscribers, callback);
}

VXT_Result InProc_Event::SubscribeStatePortEvents(VXT_StatePortEventCallback callback, void* userData) {
  return Subscribe(logger, VXT_OPERATION(Event, SubscribeStatePortEvents).Counted(), statePortSubscribers, callback,
                   userData);
}
VXT_Result InProc_Event::UnsubscribeStatePortEvents(VXT_StatePortEventCallback callback) {
  return Unsubscribe(logger, VXT_OPERATION(Event, UnsubscribeStatePortEvents), statePortSubscribers, callback);
}

void InProc_Event::FireTargetEvent(const VXT_TargetEvent* event) { targetSubscribers.Deliver(event); }
void InProc_Event::FireMessageEvent(const VXT_MessageEvent* event) { messageSubscribers.Deliver(event); }
void InProc_Event::FireRunControlEvent(const VXT_RunControlEvent* event) { runControlSubscribers.Deliver(event); }
void InProc_Event::FireBreakStateChangeEvent(const void* event) { breakStateChangeSubscribers.Deliver(event); }
void InProc_Event::FireReconfigurationEvent(const VXT_ReconfigurationEvent* event) {
  reconfigurationSubscribers.Deliver(event);
}
void InProc_Event::FireInterfacePortErrorEvent(const VXT_InterfacePortErrorEvent* event) {
  interfacePortErrorSubscribers.Deliver(event);
}
void InProc_Event::FireInterfacePortStateChangeEvent(const VXT_InterfacePortStateChangeEvent* event) {
  interfacePortStateChangeSubscribers.Deliver(event);
}
void InProc_Event::FireInterfacePortServiceReconfigEvent(const void* event) {
  interfacePortServiceReconfigSubscribers.Deliver(event);
}
void InProc_Event::FireNotificationEvent(const VXT_NotificationEvent* event) {
  notificationSubscribers.Deliver(event);
}
void InProc_Event::FireSystemStallEvent(const VXT_SystemStallEvent* event) { systemStallSubscribers.Deliver(event); }
void InProc_Event::FireStatePortEvent(const VXT_StatePortEvent* event) { statePortSubscribers.Deliver(event); }

}  // namespace vxt
