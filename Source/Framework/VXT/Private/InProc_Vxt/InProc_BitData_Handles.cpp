// The handle table of the BitData service and its internal operations, which
// every service that takes or gives vectors calls inside its own frame.
#include <cstring>
#include <exception>
#include <vector>

#include "BindTable.h"
#include "InProc_BitData.h"
#include "frame/Render.h"
#include "frame/TraceLine.h"

namespace vxt {
namespace {

InProc_BitData instance;

uint32_t Refuse(const ArgumentErrorReporter& report, uint32_t failure, std::string_view text) {
  report(text);
  return failure;
}

}  // namespace

InProc_BitData& InProc_BitData::Instance() { return instance; }

// Vectors that no client freed and no disconnection reached go with the
// library.
InProc_BitData::~InProc_BitData() = default;

uint32_t InProc_BitData::_CheckRecord(const VXT_BitData* record, bool mustHoldData,
                                      const ArgumentErrorReporter& report) {
  if (record == nullptr) return Refuse(report, code::kInvalidArgument, "Null pointer");
  if (record->structureSize != VXT_BITDATA_SIZE)
    return Refuse(report, code::kStructureSize, "Structure size not initialized");
  if (mustHoldData && record->dataHandle == 0) return Refuse(report, code::kBitDataInvalid, "Invalid");
  if (!mustHoldData && record->dataHandle != 0) return Refuse(report, code::kDestinationExists, "Destination exists");
  return code::kSuccess;
}

uint32_t InProc_BitData::_CheckBitRange(const VXT_BitData* record, uint32_t bitOffset, uint32_t bitSize,
                                        const ArgumentErrorReporter& report) {
  if (record == nullptr) return Refuse(report, code::kInvalidArgument, "Null pointer");
  // An empty field at the start fits every vector, the empty one included.
  if (bitOffset == 0 && bitSize == 0) return code::kSuccess;
  if (bitOffset >= record->bitSize) return Refuse(report, code::kBitOffsetInvalid, "Bit offset invalid");
  // Summed in 64 bits, so that a pair wrapping 32 bits is out of range.
  if (uint64_t{bitOffset} + bitSize > record->bitSize)
    return Refuse(report, code::kBitRangeInvalid, "Bit range invalid");
  return code::kSuccess;
}

uint32_t InProc_BitData::CallingClient(int32_t& clientId) const {
  clientId = 0;
  if (common == nullptr) return code::kBitDataInvalid;
  return common->GetClientId(&clientId);
}

uint32_t InProc_BitData::_GetManaged(const VXT_BitData* record, BitData*& managed,
                                     const ArgumentErrorReporter& report) {
  if (const uint32_t failure = _CheckRecord(record, true, report); failure != 0) return failure;
  int32_t clientId = 0;
  if (CallingClient(clientId) != 0) return Refuse(report, code::kBitDataInvalid, "Unknown Client");

  std::lock_guard lock(mutex_);
  // Another client's handle is simply not in this client's map.
  const auto client = clients_.find(clientId);
  if (client == clients_.end()) return Refuse(report, code::kBitDataInvalid, "Invalid");
  const auto vector = client->second.find(record->dataHandle);
  if (vector == client->second.end()) return Refuse(report, code::kBitDataInvalid, "Invalid");
  managed = vector->second.get();
  return code::kSuccess;
}

uint64_t InProc_BitData::AllocateHandle() {
  if (freeHandles_.empty()) return ++handleCounter_;
  const uint64_t handle = freeHandles_.front();
  freeHandles_.pop_front();
  return handle;
}

template <class Make>
uint32_t InProc_BitData::Enter(VXT_BitData* record, Make make) {
  int32_t clientId = 0;
  if (const uint32_t failure = CallingClient(clientId); failure != 0) return failure;

  std::lock_guard lock(mutex_);
  ClientVectors& vectors = clients_[clientId];
  ManagedBitData object;
  if (const uint32_t failure = make(object); failure != 0) return failure;
  if (object == nullptr) return code::kOutOfRange;
  const uint64_t bitSize = object->bitSize;
  const uint64_t handle = AllocateHandle();
  try {
    vectors.emplace(handle, std::move(object));
  } catch (...) {
    // The handle was not given out: it is the next to be given.
    freeHandles_.push_front(handle);
    throw;
  }
  record->bitSize = static_cast<uint32_t>(bitSize);
  record->dataHandle = handle;
  return code::kSuccess;
}

uint32_t InProc_BitData::EnterFromText(VXT_BitData* record, const char* text) {
  return Enter(record, [&](ManagedBitData& object) {
    object.reset(BitData_CreateManagedFromString(text));
    return code::kSuccess;
  });
}

uint32_t InProc_BitData::EnterField(VXT_BitData* record, const BitData* source, uint32_t bitOffset,
                                    uint32_t bitSize) {
  return Enter(record, [&](ManagedBitData& field) {
    // The record's bitSize may say more than the vector holds; the library
    // refuses a field beyond the real end, before room is set aside for it.
    if (const uint32_t refused = BitData_CheckField(source, bitOffset, bitSize); refused != 0) return refused;
    field.reset(BitData_CreateManaged(bitSize));
    return BitData_Copy(source, bitOffset, field.get(), 0, bitSize);
  });
}

uint32_t InProc_BitData::_Create(VXT_BitData* record, uint32_t bitSize, uint64_t initialValue,
                                 const ArgumentErrorReporter& report) {
  if (const uint32_t failure = _CheckRecord(record, false, ReportBehind{report, "(bitData) : "}); failure != 0)
    return failure;
  return Enter(record, [&](ManagedBitData& object) {
    object.reset(BitData_CreateManagedFromUInt64(bitSize, initialValue));
    return code::kSuccess;
  });
}

uint32_t InProc_BitData::_CreateFromRawBits(VXT_BitData* record, uint32_t bitSize, const uint8_t* values,
                                            uint32_t numValues, const ArgumentErrorReporter& report) {
  if (values == nullptr && bitSize != 0) return Refuse(report, code::kInvalidArgument, "(values) : Null pointer");
  if (const uint32_t failure = _CheckRecord(record, false, ReportBehind{report, "(bitData) : "}); failure != 0)
    return failure;
  return Enter(record, [&](ManagedBitData& object) {
    // The library reads a byte for every eight bits. When the caller gave
    // fewer, the bits they do not cover are zero rather than read past the
    // caller's buffer.
    const uint64_t needed = (uint64_t{bitSize} + 7) / 8;
    if (numValues >= needed) {
      object.reset(BitData_CreateManagedFromBuffer(bitSize, values));
    } else {
      std::vector<uint8_t> padded(needed, 0);
      if (numValues != 0) std::memcpy(padded.data(), values, numValues);
      object.reset(BitData_CreateManagedFromBuffer(bitSize, padded.data()));
    }
    return code::kSuccess;
  });
}

uint32_t InProc_BitData::_Copy(const VXT_BitData* src, VXT_BitData* dest, const ArgumentErrorReporter& report) {
  const ReportBehind reportSrc{report, "(src) : "};
  const ReportBehind reportDest{report, "(dest) : "};
  if (const uint32_t failure = _CheckRecord(src, true, reportSrc); failure != 0) return failure;
  if (const uint32_t failure = _CheckRecord(dest, false, reportDest); failure != 0) return failure;
  BitData* source = nullptr;
  if (const uint32_t failure = _GetManaged(src, source, reportSrc); failure != 0) return failure;
  return Enter(dest, [&](ManagedBitData& object) {
    object.reset(BitData_CreateManagedFromBitData(source));
    return code::kSuccess;
  });
}

uint32_t InProc_BitData::_Destroy(VXT_BitData* record, const ArgumentErrorReporter& report) {
  BitData* managed = nullptr;
  if (const uint32_t failure = _GetManaged(record, managed, report); failure != 0) return failure;
  int32_t clientId = 0;
  if (const uint32_t failure = CallingClient(clientId); failure != 0) return failure;
  {
    std::lock_guard lock(mutex_);
    // Looked up again: another thread of the client may have destroyed the
    // vector since the lock was last let go.
    const auto client = clients_.find(clientId);
    if (client == clients_.end() || client->second.erase(record->dataHandle) == 0)
      return Refuse(report, code::kBitDataInvalid, "Invalid");
    freeHandles_.push_back(record->dataHandle);
  }
  record->bitSize = 0;
  record->dataHandle = 0;
  return code::kSuccess;
}

uint32_t InProc_BitData::_ExtractAsRawBits(const VXT_BitData* record, uint32_t bitOffset, uint32_t bitSize,
                                           uint8_t* values, uint32_t maxValues, const ArgumentErrorReporter& report) {
  if (values == nullptr) return Refuse(report, code::kInvalidArgument, "(values) : Null pointer");
  if (bitSize == 0) return code::kSuccess;
  const ReportBehind reportBitData{report, "(bitData) : "};
  if (const uint32_t failure = _CheckRecord(record, true, reportBitData); failure != 0) return failure;
  BitData* source = nullptr;
  if (const uint32_t failure = _GetManaged(record, source, reportBitData); failure != 0) return failure;
  if (const uint32_t failure = _CheckBitRange(record, bitOffset, bitSize, reportBitData); failure != 0)
    return failure;

  if (const uint32_t refused = BitData_CheckField(source, bitOffset, bitSize); refused != 0) return refused;
  const ManagedBitData field(BitData_CreateManaged(bitSize));
  if (const uint32_t failure = BitData_Copy(source, bitOffset, field.get(), 0, bitSize); failure != 0) return failure;
  // A buffer too small for the field receives the bytes that fit.
  BitData_GetBuffer(field.get(), 0, values, maxValues);
  return code::kSuccess;
}

void InProc_BitData::FreeClientVectors(int32_t clientId) {
  std::lock_guard lock(mutex_);
  const auto client = clients_.find(clientId);
  if (client == clients_.end()) return;
  for (auto& [handle, object] : client->second) {
    frame::TraceLine(logger, 3, "InProc_BitData::_ClientCloseCallback Client (", frame::Dec{clientId},
                     ") did not destroy BitData handle (", frame::Dec{handle}, ")");
    object.reset();
    freeHandles_.push_back(handle);
  }
  clients_.erase(client);
}

void InProc_BitData::_ClientCloseCallback(void*, const char* eventName, const void* eventData) {
  if (eventName == nullptr || eventData == nullptr || std::strcmp(eventName, "Disconnected") != 0) return;
  const auto& client = *static_cast<const VXT_Client*>(eventData);
  // Nothing may escape into the broker that delivers the event.
  try {
    Instance().FreeClientVectors(static_cast<int32_t>(client.clientId));
  } catch (...) {
  }
}

void InProc_BitData::SubscribeCloseCallback() {
  if (closeCallbackSubscribed) return;
  BindTable(&Voxtrel_GetEventBroker, eventBroker);
  BindTable(&Voxtrel_GetCommon, common);
  if (eventBroker != nullptr) eventBroker->Subscribe("Client", &_ClientCloseCallback, nullptr, "InProc_BitData");
  closeCallbackSubscribed = true;
}

void InProc_BitData::UnsubscribeCloseCallback() {
  if (!closeCallbackSubscribed) return;
  if (eventBroker != nullptr) eventBroker->Unsubscribe("Client", &_ClientCloseCallback, nullptr);
  closeCallbackSubscribed = false;
}

}  // namespace vxt
