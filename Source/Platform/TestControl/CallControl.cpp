// Test control of component operations, of the EventBroker and of the
// client a thread acts for; and the reset of all test control.
#include "Common/ClientRegistry.h"
#include "EventBroker/EventBrokerTable.h"
#include "EventBroker/Broker.h"
#include "PlatformTestControl.h"
#include "Support/CallInterceptor.h"
#include "TestControl/ResetHooks.h"

namespace voxtrel::testing {

using platform::CallInterceptor;

void StartRecordingCalls() { CallInterceptor::Instance().StartRecording(); }

std::vector<RecordedCall> RecordedCalls() { return CallInterceptor::Instance().Recorded(); }

std::vector<std::string> RecordedOperations() {
  std::vector<std::string> operations;
  for (RecordedCall& call : CallInterceptor::Instance().Recorded()) operations.push_back(std::move(call.operation));
  return operations;
}

size_t CallCount(const std::string& operation) { return CallInterceptor::Instance().CountOf(operation); }

void SetBehaviour(const std::string& operation, const Behaviour& behaviour) {
  CallInterceptor::Instance().SetBehaviour(operation, behaviour);
}

void FailWith(const std::string& operation, uint32_t code) {
  Behaviour failing;
  failing.returnCode = code;
  SetBehaviour(operation, failing);
}

void ClearBehaviour(const std::string& operation) { CallInterceptor::Instance().ClearBehaviour(operation); }

// Through the table, as a component publishes: recorded and steerable.
uint32_t PublishBrokerEvent(const std::string& typeName, const std::string& eventName, const void* data) {
  return platform::event_broker::EventBrokerTable().Publish(typeName.c_str(), eventName.c_str(), data);
}

size_t BrokerSubscriberCount(const std::string& typeName) {
  return platform::event_broker::Broker::Instance().SubscriberCount(typeName);
}

bool BindThreadToClient(int32_t clientId) {
  return platform::common::ClientRegistry::Instance().BindThread(static_cast<uint32_t>(clientId));
}

// The clients Common knows, the broker's subscriptions and its state stay:
// they are the platform's own state, which the library and the tests set up
// and take down through the components.
void ResetTestControl() {
  CallInterceptor::Instance().Reset();
  platform::ResetTraceAndTelemetryControl();
  HoldReceiptWorkers(false);
}

}  // namespace voxtrel::testing
