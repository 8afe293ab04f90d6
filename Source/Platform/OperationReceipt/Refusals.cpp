#include "OperationReceipt/Refusals.h"

#include <iomanip>
#include <sstream>

#include "Error.h"
#include "OperationReceipt.h"

namespace voxtrel::platform::receipts {

std::string TokenText(uint64_t token) {
  std::ostringstream text;
  text << "0x" << std::hex << std::setw(16) << std::setfill('0') << token;
  return text.str();
}

uint32_t Refuse(uint32_t code, const std::string& message) {
  Voxtrel_ErrorPostError(code, message.c_str(), __FILE__, __LINE__);
  return code;
}

uint32_t RefuseUnknownToken(uint64_t token) {
  return Refuse(kUnknownOperationToken, "Unknown operation token " + TokenText(token));
}

}  // namespace voxtrel::platform::receipts
