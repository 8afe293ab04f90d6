// The Logging library: numbered trace streams, levels, presets and usage lines.
#pragma once

#include <cstdint>

#include "PlatformApi.h"

// Opaque handle of a stream's logger.
using Voxtrel_LoggerHandle = void*;

// Size, terminating zero included, of one preset name buffer handed to
// Voxtrel_LoggingGetLoggingPresetNames and Voxtrel_LoggingGetLoadedLoggingPreset.
inline constexpr uint32_t VOXTREL_LOGGING_PRESET_NAME_SIZE = 64;

VOXTREL_PLATFORM_API Voxtrel_LoggerHandle Voxtrel_LoggingGetLogger(uint32_t stream);
VOXTREL_PLATFORM_API bool Voxtrel_LoggingIsLogEnabled(Voxtrel_LoggerHandle logger, uint32_t level);
VOXTREL_PLATFORM_API bool Voxtrel_LoggingIsLoggingSuppressed();
// nesting: 0 plain line, 1 opens a nested stretch, -1 closes it.
VOXTREL_PLATFORM_API void Voxtrel_LoggingLog(Voxtrel_LoggerHandle logger, uint32_t level, const char* text,
                                             int32_t nesting);

VOXTREL_PLATFORM_API bool Voxtrel_LoggingIsLoggingUsage();
VOXTREL_PLATFORM_API void Voxtrel_LoggingLogUsage(const char* streamName, const char* event, const char* text);

// Presets: named sets of stream levels.
VOXTREL_PLATFORM_API uint32_t Voxtrel_LoggingGetLoggingPresetNamesCount(uint32_t* numPresetNames);
// Fills the first numPresetNames buffers, each VOXTREL_LOGGING_PRESET_NAME_SIZE bytes.
VOXTREL_PLATFORM_API uint32_t Voxtrel_LoggingGetLoggingPresetNames(char** presetNames, uint32_t numPresetNames);
VOXTREL_PLATFORM_API bool Voxtrel_LoggingLoadLoggingPreset(const char* presetName);
// Writes the loaded preset's name into a buffer of VOXTREL_LOGGING_PRESET_NAME_SIZE bytes.
VOXTREL_PLATFORM_API uint32_t Voxtrel_LoggingGetLoadedLoggingPreset(char* presetName);

// Name of a stream number ("VxtInterface" for 1); "Unknown" outside the table.
VOXTREL_PLATFORM_API const char* Voxtrel_LoggingGetStreamName(uint32_t stream);
