#include "InProc_AsmDasm.h"

namespace vxt {
namespace {
InProc_AsmDasm instance;
}  // namespace

InProc_AsmDasm& InProc_AsmDasm::Instance() { return instance; }

}  // namespace vxt
