#include "InProc_Event.h"

namespace vxt {
namespace {
InProc_Event instance;
}  // namespace

InProc_Event& InProc_Event::Instance() { return instance; }

}  // namespace vxt
