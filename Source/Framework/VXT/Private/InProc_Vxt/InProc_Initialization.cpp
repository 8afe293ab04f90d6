#include "InProc_Initialization.h"

#include "BindTable.h"

namespace vxt {
namespace {
InProc_Initialization instance;
}  // namespace

InProc_Initialization::InProc_Initialization() {
  // The component is there from load on; the result is looked at by the
  // operations, which find a null table when it failed.
  BindTable(&Voxtrel_GetTargetManager, targetManager);
}

InProc_Initialization& InProc_Initialization::Instance() { return instance; }

}  // namespace vxt
