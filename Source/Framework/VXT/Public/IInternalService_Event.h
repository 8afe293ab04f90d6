// Service 6: subscriptions to the events of the target, the components and
// the clients.
//
// A subscription belongs to the process, not to a client: it stays when its
// client disconnects and receives events again once a new client connects.
// A callback stands at most once in a list; subscribing it again keeps its
// first userData. One callback may stand in several lists.
#pragma once

#include "IInternal_FireEvent.h"
#include "VXT_ErrorCodes.h"
#include "VXT_Events.h"

class IInternalService_Event {
 public:
  virtual ~IInternalService_Event() = default;

  virtual IInternal_FireEvent* GetFireEvent() = 0;
  // An empty, zero-terminated text that stays valid for the process.
  virtual const char* GetEmptyText() = 0;

  virtual VXT_Result SubscribeTargetEvents(VXT_TargetEventCallback callback, void* userData) = 0;
  virtual VXT_Result UnsubscribeTargetEvents(VXT_TargetEventCallback callback) = 0;
  virtual VXT_Result SubscribeMessageEvents(VXT_MessageEventCallback callback, void* userData) = 0;
  virtual VXT_Result UnsubscribeMessageEvents(VXT_MessageEventCallback callback) = 0;
  virtual VXT_Result SubscribeRunControlEvents(VXT_RunControlEventCallback callback, void* userData) = 0;
  virtual VXT_Result UnsubscribeRunControlEvents(VXT_RunControlEventCallback callback) = 0;
  virtual VXT_Result SubscribeBreakStateChangeEvents(VXT_BreakStateChangeEventCallback callback, void* userData) = 0;
  virtual VXT_Result UnsubscribeBreakStateChangeEvents(VXT_BreakStateChangeEventCallback callback) = 0;
  virtual VXT_Result SubscribeReconfigurationEvents(VXT_ReconfigurationEventCallback callback, void* userData) = 0;
  virtual VXT_Result UnsubscribeReconfigurationEvents(VXT_ReconfigurationEventCallback callback) = 0;
  virtual VXT_Result SubscribeInterfacePortErrorEvents(VXT_InterfacePortErrorEventCallback callback,
                                                       void* userData) = 0;
  virtual VXT_Result UnsubscribeInterfacePortErrorEvents(VXT_InterfacePortErrorEventCallback callback) = 0;
  virtual VXT_Result SubscribeInterfacePortStateChangeEvents(VXT_InterfacePortStateChangeEventCallback callback,
                                                             void* userData) = 0;
  virtual VXT_Result UnsubscribeInterfacePortStateChangeEvents(VXT_InterfacePortStateChangeEventCallback callback) = 0;
  virtual VXT_Result SubscribeInterfacePortServiceReconfigEvents(
      VXT_InterfacePortServiceReconfigEventCallback callback, void* userData) = 0;
  virtual VXT_Result UnsubscribeInterfacePortServiceReconfigEvents(
      VXT_InterfacePortServiceReconfigEventCallback callback) = 0;
  // Clients connecting and disconnecting.
  virtual VXT_Result SubscribeNotificationEvents(VXT_NotificationEventCallback callback, void* userData) = 0;
  virtual VXT_Result UnsubscribeNotificationEvents(VXT_NotificationEventCallback callback) = 0;
  virtual VXT_Result SubscribeSystemStallEvents(VXT_SystemStallEventCallback callback, void* userData) = 0;
  virtual VXT_Result UnsubscribeSystemStallEvents(VXT_SystemStallEventCallback callback) = 0;
  virtual VXT_Result SubscribeStatePortEvents(VXT_StatePortEventCallback callback, void* userData) = 0;
  virtual VXT_Result UnsubscribeStatePortEvents(VXT_StatePortEventCallback callback) = 0;
};
