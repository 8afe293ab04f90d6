#include "InProc_Event.h"

namespace vxt {
namespace {
InProc_Event instance;
}  // namespace

InProc_Event& InProc_Event::Instance() { return instance; }

uint32_t InterfacePortEventCallback(const void*) {
  // Interface port events reach no subscriber until the event lists exist.
  return 0;
}

}  // namespace vxt
