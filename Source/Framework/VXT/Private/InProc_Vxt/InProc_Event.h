// The Event service object: eleven lists of subscribers, the operations that
// edit them, their delivery, and the handlers through which events of the
// components reach them.
#pragma once

#include <cstdint>

#include "IInternalService_Event.h"
#include "IInternal_FireEvent.h"
#include "InProc_Event_SubscriberList.h"
#include "SingletonService.h"
#include "frame/ServiceLogger.h"

namespace vxt {

// Registered with the InterfacePort component by FinishInitialization: turns
// the component's event record into an interface port event. Kind 0 is an
// error, kind 1 a state change; any other kind is refused with 0x20009.
uint32_t InterfacePortEventCallback(const void* record);

// The EventBroker handlers, one per broker type; Initialize subscribes them
// and Uninitialize takes them back. Each builds the public record of its
// event on its stack and fires it, or refuses the event with a log line.
void TargetPowerDomainEventHandler(void* userData, const char* eventName, const void* eventData);
void TargetPowerEventHandler(void* userData, const char* eventName, const void* eventData);
void TargetResetEventHandler(void* userData, const char* eventName, const void* eventData);
void TargetFeatureEventHandler(void* userData, const char* eventName, const void* eventData);
void ReconfigurationEventHandler(void* userData, const char* eventName, const void* eventData);
void MessageEventHandler(void* userData, const char* eventName, const void* eventData);
void RunControlEventHandler(void* userData, const char* eventName, const void* eventData);
void ClientEventHandler(void* userData, const char* eventName, const void* eventData);
void SystemStallEventHandler(void* userData, const char* eventName, const void* eventData);
void StatePortEventHandler(void* userData, const char* eventName, const void* eventData);

class InProc_Event : public SingletonService<InProc_Event>,
                     public IInternalService_Event,
                     public IInternal_FireEvent {
 public:
  InProc_Event();
  ~InProc_Event() override;

  static InProc_Event& Instance();

  // The instance's delivery, for the handlers; null once the instance is
  // destroyed at unload, when a component may still raise an event.
  static IInternal_FireEvent* Delivery();

  // Start and stop of reception, at the first client's arrival and the last
  // client's departure: subscribe and unsubscribe the broker handlers. A
  // broker that cannot be reached costs a level-3 line; both return 0.
  uint32_t Initialize();
  uint32_t Uninitialize();

  IInternal_FireEvent* GetFireEvent() override;
  const char* GetEmptyText() override;

  VXT_Result SubscribeTargetEvents(VXT_TargetEventCallback callback, void* userData) override;
  VXT_Result UnsubscribeTargetEvents(VXT_TargetEventCallback callback) override;
  VXT_Result SubscribeMessageEvents(VXT_MessageEventCallback callback, void* userData) override;
  VXT_Result UnsubscribeMessageEvents(VXT_MessageEventCallback callback) override;
  VXT_Result SubscribeRunControlEvents(VXT_RunControlEventCallback callback, void* userData) override;
  VXT_Result UnsubscribeRunControlEvents(VXT_RunControlEventCallback callback) override;
  VXT_Result SubscribeBreakStateChangeEvents(VXT_BreakStateChangeEventCallback callback, void* userData) override;
  VXT_Result UnsubscribeBreakStateChangeEvents(VXT_BreakStateChangeEventCallback callback) override;
  VXT_Result SubscribeReconfigurationEvents(VXT_ReconfigurationEventCallback callback, void* userData) override;
  VXT_Result UnsubscribeReconfigurationEvents(VXT_ReconfigurationEventCallback callback) override;
  VXT_Result SubscribeInterfacePortErrorEvents(VXT_InterfacePortErrorEventCallback callback, void* userData) override;
  VXT_Result UnsubscribeInterfacePortErrorEvents(VXT_InterfacePortErrorEventCallback callback) override;
  VXT_Result SubscribeInterfacePortStateChangeEvents(VXT_InterfacePortStateChangeEventCallback callback,
                                                     void* userData) override;
  VXT_Result UnsubscribeInterfacePortStateChangeEvents(VXT_InterfacePortStateChangeEventCallback callback) override;
  VXT_Result SubscribeInterfacePortServiceReconfigEvents(VXT_InterfacePortServiceReconfigEventCallback callback,
                                                         void* userData) override;
  VXT_Result UnsubscribeInterfacePortServiceReconfigEvents(
      VXT_InterfacePortServiceReconfigEventCallback callback) override;
  VXT_Result SubscribeNotificationEvents(VXT_NotificationEventCallback callback, void* userData) override;
  VXT_Result UnsubscribeNotificationEvents(VXT_NotificationEventCallback callback) override;
  VXT_Result SubscribeSystemStallEvents(VXT_SystemStallEventCallback callback, void* userData) override;
  VXT_Result UnsubscribeSystemStallEvents(VXT_SystemStallEventCallback callback) override;
  VXT_Result SubscribeStatePortEvents(VXT_StatePortEventCallback callback, void* userData) override;
  VXT_Result UnsubscribeStatePortEvents(VXT_StatePortEventCallback callback) override;

  void FireTargetEvent(const VXT_TargetEvent* event) override;
  void FireMessageEvent(const VXT_MessageEvent* event) override;
  void FireRunControlEvent(const VXT_RunControlEvent* event) override;
  void FireBreakStateChangeEvent(const void* event) override;
  void FireReconfigurationEvent(const VXT_ReconfigurationEvent* event) override;
  void FireInterfacePortErrorEvent(const VXT_InterfacePortErrorEvent* event) override;
  void FireInterfacePortStateChangeEvent(const VXT_InterfacePortStateChangeEvent* event) override;
  void FireInterfacePortServiceReconfigEvent(const void* event) override;
  void FireNotificationEvent(const VXT_NotificationEvent* event) override;
  void FireSystemStallEvent(const VXT_SystemStallEvent* event) override;
  void FireStatePortEvent(const VXT_StatePortEvent* event) override;

  frame::ServiceLogger logger;

  // The lists belong to the process, not to a client: neither a client's
  // departure nor Uninitialize touches them.
  SubscriberList<VXT_TargetEventCallback> targetSubscribers;
  SubscriberList<VXT_RunControlEventCallback> runControlSubscribers;
  SubscriberList<VXT_ReconfigurationEventCallback> reconfigurationSubscribers;
  SubscriberList<VXT_MessageEventCallback> messageSubscribers;
  SubscriberList<VXT_BreakStateChangeEventCallback> breakStateChangeSubscribers;
  SubscriberList<VXT_InterfacePortErrorEventCallback> interfacePortErrorSubscribers;
  SubscriberList<VXT_InterfacePortStateChangeEventCallback> interfacePortStateChangeSubscribers;
  SubscriberList<VXT_InterfacePortServiceReconfigEventCallback> interfacePortServiceReconfigSubscribers;
  SubscriberList<VXT_NotificationEventCallback> notificationSubscribers;
  SubscriberList<VXT_SystemStallEventCallback> systemStallSubscribers;
  SubscriberList<VXT_StatePortEventCallback> statePortSubscribers;
};

}  // namespace vxt
