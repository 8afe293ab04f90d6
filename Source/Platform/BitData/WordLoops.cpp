// The loops over whole words that carry the library's large operations.
//
// Each loop is written once and compiled twice: for any x86-64 processor, and
// for processors with AVX2 and POPCNT, where the compiler uses 32-byte
// vectors and the count instruction. The choice is made once, at run time, so
// the library runs on every processor and uses what it finds.
#include <cstring>

#include "WordStorage.h"

namespace voxtrel::bitdata {
namespace {

// Four running sums keep the additions, and on some processors the count
// instruction's false dependency on its output, off one chain.
[[gnu::always_inline]] inline uint64_t SumPopCounts(const uint64_t* words, uint64_t count) {
  uint64_t sums[4] = {0, 0, 0, 0};
  uint64_t i = 0;
  for (; i + 4 <= count; i += 4) {
    sums[0] += __builtin_popcountll(words[i]);
    sums[1] += __builtin_popcountll(words[i + 1]);
    sums[2] += __builtin_popcountll(words[i + 2]);
    sums[3] += __builtin_popcountll(words[i + 3]);
  }
  for (; i < count; ++i) sums[0] += __builtin_popcountll(words[i]);
  return sums[0] + sums[1] + sums[2] + sums[3];
}

// The in-place form gets a loop of its own: with `out` equal to `left` the
// compiler's overlap test would otherwise refuse vectors.
template <class Operation>
[[gnu::always_inline]] inline void CombineLoop(uint64_t* out, const uint64_t* left, const uint64_t* right,
                                               uint64_t count, Operation operation) {
  if (out == left) {
    for (uint64_t i = 0; i < count; ++i) out[i] = operation(out[i], right[i]);
  } else if (out == right) {
    for (uint64_t i = 0; i < count; ++i) out[i] = operation(left[i], out[i]);
  } else {
    for (uint64_t i = 0; i < count; ++i) out[i] = operation(left[i], right[i]);
  }
}

[[gnu::always_inline]] inline void Combine(uint64_t* out, const uint64_t* left, const uint64_t* right,
                                           uint64_t count, Logic logic) {
  switch (logic) {
    case Logic::And:
      CombineLoop(out, left, right, count, [](uint64_t a, uint64_t b) { return a & b; });
      break;
    case Logic::Or:
      CombineLoop(out, left, right, count, [](uint64_t a, uint64_t b) { return a | b; });
      break;
    case Logic::Xor:
      CombineLoop(out, left, right, count, [](uint64_t a, uint64_t b) { return a ^ b; });
      break;
  }
}

// Four words of a field as one vector; memcpy leaves the alignment to the
// processor.
using Quad = uint64_t __attribute__((vector_size(4 * sizeof(uint64_t))));

// destination[i] = the 64 bits of source from bit `shift` of word i on. Four
// words at a time: each block loads all it reads before it stores, so the
// copy is right even where destination and source overlap, provided the
// blocks run away from the words they will still read (upwards from the top,
// downwards from the bottom). The compiler does not vectorise the loop
// itself when it cannot prove the arrays apart.
[[gnu::always_inline]] inline void MoveQuad(uint64_t* destination, const uint64_t* source, unsigned shift) {
  Quad low, high;
  std::memcpy(&low, source, sizeof low);
  std::memcpy(&high, source + 1, sizeof high);
  const Quad moved = (low >> shift) | (high << (kWordBits - shift));
  std::memcpy(destination, &moved, sizeof moved);
}
[[gnu::always_inline]] inline uint64_t MoveWord(const uint64_t* source, unsigned shift) {
  return (source[0] >> shift) | (source[1] << (kWordBits - shift));
}

[[gnu::always_inline]] inline void MoveAscending(uint64_t* destination, const uint64_t* source, uint64_t count,
                                                 unsigned shift) {
  uint64_t i = 0;
  for (; i + 4 <= count; i += 4) MoveQuad(destination + i, source + i, shift);
  for (; i < count; ++i) destination[i] = MoveWord(source + i, shift);
}

[[gnu::always_inline]] inline void MoveDescending(uint64_t* destination, const uint64_t* source, uint64_t count,
                                                  unsigned shift) {
  uint64_t i = count;
  for (; i >= 4; i -= 4) MoveQuad(destination + i - 4, source + i - 4, shift);
  while (i-- > 0) destination[i] = MoveWord(source + i, shift);
}

[[gnu::always_inline]] inline void MoveBetween(uint64_t* destination, const uint64_t* source, uint64_t count,
                                               unsigned shift) {
  MoveAscending(destination, source, count, shift);
}

[[gnu::always_inline]] inline void MoveWithin(uint64_t* words, uint64_t to, uint64_t from, uint64_t count,
                                              unsigned shift) {
  // Upwards from the top, so that every word is read before it is written.
  if (to > from) {
    MoveDescending(words + to, words + from, count, shift);
  } else {
    MoveAscending(words + to, words + from, count, shift);
  }
}

#define VOXTREL_BITDATA_WIDE [[gnu::target("avx2,popcnt")]]

uint64_t PopCountNarrow(const uint64_t* words, uint64_t count) { return SumPopCounts(words, count); }
VOXTREL_BITDATA_WIDE uint64_t PopCountWide(const uint64_t* words, uint64_t count) {
  return SumPopCounts(words, count);
}

void CombineNarrow(uint64_t* out, const uint64_t* left, const uint64_t* right, uint64_t count, Logic logic) {
  Combine(out, left, right, count, logic);
}
VOXTREL_BITDATA_WIDE void CombineWide(uint64_t* out, const uint64_t* left, const uint64_t* right, uint64_t count,
                                      Logic logic) {
  Combine(out, left, right, count, logic);
}

void MoveBetweenNarrow(uint64_t* destination, const uint64_t* source, uint64_t count, unsigned shift) {
  MoveBetween(destination, source, count, shift);
}
VOXTREL_BITDATA_WIDE void MoveBetweenWide(uint64_t* destination, const uint64_t* source, uint64_t count,
                                          unsigned shift) {
  MoveBetween(destination, source, count, shift);
}

void MoveWithinNarrow(uint64_t* words, uint64_t to, uint64_t from, uint64_t count, unsigned shift) {
  MoveWithin(words, to, from, count, shift);
}
VOXTREL_BITDATA_WIDE void MoveWithinWide(uint64_t* words, uint64_t to, uint64_t from, uint64_t count,
                                         unsigned shift) {
  MoveWithin(words, to, from, count, shift);
}

#undef VOXTREL_BITDATA_WIDE

bool ProcessorIsWide() {
  __builtin_cpu_init();
  return __builtin_cpu_supports("avx2") && __builtin_cpu_supports("popcnt");
}

// Read once, on first use, from any thread.
bool Wide() {
  static const bool wide = ProcessorIsWide();
  return wide;
}

}  // namespace

uint64_t PopCountWords(const uint64_t* words, uint64_t count) {
  return Wide() ? PopCountWide(words, count) : PopCountNarrow(words, count);
}

void CombineWords(uint64_t* out, const uint64_t* left, const uint64_t* right, uint64_t count, Logic logic) {
  Wide() ? CombineWide(out, left, right, count, logic) : CombineNarrow(out, left, right, count, logic);
}

void MoveWordsBetween(uint64_t* destination, const uint64_t* source, uint64_t count, unsigned shift) {
  Wide() ? MoveBetweenWide(destination, source, count, shift) : MoveBetweenNarrow(destination, source, count, shift);
}

void MoveWordsWithin(uint64_t* words, uint64_t to, uint64_t from, uint64_t count, unsigned shift) {
  Wide() ? MoveWithinWide(words, to, from, count, shift) : MoveWithinNarrow(words, to, from, count, shift);
}

}  // namespace voxtrel::bitdata
