#include "InProc_Break.h"

namespace vxt {
namespace {
InProc_Break instance;
}  // namespace

InProc_Break& InProc_Break::Instance() { return instance; }

}  // namespace vxt
