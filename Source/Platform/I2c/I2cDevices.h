// The devices that answer on a simulated I2C bus. A transfer is one start
// condition to one stop: a write hands the device every byte the master
// sends, a read asks it for the bytes the master clocks in.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "Target/Topology.h"

namespace voxtrel::platform::i2c {

class I2cDevice {
 public:
  virtual ~I2cDevice() = default;
  virtual void Write(const uint8_t* bytes, size_t count) = 0;
  virtual void Read(uint8_t* bytes, size_t count) = 0;
};

// A serial EEPROM of the 24Cxx kind: the first byte of a write (two bytes
// for a device above 256 bytes) sets the address pointer; further bytes
// are stored from there, wrapping within the write page as the real part
// does; a read streams from the pointer and wraps at the end of the array.
class Eeprom final : public I2cDevice {
 public:
  explicit Eeprom(const target::I2cDevice& description);
  void Write(const uint8_t* bytes, size_t count) override;
  void Read(uint8_t* bytes, size_t count) override;

 private:
  std::vector<uint8_t> cells_;
  uint32_t pageSize_;
  uint32_t addressBytes_;
  uint32_t pointer_ = 0;
};

// A temperature sensor with four registers behind a pointer register, as
// LM75-style parts have: 0 the temperature (read-only, two bytes, whole
// degrees in the first, half degrees in bit 7 of the second), 1 the
// configuration (one byte), 2 the hysteresis and 3 the overtemperature
// limit (two bytes each). A write's first byte selects the register, the
// rest writes it; a read repeats the selected register's bytes.
class TemperatureSensor final : public I2cDevice {
 public:
  explicit TemperatureSensor(const target::I2cDevice& description);
  void Write(const uint8_t* bytes, size_t count) override;
  void Read(uint8_t* bytes, size_t count) override;

 private:
  std::vector<uint8_t>& Selected();

  uint8_t pointer_ = 0;
  std::vector<uint8_t> registers_[4];
};

std::unique_ptr<I2cDevice> MakeDevice(const target::I2cDevice& description);

}  // namespace voxtrel::platform::i2c
