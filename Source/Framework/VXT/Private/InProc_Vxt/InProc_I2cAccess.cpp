#include "InProc_I2cAccess.h"

namespace vxt {
namespace {
InProc_I2cAccess instance;
}  // namespace

InProc_I2cAccess& InProc_I2cAccess::Instance() { return instance; }

}  // namespace vxt
