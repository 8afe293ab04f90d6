// The commands of the command-line client. Each prints to `out` and throws
// CallFailed when the library refuses a call.
#pragma once

#include <ostream>

#include "Session.h"

namespace vxt::cli {

// Lists the configurations the platform offers; needs no connection.
void ListConfigurations(std::ostream& out);

// What the library and the target say about themselves.
void ShowInfo(Session& session, std::ostream& out);

}  // namespace vxt::cli
