#include "Jtag/Bits.h"

namespace voxtrel::platform::jtag {
namespace {

std::vector<uint8_t> BytesOf(const Bits& bits) {
  std::vector<uint8_t> bytes((bits.size() + 7) / 8, 0);
  for (size_t i = 0; i < bits.size(); ++i)
    if (bits[i]) bytes[i / 8] |= static_cast<uint8_t>(1u << (i % 8));
  return bytes;
}

}  // namespace

Bits BitsOf(uint64_t value, size_t size) {
  Bits bits(size, false);
  for (size_t i = 0; i < size && i < 64; ++i) bits[i] = ((value >> i) & 1u) != 0;
  return bits;
}

uint64_t NumberOf(const Bits& bits, size_t offset) {
  uint64_t value = 0;
  for (size_t i = 0; i < 64 && offset + i < bits.size(); ++i)
    if (bits[offset + i]) value |= uint64_t{1} << i;
  return value;
}

Bits BitsOf(const BitData* vector, size_t size, bool fill) {
  Bits bits(size, fill);
  if (vector == nullptr) return bits;
  const size_t held = vector->bitSize < size ? static_cast<size_t>(vector->bitSize) : size;
  std::vector<uint8_t> bytes((held + 7) / 8, 0);
  if (!bytes.empty()) BitData_GetBuffer(vector, 0, bytes.data(), bytes.size());
  for (size_t i = 0; i < held; ++i) bits[i] = ((bytes[i / 8] >> (i % 8)) & 1u) != 0;
  return bits;
}

receipts::ReceiptValue ValueOf(const Bits& bits) {
  const std::vector<uint8_t> bytes = BytesOf(bits);
  return receipts::ReceiptValue::Bytes(bytes.data(), bits.size());
}

void Store(const Bits& bits, BitData* vector) {
  BitData* source = BitData_CreateManagedFromBuffer(bits.size(), BytesOf(bits).data());
  if (source == nullptr) return;
  BitData_Resize(vector, bits.size());
  BitData_Copy(source, 0, vector, 0, bits.size());
  BitData_FreeManaged(source);
}

}  // namespace voxtrel::platform::jtag
