// Delivery of one event to the subscribers of its list.
//
// The library's own event handlers fire through this interface; a client
// reaches it through IInternalService_Event::GetFireEvent. Each operation
// calls the list's subscribers in subscription order on the calling thread
// and returns when the last has returned. A null record reaches nobody.
#pragma once

#include "VXT_Events.h"

class IInternal_FireEvent {
 public:
  virtual ~IInternal_FireEvent() = default;

  virtual void FireTargetEvent(const VXT_TargetEvent* event) = 0;
  virtual void FireMessageEvent(const VXT_MessageEvent* event) = 0;
  virtual void FireRunControlEvent(const VXT_RunControlEvent* event) = 0;
  virtual void FireBreakStateChangeEvent(const void* event) = 0;
  virtual void FireReconfigurationEvent(const VXT_ReconfigurationEvent* event) = 0;
  virtual void FireInterfacePortErrorEvent(const VXT_InterfacePortErrorEvent* event) = 0;
  virtual void FireInterfacePortStateChangeEvent(const VXT_InterfacePortStateChangeEvent* event) = 0;
  virtual void FireInterfacePortServiceReconfigEvent(const void* event) = 0;
  virtual void FireNotificationEvent(const VXT_NotificationEvent* event) = 0;
  virtual void FireSystemStallEvent(const VXT_SystemStallEvent* event) = 0;
  virtual void FireStatePortEvent(const VXT_StatePortEvent* event) = 0;
};
