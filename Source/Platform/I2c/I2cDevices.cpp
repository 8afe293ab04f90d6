#include "I2c/I2cDevices.h"

#include <algorithm>

namespace voxtrel::platform::i2c {

Eeprom::Eeprom(const target::I2cDevice& description)
    : cells_(description.size, 0xff), pageSize_(description.pageSize), addressBytes_(description.size > 256 ? 2 : 1) {
  std::copy(description.contents.begin(), description.contents.end(), cells_.begin());
}

void Eeprom::Write(const uint8_t* bytes, size_t count) {
  size_t used = 0;
  if (count >= addressBytes_) {
    uint32_t address = 0;
    for (; used < addressBytes_; ++used) address = (address << 8) | bytes[used];
    pointer_ = address % static_cast<uint32_t>(cells_.size());
  }
  // Data bytes wrap within the page the pointer is in; the pointer ends
  // behind the last byte stored.
  const uint32_t pageStart = pointer_ - pointer_ % pageSize_;
  uint32_t offset = pointer_ - pageStart;
  for (; used < count; ++used) {
    const uint32_t cell = pageStart + offset;
    if (cell < cells_.size()) cells_[cell] = bytes[used];
    offset = (offset + 1) % pageSize_;
  }
  if (count > addressBytes_) pointer_ = (pageStart + offset) % static_cast<uint32_t>(cells_.size());
}

void Eeprom::Read(uint8_t* bytes, size_t count) {
  for (size_t i = 0; i < count; ++i) {
    bytes[i] = cells_[pointer_];
    pointer_ = (pointer_ + 1) % static_cast<uint32_t>(cells_.size());
  }
}

TemperatureSensor::TemperatureSensor(const target::I2cDevice& description)
    : registers_{{static_cast<uint8_t>(description.temperature), 0x00}, {0x00}, {75, 0x00}, {80, 0x00}} {}

std::vector<uint8_t>& TemperatureSensor::Selected() { return registers_[pointer_ & 3]; }

void TemperatureSensor::Write(const uint8_t* bytes, size_t count) {
  if (count == 0) return;
  pointer_ = bytes[0] & 3;
  if (pointer_ == 0) return;  // The reading is not writable
  std::vector<uint8_t>& selected = Selected();
  for (size_t i = 1; i < count && i - 1 < selected.size(); ++i) selected[i - 1] = bytes[i];
}

void TemperatureSensor::Read(uint8_t* bytes, size_t count) {
  const std::vector<uint8_t>& selected = Selected();
  for (size_t i = 0; i < count; ++i) bytes[i] = selected[i % selected.size()];
}

std::unique_ptr<I2cDevice> MakeDevice(const target::I2cDevice& description) {
  if (description.kind == "temperature") return std::make_unique<TemperatureSensor>(description);
  return std::make_unique<Eeprom>(description);
}

}  // namespace voxtrel::platform::i2c
