// What the commands that reach the target share: the thread a command acts
// on, operations followed to their end, and the library's bit vectors made
// from bytes.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "InProc_Vxt.h"

namespace vxt::cli {

// The LogicalThread a user names ("Thread0_1", "0x03000001"); with no name,
// the target's first thread. Throws when the name is no thread.
uint32_t LogicalThreadNamed(IInternalService_Device& devices, const std::string& name);

// Waits for the operation and destroys its token. Its value's bytes, if it
// has a value; throws std::runtime_error with the operation's own message,
// behind `failurePrefix`, when it failed.
std::vector<uint8_t> Outcome(IInternalService_OperationReceipt& receipts, uint64_t token,
                             const std::string& failurePrefix = "");

// Waits for an operation that gives no value; throws "<call> did not
// complete: <its message>" unless it completed.
inline void AwaitCompletion(IInternalService_OperationReceipt& receipts, uint64_t token, const std::string& call) {
  Outcome(receipts, token, call + " did not complete: ");
}

// The same, but a failure is no exception: false, with its message.
bool TryOutcome(IInternalService_OperationReceipt& receipts, uint64_t token, std::vector<uint8_t>& bytes,
                std::string& failure);

// An address as the library writes it ("phys:0x1000", "cs:0x10", ...), or
// a bare number, taken as a linear address.
VXT_Address ParseAddress(IInternalService_Memory& memory, const std::string& text);

// A bit vector of the library holding `bytes` (8 bits each, first byte
// lowest), destroyed with this object.
class OwnedBits {
 public:
  OwnedBits(IInternalService_BitData& bits, const std::vector<uint8_t>& bytes, uint32_t bitSize = 0);
  ~OwnedBits();
  OwnedBits(const OwnedBits&) = delete;
  OwnedBits& operator=(const OwnedBits&) = delete;
  const VXT_BitData* get() const { return &record_; }

 private:
  IInternalService_BitData& bits_;
  VXT_BitData record_{VXT_BITDATA_SIZE, 0, 0};
};

// Little-endian bytes as one number: "0x" and the digits, most significant
// first, every byte shown.
std::string HexValue(const std::vector<uint8_t>& bytes);

// A number as little-endian bytes, `size` of them.
std::vector<uint8_t> LittleEndian(uint64_t value, size_t size);

}  // namespace vxt::cli
