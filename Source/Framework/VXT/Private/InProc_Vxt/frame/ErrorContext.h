// The error context of one call, and the message it gathered.
#pragma once

#include <cstdint>
#include <string>

#include "Error.h"

namespace vxt::frame {

// Opens an error context on the calling thread for the life of the scope, so
// that it is closed on every path out, exceptions included.
class ErrorContextScope {
 public:
  ErrorContextScope() : context_(Voxtrel_ErrorEnterContex(1)) {}
  ~ErrorContextScope() { Voxtrel_ErrorExitContex(context_); }
  ErrorContextScope(const ErrorContextScope&) = delete;
  ErrorContextScope& operator=(const ErrorContextScope&) = delete;

  Voxtrel_ErrorContext id() const { return context_; }

 private:
  Voxtrel_ErrorContext context_;
};

// The context's message; empty if it has none. Its length comes from the
// size the Error library reports, not from a search for the zero.
std::string GetContextMessage(Voxtrel_ErrorContext context);

// The context's message, or else the code's standing text.
std::string MessageForCode(Voxtrel_ErrorContext context, uint32_t code);

// Turns a failed internal code into the public code, makes its message the
// thread's last error and returns the code with the message that was set.
struct FailureReport {
  int32_t publicCode;
  std::string message;
};
FailureReport ReportFailure(Voxtrel_ErrorContext context, uint32_t code);

}  // namespace vxt::frame
