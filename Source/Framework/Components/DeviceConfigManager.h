// The classes of the target manager library through which the configs
// changed from their defaults are shown and reverted. `Node` is opaque to
// the interface library: it only hands it back.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "PlatformApi.h"

class Node;

struct ModifiedDeviceConfig {
  std::string name;
  std::string firstValue;   // The value in force
  std::string secondValue;  // The default
};

class VOXTREL_PLATFORM_API DeviceConfigManager {
 public:
  // The device's configs whose value is not their default, in the order
  // the device describes them.
  std::vector<ModifiedDeviceConfig> GetModifiedConfigs(const Node& node);
  // Every config of the device back to its default.
  void RevertModifiedConfigs(const Node& node);
};

class VOXTREL_PLATFORM_API TargetManager {
 public:
  static TargetManager& GetInstance();
  // Null when no device of the built topology has the id.
  const Node* GetNodeForDeviceId(uint32_t deviceId);
  DeviceConfigManager* GetDeviceConfigManager();
};
