#include "JtagSession.h"

#include <stdexcept>

namespace vxt::cli {

std::vector<uint32_t> JtagChains(IInternalService_Device& devices) {
  const TargetDomains domains = ReadTargetDomains(devices);
  const VXT_NodeType type = VXT_NodeType_JTAGScanChain;
  uint32_t count = 0;
  Check(devices.GetNumDeviceIdsOfTypes(domains.rootId, 1, &type, &count), "GetNumDeviceIdsOfTypes");
  std::vector<uint32_t> chains(count);
  if (count > 0) Check(devices.GetDeviceIdsOfTypes(domains.rootId, 1, &type, count, chains.data()), "GetDeviceIdsOfTypes");
  return chains;
}

uint32_t ResolveChain(IInternalService_Device& devices, const std::string& name) {
  if (!name.empty()) return ResolveDevice(devices, name);
  const std::vector<uint32_t> chains = JtagChains(devices);
  if (chains.empty()) throw std::invalid_argument("the target has no JTAG chain");
  return chains.front();
}

JtagPort::JtagPort(Session& session)
    : access_(&session.Get<IInternalService_JtagAccess>(VXT_Service_JtagAccess)),
      receipts_(&session.Get<IInternalService_OperationReceipt>(VXT_Service_OperationReceipt)),
      bits_(&session.Get<IInternalService_BitData>(VXT_Service_BitData)) {}

JtagPort::Vector::Vector(IInternalService_BitData& service, uint32_t size, uint64_t value) : bits(service) {
  Check(bits.Create(&record, size, value), "BitData::Create");
}
JtagPort::Vector::~Vector() { bits.Destroy(&record); }

uint64_t JtagPort::Finish(VXT_Result code, const uint64_t& token, const char* call) {
  Check(code, call);
  OperationStatus status = VXT_OperationStatus_Pending;
  Check(receipts_->Flush(token), "Flush");
  Check(receipts_->GetOperationStatus(token, &status), "GetOperationStatus");
  uint64_t value = 0;
  char message[512] = "";
  if (status == VXT_OperationStatus_Completed) {
    uint8_t bytes[8] = {};
    uint32_t numBytes = 0;
    Check(receipts_->GetValueAsRawBytes(token, bytes, sizeof bytes, &numBytes), "GetValueAsRawBytes");
    for (uint32_t i = 0; i < numBytes && i < 8; ++i) value |= uint64_t{bytes[i]} << (8 * i);
  } else {
    receipts_->GetOperationErrorMessage(token, message, sizeof message, nullptr);
  }
  Check(receipts_->Destroy(token), "Destroy");
  if (status != VXT_OperationStatus_Completed) throw std::runtime_error(std::string(call) + ": " + message);
  return value;
}

uint64_t JtagPort::GoToState(uint32_t chain, VXT_JtagState state, uint32_t numClocks) {
  uint64_t token = 0;
  return Finish(access_->GoToState(chain, state, numClocks, VXT_JtagWaitType_COUNT, &token), token, "GoToState");
}

uint64_t JtagPort::Shift(uint32_t chain, VXT_JtagState state, uint32_t count, uint64_t tdi) {
  Vector bits(*bits_, count, tdi);
  uint64_t token = 0;
  return Finish(access_->Shift(chain, state, count, &bits.record, &token), token, "Shift");
}

void JtagPort::TapReset(uint32_t chain, VXT_JtagResetType type) {
  uint64_t token = 0;
  Finish(access_->TapReset(chain, type, &token), token, "TapReset");
}

uint64_t JtagPort::IrDrScan(uint32_t target, uint32_t irBits, uint64_t ir, uint32_t drBits, uint64_t dr) {
  Vector irValue(*bits_, irBits, ir);
  Vector drValue(*bits_, drBits, dr);
  uint64_t token = 0;
  return Finish(access_->IrDrScan(target, &irValue.record, drBits, &drValue.record, &token), token, "IrDrScan");
}

void JtagPort::Lock(uint32_t chain) {
  uint64_t token = 0;
  Finish(access_->Lock(chain, &token), token, "Lock");
}

void JtagPort::Unlock(uint32_t chain) {
  uint64_t token = 0;
  Finish(access_->Unlock(chain, &token), token, "Unlock");
}

}  // namespace vxt::cli
