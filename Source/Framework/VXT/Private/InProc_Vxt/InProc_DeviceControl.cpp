#include "InProc_DeviceControl.h"

#include "BindTable.h"

namespace vxt {
namespace {
InProc_DeviceControl instance;
}  // namespace

InProc_DeviceControl::InProc_DeviceControl() {
  // The component is there from load on; the result is looked at by the
  // operations, which find a null table when it failed.
  BindTable(&Voxtrel_GetDeviceControl, deviceControl);
}

InProc_DeviceControl& InProc_DeviceControl::Instance() { return instance; }

}  // namespace vxt
