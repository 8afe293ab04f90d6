#include "InProc_Breakpoint.h"

namespace vxt {
namespace {
InProc_Breakpoint instance;
}  // namespace

InProc_Breakpoint& InProc_Breakpoint::Instance() { return instance; }

}  // namespace vxt
