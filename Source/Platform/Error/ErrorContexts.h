// Error contexts: a stack per thread. Each context keeps the first non-zero
// code posted into it and a message made of the non-empty posted texts in the
// order they came, joined by "; ".
#pragma once

#include <cstdint>
#include <string>

namespace voxtrel::platform::error {

inline constexpr const char* kMessageSeparator = "; ";

// Process-unique, never 0.
uint64_t EnterContext();
// Closes the context and any the thread opened inside it and left open. An
// id that is not open on this thread changes nothing.
void ExitContext(uint64_t id);
// Into the innermost context of the thread; nothing without one.
void Post(uint32_t code, const char* text);

struct ContextState {
  uint32_t code = 0;
  std::string message;
};
// The state of a context open on the calling thread that something was
// posted into; null for any other id. Valid until the thread next enters,
// exits or posts into a context.
const ContextState* StateOf(uint64_t id);

}  // namespace voxtrel::platform::error
