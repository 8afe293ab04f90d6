#include "TargetManager/ListAnswers.h"

#include <algorithm>

namespace voxtrel::platform::target_manager {

void IdEntries::operator()(const std::vector<uint32_t>& ids, uint32_t* out) const {
  const size_t filled = std::min<size_t>(ids.size(), max);
  std::copy_n(ids.begin(), filled, out);
  std::fill(out + filled, out + max, 0u);
}

}  // namespace voxtrel::platform::target_manager
