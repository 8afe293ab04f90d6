// Telemetry counting of service calls.
#pragma once

#include <string>

namespace vxt::frame {

// Adds one to the "VXT_Call" counter of "Server_Lifespan" for `method`.
void CountCall(const char* method);

// Counts "<method>(<detail>)"; a null detail counts as "<NULL>".
void CountMethodCall(const char* method, const char* detail);
inline void CountMethodCall(const char* method, const std::string& detail) { CountMethodCall(method, detail.c_str()); }

}  // namespace vxt::frame
