// The DataStore component: the structured-data store of the platform.
#pragma once

#include <functional>
#include <string>

#include "PlatformApi.h"

class VOXTREL_PLATFORM_API DataStore {
 public:
  using NotificationCallback = std::function<void(const std::string&)>;

  static DataStore& Get();

  // Replaces the callback; an empty one clears it.
  virtual void SetNotificationCallback(NotificationCallback callback) = 0;
  // Reports a notification to the callback, if one is set.
  virtual void Notify(const std::string& text) = 0;

 protected:
  virtual ~DataStore() = default;
};
