// Bit strings of the scan model: bit 0 first, in the order bits leave
// through TDO or enter through TDI. Bits are packed 64 to a word (bit i is
// bit i % 64 of word i / 64, the bits past the end of the last word 0), so
// that a long scan moves whole words.
#pragma once

#include <cstdint>
#include <vector>

#include <boost/container/small_vector.hpp>

#include "BitData.h"
#include "OperationReceipt/Receipts.h"

namespace voxtrel::platform::jtag {

class Bits {
 public:
  Bits() = default;
  Bits(size_t size, bool fill) { resize(size, fill); }

  size_t size() const { return size_; }
  bool empty() const { return size_ == 0; }
  bool operator[](size_t index) const { return ((words_[index / 64] >> (index % 64)) & 1u) != 0; }
  void Set(size_t index, bool value);
  // Bits [offset, offset + 64) as a number; bits past the end read 0.
  uint64_t Word(size_t offset) const;
  bool AllOnes() const;
  bool operator==(const Bits& other) const { return size_ == other.size_ && words_ == other.words_; }

  void resize(size_t size, bool fill = false);
  void flip();
  // The low `count` (at most 64) bits of `value` after the last bit.
  void AppendWord(uint64_t value, size_t count);
  void Append(const Bits& other) { AppendRange(other, 0, other.size()); }
  void AppendRange(const Bits& other, size_t offset, size_t count);
  Bits Slice(size_t offset, size_t count) const;

 private:
  void ClearTail();

  // Most scans are an instruction or a register of a few dozen bits: their
  // bits stay in place, without a heap allocation each.
  boost::container::small_vector<uint64_t, 2> words_;
  size_t size_ = 0;
};

// `mask`'s length of bits: where the mask has a 1, `ifSet`'s bit, else
// `ifClear`'s (bits past either's end read 0).
Bits Select(const Bits& mask, const Bits& ifSet, const Bits& ifClear);

// The low `size` bits of `value`; zeros above 64.
Bits BitsOf(uint64_t value, size_t size);
// Bits [offset, offset + 64) as a number; bits past the end read 0.
inline uint64_t NumberOf(const Bits& bits, size_t offset = 0) { return bits.Word(offset); }
// `size` bits of a vector; bits past its end, or all when it is null, are
// `fill`.
Bits BitsOf(const BitData* vector, size_t size, bool fill);
receipts::ReceiptValue ValueOf(const Bits& bits);
// Writes `bits` into the vector, resizing it to their length.
void Store(const Bits& bits, BitData* vector);
// Bit 0 of byte 0 first; the last byte padded with zeros.
std::vector<uint8_t> BytesOf(const Bits& bits);
Bits BitsOf(const uint8_t* bytes, size_t bitCount);
inline Bits BitsOf(const std::vector<uint8_t>& bytes) { return BitsOf(bytes.data(), 8 * bytes.size()); }

}  // namespace voxtrel::platform::jtag
