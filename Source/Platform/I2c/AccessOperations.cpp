// The I2c component's access table. Inputs are copied before the entry
// returns; every result is a finished receipt: a read's value is the bytes
// read, a write's the number of bytes sent, a bundle's every byte its reads
// gave, in order. An address that no device answers fails the receipt.
#include <cstring>
#include <optional>
#include <string>
#include <vector>

#include "I2c.h"
#include "I2c/I2cBuses.h"
#include "Jtag/JtagModel.h"
#include "Support/ComponentCall.h"

namespace voxtrel::platform::i2c {
namespace {

using receipts::ReceiptOutcome;
using receipts::ReceiptValue;
using target_manager::HexId;
using target_manager::Request;

// The most bytes one transfer moves: a whole 64 KiB device.
constexpr uint32_t kMaxTransfer = 65536;

uint32_t CheckTransfer(Request& request, uint8_t address, uint32_t count, uint32_t options) {
  if (address > 0x7f)
    return request.Refuse(kOutOfRange, ": idbyte " + std::to_string(address) + " is no 7-bit address");
  if (count > kMaxTransfer)
    return request.Refuse(kOutOfRange, ": " + std::to_string(count) + " bytes exceed the " +
                                           std::to_string(kMaxTransfer) + " one transfer moves");
  if (options != 0) return request.Refuse(kOutOfRange, ": options must be 0; no option bits are defined");
  return 0;
}

ReceiptValue BytesValue(const std::vector<uint8_t>& bytes) {
  return ReceiptValue::Bytes(bytes.data(), static_cast<uint64_t>(bytes.size()) * 8);
}

uint32_t I2cRawRead(uint32_t i2cBusId, uint8_t idbyte, uint32_t bytecnt, uint32_t options, uint64_t* operationToken) {
  VOXTREL_COMPONENT_CALL("I2c.I2cRawRead", "bus=", HexId(i2cBusId), ", address=", static_cast<unsigned>(idbyte), ", count=", bytecnt);
  Request request("I2c.I2cRawRead");
  if (CheckTransfer(request, idbyte, bytecnt, options) != 0) return request.code();
  return RunOnBus("I2c.I2cRawRead", i2cBusId, operationToken, [=](I2cBus& bus, Request&, ReceiptOutcome& out) {
    std::vector<uint8_t> bytes(bytecnt);
    if (Transfer(bus, idbyte, true, bytes.data(), bytes.size(), out, "I2c.I2cRawRead"))
      out = ReceiptOutcome::Success(BytesValue(bytes));
    return 0u;
  });
}

uint32_t I2cRawWrite(uint32_t i2cBusId, uint8_t idbyte, const uint8_t* bytebuffer, uint32_t bytecnt, uint32_t options,
                     uint64_t* operationToken) {
  VOXTREL_COMPONENT_CALL("I2c.I2cRawWrite", "bus=", HexId(i2cBusId), ", address=", static_cast<unsigned>(idbyte), ", count=", bytecnt);
  Request request("I2c.I2cRawWrite");
  if (bytecnt > 0) request.NotNull(bytebuffer, "bytebuffer");
  if (request.failed() || CheckTransfer(request, idbyte, bytecnt, options) != 0) return request.code();
  std::vector<uint8_t> bytes(bytebuffer, bytebuffer + bytecnt);
  return RunOnBus("I2c.I2cRawWrite", i2cBusId, operationToken, [&](I2cBus& bus, Request&, ReceiptOutcome& out) {
    if (Transfer(bus, idbyte, false, bytes.data(), bytes.size(), out, "I2c.I2cRawWrite"))
      out = ReceiptOutcome::Success(ReceiptValue::Number(bytecnt, 32));
    return 0u;
  });
}

// Locks are the calling client's; RunOnBus has refused a bus another holds.
uint32_t Lock(uint32_t i2cBusId, uint64_t* operationToken) {
  VOXTREL_COMPONENT_CALL("I2c.Lock", "bus=", HexId(i2cBusId));
  const uint32_t client = jtag::CallingClient();
  if (client == 0)
    return Request("I2c.Lock").Refuse(target_manager::kClientNotRegistered,
                                      ": the calling thread acts for no connected client");
  return RunOnBus("I2c.Lock", i2cBusId, operationToken, [client](I2cBus& bus, Request&, ReceiptOutcome&) {
    bus.holder = client;
    return 0u;
  });
}

uint32_t Unlock(uint32_t i2cBusId, uint64_t* operationToken) {
  VOXTREL_COMPONENT_CALL("I2c.Unlock", "bus=", HexId(i2cBusId));
  return RunOnBus("I2c.Unlock", i2cBusId, operationToken, [](I2cBus& bus, Request&, ReceiptOutcome&) {
    bus.holder = 0;
    return 0u;
  });
}

// One record of a bundle: 'W' or 'R', the 7-bit address, the byte count
// (little-endian, 16 bits) and, for 'W', that many bytes.
struct BundleStep {
  bool read = false;
  uint8_t address = 0;
  std::vector<uint8_t> bytes;  // A write's bytes; a read's count of zeros
};

std::optional<std::string> ParseBundle(const uint8_t* data, uint32_t size, std::vector<BundleStep>& steps) {
  uint32_t at = 0;
  while (at < size) {
    if (size - at < 4) return "the record at byte " + std::to_string(at) + " is cut short";
    const uint8_t kind = data[at];
    if (kind != 'W' && kind != 'R')
      return "the record at byte " + std::to_string(at) + " starts with " + std::to_string(kind) + ", not 'W' or 'R'";
    BundleStep step;
    step.read = kind == 'R';
    step.address = data[at + 1];
    if (step.address > 0x7f) return "the record at byte " + std::to_string(at) + " names no 7-bit address";
    const uint32_t count = data[at + 2] | (data[at + 3] << 8);
    const uint32_t start = at + 4;
    if (!step.read && size - start < count) return "the record at byte " + std::to_string(at) + " is cut short";
    if (step.read) {
      step.bytes.assign(count, 0);
      at = start;
    } else {
      step.bytes.assign(data + start, data + start + count);
      at = start + count;
    }
    steps.push_back(std::move(step));
  }
  return std::nullopt;
}

// The whole bundle runs under the bus's mutex, so no other client's
// transfer comes between a write of an address pointer and its read.
uint32_t BundleScan(uint32_t i2cBusId, const void* bundleBuffer, uint32_t bundleBufferSize, uint64_t* operationToken) {
  VOXTREL_COMPONENT_CALL("I2c.BundleScan", "bus=", HexId(i2cBusId), ", size=", bundleBufferSize);
  Request request("I2c.BundleScan");
  if (request.NotNull(bundleBuffer, "bundleBuffer").failed()) return request.code();
  std::vector<BundleStep> steps;
  if (const auto fault = ParseBundle(static_cast<const uint8_t*>(bundleBuffer), bundleBufferSize, steps))
    return request.Refuse(kOutOfRange, ": " + *fault);
  return RunOnBus("I2c.BundleScan", i2cBusId, operationToken, [&](I2cBus& bus, Request&, ReceiptOutcome& out) {
    std::vector<uint8_t> read;
    for (BundleStep& step : steps) {
      if (!Transfer(bus, step.address, step.read, step.bytes.data(), step.bytes.size(), out, "I2c.BundleScan"))
        return 0u;
      if (step.read) read.insert(read.end(), step.bytes.begin(), step.bytes.end());
    }
    out = ReceiptOutcome::Success(BytesValue(read));
    return 0u;
  });
}

}  // namespace

const I2cAccessComponent* AccessTable() {
  static constexpr I2cAccessComponent kAccess{&I2cRawRead, &I2cRawWrite, &Lock, &Unlock, &BundleScan};
  return &kAccess;
}

}  // namespace voxtrel::platform::i2c
