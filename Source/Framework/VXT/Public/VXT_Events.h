// Event records and the callbacks that receive them.
//
// The library builds a record on the delivering thread's stack for each
// event and calls every subscriber of the event's list with its address. A
// record and every text it points to are valid only during the callback: a
// subscriber copies what it wants to keep. Texts point into the data of the
// component that raised the event; a text that does not apply is null.
#pragma once

#include <cstddef>
#include <cstdint>

#include "VXT_Client.h"

inline constexpr uint32_t VXT_TARGET_EVENT_SIZE = 48;
inline constexpr uint32_t VXT_MESSAGE_EVENT_SIZE = 16;
inline constexpr uint32_t VXT_RUN_CONTROL_EVENT_SIZE = 72;
inline constexpr uint32_t VXT_RECONFIGURATION_EVENT_SIZE = 12;
inline constexpr uint32_t VXT_INTERFACE_PORT_ERROR_EVENT_SIZE = 24;
inline constexpr uint32_t VXT_INTERFACE_PORT_STATE_CHANGE_EVENT_SIZE = 20;
inline constexpr uint32_t VXT_NOTIFICATION_EVENT_SIZE = 1304;
inline constexpr uint32_t VXT_SYSTEM_STALL_EVENT_SIZE = 24;
inline constexpr uint32_t VXT_STATE_PORT_EVENT_SIZE = 48;

// ---- Target events: power, reset, features, power domains -----------------

enum VXT_TargetEventType : uint32_t {
  VXT_TargetEvent_Power = 1,
  VXT_TargetEvent_Reset = 32,
  VXT_TargetEvent_TransportFeature = 128,
  VXT_TargetEvent_TraceFeature = 129,
  VXT_TargetEvent_PowerDomain = 160,
};

struct VXT_TargetEvent {
  uint32_t structureSize;  // VXT_TARGET_EVENT_SIZE
  uint32_t eventType;      // A VXT_TargetEventType
  const char* currentState;
  uint32_t deviceId;  // 0 when the component gave no data
  const char* featureText;    // Feature events only
  uint32_t featureTextCount;  // 1 for feature events, else 0
  const char* powerDomain;    // Power domain events only
};

static_assert(sizeof(VXT_TargetEvent) == VXT_TARGET_EVENT_SIZE);
static_assert(offsetof(VXT_TargetEvent, eventType) == 4);
static_assert(offsetof(VXT_TargetEvent, currentState) == 8);
static_assert(offsetof(VXT_TargetEvent, deviceId) == 16);
static_assert(offsetof(VXT_TargetEvent, featureText) == 24);
static_assert(offsetof(VXT_TargetEvent, featureTextCount) == 32);
static_assert(offsetof(VXT_TargetEvent, powerDomain) == 40);

// ---- Messages -------------------------------------------------------------

// messageType is 1 or 2 as the component that sent the message meant it, or
// 0 for a kind the library does not know.
struct VXT_MessageEvent {
  uint32_t structureSize;  // VXT_MESSAGE_EVENT_SIZE
  uint32_t messageType;
  const char* message;
};

static_assert(sizeof(VXT_MessageEvent) == VXT_MESSAGE_EVENT_SIZE);
static_assert(offsetof(VXT_MessageEvent, messageType) == 4);
static_assert(offsetof(VXT_MessageEvent, message) == 8);

// ---- Run control ----------------------------------------------------------

enum VXT_RunControlEventType : uint32_t {
  VXT_RunControlEvent_Unknown = 0,
  VXT_RunControlEvent_Break = 1,
  VXT_RunControlEvent_Breakpoint = 32,
  VXT_RunControlEvent_Halt = 33,
  VXT_RunControlEvent_Stop = 64,
  VXT_RunControlEvent_Resume = 65,
};

// Every field but structureSize and eventType is 0 when the component gave
// no data.
struct VXT_RunControlEvent {
  uint32_t structureSize;  // VXT_RUN_CONTROL_EVENT_SIZE
  uint32_t deviceId;
  uint64_t address;
  uint32_t eventType;  // A VXT_RunControlEventType
  uint32_t breakpointId;
  const char* breakName;
  const char* breakType;
  const char* breakSubType;
  const char* details;
  uint64_t extraValue;
  uint32_t extraCount;
};

