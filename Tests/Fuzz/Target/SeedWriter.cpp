// Writes the fuzzer's seed corpus (the sequences of the golden traces and of
// the tests' typical sessions) and its dictionary into a directory:
//   vxt_fuzz_seeds <corpus directory> <dictionary file>
// Operations are named, so the seeds follow the operation list as it grows.
#include <cstdio>
#include <fstream>
#include <initializer_list>
#include <string>
#include <vector>

#include "CallSequence.h"
#include "VXT_ErrorCodes.h"

namespace {

using vxt::fuzz::OperationSelector;

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
  Sequence& Connect(uint8_t who = 0) { return Raw(vxt::fuzz::kStartNewInstance, who, {}); }
  Sequence& Finish() { return Raw(vxt::fuzz::kFinishInitialization, 0, {}); }
  Sequence& Leave(uint8_t who = 0) { return Raw(vxt::fuzz::kDisconnect, who, {}); }
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

std::vector<Sequence> Seeds() {
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
  return seeds;
}

void WriteDictionary(const char* path) {
  std::ofstream out(path);
  auto word = [&](const char* what, uint32_t value) {
    char line[96];
    std::snprintf(line, sizeof line, "%s=\"\\x%02x\\x%02x\\x%02x\\x%02x\"\n", what, value & 0xff, (value >> 8) & 0xff,
                  (value >> 16) & 0xff, value >> 24);
    out << line;
  };
  for (uint32_t size : vxt::fuzz::RecordSizes()) word("structure_size", size);
  for (uint32_t code : {VXT_E_INVALID_ARGUMENT, VXT_E_NOT_IMPLEMENTED, VXT_E_NOT_SUPPORTED, VXT_E_INVALID_HANDLE})
    word("status", code);
  for (uint32_t id : {0x03000000u, 0x0b000000u, 0x02000000u, 0x0d000000u, 0x7fffffffu}) word("id", id);
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) {
    std::fprintf(stderr, "usage: vxt_fuzz_seeds <corpus directory> <dictionary file>\n");
    return 2;
  }
  const std::vector<Sequence> seeds = Seeds();
  for (size_t index = 0; index < seeds.size(); ++index) {
    std::ofstream file(std::string(argv[1]) + "/seed-" + std::to_string(index), std::ios::binary);
    file.write(reinterpret_cast<const char*>(seeds[index].bytes().data()),
               static_cast<std::streamsize>(seeds[index].bytes().size()));
  }
  WriteDictionary(argv[2]);
  return 0;
}
