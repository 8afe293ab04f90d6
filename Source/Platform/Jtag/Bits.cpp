#include "Jtag/Bits.h"

#include <algorithm>
#include <bit>

namespace voxtrel::platform::jtag {
namespace {

constexpr uint64_t LowMask(size_t count) { return count >= 64 ? ~uint64_t{0} : (uint64_t{1} << count) - 1; }

}  // namespace

void Bits::Set(size_t index, bool value) {
  const uint64_t bit = uint64_t{1} << (index % 64);
  words_[index / 64] = value ? words_[index / 64] | bit : words_[index / 64] & ~bit;
}

uint64_t Bits::Word(size_t offset) const {
  const size_t index = offset / 64;
  const size_t shift = offset % 64;
  if (index >= words_.size()) return 0;
  uint64_t value = words_[index] >> shift;
  if (shift != 0 && index + 1 < words_.size()) value |= words_[index + 1] << (64 - shift);
  return value;
}

bool Bits::AllOnes() const {
  for (size_t offset = 0; offset < size_; offset += 64)
    if (Word(offset) != LowMask(size_ - offset)) return false;
  return true;
}

void Bits::ClearTail() {
  if (size_ % 64 != 0) words_.back() &= LowMask(size_ % 64);
}

void Bits::resize(size_t size, bool fill) {
  if (size <= size_) {
    words_.resize((size + 63) / 64);
    size_ = size;
    ClearTail();
    return;
  }
  const uint64_t pattern = fill ? ~uint64_t{0} : 0;
  // Fill up the last word, then whole words.
  if (size_ % 64 != 0) AppendWord(pattern, std::min<size_t>(64 - size_ % 64, size - size_));
  words_.resize((size + 63) / 64, pattern);
  size_ = size;
  ClearTail();
}

void Bits::flip() {
  for (uint64_t& word : words_) word = ~word;
  ClearTail();
}

void Bits::AppendWord(uint64_t value, size_t count) {
  if (count == 0) return;
  value &= LowMask(count);
  const size_t shift = size_ % 64;
  if (shift == 0) {
    words_.push_back(value);
  } else {
    words_.back() |= value << shift;
    if (shift + count > 64) words_.push_back(value >> (64 - shift));
  }
  size_ += count;
}

void Bits::AppendRange(const Bits& other, size_t offset, size_t count) {
  words_.reserve((size_ + count + 63) / 64);
  for (size_t done = 0; done < count; done += 64) AppendWord(other.Word(offset + done), std::min<size_t>(64, count - done));
}

Bits Bits::Slice(size_t offset, size_t count) const {
  Bits slice;
  slice.AppendRange(*this, offset, count);
  return slice;
}

Bits Select(const Bits& mask, const Bits& ifSet, const Bits& ifClear) {
  Bits result;
  for (size_t offset = 0; offset < mask.size(); offset += 64) {
    const uint64_t m = mask.Word(offset);
    result.AppendWord((ifSet.Word(offset) & m) | (ifClear.Word(offset) & ~m), std::min<size_t>(64, mask.size() - offset));
  }
  return result;
}

Bits BitsOf(uint64_t value, size_t size) {
  Bits bits;
  bits.AppendWord(value, std::min<size_t>(size, 64));
  bits.resize(size, false);
  return bits;
}

Bits BitsOf(const uint8_t* bytes, size_t bitCount) {
  Bits bits;
  for (size_t offset = 0; offset < bitCount; offset += 64) {
    uint64_t word = 0;
    const size_t count = std::min<size_t>(64, bitCount - offset);
    for (size_t byte = 0; 8 * byte < count; ++byte) word |= uint64_t{bytes[offset / 8 + byte]} << (8 * byte);
    bits.AppendWord(word, count);
  }
  return bits;
}

Bits BitsOf(const BitData* vector, size_t size, bool fill) {
  if (vector == nullptr) return Bits(size, fill);
  const size_t held = vector->bitSize < size ? static_cast<size_t>(vector->bitSize) : size;
  std::vector<uint8_t> bytes((held + 7) / 8, 0);
  if (!bytes.empty()) BitData_GetBuffer(vector, 0, bytes.data(), bytes.size());
  Bits bits = BitsOf(bytes.data(), held);
  bits.resize(size, fill);
  return bits;
}

std::vector<uint8_t> BytesOf(const Bits& bits) {
  std::vector<uint8_t> bytes((bits.size() + 7) / 8, 0);
  for (size_t i = 0; i < bytes.size(); ++i) bytes[i] = static_cast<uint8_t>(bits.Word(8 * i));
  return bytes;
}

receipts::ReceiptValue ValueOf(const Bits& bits) {
  const std::vector<uint8_t> bytes = BytesOf(bits);
  return receipts::ReceiptValue::Bytes(bytes.data(), bits.size());
}

void Store(const Bits& bits, BitData* vector) {
  BitData* source = BitData_CreateManagedFromBuffer(bits.size(), BytesOf(bits).data());
  if (source == nullptr) return;
  BitData_Resize(vector, bits.size());
  BitData_Copy(source, 0, vector, 0, bits.size());
  BitData_FreeManaged(source);
}

}  // namespace voxtrel::platform::jtag
