// The EventBroker handlers: each turns one broker type's event into the
// public record of its kind and fires it to the matching list, or refuses
// it. A handler has nobody to report to: a refusal is a drop, with a log line
// where the event itself is at fault.
#include <cstring>

#include "InProc_Event.h"
#include "InProc_Event_Data.h"
#include "RunControl.h"
#include "frame/Render.h"
#include "frame/TraceLine.h"

namespace vxt {
namespace {

using namespace frame;
using events::EventData;
using events::FieldText;
using events::IsNamed;

// Where the fields stand in the broker's data records, in bytes.
namespace layout {
constexpr size_t kNameSize = 64;  // Domain, feature, break and port names

constexpr size_t kPowerDomainName = 0;
constexpr size_t kPowerDomainDevice = 64;

constexpr size_t kTargetDevice = 0;  // "TargetPower", "TargetReset"

constexpr size_t kFeatureDevice = 0;
constexpr size_t kFeatureName = 4;
constexpr size_t kFeatureText = 68;

constexpr size_t kDevicesHaveChanged = 0;

constexpr size_t kMessageKind = 0;

constexpr size_t kRunControlDevice = 0;
constexpr size_t kRunControlAddress = 8;
constexpr size_t kBreakpointId = 16;
constexpr size_t kBreakName = 20;
constexpr size_t kBreakType = 84;
constexpr size_t kBreakSubType = 148;
constexpr size_t kDetails = 212;
constexpr size_t kExtraValue = 344;
constexpr size_t kExtraCount = 352;
constexpr size_t kDetailsSize = kExtraValue - kDetails;

constexpr size_t kStallName = 0;
constexpr size_t kStallValue = 260;
constexpr size_t kStallValid = 264;
constexpr size_t kStallNameSize = kStallValue - kStallName;

constexpr size_t kStatePortDevice = 0;
constexpr size_t kStatePortName = 4;
constexpr size_t kPortValue = 68;
constexpr size_t kFirstValue = 72;
constexpr size_t kSecondValue = 80;
}  // namespace layout

// Fires `record` through the instance's delivery, if the instance is still
// there: at unload a component may raise an event after it is gone.
template <class Record>
void Fire(void (IInternal_FireEvent::*fire)(const Record*), const Record& record) {
  if (IInternal_FireEvent* delivery = InProc_Event::Delivery()) (delivery->*fire)(&record);
}

// A record whose data the broker must always send came without it.
void LogMissingData(const ServiceLogger& logger, const char* handler) {
  TraceLine(logger, 4, "InProc Event Service ", handler, ": eventData pointer was null");
}

// "TargetPower" and "TargetReset": the device id is all the data they carry.
void DeliverTargetState(const ServiceLogger& logger, const char* handler, uint32_t eventType, const char* eventName,
                        const void* eventData) {
  const EventData data(eventData);
  VXT_TargetEvent event{};
  event.structureSize = VXT_TARGET_EVENT_SIZE;
  event.eventType = eventType;
  event.currentState = eventName;
  event.deviceId = data.Read<uint32_t>(layout::kTargetDevice);
  TraceLine(logger, 2, "InProc Event Service ", handler, " for device: ", Hex8{event.deviceId},
            ", currentState: ", Quoted{event.currentState});
  Fire(&IInternal_FireEvent::FireTargetEvent, event);
}

uint32_t RunControlEventType(const char* eventName) {
  struct Name {
    const char* text;
    uint32_t eventType;
  };
  static constexpr Name kNames[] = {{"Break", VXT_RunControlEvent_Break},
                                    {"Breakpoint", VXT_RunControlEvent_Breakpoint},
                                    {"Halt", VXT_RunControlEvent_Halt},
                                    {"Stop", VXT_RunControlEvent_Stop},
                                    {"Resume", VXT_RunControlEvent_Resume}};
  for (const Name& name : kNames)
    if (IsNamed(eventName, name.text)) return name.eventType;
  return VXT_RunControlEvent_Unknown;
}

// Run control events reach subscribers only while the RunControl component
// says that they are to be delivered.
bool IsRunControlDeliveryActive() {
  const RunControlComponent* runControl = nullptr;
  if (Voxtrel_GetRunControl(&runControl) != 0 || runControl == nullptr) return false;
  uint32_t active = 0;
  return runControl->IsEventDeliveryActive(&active) == 0 && active != 0;
}

}  // namespace

void TargetPowerDomainEventHandler(void*, const char* eventName, const void* eventData) {
  const ServiceLogger logger;
  const EventData data(eventData);
  if (!data.present()) return LogMissingData(logger, "TargetPowerDomainEventHandler");
  const FieldText<layout::kNameSize> powerDomain(data.TextAt(layout::kPowerDomainName));
  VXT_TargetEvent event{};
  event.structureSize = VXT_TARGET_EVENT_SIZE;
  event.eventType = VXT_TargetEvent_PowerDomain;
  event.currentState = eventName;
  event.powerDomain = powerDomain.get();
  event.deviceId = data.Read<uint32_t>(layout::kPowerDomainDevice);
  TraceLine(logger, 2, "InProc Event Service TargetPowerDomainEventHandler for device: ", Hex8{event.deviceId},
            ", powerDomain: ", Quoted{event.powerDomain}, ", currentState: ", Quoted{event.currentState});
  Fire(&IInternal_FireEvent::FireTargetEvent, event);
}

void TargetPowerEventHandler(void*, const char* eventName, const void* eventData) {
  const ServiceLogger logger;
  DeliverTargetState(logger, "TargetPowerEventHandler", VXT_TargetEvent_Power, eventName, eventData);
}

void TargetResetEventHandler(void*, const char* eventName, const void* eventData) {
  const ServiceLogger logger;
  // A hint that a break is coming, not a reset of the target.
  if (IsNamed(eventName, "BreakHint")) return;
  DeliverTargetState(logger, "TargetResetEventHandler", VXT_TargetEvent_Reset, eventName, eventData);
}

void TargetFeatureEventHandler(void*, const char* eventName, const void* eventData) {
  const ServiceLogger logger;
  const EventData data(eventData);
  if (!data.present()) return LogMissingData(logger, "TargetFeatureEventHandler");
  const FieldText<layout::kNameSize> feature(data.TextAt(layout::kFeatureName));
  VXT_TargetEvent event{};
  event.structureSize = VXT_TARGET_EVENT_SIZE;
  event.deviceId = data.Read<uint32_t>(layout::kFeatureDevice);
  if (IsNamed(feature.get(), "Transport")) {
    event.eventType = VXT_TargetEvent_TransportFeature;
  } else if (IsNamed(feature.get(), "Trace")) {
    event.eventType = VXT_TargetEvent_TraceFeature;
  } else {
    TraceLine(logger, 4, "InProc Event Service TargetFeatureEventHandler for device: ", Hex8{event.deviceId},
              ", unknown feature: ", Quoted{feature.get()});
    return;
  }
  event.currentState = eventName;
  event.featureText = data.TextAt(layout::kFeatureText);
  event.featureTextCount = 1;
  TraceLine(logger, 2, "InProc Event Service TargetFeatureEventHandler for device: ", Hex8{event.deviceId},
            ", feature: ", Quoted{feature.get()}, ", currentState: ", Quoted{event.currentState});
  Fire(&IInternal_FireEvent::FireTargetEvent, event);
}

void ReconfigurationEventHandler(void*, const char* eventName, const void* eventData) {
  const ServiceLogger logger;
  const EventData data(eventData);
  VXT_ReconfigurationEvent event{};
  event.structureSize = VXT_RECONFIGURATION_EVENT_SIZE;
  event.devicesHaveChanged = data.Read<uint8_t>(layout::kDevicesHaveChanged);
  if (IsNamed(eventName, "Started")) {
    event.eventType = VXT_ReconfigurationEvent_Started;
  } else if (IsNamed(eventName, "Completed")) {
    event.eventType = VXT_ReconfigurationEvent_Completed;
  } else {
    // Still delivered, as type 0: the subscriber learns that something changed.
    TraceLine(logger, 3, "Unsupported type of reconfiguration event: ", Quoted{eventName});
    event.eventType = VXT_ReconfigurationEvent_Unknown;
  }
  TraceLine(logger, 2, "InProc Event Service ReconfigurationEventHandler with devicesHaveChanged: ",
            Bool{event.devicesHaveChanged});
  Fire(&IInternal_FireEvent::FireReconfigurationEvent, event);
}

void MessageEventHandler(void*, const char* eventName, const void* eventData) {
  const ServiceLogger logger;
  const EventData data(eventData);
  VXT_MessageEvent event{};
  event.structureSize = VXT_MESSAGE_EVENT_SIZE;
  event.message = eventName;
  const uint32_t kind = data.present() ? data.Read<uint32_t>(layout::kMessageKind) : 1;
  if (kind == 0) {
    event.messageType = 1;
  } else if (kind == 1) {
    event.messageType = 2;
  } else {
    TraceLine(logger, 3, "Unsupported type of message event: ", Dec{kind});
    event.messageType = 0;
  }
  TraceLine(logger, 2, "InProc Event Service MessageEventHandler with messageType: ", Dec{event.messageType},
            ", message: ", Quoted{event.message});
  Fire(&IInternal_FireEvent::FireMessageEvent, event);
}

void RunControlEventHandler(void*, const char* eventName, const void* eventData) {
  const ServiceLogger logger;
  if (!IsRunControlDeliveryActive()) return;
  const EventData data(eventData);
  const FieldText<layout::kNameSize> breakName(data.TextAt(layout::kBreakName));
  const FieldText<layout::kNameSize> breakType(data.TextAt(layout::kBreakType));
  const FieldText<layout::kNameSize> breakSubType(data.TextAt(layout::kBreakSubType));
  const FieldText<layout::kDetailsSize> details(data.TextAt(layout::kDetails));
  VXT_RunControlEvent event{};
  event.structureSize = VXT_RUN_CONTROL_EVENT_SIZE;
  event.deviceId = data.Read<uint32_t>(layout::kRunControlDevice);
  event.address = data.Read<uint64_t>(layout::kRunControlAddress);
  event.breakpointId = data.Read<uint32_t>(layout::kBreakpointId);
  event.breakName = breakName.get();
  event.breakType = breakType.get();
  event.breakSubType = breakSubType.get();
  event.details = details.get();
  event.extraValue = data.Read<uint64_t>(layout::kExtraValue);
  event.extraCount = data.Read<uint32_t>(layout::kExtraCount);
  event.eventType = RunControlEventType(eventName);
  if (event.eventType == VXT_RunControlEvent_Unknown)
    TraceLine(logger, 3, "Unsupported type of run control event: ", Quoted{eventName});
  TraceLine(logger, 2, "InProc Event Service RunControlEventHandler for device ", Hex8{event.deviceId},
            ", address: ", Hex16{event.address}, ", eventType: ", Dec{event.eventType},
            ", breakpointId = ", Dec{event.breakpointId}, ", breakName = ", Quoted{event.breakName},
            ", breakType = ", Quoted{event.breakType}, ", breakSubType = ", Quoted{event.breakSubType},
            ", details = ", Quoted{event.details});
  Fire(&IInternal_FireEvent::FireRunControlEvent, event);
}

void ClientEventHandler(void*, const char* eventName, const void* eventData) {
  const ServiceLogger logger;
  VXT_NotificationEvent event{};
  event.structureSize = VXT_NOTIFICATION_EVENT_SIZE;
  if (IsNamed(eventName, "Connected")) {
    event.eventType = VXT_NotificationEvent_Connected;
  } else if (IsNamed(eventName, "Disconnected")) {
    event.eventType = VXT_NotificationEvent_Disconnected;
  } else {
    TraceLine(logger, 3, "Unsupported type of client event: ", Quoted{eventName});
    return;
  }
  if (eventData != nullptr) {
    std::memcpy(&event.client, eventData, sizeof event.client);
    // Texts of a record are copied terminated.
    event.client.identifier[sizeof event.client.identifier - 1] = '\0';
    event.client.startTime[sizeof event.client.startTime - 1] = '\0';
  }
  TraceLine(logger, 2, "InProc Event Service ClientEventHandler with eventType: ", eventName, ", client name: ",
            Quoted{event.client.identifier});
  Fire(&IInternal_FireEvent::FireNotificationEvent, event);
}

void SystemStallEventHandler(void*, const char* eventName, const void* eventData) {
  const ServiceLogger logger;
  VXT_SystemStallEvent event{};
  event.structureSize = VXT_SYSTEM_STALL_EVENT_SIZE;
  if (IsNamed(eventName, "Hit")) {
    event.eventType = VXT_SystemStallEvent_Hit;
  } else if (IsNamed(eventName, "Released")) {
    event.eventType = VXT_SystemStallEvent_Released;
  } else {
    TraceLine(logger, 3, "Unsupported type of system stall event: ", Quoted{eventName});
    return;
  }
  const EventData data(eventData);
  if (!data.present()) return LogMissingData(logger, "SystemStallEventHandler");
  // A stall the component could not identify carries nothing to report.
  if (data.Read<uint8_t>(layout::kStallValid) == 0) return;
  const FieldText<layout::kStallNameSize> stallName(data.TextAt(layout::kStallName));
  event.stallName = stallName.get();
  event.stallValue = data.Read<uint32_t>(layout::kStallValue);
  TraceLine(logger, 2, "InProc Event Service SystemStallEventHandler with eventType: ", eventName,
            ", stall name: ", Quoted{event.stallName});
  Fire(&IInternal_FireEvent::FireSystemStallEvent, event);
}

void StatePortEventHandler(void*, const char* eventName, const void* eventData) {
  const ServiceLogger logger;
  if (!IsNamed(eventName, "ValueChanged")) {
    TraceLine(logger, 3, "Unsupported type of stateport event: ", Quoted{eventName});
    return;
  }
  const EventData data(eventData);
  if (!data.present()) return LogMissingData(logger, "StatePortEventHandler");
  const FieldText<layout::kNameSize> portName(data.TextAt(layout::kStatePortName));
  VXT_StatePortEvent event{};
  event.structureSize = VXT_STATE_PORT_EVENT_SIZE;
  event.eventType = VXT_StatePortEvent_ValueChanged;
  event.deviceId = data.Read<uint32_t>(layout::kStatePortDevice);
  event.statePortName = portName.get();
  event.portValue = data.Read<uint32_t>(layout::kPortValue);
  event.firstValue = data.Read<uint64_t>(layout::kFirstValue);
  event.secondValue = data.Read<uint64_t>(layout::kSecondValue);
  TraceLine(logger, 2, "InProc Event Service StatePortEventHandler with eventType: ", eventName,
            ", stateport name: ", Quoted{event.statePortName});
  Fire(&IInternal_FireEvent::FireStatePortEvent, event);
}

}  // namespace vxt
