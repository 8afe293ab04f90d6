// Posting a component's refusal to the Error library, so that the caller's
// error context holds the whole message.
#pragma once

#include <cstdint>

#include "Error.h"
#include "Failure.h"

namespace voxtrel::platform::target {

// Posts the failure and gives back its code, for `return VOXTREL_POST_FAILURE(f);`.
inline uint32_t PostFailure(const Failure& failure, const char* file, uint32_t line) {
  Voxtrel_ErrorPostError(failure.code, failure.message.c_str(), file, line);
  return failure.code;
}

}  // namespace voxtrel::platform::target

#define VOXTREL_POST_FAILURE(failure) ::voxtrel::platform::target::PostFailure((failure), __FILE__, __LINE__)
