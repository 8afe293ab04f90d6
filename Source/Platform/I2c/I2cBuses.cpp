#include "I2c/I2cBuses.h"

#include <cstdio>

#include "Common/ClientRegistry.h"
#include "Jtag/JtagModel.h"

namespace voxtrel::platform::i2c {
namespace {

using target::Node;
using target::NodeType;
using target_manager::Request;

class I2cModel {
 public:
  static I2cModel& Instance() {
    static I2cModel model;
    return model;
  }

  std::shared_ptr<I2cBus> Find(Request& request, uint32_t busId) {
    std::lock_guard lock(mutex_);
    if (request.Topology() == nullptr) return nullptr;
    const Node* node = request.DeviceOfType(busId, NodeType::I2cBus);
    if (node == nullptr) return nullptr;
    const std::shared_ptr<target::LiveTopology>& live = request.SharedTopology();
    if (builtFrom_.lock() != live) {
      buses_.clear();
      builtFrom_ = live;
    }
    std::shared_ptr<I2cBus>& bus = buses_[busId];
    if (!bus) bus = Build(*node);
    return bus;
  }

 private:
  std::shared_ptr<I2cBus> Build(const Node& node) {
    auto bus = std::make_shared<I2cBus>();
    bus->identifier = node.identifier;
    if (const auto* details = node.As<target::I2cBusDetails>())
      for (const target::I2cDevice& device : details->devices) bus->devices[device.address] = Part(node, device);
    return bus;
  }

  // The part the description places there, made once per process.
  std::shared_ptr<I2cDevice> Part(const Node& bus, const target::I2cDevice& device) {
    const std::string key = bus.identifier + '/' + std::to_string(device.address) + '/' + device.name + '/' +
                            device.kind + '/' + std::to_string(device.size) + '/' +
                            std::string(device.contents.begin(), device.contents.end());
    std::shared_ptr<I2cDevice>& part = parts_[key];
    if (!part) part = MakeDevice(device);
    return part;
  }

  std::mutex mutex_;
  std::weak_ptr<target::LiveTopology> builtFrom_;
  std::map<uint32_t, std::shared_ptr<I2cBus>> buses_;
  std::map<std::string, std::shared_ptr<I2cDevice>> parts_;
};

std::string AddressText(uint8_t address) {
  char text[8];
  std::snprintf(text, sizeof text, "0x%02x", address);
  return text;
}

}  // namespace

uint32_t RunOnBus(const char* operation, uint32_t busId, uint64_t* operationToken, const BusWork& work) {
  Request request(operation);
  if (request.NotNull(operationToken, "operationToken").failed()) return request.code();
  const std::shared_ptr<I2cBus> bus = I2cModel::Instance().Find(request, busId);
  if (!bus) return request.code();
  const uint32_t client = jtag::CallingClient();
  std::lock_guard lock(bus->mutex);
  // A holder that has disconnected no longer holds the bus.
  if (bus->holder != 0 && !common::ClientRegistry::Instance().Find(bus->holder)) bus->holder = 0;
  if (bus->holder != 0 && bus->holder != client)
    return request.Refuse(kBusLocked,
                          ": bus " + bus->identifier + " is locked by " + jtag::ClientName(bus->holder));
  receipts::ReceiptOutcome outcome;
  if (const uint32_t code = work(*bus, request, outcome); code != 0) return code;
  *operationToken = receipts::FinishedReceipt(std::move(outcome));
  return 0;
}

bool Transfer(I2cBus& bus, uint8_t address, bool read, uint8_t* bytes, size_t count, receipts::ReceiptOutcome& out,
              const char* operation) {
  const auto device = bus.devices.find(address);
  if (device == bus.devices.end()) {
    out = receipts::ReceiptOutcome::Failure(kNoAcknowledge, std::string(operation) + ": no device answers at address " +
                                                                AddressText(address) + " on bus " + bus.identifier +
                                                                " (NACK)");
    return false;
  }
  if (read) {
    device->second->Read(bytes, count);
  } else {
    device->second->Write(bytes, count);
  }
  return true;
}

}  // namespace voxtrel::platform::i2c
