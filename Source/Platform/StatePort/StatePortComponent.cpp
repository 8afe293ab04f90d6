// The StatePort component: named state ports of the target's devices, as
// their descriptions declare them. Reads and writes are done in the call
// and hand back a finished receipt: a read's value is the port's, as wide
// as the port; a read-modify-write's the value it replaced. A write that
// changes a value publishes "ValueChanged" (portValue: the first address
// field's value; firstValue: the former value; secondValue: the new one)
// on the calling thread, with no lock held.
#include <vector>

#include "Events/StatePortEvent.h"
#include "OperationReceipt/Receipts.h"
#include "RunControl/CpuThreads.h"
#include "RunControl/RunControlCodes.h"
#include "StatePort.h"
#include "StatePort/StatePortState.h"
#include "StatePort/StatePortStore.h"
#include "Support/ComponentCall.h"
#include "Target/PostFailure.h"
#include "TargetManager/ListAnswers.h"
#include "TargetManager/Request.h"
#include "Cpu/EmulatedMachine.h"

namespace voxtrel::platform::state_port {

target::TopologyBinding& StatePortTopology() {
  static target::TopologyBinding binding("StatePort");
  return binding;
}

namespace {

using receipts::ReceiptOutcome;
using receipts::ReceiptValue;
using run_control::HexText;
using target_manager::AnswerCount;
using target_manager::AnswerFill;
using target_manager::CopyText;
using target_manager::HexId;
using target_manager::ListOf;
using target_manager::Request;

constexpr uint32_t kNameSize = 64;

uint32_t Initialize() {
  VOXTREL_COMPONENT_CALL("StatePort.Initialize");
  if (target::Outcome refused = StatePortTopology().Bind()) return VOXTREL_POST_FAILURE(*refused);
  return 0;
}

uint32_t Uninitialize() {
  VOXTREL_COMPONENT_CALL("StatePort.Uninitialize");
  StatePortTopology().Unbind();
  return 0;
}

// The address fields' values, checked against the port's fields.
std::optional<std::vector<uint64_t>> AddressOf(Request& request, const FoundPort& found, uint32_t numAddressFields,
                                               const uint64_t* addressFields) {
  const std::vector<AddressField>& fields = found.port.addressFields;
  if (numAddressFields != fields.size()) {
    request.Refuse(kValueOutOfRange, ": port '" + found.port.name + "' takes " + std::to_string(fields.size()) +
                                         " address field(s), not " + std::to_string(numAddressFields));
    return std::nullopt;
  }
  if (numAddressFields > 0 && request.NotNull(addressFields, "addressFields").failed()) return std::nullopt;
  std::vector<uint64_t> address(addressFields, addressFields + numAddressFields);
  for (size_t i = 0; i < fields.size(); ++i) {
    if (address[i] < fields[i].values) continue;
    request.Refuse(kValueOutOfRange, ": address field '" + fields[i].name + "' of port '" + found.port.name +
                                         "' takes 0 to " + HexText(fields[i].values - 1) + ", not " +
                                         HexText(address[i]));
    return std::nullopt;
  }
  return address;
}

// What a port wired to the target shows now.
target::Outcome WiredValue(const FoundPort& found, const std::vector<uint64_t>& address, uint64_t& value) {
  std::shared_ptr<const cpu::CpuDomain> domain;
  if (auto refused = run_control::FindDomain(found.device->targetDomainId, domain)) return refused;
  if (found.port.source == PortSource::RunState) {
    cpu::RunState state{};
    if (address[0] >= domain->threadDeviceIds.size())
      return target::Failure{kValueOutOfRange, "the domain has no thread " + HexText(address[0])};
    if (const auto result = domain->backend->GetRunState(static_cast<uint32_t>(address[0]), state);
        result != cpu::CpuResult::Ok)
      return run_control::CpuFailure(result, "reading the run state of thread " + HexText(address[0]));
    value = state == cpu::RunState::Halted ? 1 : 0;
    return std::nullopt;
  }
  value = 0;
  for (const auto& device : domain->machine->Devices())
    if (const auto* port = dynamic_cast<const cpu::PostCodePort*>(device.get())) {
      const std::vector<uint8_t> codes = port->Codes();
      if (!codes.empty()) value = codes.back();
    }
  return std::nullopt;
}

uint32_t GiveValue(uint64_t* operationToken, uint64_t value, const PortDescription& port) {
  *operationToken =
      receipts::FinishedReceipt(ReceiptOutcome::Success(ReceiptValue::Number(value, 8 * port.accessSize)));
  return 0;
}

uint32_t Read(uint32_t deviceId, const char* statePortName, uint32_t numAddressFields, const uint64_t* addressFields,
              uint64_t* operationToken) {
  VOXTREL_COMPONENT_CALL("StatePort.Read", "deviceId=", HexId(deviceId));
  Request request("StatePort.Read");
  const auto found = FindPort(request.NotNull(operationToken, "operationToken"), deviceId, statePortName);
  if (!found) return request.code();
  const auto address = AddressOf(request, *found, numAddressFields, addressFields);
  if (!address) return request.code();
  uint64_t value = 0;
  if (found->port.source == PortSource::Stored) {
    value = StoredValue(*found, *address);
  } else if (auto refused = WiredValue(*found, *address, value)) {
    return request.Refuse(refused->code, ": " + refused->message);
  }
  return GiveValue(operationToken, value, found->port);
}

// Writes and read-modify-writes: (former & ~mask) | (value & mask).
uint32_t Change(const char* operation, uint32_t deviceId, const char* statePortName, uint32_t numAddressFields,
                const uint64_t* addressFields, uint64_t value, uint64_t mask, uint64_t* operationToken,
                bool giveFormer) {
  Request request(operation);
  const auto found = FindPort(request.NotNull(operationToken, "operationToken"), deviceId, statePortName);
  if (!found) return request.code();
  const auto address = AddressOf(request, *found, numAddressFields, addressFields);
  if (!address) return request.code();
  const PortDescription& port = found->port;
  if (port.readOnly) return request.Refuse(kNotSupported, ": port '" + port.name + "' is read-only");
  if ((value & mask & ~port.Mask()) != 0)
    return request.Refuse(kValueOutOfRange, ": " + HexText(value) + " does not fit port '" + port.name + "' of " +
                                                std::to_string(port.accessSize) + " byte(s)");
  const uint64_t former =
      UpdateValue(*found, *address, [&](uint64_t old) { return (old & ~mask) | (value & mask); });
  const uint64_t now = (former & ~mask) | (value & mask);
  if (now != former)
    events::PublishStatePortEvent(events::kStatePortValueChanged, deviceId, port.name,
                                  address->empty() ? 0 : static_cast<uint32_t>(address->front()), former, now);
  if (giveFormer) return GiveValue(operationToken, former, port);
  *operationToken = receipts::FinishedReceipt(ReceiptOutcome::Success({}));
  return 0;
}

uint32_t Write(uint32_t deviceId, const char* statePortName, uint32_t numAddressFields, const uint64_t* addressFields,
               uint64_t value, uint64_t* operationToken) {
  VOXTREL_COMPONENT_CALL("StatePort.Write", "deviceId=", HexId(deviceId), ", value=", value);
  return Change("StatePort.Write", deviceId, statePortName, numAddressFields, addressFields, value, ~0ull,
                operationToken, false);
}

uint32_t ReadModifyWrite(uint32_t deviceId, const char* statePortName, uint32_t numAddressFields,
                         const uint64_t* addressFields, uint64_t value, uint64_t mask, uint64_t* operationToken) {
  VOXTREL_COMPONENT_CALL("StatePort.ReadModifyWrite", "deviceId=", HexId(deviceId), ", value=", value,
                         ", mask=", mask);
  return Change("StatePort.ReadModifyWrite", deviceId, statePortName, numAddressFields, addressFields, value, mask,
                operationToken, true);
}

uint32_t GetNumStatePorts(uint32_t deviceId, uint32_t* numStatePorts) {
  VOXTREL_COMPONENT_CALL("StatePort.GetNumStatePorts", "deviceId=", HexId(deviceId));
  Request request("StatePort.GetNumStatePorts");
  return AnswerCount(request, numStatePorts, "numStatePorts", [&] { return ListOf(PortsOf(request, deviceId)); });
}

constexpr target_manager::NameFields Names(uint32_t max) {
  return {max, kNameSize, target_manager::PastTheList::Emptied};
}

// The address fields of the port a request names; none when it names none.
std::vector<AddressField> AddressFieldsOf(Request& request, uint32_t deviceId, const char* statePortName) {
  const auto found = FindPort(request, deviceId, statePortName);
  return found ? found->port.addressFields : std::vector<AddressField>{};
}

uint32_t GetStatePorts(uint32_t deviceId, uint32_t maxNumStatePorts, char (*statePortNames)[kNameSize]) {
  VOXTREL_COMPONENT_CALL("StatePort.GetStatePorts", "deviceId=", HexId(deviceId));
  Request request("StatePort.GetStatePorts");
  return AnswerFill(request, statePortNames, "statePortNames", Names(maxNumStatePorts),
                    [&] { return ListOf(PortsOf(request, deviceId)); });
}

uint32_t GetAccessSize(uint32_t deviceId, const char* statePortName, uint32_t* accessSize) {
  VOXTREL_COMPONENT_CALL("StatePort.GetAccessSize", "deviceId=", HexId(deviceId));
  Request request("StatePort.GetAccessSize");
  const auto found = FindPort(request.NotNull(accessSize, "accessSize"), deviceId, statePortName);
  if (!found) return request.code();
  *accessSize = found->port.accessSize;
  return 0;
}

// The text into a buffer of `size` characters, cut and terminated; its
// whole size, terminator included, into `actualSize`.
uint32_t GiveText(const std::string& text, char* buffer, uint32_t size, uint32_t* actualSize) {
  if (buffer != nullptr && size > 0) CopyText(text, buffer, size);
  if (actualSize != nullptr) *actualSize = static_cast<uint32_t>(text.size() + 1);
  return 0;
}

uint32_t GetStatePortDescription(uint32_t deviceId, const char* statePortName, char* description,
                                 uint32_t descriptionSize, uint32_t* actualStringSize) {
  VOXTREL_COMPONENT_CALL("StatePort.GetStatePortDescription", "deviceId=", HexId(deviceId));
  Request request("StatePort.GetStatePortDescription");
  if (description == nullptr && actualStringSize == nullptr) request.NotNull(nullptr, "description");
  const auto found = FindPort(request, deviceId, statePortName);
  if (!found) return request.code();
  return GiveText(found->port.description, description, descriptionSize, actualStringSize);
}

uint32_t GetNumAddressFields(uint32_t deviceId, const char* statePortName, uint32_t* numAddressFields) {
  VOXTREL_COMPONENT_CALL("StatePort.GetNumAddressFields", "deviceId=", HexId(deviceId));
  Request request("StatePort.GetNumAddressFields");
  return AnswerCount(request, numAddressFields, "numAddressFields",
                     [&] { return AddressFieldsOf(request, deviceId, statePortName); });
}

uint32_t GetAddressFields(uint32_t deviceId, const char* statePortName, uint32_t maxNumAddressFields,
                          char (*addressFields)[kNameSize]) {
  VOXTREL_COMPONENT_CALL("StatePort.GetAddressFields", "deviceId=", HexId(deviceId));
  Request request("StatePort.GetAddressFields");
  return AnswerFill(request, addressFields, "addressFields", Names(maxNumAddressFields),
                    [&] { return AddressFieldsOf(request, deviceId, statePortName); });
}

uint32_t GetAddressFieldDescription(uint32_t deviceId, const char* statePortName, const char* addressFieldName,
                                    char* description, uint32_t descriptionSize, uint32_t* actualStringSize) {
  VOXTREL_COMPONENT_CALL("StatePort.GetAddressFieldDescription", "deviceId=", HexId(deviceId));
  Request request("StatePort.GetAddressFieldDescription");
  if (description == nullptr && actualStringSize == nullptr) request.NotNull(nullptr, "description");
  const auto found = FindPort(request.NotNull(addressFieldName, "addressFieldName"), deviceId, statePortName);
  if (!found) return request.code();
  for (const AddressField& field : found->port.addressFields)
    if (field.name == addressFieldName)
      return GiveText(field.description, description, descriptionSize, actualStringSize);
  return request.Refuse(kValueOutOfRange, ": port '" + found->port.name + "' has no address field '" +
                                              addressFieldName + "'");
}

constexpr StatePortComponent kStatePort{&Initialize,
                                        &Uninitialize,
                                        &Read,
                                        &Write,
                                        &ReadModifyWrite,
                                        &GetNumStatePorts,
                                        &GetStatePorts,
                                        &GetAccessSize,
                                        &GetStatePortDescription,
                                        &GetNumAddressFields,
                                        &GetAddressFields,
                                        &GetAddressFieldDescription};

}  // namespace

}  // namespace voxtrel::platform::state_port

uint32_t Voxtrel_GetStatePort(const StatePortComponent** table) {
  VOXTREL_COMPONENT_CALL("Voxtrel_GetStatePort");
  if (!table) return voxtrel::platform::target::kNullArgument;
  *table = &voxtrel::platform::state_port::kStatePort;
  return 0;
}
