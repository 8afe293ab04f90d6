#include "InProc_BitData.h"

namespace vxt {
namespace {
InProc_BitData instance;
}  // namespace

InProc_BitData& InProc_BitData::Instance() { return instance; }

}  // namespace vxt
