// The Error library: per-thread error contexts, posted errors, default texts.
#pragma once

#include <cstdint>

#include "PlatformApi.h"

using Voxtrel_ErrorContext = uint64_t;

// Opens an error context on the calling thread. Contexts nest: errors posted
// inside an inner context stay there and never reach the outer one.
VOXTREL_PLATFORM_API Voxtrel_ErrorContext Voxtrel_ErrorEnterContex(uint32_t kind);
VOXTREL_PLATFORM_API void Voxtrel_ErrorExitContex(Voxtrel_ErrorContext context);
// Adds an error to the innermost open context of this thread. Harmless with
// no open context, code 0 or empty text.
VOXTREL_PLATFORM_API void Voxtrel_ErrorPostError(uint32_t code, const char* message, const char* file,
                                                 uint32_t line);
// Bytes of the context's message with its terminating zero; 0 if it has none.
VOXTREL_PLATFORM_API void Voxtrel_ErrorGetErrorMessageSize(Voxtrel_ErrorContext context, uint32_t* size);
VOXTREL_PLATFORM_API void Voxtrel_ErrorGetErrorMessage(Voxtrel_ErrorContext context, char* buffer, uint32_t size);
// The standing text of an internal code; never null, valid for the process.
VOXTREL_PLATFORM_API const char* Voxtrel_ErrorGetDefaultMessage(uint32_t code);
// The code the context holds, 0 if none.
VOXTREL_PLATFORM_API uint32_t Voxtrel_ErrorGetErrorCode(Voxtrel_ErrorContext context);

// Thrown by some component classes; carries an internal code.
class VOXTREL_PLATFORM_API Voxtrel_Error_Exception {
 public:
  explicit Voxtrel_Error_Exception(uint32_t errorCode) : code(errorCode) {}
  virtual ~Voxtrel_Error_Exception();
  uint32_t code;
};
