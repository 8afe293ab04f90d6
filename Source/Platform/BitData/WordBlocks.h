// The word storage of vectors. Large blocks are kept for reuse when
// released: a memory read of megabytes passes through several vectors, and
// a fresh block of that size comes from the kernel page by page, each page
// costing more to fault in than to copy.
#pragma once

#include <cstdint>

namespace voxtrel::bitdata {

// At least `needed` words, unwritten; `capacity` is set to how many there
// are. Throws std::bad_alloc when the storage cannot be had.
uint64_t* AllocateWords(uint64_t needed, uint64_t& capacity);

// Storage that AllocateWords gave, with the capacity it said.
void ReleaseWords(uint64_t* words, uint64_t capacity);

}  // namespace voxtrel::bitdata
