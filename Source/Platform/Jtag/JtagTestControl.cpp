#include "JtagTestControl.h"

#include "Jtag/JtagModel.h"

namespace voxtrel::testing {

bool SetJtagChainFault(uint32_t jtagChainId, const std::string& fault) {
  using namespace voxtrel::platform::jtag;
  const ChainFault chosen = ChainFaultFromName(fault);
  if (chosen == ChainFault::None && !fault.empty()) return false;
  for (const auto& slot : JtagModel::Instance().Chains()) {
    std::lock_guard lock(slot->mutex);
    if (slot->chain.Id() != jtagChainId) continue;
    slot->chain.SetFault(chosen);
    return true;
  }
  return false;
}

}  // namespace voxtrel::testing
