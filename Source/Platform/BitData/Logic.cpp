// Bitwise combination of fields.
#include "ObjectStorage.h"

namespace voxtrel::bitdata {
namespace {

enum class Order { Any, Ascending, Descending };

// The order in which the destination's words must be written so that a
// source in the same vector is read before it is overwritten.
Order OrderFor(const BitData* destination, uint64_t destinationOffset, const BitData* source,
               uint64_t sourceOffset, uint64_t size) {
  if (source != destination || sourceOffset == destinationOffset) return Order::Any;
  const bool overlap = destinationOffset < sourceOffset + size && sourceOffset < destinationOffset + size;
  if (!overlap) return Order::Any;
  return destinationOffset < sourceOffset ? Order::Ascending : Order::Descending;
}

uint64_t Apply(Logic logic, uint64_t left, uint64_t right) {
  switch (logic) {
    case Logic::And: return left & right;
    case Logic::Or: return left | right;
    case Logic::Xor: return left ^ right;
  }
  return 0;
}

uint32_t Combine(BitData* destination, uint64_t destinationOffset, const BitData* left, uint64_t leftOffset,
                 const BitData* right, uint64_t rightOffset, uint64_t size, Logic logic) {
  if (destination == nullptr || left == nullptr || right == nullptr) return BITDATA_NULL_ARGUMENT;
  if (uint32_t code = CheckField(*destination, destinationOffset, size)) return code;
  if (uint32_t code = CheckField(*left, leftOffset, size)) return code;
  if (uint32_t code = CheckField(*right, rightOffset, size)) return code;
  if (size == 0) return 0;

  // Taken before the operands are read: one of them may be the destination.
  uint64_t* out = WritableWords(*destination);
  const uint64_t* leftWords = left->words;
  const uint64_t* rightWords = right->words;
  const Order leftOrder = OrderFor(destination, destinationOffset, left, leftOffset, size);
  Order rightOrder = OrderFor(destination, destinationOffset, right, rightOffset, size);
  std::vector<uint64_t> rightCopy;
  if (leftOrder != Order::Any && rightOrder != Order::Any && leftOrder != rightOrder) {
    // No single order suits both operands: read the right one from a copy.
    rightCopy = NewStorage(size);
    CopyBits(rightCopy.data(), 0, rightWords, rightOffset, size);
    rightWords = rightCopy.data();
    rightOffset = 0;
    rightOrder = Order::Any;
  }
  const bool descending = leftOrder == Order::Descending || rightOrder == Order::Descending;

  if ((destinationOffset | leftOffset | rightOffset) % kWordBits == 0 && !descending) {
    // Word-aligned fields: whole words, then the partial top word.
    const uint64_t full = size / kWordBits;
    uint64_t* to = out + destinationOffset / kWordBits;
    const uint64_t* a = leftWords + leftOffset / kWordBits;
    const uint64_t* b = rightWords + rightOffset / kWordBits;
    CombineWords(to, a, b, full, logic);
    if (const uint64_t tail = size % kWordBits) {
      const uint64_t mask = LowMask(tail);
      to[full] = (to[full] & ~mask) | (Apply(logic, a[full], b[full]) & mask);
    }
  } else {
    WriteField(out, destinationOffset, size, descending, [&](uint64_t pos) {
      return Apply(logic, LoadBits(leftWords, leftOffset + pos), LoadBits(rightWords, rightOffset + pos));
    });
  }
  return 0;
}

}  // namespace
}  // namespace voxtrel::bitdata

using namespace voxtrel::bitdata;

uint32_t BitData_BitwiseAnd(BitData* destination, uint64_t destinationOffset, const BitData* left,
                            uint64_t leftOffset, const BitData* right, uint64_t rightOffset, uint64_t bitSize) {
  return Combine(destination, destinationOffset, left, leftOffset, right, rightOffset, bitSize, Logic::And);
}

uint32_t BitData_BitwiseOr(BitData* destination, uint64_t destinationOffset, const BitData* left,
                           uint64_t leftOffset, const BitData* right, uint64_t rightOffset, uint64_t bitSize) {
  return Combine(destination, destinationOffset, left, leftOffset, right, rightOffset, bitSize, Logic::Or);
}

uint32_t BitData_BitwiseXor(BitData* destination, uint64_t destinationOffset, const BitData* left,
                            uint64_t leftOffset, const BitData* right, uint64_t rightOffset, uint64_t bitSize) {
  return Combine(destination, destinationOffset, left, leftOffset, right, rightOffset, bitSize, Logic::Xor);
}

uint32_t BitData_XorValue(BitData* object, uint64_t bitOffset, uint64_t bitSize, uint64_t value) {
  if (uint32_t code = CheckField(object, bitOffset, bitSize)) return code;
  uint64_t* words = WritableWords(*object);
  // Rotating the value to each window's field position repeats it every 64
  // bits from the field's bit 0.
  WriteField(words, bitOffset, bitSize, false,
             [&](uint64_t pos) { return LoadBits(words, bitOffset + pos) ^ std::rotr(value, pos % kWordBits); });
  return 0;
}
