// The General service object.
#pragma once

#include "Common.h"
#include "EventBroker.h"
#include "SingletonService.h"
#include "frame/ServiceLogger.h"

namespace vxt {

class InProc_General : public SingletonService<InProc_General> {
 public:
  static InProc_General& Instance();

  // Subscribed to the "Client" events: frees the shared memory regions a
  // disconnected client left.
  static void _ClientCloseCallback(void* userData, const char* eventName, const void* eventData);

  frame::ServiceLogger logger;
  // Component tables. Bound by FinishInitialization.
  const CommonComponent* common = nullptr;
  const EventBrokerComponent* eventBroker = nullptr;
  // The close callback that frees a departing client's regions is subscribed.
  bool closeCallbackSubscribed = false;
};

}  // namespace vxt
