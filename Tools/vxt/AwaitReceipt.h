// Waiting for an operation that hands back a token, for commands that only
// need to know that it completed.
#pragma once

#include <cstdint>
#include <string>

#include "InProc_Vxt.h"

namespace vxt::cli {

// Waits for the operation and ends its token; throws with its message
// unless it completed.
void AwaitCompletion(IInternalService_OperationReceipt& receipts, uint64_t token, const std::string& call);

}  // namespace vxt::cli
