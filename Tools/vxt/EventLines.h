// One readable line for each kind of event record, as `vxt events` prints
// them. A record lives only during its callback, so its line is made there.
#pragma once

#include <string>

#include "InProc_Vxt.h"

namespace vxt::cli {

std::string EventLine(const VXT_TargetEvent& event);
std::string EventLine(const VXT_MessageEvent& event);
std::string EventLine(const VXT_RunControlEvent& event);
std::string EventLine(const VXT_ReconfigurationEvent& event);
std::string EventLine(const VXT_InterfacePortErrorEvent& event);
std::string EventLine(const VXT_InterfacePortStateChangeEvent& event);
std::string EventLine(const VXT_NotificationEvent& event);
std::string EventLine(const VXT_SystemStallEvent& event);
std::string EventLine(const VXT_StatePortEvent& event);

}  // namespace vxt::cli
