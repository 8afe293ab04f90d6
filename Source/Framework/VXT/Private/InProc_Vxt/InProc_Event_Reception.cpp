// The start and stop of event reception, and the interface port component's
// callback.
#include <ostream>

#include "EventBroker.h"
#include "InProc_Event.h"
#include "InProc_Event_Data.h"
#include "frame/ErrorContext.h"
#include "frame/InternalCodes.h"
#include "frame/TraceLine.h"

namespace vxt {
namespace {

using namespace frame;

struct BrokerHandler {
  const char* typeName;
  EventBrokerHandler handler;
};

// Subscribed in this order, and unsubscribed in the same order.
constexpr BrokerHandler kBrokerHandlers[] = {
    {"PowerDomain", &TargetPowerDomainEventHandler},
    {"TargetPower", &TargetPowerEventHandler},
    {"TargetReset", &TargetResetEventHandler},
    {"TargetFeature", &TargetFeatureEventHandler},
    {"Reconfiguration", &ReconfigurationEventHandler},
    {"Message", &MessageEventHandler},
    {"RunControl", &RunControlEventHandler},
    {"Client", &ClientEventHandler},
    {"SystemStall", &SystemStallEventHandler},
    {"StatePort", &StatePortEventHandler},
};

// The broker's delivery mode for the handlers, passed through unread.
constexpr uint32_t kDeliveryMode = 2;

// The context's message, fetched only when the line is written.
struct ContextMessage {
  Voxtrel_ErrorContext context;
  friend std::ostream& operator<<(std::ostream& out, ContextMessage message) {
    return out << GetContextMessage(message.context);
  }
};

// The broker, or null after logging why there is none. The two texts are
// the line for a getter that posted its reason and the line for no table.
const EventBrokerComponent* ReachBroker(const ServiceLogger& logger, Voxtrel_ErrorContext context,
                                        const char* failedWithReason, const char* noBroker) {
  const EventBrokerComponent* broker = nullptr;
  if (Voxtrel_GetEventBroker(&broker) != 0 && Voxtrel_ErrorGetErrorCode(context) != 0)
    TraceLine(logger, 3, failedWithReason, ContextMessage{context});
  if (broker == nullptr) TraceLine(logger, 3, noBroker);
  return broker;
}

}  // namespace

uint32_t InProc_Event::Initialize() {
  const ErrorContextScope context;
  const EventBrokerComponent* broker = ReachBroker(
      logger, context.id(),
      "InProc_Event initialization is unable to get the EventBroker in order register callbacks for getting "
      "events. ",
      "InProc_Event initialization is unable to get the EventBroker in order to register callbacks for getting "
      "events.");
  if (broker == nullptr) return 0;
  // The start of a client never fails for want of events: a broker that
  // throws leaves the handlers subscribed so far, and the rest unheard.
  try {
    for (const BrokerHandler& entry : kBrokerHandlers)
      broker->SubscribeWithMode(entry.typeName, entry.handler, kDeliveryMode, nullptr, "InProc_Event");
  } catch (...) {
  }
  return 0;
}

uint32_t InProc_Event::Uninitialize() {
  const ErrorContextScope context;
  const EventBrokerComponent* broker = ReachBroker(
      logger, context.id(),
      "InProc_Event uninitialize is unable to get the EventBroker in order unregister callbacks for getting "
      "events. ",
      "InProc_Event uninitialize is unable to get the EventBroker in order to unregister callbacks for getting "
      "events.");
  if (broker == nullptr) return 0;
  try {
    for (const BrokerHandler& entry : kBrokerHandlers) broker->Unsubscribe(entry.typeName, entry.handler, nullptr);
  } catch (...) {
  }
  return 0;
}

uint32_t InterfacePortEventCallback(const void* record) {
  // The component's record: kind at 4, values at 8, port id at 16.
  constexpr size_t kKind = 4;
  constexpr size_t kValues = 8;
  constexpr size_t kSecondValue = 12;
  constexpr size_t kPortId = 16;
  constexpr uint32_t kError = 0;
  constexpr uint32_t kStateChange = 1;

  const events::EventData data(record);
  if (!data.present()) return code::kInvalidArgument;
  IInternal_FireEvent* delivery = InProc_Event::Delivery();
  switch (data.Read<uint32_t>(kKind)) {
    case kError: {
      VXT_InterfacePortErrorEvent event{};
      event.structureSize = VXT_INTERFACE_PORT_ERROR_EVENT_SIZE;
      event.eventType = VXT_InterfacePortEvent_Error;
      event.interfacePortId = data.Read<uint32_t>(kPortId);
      event.errorValue = data.Read<uint64_t>(kValues);
      if (delivery != nullptr) delivery->FireInterfacePortErrorEvent(&event);
      return 0;
    }
    case kStateChange: {
      VXT_InterfacePortStateChangeEvent event{};
      event.structureSize = VXT_INTERFACE_PORT_STATE_CHANGE_EVENT_SIZE;
      event.eventType = VXT_InterfacePortEvent_StateChange;
      event.interfacePortId = data.Read<uint32_t>(kPortId);
      event.firstStateValue = data.Read<uint32_t>(kValues);
      event.secondStateValue = data.Read<uint32_t>(kSecondValue);
      if (delivery != nullptr) delivery->FireInterfacePortStateChangeEvent(&event);
      return 0;
    }
    default:
      return code::kException;
  }
}

}  // namespace vxt
