#include "InProc_StatePort.h"

namespace vxt {
namespace {
InProc_StatePort instance;
}  // namespace

InProc_StatePort& InProc_StatePort::Instance() { return instance; }

}  // namespace vxt
