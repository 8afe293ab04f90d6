#include "InProc_Memory.h"

namespace vxt {
namespace {
InProc_Memory instance;
}  // namespace

InProc_Memory& InProc_Memory::Instance() { return instance; }

}  // namespace vxt
