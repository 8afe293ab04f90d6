// Test control of the simulated platform.
//
// Tests and tools use this header to watch and steer the platform: capture
// trace lines and telemetry, record how component operations are called, and
// make any operation return a code, post a message or throw. None of this is
// visible to the interface library, which calls the platform as it would call
// the real one.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "CpuTestControl.h"
#include "PlatformApi.h"
#include "JtagTestControl.h"
#include "PlatformControlTestControl.h"

namespace voxtrel::testing {

// ---- Trace -------------------------------------------------------------------

struct TraceLine {
  uint32_t stream = 0;
  uint32_t level = 0;
  std::string text;
  int32_t nesting = 0;

  friend bool operator==(const TraceLine&, const TraceLine&) = default;
};

// Lowest level written, for every stream (1 writes everything; 5 nothing).
VOXTREL_PLATFORM_API void SetLogLevel(uint32_t lowestLevel);
VOXTREL_PLATFORM_API void SetLoggingSuppressed(bool suppressed);
VOXTREL_PLATFORM_API void SetUsageLogging(bool on);
// While capturing, every line the Logging library writes is also kept here.
VOXTREL_PLATFORM_API void StartTraceCapture();
VOXTREL_PLATFORM_API std::vector<TraceLine> CapturedTrace();
// Texts only, in order.
VOXTREL_PLATFORM_API std::vector<std::string> CapturedTraceTexts();
VOXTREL_PLATFORM_API void ClearCapturedTrace();

struct UsageLine {
  std::string stream;
  std::string event;
  std::string text;

  friend bool operator==(const UsageLine&, const UsageLine&) = default;
};
VOXTREL_PLATFORM_API std::vector<UsageLine> CapturedUsage();

// ---- Telemetry ------------------------------------------------------------

// One call into the Telemetry library, e.g.
// {"BuildDataSet", {"Client_Connect", "clientid", "0x00000007"}}.
struct TelemetryCall {
  std::string function;            // BeginSession, BuildDataSet, SendEvent, EndSession, CountEvent
  std::vector<std::string> args;   // The string arguments, in order

  friend bool operator==(const TelemetryCall&, const TelemetryCall&) = default;
};
VOXTREL_PLATFORM_API std::vector<TelemetryCall> TelemetryCalls();
VOXTREL_PLATFORM_API void ClearTelemetryCalls();

// A sent event with the fields built for it since the last send of that name.
struct TelemetryEvent {
  std::string session;
  std::string event;
  std::vector<std::pair<std::string, std::string>> fields;

  friend bool operator==(const TelemetryEvent&, const TelemetryEvent&) = default;
};
VOXTREL_PLATFORM_API std::vector<TelemetryEvent> SentTelemetryEvents();
// Current value of a counter, e.g. ("Server_Lifespan", "VXT_Call", "Method", "General::FlushLogs").
VOXTREL_PLATFORM_API uint64_t TelemetryCounter(const std::string& session, const std::string& event,
                                               const std::string& key, const std::string& value);

// ---- Component operations -------------------------------------------------

// Operations are named "<Component>.<Operation>", e.g. "Common.RegisterClient",
// or by their function name for libraries, e.g. "Voxtrel_GetCommon".
struct RecordedCall {
  std::string operation;
  std::string arguments;  // The arguments as the operation renders them, e.g. "clientId=7"

