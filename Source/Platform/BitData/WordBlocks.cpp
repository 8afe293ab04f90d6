#include "WordBlocks.h"

#include <mutex>
#include <vector>

namespace voxtrel::bitdata {
namespace {

// Below this a block comes from the heap's own free lists, which reuse it.
constexpr uint64_t kLargeWords = 16 * 1024;  // 128 KiB
// What is kept in all: a few transfers' worth, so that the host process
// does not carry much it has stopped using.
constexpr size_t kMostBlocks = 4;
constexpr uint64_t kMostWords = 8 * 1024 * 1024;  // 64 MiB
// A kept block serves a request at most this much smaller, so that callers
// that clear their storage's tail do not clear much more than they use.
constexpr uint64_t kSlackDivisor = 8;

struct Block {
  uint64_t* words;
  uint64_t capacity;
};

struct KeptBlocks {
  std::mutex mutex;
  std::vector<Block> blocks;
  uint64_t words = 0;
};

// Never destroyed: vectors are released until the process ends, by static
// objects of other libraries too.
KeptBlocks& Kept() {
  static auto* kept = new KeptBlocks;
  return *kept;
}

}  // namespace

uint64_t* AllocateWords(uint64_t needed, uint64_t& capacity) {
  if (needed >= kLargeWords) {
    KeptBlocks& kept = Kept();
    const std::lock_guard lock(kept.mutex);
    for (auto block = kept.blocks.begin(); block != kept.blocks.end(); ++block) {
      if (block->capacity < needed || block->capacity - needed > needed / kSlackDivisor) continue;
      const Block found = *block;
      kept.blocks.erase(block);
      kept.words -= found.capacity;
      capacity = found.capacity;
      return found.words;
    }
  }
  capacity = needed;
  return new uint64_t[needed];
}

void ReleaseWords(uint64_t* words, uint64_t capacity) {
  if (words == nullptr) return;
  if (capacity >= kLargeWords) {
    KeptBlocks& kept = Kept();
    const std::lock_guard lock(kept.mutex);
    if (kept.blocks.size() < kMostBlocks && kept.words + capacity <= kMostWords) {
      kept.blocks.push_back({words, capacity});
      kept.words += capacity;
      return;
    }
  }
  delete[] words;
}

}  // namespace voxtrel::bitdata
