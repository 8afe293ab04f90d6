// What the jtag and bitbang commands share: the chains of the target, and
// scans through the JtagAccess service whose results are read from their
// operation tokens.
#pragma once

#include <cstdint>
#include <exception>
#include <iostream>
#include <ostream>
#include <string>
#include <vector>

#include "CommandRegistry.h"
#include "DeviceNames.h"
#include "InProc_Vxt.h"
#include "Session.h"

namespace vxt::cli {

// Every JTAG chain of the target, in the order of the topology.
std::vector<uint32_t> JtagChains(IInternalService_Device& devices);
// The chain a user names, or the target's first when `name` is empty.
uint32_t ResolveChain(IInternalService_Device& devices, const std::string& name);

class JtagPort {
 public:
  explicit JtagPort(Session& session);

  // Each waits for its operation; a failed one throws with its message.
  // The value's low 64 bits.
  uint64_t GoToState(uint32_t chain, VXT_JtagState state, uint32_t numClocks = 0);
  // In a shift state: `count` bits of `tdi` (LSB first), then to `state`.
  uint64_t Shift(uint32_t chain, VXT_JtagState state, uint32_t count, uint64_t tdi);
  void TapReset(uint32_t chain, VXT_JtagResetType type);
  uint64_t IrDrScan(uint32_t target, uint32_t irBits, uint64_t ir, uint32_t drBits, uint64_t dr);
  void Lock(uint32_t chain);
  void Unlock(uint32_t chain);

  IInternalService_JtagAccess& access() { return *access_; }
  IInternalService_BitData& bits() { return *bits_; }

 private:
  uint64_t Finish(VXT_Result code, const uint64_t& token, const char* call);
  // A vector of the value, destroyed after the call.
  struct Vector {
    Vector(IInternalService_BitData& bits, uint32_t size, uint64_t value);
    ~Vector();
    Vector(const Vector&) = delete;
    Vector& operator=(const Vector&) = delete;
    IInternalService_BitData& bits;
    VXT_BitData record{VXT_BITDATA_SIZE, 0, 0};
  };

  IInternalService_JtagAccess* access_;
  IInternalService_OperationReceipt* receipts_;
  IInternalService_BitData* bits_;
};

}  // namespace vxt::cli
