#include "TargetCalls.h"

#include <cstdio>
#include <stdexcept>

#include "DeviceNames.h"
#include "ThreadView.h"
#include "Session.h"

namespace vxt::cli {

uint32_t LogicalThreadNamed(IInternalService_Device& devices, const std::string& name) {
  const uint32_t id = ThreadNamed(devices, name);
  VXT_NodeType type = VXT_NodeType_Unknown;
  Check(devices.GetNodeType(id, &type), "GetNodeType");
  if (type != VXT_NodeType_LogicalThread) throw std::runtime_error("'" + name + "' is no LogicalThread");
  return id;
}

bool TryOutcome(IInternalService_OperationReceipt& receipts, uint64_t token, std::vector<uint8_t>& bytes,
                std::string& failure) {
  OperationStatus status = VXT_OperationStatus_Pending;
  Check(receipts.Flush(token), "Flush");
  Check(receipts.GetOperationStatus(token, &status), "GetOperationStatus");
  bytes.clear();
  if (status == VXT_OperationStatus_Completed) {
    uint32_t count = 0;
    // An operation without a value has no bytes to give.
    if (receipts.GetValueAsRawBytes(token, nullptr, 0, &count) == VXT_SUCCESS && count != 0) {
      bytes.resize(count);
      Check(receipts.GetValueAsRawBytes(token, bytes.data(), count, &count), "GetValueAsRawBytes");
    }
  } else {
    char message[512] = "";
    Check(receipts.GetOperationErrorMessage(token, message, sizeof message, nullptr), "GetOperationErrorMessage");
    failure = message;
  }
  Check(receipts.Destroy(token), "Destroy");
  return status == VXT_OperationStatus_Completed;
}

std::vector<uint8_t> Outcome(IInternalService_OperationReceipt& receipts, uint64_t token,
                             const std::string& failurePrefix) {
  std::vector<uint8_t> bytes;
  std::string failure;
  if (!TryOutcome(receipts, token, bytes, failure)) throw std::runtime_error(failurePrefix + failure);
  return bytes;
}

VXT_Address ParseAddress(IInternalService_Memory& memory, const std::string& text) {
  VXT_Address address{};
  address.structureSize = VXT_ADDRESS_SIZE;
  const bool bare = !text.empty() && text.find(':') == std::string::npos;
  const std::string written = bare ? "lin:" + text : text;
  Check(memory.AddressFromString(written.c_str(), &address), "AddressFromString");
  return address;
}

OwnedBits::OwnedBits(IInternalService_BitData& bits, const std::vector<uint8_t>& bytes, uint32_t bitSize)
    : bits_(bits) {
  const auto size = static_cast<uint32_t>(bytes.size());
  Check(bits_.CreateFromRawBits(&record_, bitSize != 0 ? bitSize : size * 8, bytes.data(), size), "CreateFromRawBits");
}

OwnedBits::~OwnedBits() { bits_.Destroy(&record_); }

std::string HexValue(const std::vector<uint8_t>& bytes) {
  std::string text = "0x";
  for (auto byte = bytes.rbegin(); byte != bytes.rend(); ++byte) {
    char digits[3];
    std::snprintf(digits, sizeof digits, "%02x", *byte);
    text += digits;
  }
  return text;
}

std::vector<uint8_t> LittleEndian(uint64_t value, size_t size) {
  std::vector<uint8_t> bytes(size);
  for (size_t i = 0; i < size && i < 8; ++i) bytes[i] = static_cast<uint8_t>(value >> (8 * i));
  return bytes;
}

}  // namespace vxt::cli
