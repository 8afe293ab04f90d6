#include "InProc_InterfacePins.h"

namespace vxt {
namespace {
InProc_InterfacePins instance;
}  // namespace

InProc_InterfacePins& InProc_InterfacePins::Instance() { return instance; }

}  // namespace vxt
