#include "InProc_RunControlConfiguration.h"

namespace vxt {
namespace {
InProc_RunControlConfiguration instance;
}  // namespace

InProc_RunControlConfiguration& InProc_RunControlConfiguration::Instance() { return instance; }

}  // namespace vxt
