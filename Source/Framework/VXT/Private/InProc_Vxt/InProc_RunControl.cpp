#include "InProc_RunControl.h"

namespace vxt {
namespace {
InProc_RunControl instance;
}  // namespace

InProc_RunControl& InProc_RunControl::Instance() { return instance; }

}  // namespace vxt
