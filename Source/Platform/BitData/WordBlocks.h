// The word storage of vectors. Large blocks are kept for reuse when
// released: a memory read of megabytes passes through several vectors, and
// a fresh block of that size comes from the kernel page by page, each page
// costing more to fault in than to copy.
#pragma once

#include <cstdint>

namespace voxtrel::bitdata {

// Storage of at least this many words (128 KiB) is large: kept for reuse
// when released, and shared rather than copied where a copy is only read.
inline constexpr uint64_t kLargeWords = 16 * 1024;

// At least `needed` words, unwritten; `capacity` is set to how many there
// are. Throws std::bad_alloc when the storage cannot be had.
uint64_t* AllocateWords(uint64_t needed, uint64_t& capacity);

// Storage that AllocateWords gave, with the capacity it said. Storage that
// several vectors hold is released by the last of them.
void ReleaseWords(uint64_t* words, uint64_t capacity);

// Storage held by one more vector (see SharingObject).
void ShareWords(const uint64_t* words);
// Whether more than one vector holds `words`.
bool IsShared(const uint64_t* words);

}  // namespace voxtrel::bitdata
