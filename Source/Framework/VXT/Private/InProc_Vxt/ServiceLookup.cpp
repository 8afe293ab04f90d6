// Service lookup by id, and the calling thread's last error.
#include "ServiceTable.h"
#include "VXT_Exports.h"
#include "frame/LastError.h"
#include "frame/Render.h"
#include "frame/TraceLine.h"

using namespace vxt;

extern "C" VXT_Result GetService(void*, uint32_t serviceId, void** service) {
  const frame::ServiceLogger& logger = frame::LookupLogger();
  frame::TraceLine(logger, 1, "In  InProc GetService(serviceId = ", frame::Dec{serviceId}, ")", frame::kTrailer);
  frame::ClearLastErrorMessage();

  VXT_Result result = VXT_E_INVALID_ARGUMENT;
  if (service != nullptr) {
    *service = FindService(serviceId);
    if (*service != nullptr) {
      result = VXT_SUCCESS;
    } else {
      frame::TraceLine(logger, 1, "Out InProc GetService() Unable to find service");
      result = VXT_E_SERVICE_NOT_FOUND;
    }
  }
  frame::TraceLine(logger, 1, "Out InProc GetService(service = ", frame::Bool{service != nullptr},
                   ") ErrorCode = ", frame::Hex8{result}, frame::kTrailer);
  return result;
}

extern "C" const char* GetLastErrorMessage(void) {
  const frame::ServiceLogger& logger = frame::LookupLogger();
  frame::TraceLine(logger, 1, "In  InProc GetLastErrorMessage()", frame::kTrailer);
  const char* message = frame::LastErrorMessage();
  frame::TraceLine(logger, 1, "Out InProc GetLastErrorMessage(msg = ", frame::Quoted{message}, ")", frame::kTrailer);
  return message;
}
