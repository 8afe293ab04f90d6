#include "Cpu/IoDevices.h"

#include <algorithm>

namespace voxtrel::platform::cpu {

namespace {
constexpr uint8_t kDlab = 0x80;
constexpr uint8_t kLsrDataReady = 0x01;
constexpr uint8_t kLsrTransmitterEmpty = 0x60;  // THRE and TEMT
}  // namespace

uint8_t Uart16550::Read(uint16_t offset) {
  std::lock_guard lock(mutex_);
  switch (offset) {
    case 0:
      if (lcr_ & kDlab) return dll_;
      if (received_.empty()) return 0;
      {
        const uint8_t byte = received_.front();
        received_.pop_front();
        return byte;
      }
    case 1:
      return (lcr_ & kDlab) ? dlm_ : ier_;
    case 2:
      return 0xC1;  // FIFOs enabled, no interrupt pending
    case 3:
      return lcr_;
    case 4:
      return mcr_;
    case 5:
      return kLsrTransmitterEmpty | (received_.empty() ? 0 : kLsrDataReady);
    case 6:
      return 0xB0;  // DCD, DSR, CTS
    default:
      return scr_;
  }
}

void Uart16550::Write(uint16_t offset, uint8_t value) {
  std::lock_guard lock(mutex_);
  switch (offset) {
    case 0:
      if (lcr_ & kDlab) {
        dll_ = value;
      } else {
        text_.push_back(static_cast<char>(value));
        ++transmitted_;
        if (text_.size() > kMaxText) text_.erase(0, text_.size() - kMaxText);
      }
      break;
    case 1:
      if (lcr_ & kDlab)
        dlm_ = value;
      else
        ier_ = value & 0x0F;
      break;
    case 3:
      lcr_ = value;
      break;
    case 4:
      mcr_ = value & 0x1F;
      break;
    case 7:
      scr_ = value;
      break;
    default:
      break;  // FCR, and the read-only LSR and MSR
  }
}

void Uart16550::Reset() {
  std::lock_guard lock(mutex_);
  ier_ = lcr_ = mcr_ = scr_ = dll_ = dlm_ = 0;
  received_.clear();
}

std::string Uart16550::Text() const {
  std::lock_guard lock(mutex_);
  return text_;
}

void Uart16550::Receive(const std::string& bytes) {
  std::lock_guard lock(mutex_);
  received_.insert(received_.end(), bytes.begin(), bytes.end());
}

std::string Uart16550::TextSince(uint64_t& position, size_t limit, uint64_t& skipped) const {
  std::lock_guard lock(mutex_);
  const uint64_t oldest = transmitted_ - text_.size();
  skipped = position < oldest ? oldest - position : 0;
  if (position < oldest) position = oldest;
  if (position > transmitted_) position = transmitted_;
  const size_t from = static_cast<size_t>(position - oldest);
  std::string bytes = text_.substr(from, std::min(limit, text_.size() - from));
  position += bytes.size();
  return bytes;
}

size_t Uart16550::Accept(const uint8_t* bytes, size_t count, size_t capacity) {
  std::lock_guard lock(mutex_);
  const size_t taken = received_.size() >= capacity ? 0 : std::min(count, capacity - received_.size());
  received_.insert(received_.end(), bytes, bytes + taken);
  return taken;
}

uint8_t PostCodePort::Read(uint16_t) {
  std::lock_guard lock(mutex_);
  return codes_.empty() ? 0 : codes_.back();
}

void PostCodePort::Write(uint16_t, uint8_t value) {
  std::lock_guard lock(mutex_);
  codes_.push_back(value);
  if (codes_.size() > kMaxCodes) codes_.pop_front();
}

std::vector<uint8_t> PostCodePort::Codes() const {
  std::lock_guard lock(mutex_);
  return {codes_.begin(), codes_.end()};
}

}  // namespace voxtrel::platform::cpu
