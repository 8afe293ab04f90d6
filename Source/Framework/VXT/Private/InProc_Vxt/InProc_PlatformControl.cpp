#include "InProc_PlatformControl.h"

namespace vxt {
namespace {
InProc_PlatformControl instance;
}  // namespace

InProc_PlatformControl& InProc_PlatformControl::Instance() { return instance; }

}  // namespace vxt
