// The scan chains of the built topology, one ScanChain each, with what
// clients hold on them: the chain lock and the scans recorded since a Mark.
// Every piece of work on a chain runs under that chain's mutex. The chains
// are built from the topology the first time a component asks after
// FinishInitialization, and dropped with it.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <vector>

#include "Jtag/ScanChain.h"
#include "OperationReceipt/Receipts.h"
#include "TargetManager/Request.h"

namespace voxtrel::platform::jtag {

// Internal codes of the Jtag component's refusals.
inline constexpr uint32_t kOutOfRange = 0x20001;       // A state, type, count or length it cannot use
inline constexpr uint32_t kNotSupported = 0x20002;     // Not in the chain's present state
inline constexpr uint32_t kChainLocked = 0xe0005;      // Another client holds the chain's lock
inline constexpr uint32_t kScanMismatch = 0x20004;     // A compare or a verify found other bits

// The longest scan, the most clocks spent in a shift state, and the longest
// path the diagnostics search for: 16 Mbit. And the most Repeat iterations.
inline constexpr uint64_t kMaxScanBits = uint64_t{1} << 24;
inline constexpr uint32_t kMaxIterations = 1u << 20;

// The chain a request names, its slot, and, when it names a TAP controller, which.
struct ChainSlot;
struct ChainTarget {
  ChainSlot& slot;
  ScanChain& chain;
  size_t tap;  // chain.Taps().size() when the request names the whole chain
  bool WholeChain() const { return tap == chain.Taps().size(); }
};

// A scan's work: 0 and the receipt's outcome, or a refusal's code after
// `request.Refuse`.
using ScanWork = std::function<uint32_t(ChainTarget&, target_manager::Request&, receipts::ReceiptOutcome&)>;

struct ChainSlot {
  explicit ChainSlot(ScanChain built) : chain(std::move(built)) {}
  std::mutex mutex;
  ScanChain chain;
  uint32_t holder = 0;                                // The client holding the lock; 0 for none
  std::map<uint32_t, std::vector<ScanWork>> marked;  // Scans since a client's Mark
};

class JtagModel {
 public:
  static JtagModel& Instance();

  // The chain of a chain's or a TAP controller's id; null, refused, when
  // the topology is not built or the id names neither.
  std::shared_ptr<ChainSlot> Find(target_manager::Request& request, uint32_t id, size_t& tap);
  // Every chain of the built topology; empty when none is built.
  std::vector<std::shared_ptr<ChainSlot>> Chains();

  // Encrypted debug, by device.
  bool EncryptedDebugRunning(uint32_t deviceId);
  void SetEncryptedDebug(uint32_t deviceId, bool running);

 private:
  // The slots of the topology built now, rebuilt when it changed.
  std::map<uint32_t, std::shared_ptr<ChainSlot>>* Current(target_manager::Request* request);

  std::mutex mutex_;
  std::weak_ptr<target::LiveTopology> builtFrom_;
  std::map<uint32_t, std::shared_ptr<ChainSlot>> chains_;
  std::map<uint32_t, uint32_t> chainOfTap_;
  std::set<uint32_t> encrypted_;
};

// The client the calling thread acts for; 0 when none.
uint32_t CallingClient();
// "client 5 ('tool_5@host')"; an empty identifier when it has gone.
std::string ClientName(uint32_t clientId);
// The holder's identifier, empty when free; a holder that has disconnected
// no longer holds the chain.
std::string HolderIdentifier(ChainSlot& slot);

// The frame of every scan: finds the chain, refuses a caller that another
// client's lock keeps out, runs `work` under the chain's mutex, records it
// behind the caller's Mark when `recorded`, and hands back the token.
uint32_t RunScan(const char* operation, uint32_t id, uint64_t* operationToken, const ScanWork& work,
                 bool recorded = true);

}  // namespace voxtrel::platform::jtag
