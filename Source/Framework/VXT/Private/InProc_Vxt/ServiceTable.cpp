#include "ServiceTable.h"

#include "VXT_ServiceIds.h"

namespace vxt {

void* FindService(uint32_t serviceId) {
  switch (serviceId) {
    default:
      return nullptr;
  }
}

}  // namespace vxt
