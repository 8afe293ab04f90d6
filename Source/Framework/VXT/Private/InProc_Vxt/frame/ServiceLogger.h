// The logger handle every service and the connection code own.
#pragma once

#include "Logging.h"

namespace vxt::frame {

// All of the library's own code writes to logging stream 1, "VxtInterface".
inline constexpr uint32_t kInterfaceStream = 1;

struct ServiceLogger {
  Voxtrel_LoggerHandle handle = Voxtrel_LoggingGetLogger(kInterfaceStream);
};

}  // namespace vxt::frame
