// The BitData service object.
#pragma once

#include "Common.h"
#include "EventBroker.h"
#include "SingletonService.h"
#include "frame/ServiceLogger.h"

namespace vxt {

class InProc_BitData : public SingletonService<InProc_BitData> {
 public:
  static InProc_BitData& Instance();

  frame::ServiceLogger logger;
  // Component tables. Bound by the first client.
  const EventBrokerComponent* eventBroker = nullptr;
  const CommonComponent* common = nullptr;
  // The close callback that frees a departing client's vectors is subscribed.
  bool closeCallbackSubscribed = false;
};

}  // namespace vxt
