// Allocation of vector objects, shared by the files that create them.
#pragma once

#include "WordStorage.h"

namespace voxtrel::bitdata {

// A zero vector of `bitSize` bits, to be released with BitData_FreeManaged.
// Throws std::bad_alloc when the storage cannot be had.
BitData* NewObject(uint64_t bitSize);

// The same with storage left unwritten, for a creator that writes every word
// itself: a large vector's pages are then touched once, not twice.
BitData* NewUnfilledObject(uint64_t bitSize);

// A vector equal to `source`, for a value handed out to be read. A large one
// holds `source`'s storage too instead of a copy of it; whichever of the two
// is written first then takes storage of its own (WritableWords), so that
// each behaves as a copy of its own. Throws std::bad_alloc.
BitData* CopyForReading(const BitData& source);

// The vector's storage, for writing: its own from then on.
uint64_t* WritableWords(BitData& object);

}  // namespace voxtrel::bitdata
