// The library-wide connection state: who is connected, and whether the first
// client's and FinishInitialization's work has been done.
#pragma once

#include <cstdint>
#include <memory>
#include <mutex>
#include <vector>

#include "TopologySubscription.h"
#include "frame/ServiceLogger.h"

namespace vxt {

struct ConnectionState {
  // Ids in order of arrival; one id may stand in it twice.
  std::vector<uint32_t> connectedClients;
  // Guards connectedClients and the first and last client's work. Taken
  // before initializationMutex, never after it.
  std::mutex connectionMutex;
  // Guards configuration selection and FinishInitialization; also held
  // through the last client's work.
  std::mutex initializationMutex;
  bool isInitialized = false;

  // Lives from a StartNewInstance to the end of FinishInitialization.
  // Several StartNewInstance calls may replace it at once, so it has a guard
  // of its own, taken alone and only around its replacement.
  std::unique_ptr<TopologySubscription> topologySubscription;
  std::mutex topologySubscriptionMutex;

  frame::ServiceLogger connectionLogger;

  static ConnectionState& Get();

  // Subscribes anew to the topology, dropping the former subscription.
  void ReplaceTopologySubscription();
  void DropTopologySubscription();
};

// Makes sure the RunControl component is initialised (on the first topology
// event, or in FinishInitialization).
uint32_t EnsureRunControlInitialized();

// Work of the first client to arrive; runs under connectionMutex.
uint32_t DoFirstClientWork();
// Work of the last client to leave; runs under connectionMutex.
uint32_t DoLastClientWork();

}  // namespace vxt
