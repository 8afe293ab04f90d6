// The calling thread's last error message.
#pragma once

#include "frame/ServiceLogger.h"

namespace vxt::frame {

// The logger of service lookup and the last error.
const ServiceLogger& LookupLogger();

// Makes "<source>: <message>" (either part may be null or empty) the calling
// thread's last error.
void ReportErrorMessage(const char* source, const char* message);

// Empties the calling thread's last error, creating its slot if needed.
void ClearLastErrorMessage();

// The calling thread's last error; a static empty string if it has none.
const char* LastErrorMessage();

}  // namespace vxt::frame
