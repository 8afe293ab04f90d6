#include "InProc_General.h"

namespace vxt {
namespace {
InProc_General instance;
}  // namespace

InProc_General& InProc_General::Instance() { return instance; }

void InProc_General::_ClientCloseCallback(void*, const char*, const void*) {
  // The general service holds nothing per client yet.
}

}  // namespace vxt
