// Device locks as the component's operations: who asks (the client the
// calling thread acts for), what the receipt says, and the messages of
// refusals and time-outs.
#include <chrono>
#include <cstring>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "Common/ClientRegistry.h"
#include "OperationReceipt/Receipts.h"
#include "Support/ComponentCall.h"
#include "TargetManager/DeviceQueries.h"
#include "TargetManager/Request.h"

namespace voxtrel::platform::target_manager {

using receipts::ReceiptOutcome;
using receipts::ReceiptValue;
using target::DeviceLocks;
using target::LiveTopology;
using target::Node;

namespace {

std::string ClientIdentifier(uint32_t clientId) {
  const std::optional<VXT_Client> client = common::ClientRegistry::Instance().Find(clientId);
  if (!client) return {};
  return std::string(client->identifier, strnlen(client->identifier, sizeof client->identifier));
}

// "client 5 ('tool_5@host')"
std::string ClientName(uint32_t clientId) {
  return "client " + std::to_string(clientId) + " ('" + ClientIdentifier(clientId) + "')";
}

std::string DeviceNameOf(const LiveTopology& live, uint32_t deviceId) {
  const Node* device = live.Layout().Find(deviceId);
  return device ? DeviceName(*device) : HexId(deviceId);
}

std::string TimeoutText(uint32_t timeout) {
  return timeout == VXT_INFINITE_TIMEOUT ? "waiting for ever" : std::to_string(timeout) + " ms";
}

ReceiptOutcome TimedOut(const char* operation, const LiveTopology& live, uint32_t timeout,
                        const DeviceLocks::Conflict& conflict) {
  return ReceiptOutcome::Failure(kLockTimedOut, std::string(operation) + " timed out after " + TimeoutText(timeout) +
                                                    ": device " + DeviceNameOf(live, conflict.deviceId) +
                                                    " is locked by " + ClientName(conflict.holder));
}

// A lock request whose topology was dropped or whose client left before it
// took its devices: the code and the text behind the operation's name.
struct Lost {
  uint32_t code;
  std::string text;
};
Lost LostRequest(DeviceLocks::Outcome outcome, uint32_t client, const char* when) {
  if (outcome == DeviceLocks::Outcome::Retired)
    return {kTopologyNotBuilt, std::string(": the target's topology was dropped while the lock was ") + when};
  return {kClientNotRegistered, ": client " + std::to_string(client) + " disconnected while the lock was " + when};
}

// What a worker does for a request that could not be granted at once.
ReceiptOutcome AwaitLocks(const char* operation, const std::shared_ptr<LiveTopology>& live, uint32_t client,
                          uint64_t clientEpoch, const std::vector<uint32_t>& deviceIds, uint32_t timeout,
                          std::optional<DeviceLocks::Clock::time_point> deadline, std::stop_token stop) {
  const DeviceLocks::Result result = live->Locks().Take(client, clientEpoch, deviceIds, deadline, std::move(stop));
  switch (result.outcome) {
    case DeviceLocks::Outcome::Taken:
      return ReceiptOutcome::Success();
    case DeviceLocks::Outcome::Canceled:
      return ReceiptOutcome::Canceled();
    case DeviceLocks::Outcome::Retired:
    case DeviceLocks::Outcome::ClientGone: {
      const Lost lost = LostRequest(result.outcome, client, "awaited");
      return ReceiptOutcome::Failure(lost.code, std::string(operation) + lost.text);
    }
    case DeviceLocks::Outcome::Busy:  // Take waits on instead
    case DeviceLocks::Outcome::TimedOut:
      break;
  }
  return TimedOut(operation, *live, timeout, result.conflict);
}

// The client the calling thread acts for, or a refusal.
std::optional<uint32_t> CallingClient(Request& request) {
  if (request.failed()) return std::nullopt;
  const std::optional<uint32_t> client = common::ClientRegistry::Instance().BoundClientId();
  if (!client) request.Refuse(kClientNotRegistered, ": the calling thread acts for no connected client");
  return client;
}

// The client the calling thread acts for and the count of its departures,
// or a refusal. The client is looked up again after the count is read: a
// departure that a lock request does not see here bumps the count later,
// and the lock table then refuses the request instead of taking devices
// for a client that is gone.
std::optional<std::pair<uint32_t, uint64_t>> CallingClientAndEpoch(Request& request, const DeviceLocks& locks) {
  const std::optional<uint32_t> client = CallingClient(request);
  if (!client) return std::nullopt;
  const uint64_t clientEpoch = locks.ClientEpoch(*client);
  if (CallingClient(request) != client) {
    if (!request.failed()) request.Refuse(kClientNotRegistered, ": the calling thread acts for no connected client");
    return std::nullopt;
  }
  return std::pair{*client, clientEpoch};
}

uint32_t RequestLocks(Request& request, std::span<const uint32_t> deviceIds, uint32_t timeout,
                      uint64_t* operationToken) {
  for (uint32_t deviceId : deviceIds)
    if (request.Device(deviceId) == nullptr) return request.code();
  if (request.Topology() == nullptr) return request.code();  // An empty list needs the topology too
  const std::shared_ptr<LiveTopology>& live = request.SharedTopology();
  DeviceLocks& locks = live->Locks();
  const auto caller = CallingClientAndEpoch(request, locks);
  if (!caller) return request.code();
  const uint32_t client = caller->first;
  const uint64_t clientEpoch = caller->second;

  const DeviceLocks::Result attempt = locks.TryTake(client, clientEpoch, deviceIds);
  switch (attempt.outcome) {
    case DeviceLocks::Outcome::Taken:
      *operationToken = receipts::FinishedReceipt(ReceiptOutcome::Success());
      return 0;
    case DeviceLocks::Outcome::Retired:
    case DeviceLocks::Outcome::ClientGone: {
      const Lost lost = LostRequest(attempt.outcome, client, "asked for");
      return request.Refuse(lost.code, lost.text);
    }
    case DeviceLocks::Outcome::Busy:
    case DeviceLocks::Outcome::TimedOut:
    case DeviceLocks::Outcome::Canceled:  // TryTake neither waits nor watches a stop token
      break;
  }
  if (timeout == 0) {
    *operationToken = receipts::FinishedReceipt(TimedOut(request.operation(), *live, timeout, attempt.conflict));
    return 0;
  }
  std::optional<DeviceLocks::Clock::time_point> deadline;
  if (timeout != VXT_INFINITE_TIMEOUT) deadline = DeviceLocks::Clock::now() + std::chrono::milliseconds(timeout);
  *operationToken = receipts::RunReceipt([operation = request.operation(), live, client, clientEpoch,
                                          ids = std::vector<uint32_t>(deviceIds.begin(), deviceIds.end()), timeout,
                                          deadline](std::stop_token stop) {
    return AwaitLocks(operation, live, client, clientEpoch, ids, timeout, deadline, std::move(stop));
  });
  return 0;
}

}  // namespace

uint32_t Lock(uint32_t deviceId, uint32_t timeout, uint64_t* operationToken) {
  VOXTREL_COMPONENT_CALL("TargetManager.Lock", "deviceId=", HexId(deviceId), ", timeout=", timeout);
  Request request("TargetManager.Lock");
  if (request.NotNull(operationToken, "operationToken").failed()) return request.code();
  const uint32_t deviceIds[] = {deviceId};
  return RequestLocks(request, deviceIds, timeout, operationToken);
}

uint32_t LockMany(const uint32_t* deviceIds, uint32_t deviceIdCount, uint32_t timeout, uint64_t* operationToken) {
  VOXTREL_COMPONENT_CALL("TargetManager.LockMany", "deviceIdCount=", deviceIdCount, ", timeout=", timeout);
  Request request("TargetManager.LockMany");
  if (request.NotNull(deviceIds, "deviceIds").NotNull(operationToken, "operationToken").failed()) return request.code();
  return RequestLocks(request, std::span<const uint32_t>(deviceIds, deviceIdCount), timeout, operationToken);
}

uint32_t Unlock(uint64_t* operationToken) {
  VOXTREL_COMPONENT_CALL("TargetManager.Unlock");
  Request request("TargetManager.Unlock");
  LiveTopology* live = request.NotNull(operationToken, "operationToken").Topology();
  const std::optional<uint32_t> client = CallingClient(request);
  if (!client) return request.code();
  const size_t released = live->Locks().ReleaseAll(*client);
  *operationToken = receipts::FinishedReceipt(ReceiptOutcome::Success(ReceiptValue::Number(released, 32)));
  return 0;
}

uint32_t BreakLock(uint32_t deviceId, bool* brokeLock) {
  VOXTREL_COMPONENT_CALL("TargetManager.BreakLock", "deviceId=", HexId(deviceId));
  Request request("TargetManager.BreakLock");
  if (request.NotNull(brokeLock, "brokeLock").Device(deviceId) == nullptr) return request.code();
  *brokeLock = request.Topology()->Locks().Break(deviceId).has_value();
  return 0;
}

uint32_t GetLockingClient(uint32_t deviceId, char* clientIdentifier) {
  VOXTREL_COMPONENT_CALL("TargetManager.GetLockingClient", "deviceId=", HexId(deviceId));
  Request request("TargetManager.GetLockingClient");
  if (request.NotNull(clientIdentifier, "clientIdentifier").Device(deviceId) == nullptr) return request.code();
  const std::optional<uint32_t> holder = request.Topology()->Locks().Holder(deviceId);
  CopyText(holder ? ClientIdentifier(*holder) : std::string(), clientIdentifier, VXT_CLIENT_TEXT_SIZE);
  return 0;
}

void ReleaseLocksOfDepartedClient(uint32_t clientId) {
  if (std::shared_ptr<LiveTopology> live = target::TargetModel::Instance().Topology())
    live->Locks().ForgetClient(clientId);
}

}  // namespace voxtrel::platform::target_manager
