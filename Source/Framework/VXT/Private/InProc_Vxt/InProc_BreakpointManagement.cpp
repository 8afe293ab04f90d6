#include "InProc_BreakpointManagement.h"

namespace vxt {
namespace {
InProc_BreakpointManagement instance;
}  // namespace

InProc_BreakpointManagement& InProc_BreakpointManagement::Instance() { return instance; }

}  // namespace vxt
