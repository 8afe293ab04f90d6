// The Error library's entry points over the per-thread contexts.
#include <algorithm>
#include <cstring>

#include "Error.h"
#include "Error/ErrorContexts.h"

using namespace voxtrel::platform::error;

// The kind is accepted for every value; all contexts behave alike.
Voxtrel_ErrorContext Voxtrel_ErrorEnterContex(uint32_t kind) { return EnterContext(); }

void Voxtrel_ErrorExitContex(Voxtrel_ErrorContext context) { ExitContext(context); }

// `file` and `line` name the posting statement for a debugger's benefit; the
// simulated library does not keep them.
void Voxtrel_ErrorPostError(uint32_t code, const char* message, const char* file, uint32_t line) {
  Post(code, message);
}

void Voxtrel_ErrorGetErrorMessageSize(Voxtrel_ErrorContext context, uint32_t* size) {
  if (size == nullptr) return;
  const ContextState* state = StateOf(context);
  *size = state == nullptr || state->message.empty() ? 0 : static_cast<uint32_t>(state->message.size() + 1);
}

void Voxtrel_ErrorGetErrorMessage(Voxtrel_ErrorContext context, char* buffer, uint32_t size) {
  if (buffer == nullptr || size == 0) return;
  const ContextState* state = StateOf(context);
  const size_t length = state == nullptr ? 0 : std::min<size_t>(state->message.size(), size - 1);
  if (length > 0) std::memcpy(buffer, state->message.data(), length);
  buffer[length] = '\0';
}

uint32_t Voxtrel_ErrorGetErrorCode(Voxtrel_ErrorContext context) {
  const ContextState* state = StateOf(context);
  return state == nullptr ? 0 : state->code;
}

// The key function: the class's type information and virtual table live here.
Voxtrel_Error_Exception::~Voxtrel_Error_Exception() = default;
