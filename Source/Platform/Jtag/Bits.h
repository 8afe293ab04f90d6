// Bit strings of the scan model: bit 0 first, in the order bits leave
// through TDO or enter through TDI.
#pragma once

#include <cstdint>
#include <vector>

#include "BitData.h"
#include "OperationReceipt/Receipts.h"

namespace voxtrel::platform::jtag {

using Bits = std::vector<bool>;

// The low `size` bits of `value`; zeros above 64.
Bits BitsOf(uint64_t value, size_t size);
// Bits [offset, offset + 64) as a number; bits past the end read 0.
uint64_t NumberOf(const Bits& bits, size_t offset = 0);
// `size` bits of a vector; bits past its end, or all when it is null, are
// `fill`.
Bits BitsOf(const BitData* vector, size_t size, bool fill);
receipts::ReceiptValue ValueOf(const Bits& bits);
// Writes `bits` into the vector, resizing it to their length.
void Store(const Bits& bits, BitData* vector);

}  // namespace voxtrel::platform::jtag
