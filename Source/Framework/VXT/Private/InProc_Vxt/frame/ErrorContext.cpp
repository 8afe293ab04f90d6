#include "frame/ErrorContext.h"

#include <vector>

#include "frame/LastError.h"
#include "frame/TranslateErrorCode.h"

namespace vxt::frame {

std::string GetContextMessage(Voxtrel_ErrorContext context) {
  uint32_t size = 0;
  Voxtrel_ErrorGetErrorMessageSize(context, &size);
  if (size == 0) return {};
  std::vector<char> buffer(size, '\0');
  Voxtrel_ErrorGetErrorMessage(context, buffer.data(), size);
  return std::string(buffer.data(), size - 1);
}

std::string MessageForCode(Voxtrel_ErrorContext context, uint32_t code) {
  std::string message = GetContextMessage(context);
  if (message.empty()) {
    const char* standing = Voxtrel_ErrorGetDefaultMessage(code);
    if (standing != nullptr) message = standing;
  }
  return message;
}

FailureReport ReportFailure(Voxtrel_ErrorContext context, uint32_t code) {
  FailureReport report{TranslateErrorCode(code), MessageForCode(context, code)};
  ReportErrorMessage(nullptr, report.message.c_str());
  return report;
}

}  // namespace vxt::frame
