// The CPUs of one target domain emulated with Unicorn: one engine per
// hardware thread, all mapping the same host buffers as physical memory, run
// one at a time in round robin on one host thread of the domain's own. So a
// locked instruction stays atomic across threads, a halt lands on an
// instruction boundary, and the same firmware runs the same way every time.
//
// Every call from outside becomes a request that the domain's thread serves
// between two slices; the engines are touched by that thread alone. A
// thread's turn is kSliceBlocks blocks; a slice ends at the end of the turn,
// when a request arrives (a flag a block hook reads, which calls uc_emu_stop
// itself: never from another thread), at a stop, or when the thread executes
// HLT. A turn cut short by a request, or by a halt of every thread, goes on
// after it, so when requests come does not change which thread runs which
// instructions: started from the same state (the schedule's included, which
// a reset starts again), the domain runs the same way. Runs are never counted
// (count = 0): a counted run throws away every translation.
#pragma once

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <shared_mutex>
#include <thread>
#include <vector>

#include <unicorn/unicorn.h>

#include "Cpu/CpuBackend.h"
#include "Cpu/EngineSetup.h"

namespace voxtrel::platform::cpu_engine {

using namespace cpu;

class UnicornDomain final : public CpuBackend {
 public:
  // Throws std::runtime_error when an engine cannot be set up.
  explicit UnicornDomain(const EngineSetup& setup);
  ~UnicornDomain() override;

  uint32_t ThreadCount() const override { return static_cast<uint32_t>(threads_.size()); }
  std::vector<MemoryRegion> MemoryMap() const override;
  CpuResult ReadPhysical(uint64_t address, std::span<uint8_t> bytes) override;
  CpuResult WritePhysical(uint64_t address, std::span<const uint8_t> bytes) override;
  CpuResult ReadIo(uint16_t port, uint32_t size, uint32_t& value) override;
  CpuResult WriteIo(uint16_t port, uint32_t size, uint32_t value) override;
  const std::vector<RegisterInfo>& Registers() const override;
  CpuResult ReadRegister(uint32_t thread, std::string_view name, std::span<uint8_t> value) override;
  CpuResult WriteRegister(uint32_t thread, std::string_view name, std::span<const uint8_t> value) override;
  CpuResult ReadMsr(uint32_t thread, uint32_t msr, uint64_t& value) override;
  CpuResult WriteMsr(uint32_t thread, uint32_t msr, uint64_t value) override;
  CpuResult Cpuid(uint32_t thread, uint32_t leaf, uint32_t subleaf, CpuidResult& result) override;
  CpuResult ApicId(uint32_t thread, uint32_t& apicId) override;
  CpuResult GetRunState(uint32_t thread, RunState& state) override;
  CpuResult Halt(uint32_t thread) override;
  CpuResult Go(uint32_t thread) override;
  CpuResult HaltAll() override;
  CpuResult GoAll() override;
  CpuResult Step(uint32_t thread) override;
  CpuResult ExecuteInstruction(uint32_t thread, uint64_t linear, uint64_t physical,
                               std::span<const uint8_t> code) override;
  CpuResult AddBreakpoint(const Breakpoint& breakpoint, uint32_t& id) override;
  CpuResult RemoveBreakpoint(uint32_t id) override;
  uint32_t AddStopListener(StopListener listener) override;
  void RemoveStopListener(uint32_t id) override;
  CpuResult Reset(ResetMode mode) override;
  CpuResult SetBreakOnHlt(uint32_t thread, bool on) override;
  void Shutdown() override;

  // Blocks per slice: about 100 µs of firmware.
  static constexpr uint32_t kSliceBlocks = 20000;

 private:
  struct Region {
    MemoryRegion info;
    uint8_t* host = nullptr;  // Null for a hole
  };
  struct HookOwner;  // What a breakpoint's hook is called with
  struct Thread {
    uint32_t index = 0;
    uint32_t apicId = 0;
    uc_engine* uc = nullptr;
    RunState state = RunState::Running;
    bool waiting = false;                  // Executed HLT; nothing wakes it but a reset or a new rip
    bool breakOnHlt = false;               // Halts instead of waiting when it executes HLT
    std::optional<uint64_t> skipAddress;   // Resumed here: an execution breakpoint lets it pass once
    std::optional<StopEvent> pendingData;  // A data breakpoint hit; stop before the next instruction
    std::vector<uc_hook> hooks;            // For the life of the engine
  };
  struct SetBreakpoint {
    Breakpoint breakpoint;
    std::vector<std::pair<uc_engine*, uc_hook>> hooks;
    std::unique_ptr<HookOwner> owner;
  };