static_assert(sizeof(VXT_RunControlEvent) == VXT_RUN_CONTROL_EVENT_SIZE);
static_assert(offsetof(VXT_RunControlEvent, deviceId) == 4);
static_assert(offsetof(VXT_RunControlEvent, address) == 8);
static_assert(offsetof(VXT_RunControlEvent, eventType) == 16);
static_assert(offsetof(VXT_RunControlEvent, breakpointId) == 20);
static_assert(offsetof(VXT_RunControlEvent, breakName) == 24);
static_assert(offsetof(VXT_RunControlEvent, breakType) == 32);
static_assert(offsetof(VXT_RunControlEvent, breakSubType) == 40);
static_assert(offsetof(VXT_RunControlEvent, details) == 48);
static_assert(offsetof(VXT_RunControlEvent, extraValue) == 56);
static_assert(offsetof(VXT_RunControlEvent, extraCount) == 64);

// ---- Reconfiguration of the target ----------------------------------------

enum VXT_ReconfigurationEventType : uint32_t {
  VXT_ReconfigurationEvent_Unknown = 0,
  VXT_ReconfigurationEvent_Started = 1,
  VXT_ReconfigurationEvent_Completed = 2,
};

struct VXT_ReconfigurationEvent {
  uint32_t structureSize;       // VXT_RECONFIGURATION_EVENT_SIZE
  uint32_t eventType;           // A VXT_ReconfigurationEventType
  uint32_t devicesHaveChanged;  // Nonzero when the set of devices changed
};

static_assert(sizeof(VXT_ReconfigurationEvent) == VXT_RECONFIGURATION_EVENT_SIZE);
static_assert(offsetof(VXT_ReconfigurationEvent, eventType) == 4);
static_assert(offsetof(VXT_ReconfigurationEvent, devicesHaveChanged) == 8);

// ---- Interface ports ------------------------------------------------------

enum VXT_InterfacePortEventType : uint32_t {
  VXT_InterfacePortEvent_Error = 1,
  VXT_InterfacePortEvent_StateChange = 2,
};

struct VXT_InterfacePortErrorEvent {
  uint32_t structureSize;  // VXT_INTERFACE_PORT_ERROR_EVENT_SIZE
  uint32_t eventType;      // VXT_InterfacePortEvent_Error
  uint32_t interfacePortId;
  uint64_t errorValue;
};

static_assert(sizeof(VXT_InterfacePortErrorEvent) == VXT_INTERFACE_PORT_ERROR_EVENT_SIZE);
static_assert(offsetof(VXT_InterfacePortErrorEvent, eventType) == 4);
static_assert(offsetof(VXT_InterfacePortErrorEvent, interfacePortId) == 8);
static_assert(offsetof(VXT_InterfacePortErrorEvent, errorValue) == 16);

struct VXT_InterfacePortStateChangeEvent {
  uint32_t structureSize;  // VXT_INTERFACE_PORT_STATE_CHANGE_EVENT_SIZE
  uint32_t eventType;      // VXT_InterfacePortEvent_StateChange
  uint32_t interfacePortId;
  uint32_t firstStateValue;
  uint32_t secondStateValue;
};

static_assert(sizeof(VXT_InterfacePortStateChangeEvent) == VXT_INTERFACE_PORT_STATE_CHANGE_EVENT_SIZE);
static_assert(offsetof(VXT_InterfacePortStateChangeEvent, eventType) == 4);
static_assert(offsetof(VXT_InterfacePortStateChangeEvent, interfacePortId) == 8);
static_assert(offsetof(VXT_InterfacePortStateChangeEvent, firstStateValue) == 12);
static_assert(offsetof(VXT_InterfacePortStateChangeEvent, secondStateValue) == 16);

// ---- Clients arriving and leaving -----------------------------------------

enum VXT_NotificationEventType : uint32_t {
  VXT_NotificationEvent_Connected = 1,
  VXT_NotificationEvent_Disconnected = 2,
};

