#include "Seeds.h"

#include <cstdio>
#include <initializer_list>

#include "CallSequence.h"

namespace vxt::fuzz {
namespace {

class Sequence {
 public:
  // A call from thread 0 of client 1 unless `who` says otherwise; `choices`
  // are the parameters' choice bytes (see ArgumentPool.h).
  Sequence& Call(const char* service, const char* name, std::initializer_list<uint8_t> choices = {}, uint8_t who = 0) {
    const int selector = OperationSelector(service, name);
    if (selector < 0) {
      std::fprintf(stderr, "vxt_fuzz_seeds: no operation %s::%s\n", service, name);
      return *this;
    }
    return Raw(static_cast<uint16_t>(selector), who, choices);
  }
  Sequence& Connect(uint8_t who = 0) { return Raw(kStartNewInstance, who, {}); }
  Sequence& Finish() { return Raw(kFinishInitialization, 0, {}); }
  Sequence& Leave(uint8_t who = 0) { return Raw(kDisconnect, who, {}); }
  const std::vector<uint8_t>& bytes() const { return bytes_; }

 private:
  Sequence& Raw(uint16_t selector, uint8_t who, std::initializer_list<uint8_t> choices) {
    bytes_.push_back(static_cast<uint8_t>(selector));
    bytes_.push_back(static_cast<uint8_t>(selector >> 8));
    bytes_.push_back(who);
    bytes_.insert(bytes_.end(), choices);
    return *this;
  }
  std::vector<uint8_t> bytes_;
};

// Choice bytes: a number's 0 is the latest word a call wrote (a token, a
// handle), 1 the one before, 4 the first thread; a pointer's 0 is zeroed
// room, 1 then 2 the string "rip", 2 then N the N-th latest record written,
// 5 then 0 the latest word.
constexpr uint8_t kLatest = 0, kBeforeLatest = 1, kThread = 4, kRoom = 0, kString = 1, kRip = 2, kRecord = 2,
                  kWord = 5;

}  // namespace

std::vector<std::vector<uint8_t>> SeedSequences() {
  std::vector<Sequence> seeds;
  seeds.push_back(Sequence().Connect().Finish().Leave());
  seeds.push_back(Sequence().Connect().Leave().Connect().Finish().Leave());
  seeds.push_back(Sequence()  // the debug session of the golden trace
                      .Connect().Finish()
                      .Call("RunControl", "Halt", {kThread, kRoom})
                      .Call("OperationReceipt", "GetOperationStatus", {kLatest, kRoom})
                      .Call("OperationReceipt", "Destroy", {kBeforeLatest})
                      .Call("Register", "ReadRegister", {kThread, kString, kRip, kRoom})
                      .Call("OperationReceipt", "GetValueAsUInt64", {kLatest, kRoom})
                      .Call("OperationReceipt", "Destroy", {kBeforeLatest})
                      .Call("BitData", "CreateFromRawBits", {0, kRoom, 3, kRoom, 3})
                      .Call("Register", "WriteRegister", {kThread, kString, kRip, 0, kRecord, 0, kRoom})
                      .Call("BitData", "Destroy", {0, kRecord, 1})
                      .Call("RunControl", "Step", {kThread, 1, 0, kRoom})
                      .Call("Breakpoint", "CreateBreakpoint", {0, kRoom})
                      .Call("RunControl", "Go", {kThread, kRoom})
                      .Call("RunControl", "Halt", {kThread, kRoom})
                      .Leave());
  seeds.push_back(Sequence()  // two clients on two threads, one lock
                      .Connect().Connect(3).Finish()
                      .Call("Device", "Lock", {kThread, 2, kRoom}, 0)
                      .Call("Device", "Lock", {kThread, 2, kRoom}, 3)
                      .Call("Device", "Unlock", {kWord, 0}, 0)
                      .Leave(3).Leave());
  seeds.push_back(Sequence()  // calls before FinishInitialization and after Disconnect
                      .Connect()
                      .Call("Register", "ReadRegister", {kThread, kString, kRip, kRoom})
                      .Finish().Leave()
                      .Call("RunControl", "Halt", {kThread, kRoom}));
  std::vector<std::vector<uint8_t>> bytes;
  for (const Sequence& seed : seeds) bytes.push_back(seed.bytes());
  return bytes;
}

}  // namespace vxt::fuzz
