#include "InProc_BitDataOperations.h"

namespace vxt {
namespace {
InProc_BitDataOperations instance;
}  // namespace

InProc_BitDataOperations& InProc_BitDataOperations::Instance() { return instance; }

}  // namespace vxt
