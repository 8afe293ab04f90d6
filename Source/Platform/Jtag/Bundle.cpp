#include "Jtag/Bundle.h"

namespace voxtrel::platform::jtag {
namespace {

// Reads the bundle front to back; every read is bounded by its size.
class Reader {
 public:
  Reader(const uint8_t* data, uint32_t size) : data_(data), size_(size) {}
  bool AtEnd() const { return offset_ == size_; }
  uint32_t Offset() const { return offset_; }
  bool Byte(uint8_t& value) {
    if (offset_ >= size_) return false;
    value = data_[offset_++];
    return true;
  }
  bool Word(uint32_t& value) {
    value = 0;
    for (int i = 0; i < 4; ++i) {
      uint8_t byte = 0;
      if (!Byte(byte)) return false;
      value |= static_cast<uint32_t>(byte) << (8 * i);
    }
    return true;
  }
  bool Bits(uint32_t count, jtag::Bits& bits) {
    const uint64_t bytes = (uint64_t{count} + 7) / 8;
    if (bytes > size_ - offset_) return false;
    bits = jtag::BitsOf(data_ + offset_, count);
    offset_ += static_cast<uint32_t>(bytes);
    return true;
  }

 private:
  const uint8_t* data_;
  uint32_t size_;
  uint32_t offset_ = 0;
};

}  // namespace

std::optional<std::string> ParseBundle(const uint8_t* bundle, uint32_t size, std::vector<BundleStep>& steps) {
  Reader reader(bundle, size);
  while (!reader.AtEnd()) {
    const uint32_t start = reader.Offset();
    const std::string where = "the record at byte " + std::to_string(start);
    uint8_t kind = 0;
    reader.Byte(kind);
    BundleStep step;
    if (kind == 0x03) {
      steps.push_back(step);
      continue;
    }
    if (kind != 0x01 && kind != 0x02) return where + " is of unknown kind " + std::to_string(kind);
    uint8_t state = 0;
    if (!reader.Byte(state) || !reader.Word(step.count)) return where + " is cut short";
    const std::optional<TapState> known = TapStateFromValue(state);
    if (!known) return where + " names no TAP state (" + std::to_string(state) + ")";
    step.state = *known;
    step.kind = static_cast<BundleStep::Kind>(kind);
    if (step.kind == BundleStep::Kind::Shift && !reader.Bits(step.count, step.tdi)) return where + " is cut short";
    steps.push_back(std::move(step));
  }
  return std::nullopt;
}

}  // namespace voxtrel::platform::jtag
