#include "InProc_JtagAccess.h"

#include "BindTable.h"

namespace vxt {
namespace {
InProc_JtagAccess instance;
}  // namespace

InProc_JtagAccess::InProc_JtagAccess() {
  // The component is there from load on; the result is looked at by the
  // operations, which find a null table when it failed.
  BindTable(&Voxtrel_GetJtag, jtag);
}

InProc_JtagAccess& InProc_JtagAccess::Instance() { return instance; }

}  // namespace vxt
