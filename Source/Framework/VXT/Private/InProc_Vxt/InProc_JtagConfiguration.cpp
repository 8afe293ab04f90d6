#include "InProc_JtagConfiguration.h"

namespace vxt {
namespace {
InProc_JtagConfiguration instance;
}  // namespace

InProc_JtagConfiguration::InProc_JtagConfiguration() {
  // The component is there from load on; the result is looked at by the
  // operations, which find a null table when it failed.
  Voxtrel_GetJtag(&jtag);
  Voxtrel_GetTargetManager(&targetManager);
}

InProc_JtagConfiguration& InProc_JtagConfiguration::Instance() { return instance; }

}  // namespace vxt
