#include "WordBlocks.h"

#include <atomic>
#include <mutex>
#include <unordered_map>
#include <vector>

namespace voxtrel::bitdata {
namespace {

// Below kLargeWords a block comes from the heap's own free lists, which
// reuse it.
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
  // Storage that more than one vector holds: how many hold it besides the
  // first. `anyShared` lets every other vector pass without the lock.
  std::unordered_map<const uint64_t*, uint64_t> otherHolders;
  std::atomic<bool> anyShared{false};
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

// Lets one holder of shared storage go; false when the storage is not shared.
static bool LetGoOfShared(KeptBlocks& kept, const uint64_t* words) {
  if (!kept.anyShared.load(std::memory_order_acquire)) return false;
  const std::lock_guard lock(kept.mutex);
  const auto found = kept.otherHolders.find(words);
  if (found == kept.otherHolders.end()) return false;
  if (--found->second == 0) kept.otherHolders.erase(found);
  kept.anyShared.store(!kept.otherHolders.empty(), std::memory_order_release);
  return true;
}

void ReleaseWords(uint64_t* words, uint64_t capacity) {
  if (words == nullptr) return;
  KeptBlocks& kept = Kept();
  if (LetGoOfShared(kept, words)) return;
  if (capacity >= kLargeWords) {
    const std::lock_guard lock(kept.mutex);
    if (kept.blocks.size() < kMostBlocks && kept.words + capacity <= kMostWords) {
      kept.blocks.push_back({words, capacity});
      kept.words += capacity;
      return;
    }
  }
  delete[] words;
}

void ShareWords(const uint64_t* words) {
  KeptBlocks& kept = Kept();
  const std::lock_guard lock(kept.mutex);
  ++kept.otherHolders[words];
  kept.anyShared.store(true, std::memory_order_release);
}

bool IsShared(const uint64_t* words) {
  KeptBlocks& kept = Kept();
  if (!kept.anyShared.load(std::memory_order_acquire)) return false;
  const std::lock_guard lock(kept.mutex);
  return kept.otherHolders.count(words) != 0;
}

}  // namespace voxtrel::bitdata
