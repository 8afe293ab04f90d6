// Counting set bits of whole words.
#include "WordStorage.h"

namespace voxtrel::bitdata {
namespace {

// Four running sums keep the additions, and on some processors the count
// instruction's false dependency on its output, off one chain. Always inlined,
// so that each caller below compiles it for its own instruction set.
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

uint64_t PopCountPortable(const uint64_t* words, uint64_t count) { return SumPopCounts(words, count); }

#if defined(__x86_64__)
// Built for processors with the POPCNT instruction. The choice is made at run
// time, so the library still runs on processors without it.
__attribute__((target("popcnt"))) uint64_t PopCountHardware(const uint64_t* words, uint64_t count) {
  return SumPopCounts(words, count);
}

bool ProcessorHasPopCount() {
  __builtin_cpu_init();
  return __builtin_cpu_supports("popcnt");
}
#endif

}  // namespace

uint64_t PopCountWords(const uint64_t* words, uint64_t count) {
#if defined(__x86_64__)
  static const bool hardware = ProcessorHasPopCount();
  if (hardware) return PopCountHardware(words, count);
#endif
  return PopCountPortable(words, count);
}

}  // namespace voxtrel::bitdata
