#include "InProc_JtagConfiguration.h"

#include "BindTable.h"

namespace vxt {
namespace {
InProc_JtagConfiguration instance;
}  // namespace

InProc_JtagConfiguration::InProc_JtagConfiguration() {
  // The component is there from load on; the result is looked at by the
  // operations, which find a null table when it failed.
  BindTable(&Voxtrel_GetJtag, jtag);
  BindTable(&Voxtrel_GetTargetManager, targetManager);
}

InProc_JtagConfiguration& InProc_JtagConfiguration::Instance() { return instance; }

}  // namespace vxt
