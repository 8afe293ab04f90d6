#include "InProc_Authorization.h"

#include "BindTable.h"

namespace vxt {
namespace {
InProc_Authorization instance;
}  // namespace

InProc_Authorization::InProc_Authorization() {
  // The component is there from load on; the result is looked at by the
  // operations, which find a null table when it failed.
  BindTable(&Voxtrel_GetAuthorization, authorization);
}

InProc_Authorization& InProc_Authorization::Instance() { return instance; }

}  // namespace vxt
