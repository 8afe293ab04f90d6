// How the receipt registry and the component word a refusal: the code is
// returned and its message posted to the caller's error context.
#pragma once

#include <cstdint>
#include <string>

namespace voxtrel::platform::receipts {

// "0x" and sixteen hexadecimal digits, as tokens are shown to clients.
std::string TokenText(uint64_t token);

// Posts `message` with `code` and gives back the code.
uint32_t Refuse(uint32_t code, const std::string& message);

// "Unknown operation token 0x..." with kUnknownOperationToken.
uint32_t RefuseUnknownToken(uint64_t token);

}  // namespace voxtrel::platform::receipts
