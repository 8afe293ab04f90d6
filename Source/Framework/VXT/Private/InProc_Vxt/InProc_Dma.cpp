#include "InProc_Dma.h"

namespace vxt {
namespace {
InProc_Dma instance;
}  // namespace

InProc_Dma& InProc_Dma::Instance() { return instance; }

}  // namespace vxt
