#include "Logging/Presets.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cstdint>
#include <cstring>

#include "Logging.h"
#include "Logging/LogLevels.h"
#include "Logging/LoggingSetup.h"

namespace voxtrel::platform::logging {
namespace {

// Internal code of a null buffer.
constexpr uint32_t kInvalidArgument = 0x20000;
constexpr uint32_t kInterfaceStream = 1;

struct Preset {
  const char* name;
  uint32_t level;           // of every stream
  uint32_t interfaceLevel;  // of stream 1
};

constexpr std::array<Preset, 5> kPresets = {{
    {"Default", 3, 3},
    {"Trace", 1, 1},
    {"InterfaceTrace", 3, 1},
    {"Errors", 2, 2},
    {"Off", kSilentLevel, kSilentLevel},
}};
constexpr int kDefaultPreset = 0;
constexpr int kEnvironment = -1;
constexpr const char* kEnvironmentName = "Environment";

// Index into kPresets, or kEnvironment.
std::atomic<int> loadedPreset{kDefaultPreset};

// Copies `name` into a preset name buffer, cut to fit and terminated.
void CopyName(const char* name, char* buffer) {
  const size_t length = std::min<size_t>(std::strlen(name), VOXTREL_LOGGING_PRESET_NAME_SIZE - 1);
  std::memcpy(buffer, name, length);
  buffer[length] = '\0';
}

}  // namespace

bool LoadPreset(std::string_view name) {
  const auto preset = std::find_if(kPresets.begin(), kPresets.end(),
                                   [&](const Preset& candidate) { return name == candidate.name; });
  if (preset == kPresets.end()) return false;
  SetLowestLevelOfAllStreams(preset->level);
  SetLowestLevel(kInterfaceStream, preset->interfaceLevel);
  loadedPreset.store(static_cast<int>(preset - kPresets.begin()), std::memory_order_relaxed);
  return true;
}

void ResetLoadedPreset(bool levelFromEnvironment) {
  loadedPreset.store(levelFromEnvironment ? kEnvironment : kDefaultPreset, std::memory_order_relaxed);
}

}  // namespace voxtrel::platform::logging

using namespace voxtrel::platform::logging;

uint32_t Voxtrel_LoggingGetLoggingPresetNamesCount(uint32_t* numPresetNames) {
  if (numPresetNames == nullptr) return kInvalidArgument;
  *numPresetNames = static_cast<uint32_t>(kPresets.size());
  return 0;
}

uint32_t Voxtrel_LoggingGetLoggingPresetNames(char** presetNames, uint32_t numPresetNames) {
  if (numPresetNames == 0) return 0;
  if (presetNames == nullptr) return kInvalidArgument;
  const uint32_t count = std::min<uint32_t>(numPresetNames, kPresets.size());
  // Refuse before writing anything, so a bad call changes no buffer.
  for (uint32_t i = 0; i < count; ++i)
    if (presetNames[i] == nullptr) return kInvalidArgument;
  for (uint32_t i = 0; i < count; ++i) CopyName(kPresets[i].name, presetNames[i]);
  return 0;
}

bool Voxtrel_LoggingLoadLoggingPreset(const char* presetName) {
  EnsureLoggingSetUp();
  return presetName != nullptr && LoadPreset(presetName);
}

uint32_t Voxtrel_LoggingGetLoadedLoggingPreset(char* presetName) {
  if (presetName == nullptr) return kInvalidArgument;
  EnsureLoggingSetUp();
  const int loaded = loadedPreset.load(std::memory_order_relaxed);
  CopyName(loaded == kEnvironment ? kEnvironmentName : kPresets[loaded].name, presetName);
  return 0;
}
