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

}  // namespace voxtrel::bitdata
