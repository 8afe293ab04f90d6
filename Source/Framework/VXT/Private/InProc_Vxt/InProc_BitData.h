// The BitData service: the per-client handle table of bit vectors, the
// checks of every VXT_BitData record a client hands in, and the clean-up
// when a client goes away.
//
// Every service that takes or gives vectors goes through the internal
// operations below (BitDataHandles.h chains them into a call's checks).
#pragma once

#include <cstdint>
#include <deque>
#include <map>
#include <memory>
#include <mutex>

#include "ArgumentErrorReporter.h"
#include "BitData.h"
#include "Common.h"
#include "EventBroker.h"
#include "IInternalService_BitData.h"
#include "SingletonService.h"
#include "frame/ServiceLogger.h"

namespace vxt {

// Codes of the bit vector checks.
namespace code {
inline constexpr uint32_t kBitDataInvalid = 0x140000;  // No vector, unknown handle or unknown client
inline constexpr uint32_t kBitDataFieldTooWide = 0x140001;
inline constexpr uint32_t kBitRangeInvalid = 0x140002;
inline constexpr uint32_t kBitOffsetInvalid = 0x140003;
inline constexpr uint32_t kDestinationExists = 0x140004;
inline constexpr uint32_t kUnknownBitwiseOperation = 0x140005;
}  // namespace code

class InProc_BitData : public SingletonService<InProc_BitData>, public IInternalService_BitData {
 public:
  static InProc_BitData& Instance();

  InProc_BitData() = default;
  ~InProc_BitData() override;
  InProc_BitData(const InProc_BitData&) = delete;
  InProc_BitData& operator=(const InProc_BitData&) = delete;

  VXT_Result Create(VXT_BitData* bitData, uint32_t bitSize, uint64_t initialValue) override;
  VXT_Result CreateFromRawBits(VXT_BitData* bitData, uint32_t bitSize, const uint8_t* values,
                               uint32_t numValues) override;
  VXT_Result CreateFromString(VXT_BitData* bitData, const char* value) override;
  VXT_Result Copy(const VXT_BitData* src, VXT_BitData* dest) override;
  VXT_Result Destroy(VXT_BitData* bitData) override;
  VXT_Result DestroyManyBitData(VXT_BitData* items, uint32_t numItems) override;
  VXT_Result Extract(const VXT_BitData* bitData, uint32_t bitOffset, uint32_t bitSize, uint64_t* value) override;
  VXT_Result ExtractAsBitData(const VXT_BitData* bitData, uint32_t bitOffset, uint32_t bitSize,
                              VXT_BitData* value) override;
  VXT_Result ExtractAsRawBits(const VXT_BitData* bitData, uint32_t bitOffset, uint32_t bitSize, uint8_t* values,
                              uint32_t maxValues) override;
  VXT_Result ToUInt64(const VXT_BitData* bitData, uint32_t bitOffset, uint64_t* value) override;
  VXT_Result ToUInt32(const VXT_BitData* bitData, uint32_t bitOffset, uint32_t* value) override;
  VXT_Result ToUInt16(const VXT_BitData* bitData, uint32_t bitOffset, uint16_t* value) override;
  VXT_Result ToUInt8(const VXT_BitData* bitData, uint32_t bitOffset, uint8_t* value) override;
  VXT_Result Deposit(const VXT_BitData* bitData, uint32_t bitOffset, uint32_t bitSize, uint64_t value) override;
  VXT_Result DepositFromBitData(const VXT_BitData* destBitData, uint32_t destBitOffset, uint32_t destBitSize,
                                const VXT_BitData* srcBitData, uint32_t srcBitOffset) override;

  // --- Internal operations -------------------------------------------------
  // Each returns an internal code and hands the short text of a failed check
  // to `report`. Those that name several records put "(<argument>) : "
  // before the text themselves; the others leave the argument to the caller.

  // A record that is there, sized, and holds a vector (mustHoldData) or
  // none (to receive one).
  static uint32_t _CheckRecord(const VXT_BitData* record, bool mustHoldData, const ArgumentErrorReporter& report);
  // The field (bitOffset, bitSize) lies inside the record's bitSize.
  static uint32_t _CheckBitRange(const VXT_BitData* record, uint32_t bitOffset, uint32_t bitSize,
                                 const ArgumentErrorReporter& report);
  // The calling client's vector behind the record.
  uint32_t _GetManaged(const VXT_BitData* record, BitData*& managed, const ArgumentErrorReporter& report);
  // A new vector in `record`; names its argument "bitData".
  uint32_t _Create(VXT_BitData* record, uint32_t bitSize, uint64_t initialValue, const ArgumentErrorReporter& report);
  // Names its arguments "values" and "bitData".
  uint32_t _CreateFromRawBits(VXT_BitData* record, uint32_t bitSize, const uint8_t* values, uint32_t numValues,
                              const ArgumentErrorReporter& report);
  // Names its arguments "src" and "dest".
  uint32_t _Copy(const VXT_BitData* src, VXT_BitData* dest, const ArgumentErrorReporter& report);
  // Frees the vector and clears the record.
  uint32_t _Destroy(VXT_BitData* record, const ArgumentErrorReporter& report);
  // Names its arguments "values" and "bitData".
  uint32_t _ExtractAsRawBits(const VXT_BitData* record, uint32_t bitOffset, uint32_t bitSize, uint8_t* values,
                             uint32_t maxValues, const ArgumentErrorReporter& report);

  // Subscribed to the "Client" events: frees the vectors of a client that
  // has disconnected.
  static void _ClientCloseCallback(void* userData, const char* eventName, const void* eventData);

  // The first client's work: binds the tables and subscribes the close
  // callback, unless it is subscribed already.
  void SubscribeCloseCallback();
  // The last client's work: unsubscribes the close callback if subscribed.
  void UnsubscribeCloseCallback();

  frame::ServiceLogger logger;
  // Component tables. Bound by the first client.
  const EventBrokerComponent* eventBroker = nullptr;
  const CommonComponent* common = nullptr;
  // The close callback that frees a departing client's vectors is subscribed.
  bool closeCallbackSubscribed = false;

 private:
  struct FreeManaged {
    void operator()(BitData* object) const { BitData_FreeManaged(object); }
  };
  using ManagedBitData = std::unique_ptr<BitData, FreeManaged>;
  // A client's vectors by handle, ascending.
  using ClientVectors = std::map<uint64_t, ManagedBitData>;

  // The calling thread's client; a non-zero internal code when there is none.
  uint32_t CallingClient(int32_t& clientId) const;
  // Enters a vector that `make(ManagedBitData&)` builds, under the mutex,
  // into the calling client's table and writes it into `record`. A failure
  // that `make` returns is the result; a vector it leaves unbuilt fails with
  // kOutOfRange.
  template <class Make>
  uint32_t Enter(VXT_BitData* record, Make make);
  // Next handle: the oldest released one, else a new one. Under the mutex.
  uint64_t AllocateHandle();
  // A vector read from text; kOutOfRange for text that is not a vector's.
  uint32_t EnterFromText(VXT_BitData* record, const char* text);
  // A vector holding a copy of the field (bitOffset, bitSize) of `source`.
  uint32_t EnterField(VXT_BitData* record, const BitData* source, uint32_t bitOffset, uint32_t bitSize);
  void FreeClientVectors(int32_t clientId);

  // Guards the three members below it. Not recursive: nothing here calls
  // back into the service while holding it.
  std::mutex mutex_;
  std::map<int32_t, ClientVectors> clients_;
  uint64_t handleCounter_ = 1;
  std::deque<uint64_t> freeHandles_;
};

}  // namespace vxt
