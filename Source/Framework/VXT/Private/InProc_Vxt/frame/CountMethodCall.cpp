#include "frame/CountMethodCall.h"

#include "Telemetry.h"

namespace vxt::frame {

void CountCall(const char* method) { Telemetry_CountEvent("Server_Lifespan", "VXT_Call", "Method", method); }

void CountMethodCall(const char* method, const char* detail) {
  std::string value = method;
  value += '(';
  value += detail != nullptr ? detail : "<NULL>";
  value += ')';
  CountCall(value.c_str());
}

}  // namespace vxt::frame
