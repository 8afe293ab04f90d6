// The first client's and the last client's work, and the state they share.
#include <utility>
#include <string>

#include "BindTable.h"
#include "ConnectionState.h"
#include "DataStore.h"
#include "EventBroker.h"
#include "InProc_BitData.h"
#include "InProc_Event.h"
#include "InProc_General.h"
#include "InProc_RunControl.h"
#include "RunControl.h"
#include "StatePort.h"
#include "TargetManager.h"
#include "frame/CatchAll.h"
#include "frame/TraceLine.h"

namespace vxt {

ConnectionState& ConnectionState::Get() {
  static ConnectionState state;
  return state;
}

void ConnectionState::ReplaceTopologySubscription() {
  auto fresh = std::make_unique<TopologySubscription>();
  std::unique_ptr<TopologySubscription> former;
  {
    std::lock_guard lock(topologySubscriptionMutex);
    former = std::exchange(topologySubscription, std::move(fresh));
  }
  // Unsubscribed outside the guard, as former goes.
}

void ConnectionState::DropTopologySubscription() {
  std::unique_ptr<TopologySubscription> former;
  {
    std::lock_guard lock(topologySubscriptionMutex);
    former = std::move(topologySubscription);
  }
}

uint32_t EnsureRunControlInitialized() {
  InProc_RunControl& service = InProc_RunControl::Instance();
  const uint32_t code = BindTable(&Voxtrel_GetRunControl, service.runControl);
  if (code != 0 || service.isComponentInitialized || service.runControl == nullptr) return code;
  const uint32_t initialized = service.runControl->Initialize();
  if (initialized == 0) service.isComponentInitialized = true;
  return initialized;
}

uint32_t DoFirstClientWork() {
  const EventBrokerComponent* broker = nullptr;
  if (const uint32_t code = Voxtrel_GetEventBroker(&broker); code != 0) return code;
  if (broker != nullptr) broker->Initialize();

  DataStore::Get().SetNotificationCallback(
      [](const std::string& text) { Voxtrel_PublishMessageEvent(1, text.c_str()); });
  InProc_Event::Instance().Initialize();
  InProc_BitData::Instance().SubscribeCloseCallback();
  return 0;
}

namespace {

// Each step runs in a catch-all of its own: a component that throws fails
// its step with 0x20009, as a failing code would, and the steps that follow
// a failure run as they would after one.

// Stops what the first client and FinishInitialization started, from the
// event service to the state port component. Stops at the first failure.
uint32_t StopServices() {
  uint32_t code = frame::CatchAll(__FILE__, __LINE__, [] { return InProc_Event::Instance().Uninitialize(); });

  InProc_General& general = InProc_General::Instance();
  if (code == 0 && general.closeCallbackSubscribed) {
    code = frame::CatchAll(__FILE__, __LINE__, [&general]() -> uint32_t {
      InProc_General::_ClearRegions();
      if (general.eventBroker == nullptr) return 0;
      return general.eventBroker->Unsubscribe("Client", &InProc_General::_ClientCloseCallback, nullptr);
    });
    general.closeCallbackSubscribed = false;
  }

  InProc_RunControl& runControl = InProc_RunControl::Instance();
  if (code == 0 && runControl.runControl != nullptr) {
    code = frame::CatchAll(__FILE__, __LINE__, [&runControl] { return runControl.runControl->Uninitialize(); });
    runControl.isComponentInitialized = false;
  }

  if (code == 0) {
    code = frame::CatchAll(__FILE__, __LINE__, []() -> uint32_t {
      const StatePortComponent* statePort = nullptr;
      const uint32_t got = Voxtrel_GetStatePort(&statePort);
      return got == 0 && statePort != nullptr ? statePort->Uninitialize() : got;
    });
  }

  // The broker keeps the callback no longer; its result does not matter.
  if (code == 0) {
    frame::CatchAll(__FILE__, __LINE__, []() -> uint32_t {
      InProc_BitData::Instance().UnsubscribeCloseCallback();
      return 0;
    });
  }
  return code;
}

// Stops the target side and the broker.
uint32_t StopPlatform(ConnectionState& state) {
  uint32_t code = frame::CatchAll(__FILE__, __LINE__, []() -> uint32_t {
    const TargetManagerComponent* targetManager = nullptr;
    const uint32_t got = Voxtrel_GetTargetManager(&targetManager);
    return got == 0 && targetManager != nullptr ? targetManager->Uninitialize() : got;
  });

  DataStore::Get().SetNotificationCallback({});
  state.DropTopologySubscription();

  if (code == 0) {
    code = frame::CatchAll(__FILE__, __LINE__, []() -> uint32_t {
      const EventBrokerComponent* broker = nullptr;
      const uint32_t got = Voxtrel_GetEventBroker(&broker);
      return got == 0 && broker != nullptr ? broker->Uninitialize() : got;
    });
  }
  return code;
}

}  // namespace

uint32_t DoLastClientWork() {
  ConnectionState& state = ConnectionState::Get();
  std::lock_guard initializationLock(state.initializationMutex);
  frame::NestedTraceLine(state.connectionLogger, 2, 1, "Begin Uninitialization");

  const uint32_t firstCode = StopServices();
  const uint32_t secondCode = StopPlatform(state);

  state.isInitialized = false;
  frame::NestedTraceLine(state.connectionLogger, 2, -1, "End Uninitialization");
  return firstCode != 0 ? firstCode : secondCode;
}

}  // namespace vxt
