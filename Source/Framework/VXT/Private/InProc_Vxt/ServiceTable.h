// The fixed table of services by public id.
#pragma once

#include <cstdint>

namespace vxt {

// The address of the service's interface, or null for an id with no service.
void* FindService(uint32_t serviceId);

}  // namespace vxt
