// The I2C buses of the built topology with their devices and the client
// that holds each bus's lock. Every transfer runs under its bus's mutex.
// The buses are built from the topology the first time a component asks
// after FinishInitialization. A device keeps its state for the life of the
// process while the description names the same part at the same place, so
// an EEPROM keeps what was written across client and power cycles.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <string>

#include "I2c/I2cDevices.h"
#include "OperationReceipt/Receipts.h"
#include "TargetManager/Request.h"

namespace voxtrel::platform::i2c {

// Internal codes of the I2c component's refusals.
inline constexpr uint32_t kOutOfRange = 0x20001;   // An address, count, option or bundle it cannot use
inline constexpr uint32_t kNoAcknowledge = 0x20004;  // No device answered at the address (receipt failure)
inline constexpr uint32_t kBusLocked = 0xe0005;    // Another client holds the bus's lock

struct I2cBus {
  std::mutex mutex;
  std::string identifier;
  std::map<uint8_t, std::shared_ptr<I2cDevice>> devices;  // By 7-bit address
  uint32_t holder = 0;                                    // The client holding the lock; 0 for none
};

// A transfer's work under the bus's mutex: 0 and the receipt's outcome, or
// a refusal's code after `request.Refuse`.
using BusWork = std::function<uint32_t(I2cBus&, target_manager::Request&, receipts::ReceiptOutcome&)>;

// The frame of every operation: finds the bus, refuses a caller that
// another client's lock keeps out, runs `work` and hands back the token.
uint32_t RunOnBus(const char* operation, uint32_t busId, uint64_t* operationToken, const BusWork& work);

// One transfer to `address` on a bus held by the caller: false, with a
// failed outcome, when no device answers.
bool Transfer(I2cBus& bus, uint8_t address, bool read, uint8_t* bytes, size_t count,
              receipts::ReceiptOutcome& out, const char* operation);

}  // namespace voxtrel::platform::i2c
