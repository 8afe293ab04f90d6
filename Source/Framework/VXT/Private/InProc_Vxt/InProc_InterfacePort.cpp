#include "InProc_InterfacePort.h"

namespace vxt {
namespace {
InProc_InterfacePort instance;
}  // namespace

InProc_InterfacePort& InProc_InterfacePort::Instance() { return instance; }

}  // namespace vxt
