// TargetManager.GetCoreGroupName: the name of a core group, which is its
// identifier.
#pragma once

#include <cstdint>

namespace voxtrel::platform::target_manager {

uint32_t GetCoreGroupName(uint32_t deviceId, char* name);

}  // namespace voxtrel::platform::target_manager
