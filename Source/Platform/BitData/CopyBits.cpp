// Copying bit ranges between or within storages.
#include <cstring>

#include "WordStorage.h"

namespace voxtrel::bitdata {

void CopyBits(uint64_t* destination, uint64_t destinationOffset, const uint64_t* source, uint64_t sourceOffset,
              uint64_t size) {
  const bool same = destination == source;
  if (size == 0 || (same && destinationOffset == sourceOffset)) return;
  const uint64_t end = destinationOffset + size;
  const uint64_t first = destinationOffset / kWordBits;
  const uint64_t last = (end - 1) / kWordBits;
  auto partial = [&](uint64_t word) {
    const uint64_t start = std::max(destinationOffset, word * kWordBits);
    const uint64_t mask = FieldMaskOfWord(word, destinationOffset, end);
    const uint64_t value = LoadBits(source, sourceOffset + (start - destinationOffset)) << (start % kWordBits);
    destination[word] = (destination[word] & ~mask) | (value & mask);
  };
  if (first == last) {
    partial(first);
    return;
  }
  // Within one storage, a copy upwards runs from the top down.
  const bool descending = same && destinationOffset > sourceOffset;
  partial(descending ? last : first);
  const uint64_t begin = first + 1;
  const uint64_t count = last - begin;
  const uint64_t sourceBit = sourceOffset + (begin * kWordBits - destinationOffset);
  const uint64_t from = sourceBit / kWordBits;
  const unsigned shift = sourceBit % kWordBits;
  if (count != 0) {
    if (shift == 0) {
      std::memmove(destination + begin, source + from, count * sizeof(uint64_t));
    } else if (same) {
      MoveWordsWithin(destination, begin, from, count, shift);
    } else {
      MoveWordsBetween(destination + begin, source + from, count, shift);
    }
  }
  partial(descending ? first : last);
}

}  // namespace voxtrel::bitdata