  // ---- Serving requests on the domain's thread ------------------------------
  // Runs `work` on the domain's thread between slices and gives its result;
  // at once when called there (from a stop listener). Unavailable once shut down.
  CpuResult Serve(const std::function<CpuResult()>& work);
  // The same without waiting for it, for work that only has to be done
  // before the CPUs run on: a running slice ends at its next block and the
  // work is done then; a domain whose threads all stand still is not woken,
  // and does it ahead of the next request it is given.
  void Post(std::function<void()> work);
  void Loop();
  Thread* NextRunnable();
  bool RunSlice(Thread& thread, bool stepping);
  void Report(const StopEvent& event);
  bool ExecutedHlt(Thread& thread);

  // ---- Helpers for the domain's thread --------------------------------------
  Thread* FindThread(uint32_t index);
  static uc_context* SaveResetState();
  void ResetThread(Thread& thread);
  void RestartSchedule();
  uint64_t LinearRip(Thread& thread);
  void SetLinearRip(Thread& thread, uint64_t linear);
  // Translations of every mapped region, of one engine or all of them.
  void ClearTranslations(uc_engine* uc);
  void ClearTranslations();
  void ClearTranslations(uint64_t begin, uint64_t end);
  void MapMemory(uc_engine* uc);
  void AddThreadHooks(Thread& thread);
  CpuResult CopyPhysical(uint64_t address, uint8_t* bytes, uint64_t size, bool write);
  CpuResult ReadRegisterHere(Thread& thread, std::string_view name, std::span<uint8_t> value);
  CpuResult WriteRegisterHere(Thread& thread, std::string_view name, std::span<const uint8_t> value);
  CpuResult WriteMsrHere(Thread& thread, uint32_t msr, uint64_t value);
  void HaltHere(Thread& thread);
  void GoHere(Thread& thread);
  void ArmSkip(Thread& thread);
  std::optional<uint32_t> ExecutionBreakpointAt(const Thread& thread, uint64_t address) const;
  std::optional<StopEvent> BreakpointHitAt(const Thread& thread, uint64_t address) const;
  void StopSlice(uc_engine* uc, uint64_t address, std::optional<StopEvent> event);
  static bool ReadForTables(void* context, uint64_t address, std::span<uint8_t> bytes);

  // ---- Engine callbacks -------------------------------------------------------
  static void OnBlock(uc_engine* uc, uint64_t address, uint32_t size, void* user);
  static void OnStepCode(uc_engine* uc, uint64_t address, uint32_t size, void* user);
  static void OnExecutionBreakpoint(uc_engine* uc, uint64_t address, uint32_t size, void* user);
  static void OnDataAccess(uc_engine* uc, uc_mem_type type, uint64_t address, int size, int64_t value, void* user);
  static void OnDataTrigger(uc_engine* uc, uint64_t address, uint32_t size, void* user);
  static uint32_t OnIn(uc_engine* uc, uint32_t port, int size, void* user);
  static void OnOut(uc_engine* uc, uint32_t port, int size, uint32_t value, void* user);
  static int OnCpuid(uc_engine* uc, void* user);

  std::vector<Region> regions_;
  std::shared_ptr<DomainMachine> machine_;
  std::vector<std::unique_ptr<Thread>> threads_;
  uc_context* resetState_ = nullptr;  // Real mode at the reset vector, from a 16-bit engine

  // Breakpoints and listeners: touched on the domain's thread only.
  std::map<uint32_t, SetBreakpoint> breakpoints_;
  uint32_t nextBreakpointId_ = 1;
  std::map<uint32_t, StopListener> listeners_;
  std::atomic<uint32_t> nextListenerId_{1};
  size_t dataBreakpoints_ = 0;
  std::vector<std::pair<uc_engine*, uc_hook>> dataTriggers_;  // Whole-range code hooks while data breakpoints exist

  // The slice under way.
  Thread* current_ = nullptr;
  Thread* turnOwner_ = nullptr;  // Whose turn blocksLeft_ counts
  uint32_t blocksLeft_ = 0;
  bool stepping_ = false;
  // Stops are kept, not reported, while an instruction is executed for a
  // client: the last one says how it ended.
  bool quiet_ = false;
  std::optional<StopEvent> quietStop_;
  uint32_t stepCallbacks_ = 0;
  bool stopped_ = false;  // The slice was ended by a hook, not by HLT
  std::optional<uint64_t> stopAddress_;
  std::optional<StopEvent> stopEvent_;

  // Guest memory as transfers reach it: read shared, written alone.
  std::shared_mutex memoryMutex_;

  // Requests.
  std::mutex mutex_;
  std::condition_variable wake_;
  std::deque<std::function<void()>> requests_;
  std::atomic<bool> interrupt_{false};
  bool quit_ = false;
  std::atomic<bool> shutDown_{false};
  std::thread::id hostId_;
  std::thread host_;
};

}  // namespace voxtrel::platform::cpu_engine
