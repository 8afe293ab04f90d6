#include "InProc_JtagDiagnostic.h"

#include "BindTable.h"

namespace vxt {
namespace {
InProc_JtagDiagnostic instance;
}  // namespace

InProc_JtagDiagnostic::InProc_JtagDiagnostic() {
  // The component is there from load on; the result is looked at by the
  // operations, which find a null table when it failed.
  BindTable(&Voxtrel_GetJtag, jtag);
}

InProc_JtagDiagnostic& InProc_JtagDiagnostic::Instance() { return instance; }

}  // namespace vxt
