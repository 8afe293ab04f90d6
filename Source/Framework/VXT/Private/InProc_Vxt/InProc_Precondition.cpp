#include "InProc_Precondition.h"

namespace vxt {
namespace {
InProc_Precondition instance;
}  // namespace

InProc_Precondition& InProc_Precondition::Instance() { return instance; }

}  // namespace vxt
