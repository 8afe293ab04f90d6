// The EventBroker's table for the platform's own components, which publish
// through it as any component would, without a getter call of their own.
#pragma once

#include "EventBroker.h"

namespace voxtrel::platform::event_broker {

const EventBrokerComponent& EventBrokerTable();

}  // namespace voxtrel::platform::event_broker