  friend bool operator==(const RecordedCall&, const RecordedCall&) = default;
};
VOXTREL_PLATFORM_API void StartRecordingCalls();
VOXTREL_PLATFORM_API std::vector<RecordedCall> RecordedCalls();
// Operation names only, in call order.
VOXTREL_PLATFORM_API std::vector<std::string> RecordedOperations();
VOXTREL_PLATFORM_API size_t CallCount(const std::string& operation);

// What an operation does instead of its work. An operation with a behaviour
// set posts `postText` (when not empty) with `postCode` (or `returnCode` when
// postCode is 0), then throws if asked, then returns `returnCode`.
struct Behaviour {
  uint32_t returnCode = 0;
  std::string postText;
  uint32_t postCode = 0;
  bool throwException = false;
  // Applies to this many calls, then the operation works again; 0: until cleared.
  uint32_t times = 0;
};
VOXTREL_PLATFORM_API void SetBehaviour(const std::string& operation, const Behaviour& behaviour);
// Shorthand: the operation fails with `code` and posts nothing.
VOXTREL_PLATFORM_API void FailWith(const std::string& operation, uint32_t code);
VOXTREL_PLATFORM_API void ClearBehaviour(const std::string& operation);

// ---- Events ---------------------------------------------------------------

// Publishes through the EventBroker as a component would; any name and data,
// null data included.
VOXTREL_PLATFORM_API uint32_t PublishBrokerEvent(const std::string& typeName, const std::string& eventName,
                                                 const void* data);
VOXTREL_PLATFORM_API size_t BrokerSubscriberCount(const std::string& typeName);

// ---- Clients --------------------------------------------------------------

// Lets the calling thread act for a client Common knows, as the thread that
// registered it does: Common.GetClientId then gives its id. False, and the
// thread acts for no client, if no client of that id is registered.
VOXTREL_PLATFORM_API bool BindThreadToClient(int32_t clientId);

// ---- Events of the components ------------------------------------------------

// Makes the InterfacePort component report an event to the callback that
// was set with SetEventCallback, on the calling thread: an error of a port,
// a change of its state, or a record of any kind. The callback's code, or 0
// when no callback is set.
VOXTREL_PLATFORM_API uint32_t RaiseInterfacePortError(uint32_t interfacePortId, uint64_t errorValue);
VOXTREL_PLATFORM_API uint32_t RaiseInterfacePortStateChange(uint32_t interfacePortId, uint32_t firstState,
                                                           uint32_t secondState);
VOXTREL_PLATFORM_API uint32_t RaiseInterfacePortEvent(uint32_t kind, uint32_t interfacePortId, uint64_t value);
// While held, RunControl.IsEventDeliveryActive reports 0 even when the
// component is initialized.
VOXTREL_PLATFORM_API void HoldRunControlEvents(bool held);

// ---- Operation receipts -------------------------------------------------------

// A receipt's value: `bitSize` bits of `bytes`, bit 0 the low bit of byte 0;
// missing bytes count as zeros.
struct ReceiptBits {
  std::vector<uint8_t> bytes;
  uint64_t bitSize = 0;
};
// Receipts that have ended already.
VOXTREL_PLATFORM_API uint64_t StartCompletedReceipt(const ReceiptBits& value);
VOXTREL_PLATFORM_API uint64_t StartFailedReceipt(uint32_t code, const std::string& message);
// A receipt whose work runs on a worker thread: "Active" from when a worker
// takes it until `milliseconds` have passed, then "Completed" with `value`;
// "Canceled" at once when a client cancels it meanwhile.
VOXTREL_PLATFORM_API uint64_t StartDelayedReceipt(uint32_t milliseconds, const ReceiptBits& value);
// A receipt that stays "Pending" until the test ends it; false when it has
// ended already or is destroyed.
VOXTREL_PLATFORM_API uint64_t StartHeldReceipt();
VOXTREL_PLATFORM_API bool CompleteHeldReceipt(uint64_t token, const ReceiptBits& value);
VOXTREL_PLATFORM_API bool FailHeldReceipt(uint64_t token, uint32_t code, const std::string& message);
// A receipt whose work stays "Active" on a worker until OpenReceiptGate
// lets it complete with `value`. With `honoursCancel` a cancel ends it
// "Canceled" at once; without, the work runs on until the gate opens.
VOXTREL_PLATFORM_API uint64_t StartGatedReceipt(bool honoursCancel = true);
// False when the token is not a gated receipt's or its gate is open.
VOXTREL_PLATFORM_API bool OpenReceiptGate(uint64_t token, const ReceiptBits& value);
// While held, the works of receipts stay "Pending": no worker takes one.
// Released, they run in the order they were started.
VOXTREL_PLATFORM_API void HoldReceiptWorkers(bool hold);

// ---- Whole platform ---------------------------------------------------------

// Back to the state of a fresh process for everything above: no capture,
// no recording, no behaviours, logging as configured by the environment.
VOXTREL_PLATFORM_API void ResetTestControl();

}  // namespace voxtrel::testing
