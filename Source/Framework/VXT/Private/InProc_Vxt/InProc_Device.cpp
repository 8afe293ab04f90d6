#include "InProc_Device.h"

#include "BindTable.h"

namespace vxt {
namespace {
InProc_Device instance;
}  // namespace

InProc_Device::InProc_Device() {
  // The component is there from load on; the result is looked at by the
  // operations, which find a null table when it failed.
  BindTable(&Voxtrel_GetTargetManager, targetManager);
}

InProc_Device& InProc_Device::Instance() { return instance; }

}  // namespace vxt