struct VXT_NotificationEvent {
  uint32_t structureSize;  // VXT_NOTIFICATION_EVENT_SIZE
  uint32_t eventType;      // A VXT_NotificationEventType
  VXT_Client client;       // A copy; all zero when the component gave no data
};

static_assert(sizeof(VXT_NotificationEvent) == VXT_NOTIFICATION_EVENT_SIZE);
static_assert(offsetof(VXT_NotificationEvent, eventType) == 4);
static_assert(offsetof(VXT_NotificationEvent, client) == 8);

// ---- System stalls --------------------------------------------------------

enum VXT_SystemStallEventType : uint32_t {
  VXT_SystemStallEvent_Hit = 1,
  VXT_SystemStallEvent_Released = 2,
};

struct VXT_SystemStallEvent {
  uint32_t structureSize;  // VXT_SYSTEM_STALL_EVENT_SIZE
  uint32_t eventType;      // A VXT_SystemStallEventType
  const char* stallName;
  uint32_t stallValue;
};

static_assert(sizeof(VXT_SystemStallEvent) == VXT_SYSTEM_STALL_EVENT_SIZE);
static_assert(offsetof(VXT_SystemStallEvent, eventType) == 4);
static_assert(offsetof(VXT_SystemStallEvent, stallName) == 8);
static_assert(offsetof(VXT_SystemStallEvent, stallValue) == 16);

// ---- State ports ----------------------------------------------------------

enum VXT_StatePortEventType : uint32_t {
  VXT_StatePortEvent_ValueChanged = 1,
};

struct VXT_StatePortEvent {
  uint32_t structureSize;  // VXT_STATE_PORT_EVENT_SIZE
  uint32_t eventType;      // VXT_StatePortEvent_ValueChanged
  uint32_t deviceId;
  const char* statePortName;
  uint32_t portValue;
  uint64_t firstValue;
  uint64_t secondValue;
};

static_assert(sizeof(VXT_StatePortEvent) == VXT_STATE_PORT_EVENT_SIZE);
static_assert(offsetof(VXT_StatePortEvent, eventType) == 4);
static_assert(offsetof(VXT_StatePortEvent, deviceId) == 8);
static_assert(offsetof(VXT_StatePortEvent, statePortName) == 16);
static_assert(offsetof(VXT_StatePortEvent, portValue) == 24);
static_assert(offsetof(VXT_StatePortEvent, firstValue) == 32);
static_assert(offsetof(VXT_StatePortEvent, secondValue) == 40);

// ---- Callbacks ------------------------------------------------------------

// A subscriber: called on the delivering thread, one subscriber after the
// other, with the record and the userData it subscribed with. It may call
// any operation of the library, unsubscribing itself included, and must
// return normally.
using VXT_TargetEventCallback = void (*)(const VXT_TargetEvent* event, void* userData);
using VXT_MessageEventCallback = void (*)(const VXT_MessageEvent* event, void* userData);
using VXT_RunControlEventCallback = void (*)(const VXT_RunControlEvent* event, void* userData);
using VXT_ReconfigurationEventCallback = void (*)(const VXT_ReconfigurationEvent* event, void* userData);
using VXT_InterfacePortErrorEventCallback = void (*)(const VXT_InterfacePortErrorEvent* event, void* userData);
using VXT_InterfacePortStateChangeEventCallback = void (*)(const VXT_InterfacePortStateChangeEvent* event,
                                                           void* userData);
using VXT_NotificationEventCallback = void (*)(const VXT_NotificationEvent* event, void* userData);
using VXT_SystemStallEventCallback = void (*)(const VXT_SystemStallEvent* event, void* userData);
using VXT_StatePortEventCallback = void (*)(const VXT_StatePortEvent* event, void* userData);
// The library itself raises neither of these two kinds; whoever fires one
// through IInternal_FireEvent decides what its record is.
using VXT_BreakStateChangeEventCallback = void (*)(const void* event, void* userData);
using VXT_InterfacePortServiceReconfigEventCallback = void (*)(const void* event, void* userData);
