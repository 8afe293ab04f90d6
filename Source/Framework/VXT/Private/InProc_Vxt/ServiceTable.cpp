#include "ServiceTable.h"

#include "InProc_General.h"
#include "VXT_ServiceIds.h"

namespace vxt {

void* FindService(uint32_t serviceId) {
  switch (serviceId) {
    case VXT_Service_General:
      return static_cast<IInternalService_General*>(&InProc_General::Instance());
    default:
      return nullptr;
  }
}

}  // namespace vxt
