// Visibility of the simulated platform's entry points.
//
// The platform libraries are built with hidden visibility like the interface
// library itself; only what their headers mark with VOXTREL_PLATFORM_API is
// exported from libVoxtrelPlatform.so.
#pragma once

#define VOXTREL_PLATFORM_API __attribute__((visibility("default")))
