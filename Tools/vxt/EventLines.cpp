#include "EventLines.h"

#include <cstdio>
#include <sstream>

namespace vxt::cli {
namespace {

// The pieces of a line one after the other. Lines are built by appending
// rather than with chains of std::string's operator+, about which some
// compilers warn wrongly when optimizing.
template <class... Pieces>
std::string Join(const Pieces&... pieces) {
  std::string line;
  (line += ... += pieces);
  return line;
}

// A text of a record in quotes; "-" when the record has none.
std::string Text(const char* text) { return text == nullptr ? "-" : Join('\'', text, '\''); }

std::string Hex(uint64_t value, int digits) {
  char text[24];
  std::snprintf(text, sizeof text, "0x%0*llx", digits, static_cast<unsigned long long>(value));
  return text;
}

std::string Device(uint32_t deviceId) { return Join("device ", Hex(deviceId, 8)); }

// A type the records know by number only, or the number itself.
std::string Known(const char* name, uint32_t value) {
  return name != nullptr ? name : Join("type ", std::to_string(value));
}

const char* TargetEventName(uint32_t eventType) {
  switch (eventType) {
    case VXT_TargetEvent_Power: return "power";
    case VXT_TargetEvent_Reset: return "reset";
    case VXT_TargetEvent_TransportFeature: return "transport feature";
    case VXT_TargetEvent_TraceFeature: return "trace feature";
    case VXT_TargetEvent_PowerDomain: return "power domain";
    default: return nullptr;
  }
}

const char* RunControlEventName(uint32_t eventType) {
  switch (eventType) {
    case VXT_RunControlEvent_Break: return "break";
    case VXT_RunControlEvent_Breakpoint: return "breakpoint";
    case VXT_RunControlEvent_Halt: return "halt";
    case VXT_RunControlEvent_Stop: return "stop";
    case VXT_RunControlEvent_Resume: return "resume";
    default: return nullptr;
  }
}

const char* ReconfigurationEventName(uint32_t eventType) {
  switch (eventType) {
    case VXT_ReconfigurationEvent_Started: return "started";
    case VXT_ReconfigurationEvent_Completed: return "completed";
    default: return nullptr;
  }
}

const char* NotificationEventName(uint32_t eventType) {
  switch (eventType) {
    case VXT_NotificationEvent_Connected: return "connected";
    case VXT_NotificationEvent_Disconnected: return "disconnected";
    default: return nullptr;
  }
}

const char* SystemStallEventName(uint32_t eventType) {
  switch (eventType) {
    case VXT_SystemStallEvent_Hit: return "hit";
    case VXT_SystemStallEvent_Released: return "released";
    default: return nullptr;
  }
}

}  // namespace

std::string EventLine(const VXT_TargetEvent& event) {
  std::ostringstream line;
  line << "target " << Known(TargetEventName(event.eventType), event.eventType) << ' ' << Text(event.currentState)
       << ", " << Device(event.deviceId);
  if (event.powerDomain != nullptr) line << ", domain " << Text(event.powerDomain);
  if (event.featureTextCount != 0) line << ", feature text " << Text(event.featureText);
  return line.str();
}

std::string EventLine(const VXT_MessageEvent& event) {
  return Join("message type ", std::to_string(event.messageType), ": ", Text(event.message));
}

std::string EventLine(const VXT_RunControlEvent& event) {
  std::ostringstream line;
  line << "run control " << Known(RunControlEventName(event.eventType), event.eventType) << ", "
       << Device(event.deviceId) << ", address " << Hex(event.address, 16) << ", breakpoint " << event.breakpointId
       << ", break " << Text(event.breakName) << ' ' << Text(event.breakType) << ' ' << Text(event.breakSubType)
       << ", details " << Text(event.details);
  return line.str();
}

std::string EventLine(const VXT_ReconfigurationEvent& event) {
  return Join("reconfiguration ", Known(ReconfigurationEventName(event.eventType), event.eventType), ", devices ",
              event.devicesHaveChanged != 0 ? "changed" : "unchanged");
}

std::string EventLine(const VXT_InterfacePortErrorEvent& event) {
  return Join("interface port ", Hex(event.interfacePortId, 8), " error ", Hex(event.errorValue, 16));
}

std::string EventLine(const VXT_InterfacePortStateChangeEvent& event) {
  return Join("interface port ", Hex(event.interfacePortId, 8), " state change ",
              std::to_string(event.firstStateValue), ", ", std::to_string(event.secondStateValue));
}

std::string EventLine(const VXT_NotificationEvent& event) {
  return Join("client ", std::to_string(event.client.clientId), ' ', Text(event.client.identifier), ' ',
              Known(NotificationEventName(event.eventType), event.eventType));
}

std::string EventLine(const VXT_SystemStallEvent& event) {
  return Join("system stall ", Text(event.stallName), ' ', Known(SystemStallEventName(event.eventType), event.eventType),
              ", value ", std::to_string(event.stallValue));
}

std::string EventLine(const VXT_StatePortEvent& event) {
  return Join("state port ", Text(event.statePortName), " of ", Device(event.deviceId), " changed to ",
              std::to_string(event.portValue), " (", Hex(event.firstValue, 16), ", ", Hex(event.secondValue, 16), ")");
}

}  // namespace vxt::cli
