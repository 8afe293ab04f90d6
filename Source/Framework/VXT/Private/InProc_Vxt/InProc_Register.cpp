#include "InProc_Register.h"

namespace vxt {
namespace {
InProc_Register instance;
}  // namespace

InProc_Register& InProc_Register::Instance() { return instance; }

}  // namespace vxt
