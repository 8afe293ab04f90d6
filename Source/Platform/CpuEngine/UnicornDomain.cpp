#include "CpuEngine/UnicornDomain.h"

#include <sys/mman.h>

#include <algorithm>
#include <cstring>
#include <future>
#include <stdexcept>
#include <string>

#include "CpuEngine/X86Registers.h"

namespace voxtrel::platform::cpu_engine {

struct UnicornDomain::HookOwner {
  UnicornDomain* domain = nullptr;
  uint32_t id = 0;
  Breakpoint breakpoint;
};

namespace {

// The domain whose requests the calling thread serves, if any.
thread_local const UnicornDomain* servingDomain = nullptr;

constexpr uint32_t kEfer = 0xC0000080;
// MSRs the engine itself keeps; every other one is the machine's.
constexpr uint32_t kEngineMsrs[] = {kEfer,      0xC0000081, 0xC0000082, 0xC0000083, 0xC0000084, 0xC0000100,
                                    0xC0000101, 0xC0000102, 0x174,      0x175,      0x176,      0x277};
// EFER bits a program may set: SCE, LME, LMA, NXE.
constexpr uint64_t kEferWritable = 0x1 | 0x100 | 0x400 | 0x800;

bool IsEngineMsr(uint32_t msr) {
  return std::find(std::begin(kEngineMsrs), std::end(kEngineMsrs), msr) != std::end(kEngineMsrs);
}

void Check(uc_err err, const char* what) {
  if (err != UC_ERR_OK) throw std::runtime_error(std::string(what) + ": " + uc_strerror(err));
}

uint64_t FromBytes(std::span<const uint8_t> bytes) {
  uint64_t value = 0;
  std::memcpy(&value, bytes.data(), std::min<size_t>(bytes.size(), 8));
  return value;
}

void ToBytes(uint64_t value, std::span<uint8_t> bytes) {
  std::memset(bytes.data(), 0, bytes.size());
  std::memcpy(bytes.data(), &value, std::min<size_t>(bytes.size(), 8));
}

// The register of that name if `size` bytes hold it; else null, and why.
const X86Register* FindSized(std::string_view name, size_t size, CpuResult& result) {
  const X86Register* reg = FindX86Register(name);
  result = !reg ? CpuResult::UnknownRegister : size != reg->info.bitWidth / 8 ? CpuResult::BadSize : CpuResult::Ok;
  return result == CpuResult::Ok ? reg : nullptr;
}

bool Overlaps(uint64_t a, uint64_t aSize, uint64_t b, uint64_t bSize) { return a < b + bSize && b < a + aSize; }

}  // namespace

// ---- Construction -------------------------------------------------------------

UnicornDomain::UnicornDomain(const EngineSetup& setup) : machine_(setup.machine) {
  try {
    for (const RegionSetup& region : setup.regions) {
      Region mapped{region.region, nullptr};
      if (region.region.kind != RegionKind::Hole) {
        void* host = mmap(nullptr, region.region.size, PROT_READ | PROT_WRITE,
                          MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
        if (host == MAP_FAILED)
          throw std::runtime_error("cannot reserve memory for region '" + region.region.name + "'");
        mapped.host = static_cast<uint8_t*>(host);
        if (!region.image.empty())
          std::memcpy(mapped.host, region.image.data(), std::min<size_t>(region.image.size(), region.region.size));
      }
      regions_.push_back(mapped);
    }
    resetState_ = SaveResetState();
    for (uint32_t index = 0; index < setup.threadCount; ++index) {
      auto thread = std::make_unique<Thread>();
      thread->index = index;
      thread->apicId = index < setup.apicIds.size() ? setup.apicIds[index] : index;
      Check(uc_open(UC_ARCH_X86, UC_MODE_64, &thread->uc), "opening an engine");
      MapMemory(thread->uc);
      AddThreadHooks(*thread);
      ResetThread(*thread);
      threads_.push_back(std::move(thread));
    }
  } catch (...) {
    for (auto& thread : threads_) uc_close(thread->uc);
    if (resetState_) uc_context_free(resetState_);
    for (Region& region : regions_)
      if (region.host) munmap(region.host, region.info.size);
    throw;
  }
  host_ = std::thread([this] { Loop(); });
}

UnicornDomain::~UnicornDomain() {
  Shutdown();
  for (auto& thread : threads_) uc_close(thread->uc);
  uc_context_free(resetState_);
  for (Region& region : regions_)
    if (region.host) munmap(region.host, region.info.size);
}

void UnicornDomain::MapMemory(uc_engine* uc) {
  for (const Region& region : regions_) {
    if (!region.host) continue;
    const uint32_t perms = region.info.kind == RegionKind::Rom ? (UC_PROT_READ | UC_PROT_EXEC) : UC_PROT_ALL;
    Check(uc_mem_map_ptr(uc, region.info.base, region.info.size, perms, region.host), "mapping memory");
  }
}

void UnicornDomain::AddThreadHooks(Thread& thread) {
  uc_hook hook = 0;
  Check(uc_hook_add(thread.uc, &hook, UC_HOOK_BLOCK, reinterpret_cast<void*>(&OnBlock), this, 1, 0), "block hook");
  thread.hooks.push_back(hook);
  Check(uc_hook_add(thread.uc, &hook, UC_HOOK_INSN, reinterpret_cast<void*>(&OnIn), this, 1, 0, UC_X86_INS_IN),
        "IN hook");
  thread.hooks.push_back(hook);
  Check(uc_hook_add(thread.uc, &hook, UC_HOOK_INSN, reinterpret_cast<void*>(&OnOut), this, 1, 0, UC_X86_INS_OUT),
        "OUT hook");
  thread.hooks.push_back(hook);
  Check(uc_hook_add(thread.uc, &hook, UC_HOOK_INSN, reinterpret_cast<void*>(&OnCpuid), this, 1, 0, UC_X86_INS_CPUID),
        "CPUID hook");
  thread.hooks.push_back(hook);
}

// A 64-bit engine cannot start in real mode by itself; the state of a 16-bit
// engine, restored into it, does. That engine starts at 0:0, so it is given
// the reset vector F000:FFF0, and the saved code segment the base a real CPU
// has after reset (0xFFFF0000): no register write can set a real-mode base
// other than selector * 16, so the saved segment cache is changed in place.
uc_context* UnicornDomain::SaveResetState() {
  uc_engine* scratch = nullptr;
  Check(uc_open(UC_ARCH_X86, UC_MODE_16, &scratch), "opening the reset engine");
  uc_context* state = nullptr;
  try {
    uint64_t cs = 0xF000, ip = 0xFFF0;
    Check(uc_reg_write(scratch, UC_X86_REG_CS, &cs), "setting the reset code segment");
    Check(uc_reg_write(scratch, UC_X86_REG_IP, &ip), "setting the reset vector");
    Check(uc_context_alloc(scratch, &state), "allocating the reset state");
    Check(uc_context_save(scratch, state), "saving the reset state");
    // The segment cache: selector (32 bits), base (64), limit (32).
    auto* bytes = reinterpret_cast<uint8_t*>(state);
    const size_t size = uc_context_size(scratch);
    int patched = 0;
    for (size_t at = 0; at + 20 <= size; ++at) {
      uint32_t selector = 0, limit = 0;
      uint64_t base = 0;
      std::memcpy(&selector, bytes + at, 4);
      std::memcpy(&base, bytes + at + 8, 8);
      std::memcpy(&limit, bytes + at + 16, 4);
      if (selector != cs || base != cs << 4 || limit != 0xFFFF) continue;
      const uint64_t resetBase = 0xFFFF0000;
      std::memcpy(bytes + at + 8, &resetBase, 8);
      ++patched;
    }
    if (patched != 1) throw std::runtime_error("the engine's reset state has an unexpected layout");
  } catch (...) {
    if (state) uc_context_free(state);
    uc_close(scratch);
    throw;
  }
  uc_close(scratch);
  return state;
}

void UnicornDomain::ResetThread(Thread& thread) {
  uc_context_restore(thread.uc, resetState_);
  thread.waiting = false;
  thread.skipAddress.reset();
  thread.pendingData.reset();
}

// ---- Requests -------------------------------------------------------------------

void UnicornDomain::Post(std::function<void()> work) {
  std::lock_guard lock(mutex_);
  if (quit_) return;
  requests_.emplace_back(std::move(work));
  interrupt_.store(true, std::memory_order_relaxed);
}

CpuResult UnicornDomain::Serve(const std::function<CpuResult()>& work) {
  if (servingDomain == this) return work();
  std::promise<CpuResult> done;
  std::future<CpuResult> result = done.get_future();
  {
    std::lock_guard lock(mutex_);
    if (quit_) return CpuResult::Unavailable;
    requests_.emplace_back([&] { done.set_value(work()); });
    interrupt_.store(true, std::memory_order_relaxed);
  }
  wake_.notify_one();
  return result.get();
}

void UnicornDomain::Loop() {
  servingDomain = this;
  for (;;) {
    std::deque<std::function<void()>> work;
    {
      std::unique_lock lock(mutex_);
      if (!NextRunnable()) wake_.wait(lock, [&] { return !requests_.empty() || quit_; });
      work.swap(requests_);
      interrupt_.store(false, std::memory_order_relaxed);
      if (quit_ && work.empty()) return;
    }
    for (auto& request : work) request();
    // Everything stopped, the schedule stays where it stands: a halt and go
    // that come faster than a turn would otherwise give every turn to the
    // first thread.
    Thread* thread = NextRunnable();
    if (!thread) continue;
    if (thread != turnOwner_ || blocksLeft_ == 0) {
      turnOwner_ = thread;
      blocksLeft_ = kSliceBlocks;
    }
    RunSlice(*thread, false);
    if (blocksLeft_ == 0)  // Its turn is over: the next thread's begins
      std::rotate(threads_.begin(),
                  std::find_if(threads_.begin(), threads_.end(), [&](const auto& t) { return t.get() == thread; }) + 1,
                  threads_.end());
  }
}

UnicornDomain::Thread* UnicornDomain::NextRunnable() {
  for (auto& thread : threads_)
    if (thread->state == RunState::Running && !thread->waiting) return thread.get();
  return nullptr;
}

UnicornDomain::Thread* UnicornDomain::FindThread(uint32_t index) {
  for (auto& thread : threads_)
    if (thread->index == index) return thread.get();
  return nullptr;
}

// Runs the thread until a hook ends the slice, it executes HLT or the engine
// fails. True when a stop was reported (the thread is then halted).
bool UnicornDomain::RunSlice(Thread& thread, bool stepping) {
  current_ = &thread;
  stepping_ = stepping;
  stepCallbacks_ = 0;
  stopped_ = false;
  stopAddress_.reset();
  stopEvent_.reset();
  uint64_t ip = 0;
  uc_reg_read(thread.uc, UC_X86_REG_RIP, &ip);
  const uc_err err = uc_emu_start(thread.uc, ip, ~0ull, 0, 0);
  current_ = nullptr;
  stepping_ = false;
  if (stopAddress_) SetLinearRip(thread, *stopAddress_);
  // The engine ends a run without an error after HLT, but also after faults
  // it does not deliver (a divide error; an invalid opcode once an earlier
  // run ended in a fault): only HLT leaves rip just past its opcode.
  if (err != UC_ERR_OK || (!stopped_ && !ExecutedHlt(thread))) {
    thread.state = RunState::Halted;
    thread.pendingData.reset();
    Report({thread.index, StopReason::Shutdown, LinearRip(thread), 0, 0});
    return true;
  }
  if (!stopped_) {
    // HLT: it waits for an interrupt, which nothing here sends, or breaks.
    thread.waiting = true;
    if (thread.breakOnHlt && !stopEvent_) stopEvent_ = StopEvent{thread.index, StopReason::Hlt, LinearRip(thread), 0, 0};
  }
  if (!stopEvent_ && thread.pendingData) {
    stopEvent_ = thread.pendingData;
    stopEvent_->address = LinearRip(thread);
  }
  thread.pendingData.reset();
  if (!stopEvent_) return false;
  thread.state = RunState::Halted;
  Report(*stopEvent_);
  return true;
}

bool UnicornDomain::ExecutedHlt(Thread& thread) {
  constexpr uint8_t kHlt = 0xF4;
  uint8_t opcode = 0;
  const uint64_t rip = LinearRip(thread);
  const std::shared_lock lock(memoryMutex_);
  return rip > 0 && CopyPhysical(rip - 1, &opcode, 1, false) == CpuResult::Ok && opcode == kHlt;
}

void UnicornDomain::Report(const StopEvent& event) {
  if (quiet_) {
    quietStop_ = event;
    return;
  }
  std::vector<StopListener> listeners;
  for (const auto& [id, listener] : listeners_) listeners.push_back(listener);
  for (const StopListener& listener : listeners) listener(event);
}

void UnicornDomain::StopSlice(uc_engine* uc, uint64_t address, std::optional<StopEvent> event) {
  if (stopped_) return;
  stopped_ = true;
  stopAddress_ = address;
  stopEvent_ = std::move(event);
  uc_emu_stop(uc);
}

uint64_t UnicornDomain::LinearRip(Thread& thread) {
  uint64_t ip = 0;
  uc_reg_read(thread.uc, UC_X86_REG_RIP, &ip);
  return ip + SegmentBase(thread.uc, UC_X86_REG_CS, &ReadForTables, this);
}

void UnicornDomain::SetLinearRip(Thread& thread, uint64_t linear) {
  uint64_t ip = linear - SegmentBase(thread.uc, UC_X86_REG_CS, &ReadForTables, this);
  uc_reg_write(thread.uc, UC_X86_REG_RIP, &ip);
}

bool UnicornDomain::ReadForTables(void* context, uint64_t address, std::span<uint8_t> bytes) {
  auto* domain = static_cast<UnicornDomain*>(context);
  const std::shared_lock lock(domain->memoryMutex_);
  return domain->CopyPhysical(address, bytes.data(), bytes.size(), false) ==
         CpuResult::Ok;
}

void UnicornDomain::ClearTranslations(uint64_t begin, uint64_t end) {
  for (auto& thread : threads_) uc_ctl_remove_cache(thread->uc, begin, end);
}

void UnicornDomain::ClearTranslations(uc_engine* uc) {
  for (const Region& region : regions_)
    if (region.host) uc_ctl_remove_cache(uc, region.info.base, region.info.base + region.info.size);
}

void UnicornDomain::ClearTranslations() {
  for (auto& thread : threads_) ClearTranslations(thread->uc);
}

// ---- Engine callbacks -------------------------------------------------------------

void UnicornDomain::OnBlock(uc_engine* uc, uint64_t address, uint32_t, void* user) {
  auto* domain = static_cast<UnicornDomain*>(user);
  if (domain->stepping_) return;
  if (domain->interrupt_.load(std::memory_order_relaxed) || --domain->blocksLeft_ == 0)
    domain->StopSlice(uc, address, domain->BreakpointHitAt(*domain->current_, address));
}

// A slice that ends where an execution breakpoint waits ends with its hit:
// the block hook runs before the breakpoint's code hook, and a thread left
// there by a halt would step over the breakpoint when it resumes.
std::optional<StopEvent> UnicornDomain::BreakpointHitAt(const Thread& thread, uint64_t address) const {
  if (thread.skipAddress == address || thread.pendingData) return std::nullopt;
  const auto id = ExecutionBreakpointAt(thread, address);
  if (!id) return std::nullopt;
  return StopEvent{thread.index, StopReason::ExecutionBreakpoint, address, 0, *id};
}

std::optional<uint32_t> UnicornDomain::ExecutionBreakpointAt(const Thread& thread, uint64_t address) const {
  for (const auto& [id, set] : breakpoints_) {
    const Breakpoint& breakpoint = set.breakpoint;
    if (breakpoint.kind == BreakpointKind::Execution && breakpoint.address == address &&
        (breakpoint.threadIndex == kAllThreads || breakpoint.threadIndex == thread.index))
      return id;
  }
  return std::nullopt;
}

void UnicornDomain::OnStepCode(uc_engine* uc, uint64_t address, uint32_t, void* user) {
  auto* domain = static_cast<UnicornDomain*>(user);
  if (++domain->stepCallbacks_ == 2)
    domain->StopSlice(uc, address, StopEvent{domain->current_->index, StopReason::Step, address, 0, 0});
}

void UnicornDomain::OnExecutionBreakpoint(uc_engine* uc, uint64_t address, uint32_t, void* user) {
  auto* owner = static_cast<HookOwner*>(user);
  UnicornDomain* domain = owner->domain;
  Thread& thread = *domain->current_;
  if (owner->breakpoint.threadIndex != kAllThreads && owner->breakpoint.threadIndex != thread.index) return;
  if (thread.skipAddress == address) {
    thread.skipAddress.reset();
    return;
  }
  domain->StopSlice(uc, address, StopEvent{thread.index, StopReason::ExecutionBreakpoint, address, 0, owner->id});
}

void UnicornDomain::OnDataAccess(uc_engine*, uc_mem_type, uint64_t address, int size, int64_t, void* user) {
  auto* owner = static_cast<HookOwner*>(user);
  Thread& thread = *owner->domain->current_;
  const Breakpoint& breakpoint = owner->breakpoint;
  if (breakpoint.threadIndex != kAllThreads && breakpoint.threadIndex != thread.index) return;
  if (!Overlaps(address, static_cast<uint64_t>(size), breakpoint.address, breakpoint.length)) return;
  if (!thread.pendingData)
    thread.pendingData = StopEvent{thread.index, StopReason::DataBreakpoint, 0, address, owner->id};
}

void UnicornDomain::OnDataTrigger(uc_engine* uc, uint64_t address, uint32_t, void* user) {
  auto* domain = static_cast<UnicornDomain*>(user);
  Thread& thread = *domain->current_;
  if (!thread.pendingData) return;
  StopEvent event = *thread.pendingData;
  event.address = address;
  thread.pendingData.reset();
  domain->StopSlice(uc, address, event);
}

uint32_t UnicornDomain::OnIn(uc_engine*, uint32_t port, int size, void* user) {
  auto* domain = static_cast<UnicornDomain*>(user);
  uint32_t value = 0;
  if (!domain->machine_->ReadIo(static_cast<uint16_t>(port), static_cast<uint32_t>(size), value))
    value = size >= 4 ? 0xFFFFFFFFu : (1u << (8 * size)) - 1;  // Nothing drives the bus
  return value;
}

void UnicornDomain::OnOut(uc_engine*, uint32_t port, int size, uint32_t value, void* user) {
  auto* domain = static_cast<UnicornDomain*>(user);
  domain->machine_->WriteIo(static_cast<uint16_t>(port), static_cast<uint32_t>(size), value);
}

int UnicornDomain::OnCpuid(uc_engine* uc, void* user) {
  auto* domain = static_cast<UnicornDomain*>(user);
  uint64_t leaf = 0, subleaf = 0;
  uc_reg_read(uc, UC_X86_REG_RAX, &leaf);
  uc_reg_read(uc, UC_X86_REG_RCX, &subleaf);
  const CpuidResult result =
      domain->machine_->Cpuid(domain->current_->index, static_cast<uint32_t>(leaf), static_cast<uint32_t>(subleaf));
  const std::pair<int, uint64_t> outputs[] = {{UC_X86_REG_RAX, result.eax},
                                              {UC_X86_REG_RBX, result.ebx},
                                              {UC_X86_REG_RCX, result.ecx},
                                              {UC_X86_REG_RDX, result.edx}};
  for (auto [reg, value] : outputs) uc_reg_write(uc, reg, &value);
  return 1;  // The engine's own answer is not wanted
}

// ---- Memory and IO -------------------------------------------------------------

std::vector<MemoryRegion> UnicornDomain::MemoryMap() const {
  std::vector<MemoryRegion> map;
  for (const Region& region : regions_) map.push_back(region.info);
  return map;
}

// Checks the whole range first, so that a failure changes nothing.
CpuResult UnicornDomain::CopyPhysical(uint64_t address, uint8_t* bytes, uint64_t size, bool write) {
  if (size > kMaxTransferBytes || address + size < address) return CpuResult::TooLarge;
  for (int pass = 0; pass < 2; ++pass) {
    uint64_t at = address;
    const uint64_t end = address + size;
    while (at < end) {
      const Region* region = nullptr;
      for (const Region& candidate : regions_)
        if (at >= candidate.info.base && at - candidate.info.base < candidate.info.size) region = &candidate;
      if (!region || !region->host) return CpuResult::Unmapped;
      if (write && region->info.kind == RegionKind::Rom) return CpuResult::ReadOnly;
      const uint64_t chunk = std::min(end - at, region->info.base + region->info.size - at);
      if (pass == 1) {
        uint8_t* host = region->host + (at - region->info.base);
        if (write)
          std::memcpy(host, bytes + (at - address), chunk);
        else
          std::memcpy(bytes + (at - address), host, chunk);
      }
      if (region->info.base + region->info.size == 0) break;  // The region ends at 2^64
      at += chunk;
    }
  }
  return CpuResult::Ok;
}

// A transfer is made on the caller's thread: the regions are host memory that
// stays where it is, so it need not wait for the domain's thread to come
// round. The CPUs see it as a device's DMA: concurrent with what they execute.
// What a write leaves to do, dropping the CPUs' translations of the range, is
// handed to the domain's thread, which does it before it runs another slice
// (a running one ends at its next block).
CpuResult UnicornDomain::ReadPhysical(uint64_t address, std::span<uint8_t> bytes) {
  const std::shared_lock lock(memoryMutex_);
  return CopyPhysical(address, bytes.data(), bytes.size(), false);
}

CpuResult UnicornDomain::WritePhysical(uint64_t address, std::span<const uint8_t> bytes) {
  CpuResult result = CpuResult::Ok;
  {
    const std::unique_lock lock(memoryMutex_);
    result = CopyPhysical(address, const_cast<uint8_t*>(bytes.data()), bytes.size(), true);
  }
  const uint64_t end = address + bytes.size();
  if (result == CpuResult::Ok && !bytes.empty()) Post([this, address, end] { ClearTranslations(address, end); });
  return result;
}

CpuResult UnicornDomain::ReadIo(uint16_t port, uint32_t size, uint32_t& value) {
  if (size != 1 && size != 2 && size != 4) return CpuResult::BadSize;
  return Serve([&] { return machine_->ReadIo(port, size, value) ? CpuResult::Ok : CpuResult::Unmapped; });
}

CpuResult UnicornDomain::WriteIo(uint16_t port, uint32_t size, uint32_t value) {
  if (size != 1 && size != 2 && size != 4) return CpuResult::BadSize;
  return Serve([&] { return machine_->WriteIo(port, size, value) ? CpuResult::Ok : CpuResult::Unmapped; });
}

// ---- Registers, MSRs, CPUID ------------------------------------------------------

const std::vector<RegisterInfo>& UnicornDomain::Registers() const {
  static const std::vector<RegisterInfo> infos = [] {
    std::vector<RegisterInfo> list;
    for (const X86Register& reg : X86RegisterFile()) list.push_back(reg.info);
    return list;
  }();
  return infos;
}

CpuResult UnicornDomain::ReadRegister(uint32_t thread, std::string_view name, std::span<uint8_t> value) {
  return Serve([&] {
    Thread* found = FindThread(thread);
    return found ? ReadRegisterHere(*found, name, value) : CpuResult::UnknownThread;
  });
}

CpuResult UnicornDomain::WriteRegister(uint32_t thread, std::string_view name, std::span<const uint8_t> value) {
  return Serve([&] {
    Thread* found = FindThread(thread);
    return found ? WriteRegisterHere(*found, name, value) : CpuResult::UnknownThread;
  });
}

CpuResult UnicornDomain::ReadRegisterHere(Thread& thread, std::string_view name, std::span<uint8_t> value) {
  CpuResult found = CpuResult::Ok;
  const X86Register* reg = FindSized(name, value.size(), found);
  if (!reg) return found;
  uint64_t result = 0;
  switch (reg->access) {
    case RegisterAccess::Plain:
      uc_reg_read(thread.uc, reg->id, &result);
      break;
    case RegisterAccess::TableBase:
    case RegisterAccess::TableLimit:
    case RegisterAccess::Selector: {
      uc_x86_mmr mmr{};
      uc_reg_read(thread.uc, reg->id, &mmr);
      result = reg->access == RegisterAccess::TableBase    ? mmr.base
               : reg->access == RegisterAccess::TableLimit ? mmr.limit
                                                           : mmr.selector;
      break;
    }
    case RegisterAccess::Msr: {
      uc_x86_msr msr{static_cast<uint32_t>(reg->id), 0};
      uc_reg_read(thread.uc, UC_X86_REG_MSR, &msr);
      result = msr.value;
      break;
    }
    case RegisterAccess::SegmentBase:
      result = SegmentBase(thread.uc, reg->id, &ReadForTables, this);
      break;
  }
  if (reg->info.bitWidth < 64) result &= (1ull << reg->info.bitWidth) - 1;
  ToBytes(result, value);
  return CpuResult::Ok;
}

CpuResult UnicornDomain::WriteRegisterHere(Thread& thread, std::string_view name, std::span<const uint8_t> value) {
  CpuResult found = CpuResult::Ok;
  const X86Register* reg = FindSized(name, value.size(), found);
  if (!reg) return found;
  uint64_t bits = FromBytes(value);
  uc_err err = UC_ERR_OK;
  switch (reg->access) {
    case RegisterAccess::Plain:
      err = uc_reg_write(thread.uc, reg->id, &bits);
      break;
    case RegisterAccess::TableBase:
    case RegisterAccess::TableLimit:
    case RegisterAccess::Selector: {
      uc_x86_mmr mmr{};
      uc_reg_read(thread.uc, reg->id, &mmr);
      if (reg->access == RegisterAccess::TableBase) mmr.base = bits;
      if (reg->access == RegisterAccess::TableLimit) mmr.limit = static_cast<uint32_t>(bits);
      if (reg->access == RegisterAccess::Selector) mmr.selector = static_cast<uint16_t>(bits);
      err = uc_reg_write(thread.uc, reg->id, &mmr);
      break;
    }
    case RegisterAccess::Msr:
      return WriteMsrHere(thread, static_cast<uint32_t>(reg->id), bits);
    case RegisterAccess::SegmentBase:
      return CpuResult::ReadOnlyRegister;
  }
  if (err != UC_ERR_OK) return CpuResult::GeneralProtection;
  if (reg->id == UC_X86_REG_RIP && reg->access == RegisterAccess::Plain) {
    thread.waiting = false;  // Sent elsewhere, it no longer waits in its HLT
    thread.skipAddress.reset();
  }
  return CpuResult::Ok;
}

CpuResult UnicornDomain::WriteMsrHere(Thread& thread, uint32_t msr, uint64_t value) {
  if (!IsEngineMsr(msr)) return machine_->WriteMsr(thread.index, msr, value);
  if (msr == kEfer && (value & ~kEferWritable)) return CpuResult::GeneralProtection;
  uc_x86_msr record{msr, value};
  return uc_reg_write(thread.uc, UC_X86_REG_MSR, &record) == UC_ERR_OK ? CpuResult::Ok : CpuResult::GeneralProtection;
}

CpuResult UnicornDomain::ReadMsr(uint32_t thread, uint32_t msr, uint64_t& value) {
  return Serve([&] {
    Thread* found = FindThread(thread);
    if (!found) return CpuResult::UnknownThread;
    if (!IsEngineMsr(msr)) return machine_->ReadMsr(thread, msr, value);
    uc_x86_msr record{msr, 0};
    if (uc_reg_read(found->uc, UC_X86_REG_MSR, &record) != UC_ERR_OK) return CpuResult::GeneralProtection;
    value = record.value;
    return CpuResult::Ok;
  });
}

CpuResult UnicornDomain::WriteMsr(uint32_t thread, uint32_t msr, uint64_t value) {
  return Serve([&] {
    Thread* found = FindThread(thread);
    return found ? WriteMsrHere(*found, msr, value) : CpuResult::UnknownThread;
  });
}

CpuResult UnicornDomain::Cpuid(uint32_t thread, uint32_t leaf, uint32_t subleaf, CpuidResult& result) {
  if (thread >= threads_.size()) return CpuResult::UnknownThread;
  return Serve([&] {
    result = machine_->Cpuid(thread, leaf, subleaf);
    return CpuResult::Ok;
  });
}

CpuResult UnicornDomain::ApicId(uint32_t thread, uint32_t& apicId) {
  if (shutDown_.load()) return CpuResult::Unavailable;
  return Serve([&] {
    Thread* found = FindThread(thread);
    if (!found) return CpuResult::UnknownThread;
    apicId = found->apicId;
    return CpuResult::Ok;
  });
}

// ---- Run control -------------------------------------------------------------------

CpuResult UnicornDomain::GetRunState(uint32_t thread, RunState& state) {
  state = RunState::Halted;
  return Serve([&] {
    Thread* found = FindThread(thread);
    if (!found) return CpuResult::UnknownThread;
    state = found->state;
    return CpuResult::Ok;
  });
}

void UnicornDomain::HaltHere(Thread& thread) {
  if (thread.state == RunState::Halted) return;
  thread.state = RunState::Halted;
  Report({thread.index, StopReason::HaltRequest, LinearRip(thread), 0, 0});
}

void UnicornDomain::GoHere(Thread& thread) {
  if (thread.state == RunState::Running) return;
  ArmSkip(thread);
  thread.state = RunState::Running;
}

// Resumed at an execution breakpoint, a thread first executes that instruction.
void UnicornDomain::ArmSkip(Thread& thread) {
  const uint64_t rip = LinearRip(thread);
  thread.skipAddress.reset();
  if (ExecutionBreakpointAt(thread, rip)) thread.skipAddress = rip;
}

CpuResult UnicornDomain::Halt(uint32_t thread) {
  return Serve([&] {
    Thread* found = FindThread(thread);
    if (!found) return CpuResult::UnknownThread;
    HaltHere(*found);
    return CpuResult::Ok;
  });
}

CpuResult UnicornDomain::Go(uint32_t thread) {
  return Serve([&] {
    Thread* found = FindThread(thread);
    if (!found) return CpuResult::UnknownThread;
    GoHere(*found);
    return CpuResult::Ok;
  });
}

CpuResult UnicornDomain::HaltAll() {
  return Serve([&] {
    for (uint32_t index = 0; index < threads_.size(); ++index) HaltHere(*FindThread(index));
    return CpuResult::Ok;
  });
}

CpuResult UnicornDomain::GoAll() {
  return Serve([&] {
    for (auto& thread : threads_) GoHere(*thread);
    return CpuResult::Ok;
  });
}

CpuResult UnicornDomain::Step(uint32_t thread) {
  return Serve([&] {
    Thread* found = FindThread(thread);
    if (!found) return CpuResult::UnknownThread;
    if (found->state != RunState::Halted) return CpuResult::NotHalted;
    if (!found->waiting) {
      ArmSkip(*found);
      uc_hook hook = 0;
      if (uc_hook_add(found->uc, &hook, UC_HOOK_CODE, reinterpret_cast<void*>(&OnStepCode), this, 1, 0) != UC_ERR_OK)
        return CpuResult::Unavailable;
      ClearTranslations(found->uc);  // Code translated before has no call of the new hook
      found->state = RunState::Running;
      const bool reported = RunSlice(*found, true);
      uc_hook_del(found->uc, hook);
      ClearTranslations(found->uc);  // Nor may code translated now keep calling it
      found->state = RunState::Halted;
      if (reported) return CpuResult::Ok;
    }
    Report({found->index, StopReason::Step, LinearRip(*found), 0, 0});
    return CpuResult::Ok;
  });
}

CpuResult UnicornDomain::ExecuteInstruction(uint32_t thread, uint64_t linear, uint64_t physical,
                                            std::span<const uint8_t> code) {
  constexpr size_t kLongestInstruction = 15;
  if (code.empty() || code.size() > kLongestInstruction) return CpuResult::BadSize;
  return Serve([&] {
    Thread* found = FindThread(thread);
    if (!found) return CpuResult::UnknownThread;
    if (found->state != RunState::Halted) return CpuResult::NotHalted;
    std::vector<uint8_t> borrowed(code.size());
    {
      const std::unique_lock lock(memoryMutex_);
      if (const CpuResult read = CopyPhysical(physical, borrowed.data(), borrowed.size(), false); read != CpuResult::Ok)
        return read;
      if (const CpuResult written = CopyPhysical(physical, const_cast<uint8_t*>(code.data()), code.size(), true);
          written != CpuResult::Ok)
        return written;
    }
    // The whole state, for an instruction that faults.
    uc_context* before = nullptr;
    if (uc_context_alloc(found->uc, &before) != UC_ERR_OK) return CpuResult::Unavailable;
    uc_context_save(found->uc, before);
    uint64_t rip = 0;
    uc_reg_read(found->uc, UC_X86_REG_RIP, &rip);
    const bool waiting = found->waiting;
    const std::optional<uint64_t> skip = found->skipAddress;
    SetLinearRip(*found, linear);
    found->waiting = false;
    found->skipAddress = linear;  // A breakpoint there is not the instruction's
    uc_hook hook = 0;
    uc_hook_add(found->uc, &hook, UC_HOOK_CODE, reinterpret_cast<void*>(&OnStepCode), this, 1, 0);
    ClearTranslations(found->uc);
    quiet_ = true;
    quietStop_.reset();
    found->state = RunState::Running;
    RunSlice(*found, true);
    found->state = RunState::Halted;
    quiet_ = false;
    uc_hook_del(found->uc, hook);
    const bool faulted = quietStop_ && quietStop_->reason == StopReason::Shutdown;
    if (faulted) uc_context_restore(found->uc, before);
    uc_context_free(before);
    uc_reg_write(found->uc, UC_X86_REG_RIP, &rip);
    found->waiting = waiting;
    found->skipAddress = skip;
    found->pendingData.reset();
    {
      const std::unique_lock lock(memoryMutex_);
      CopyPhysical(physical, borrowed.data(), borrowed.size(), true);
    }
    ClearTranslations(physical, physical + code.size());
    ClearTranslations(found->uc);
    return faulted ? CpuResult::Faulted : CpuResult::Ok;
  });
}

// ---- Breakpoints and listeners ---------------------------------------------------------

CpuResult UnicornDomain::AddBreakpoint(const Breakpoint& breakpoint, uint32_t& id) {
  const bool data = breakpoint.kind == BreakpointKind::Data;
  if (data ? (breakpoint.length != 1 && breakpoint.length != 2 && breakpoint.length != 4 && breakpoint.length != 8) ||
                 breakpoint.address % breakpoint.length != 0 || (static_cast<uint8_t>(breakpoint.access) & 3) == 0 ||
                 static_cast<uint8_t>(breakpoint.access) > 3
           : breakpoint.length != 1)
    return CpuResult::BadBreakpoint;
  if (breakpoint.threadIndex != kAllThreads && breakpoint.threadIndex >= threads_.size())
    return CpuResult::UnknownThread;
  return Serve([&] {
    SetBreakpoint set;
    set.breakpoint = breakpoint;
    set.owner = std::make_unique<HookOwner>(HookOwner{this, nextBreakpointId_, breakpoint});
    for (auto& thread : threads_) {
      uc_hook hook = 0;
      if (!data) {
        uc_hook_add(thread->uc, &hook, UC_HOOK_CODE, reinterpret_cast<void*>(&OnExecutionBreakpoint), set.owner.get(),
                    breakpoint.address, breakpoint.address);
        set.hooks.emplace_back(thread->uc, hook);
        continue;
      }
      const uint64_t begin = breakpoint.address >= 7 ? breakpoint.address - 7 : 0;
      const uint64_t end = breakpoint.address + breakpoint.length - 1;
      const auto access = static_cast<uint8_t>(breakpoint.access);
      if (access & static_cast<uint8_t>(DataAccess::Read)) {
        uc_hook_add(thread->uc, &hook, UC_HOOK_MEM_READ, reinterpret_cast<void*>(&OnDataAccess), set.owner.get(), begin,
                    end);
        set.hooks.emplace_back(thread->uc, hook);
      }
      if (access & static_cast<uint8_t>(DataAccess::Write)) {
        uc_hook_add(thread->uc, &hook, UC_HOOK_MEM_WRITE, reinterpret_cast<void*>(&OnDataAccess), set.owner.get(),
                    begin, end);
        set.hooks.emplace_back(thread->uc, hook);
      }
    }
    if (data && dataBreakpoints_++ == 0) {
      for (auto& thread : threads_) {
        uc_hook hook = 0;
        uc_hook_add(thread->uc, &hook, UC_HOOK_CODE, reinterpret_cast<void*>(&OnDataTrigger), this, 1, 0);
        dataTriggers_.emplace_back(thread->uc, hook);
      }
    }
    if (data)
      ClearTranslations();
    else
      ClearTranslations(breakpoint.address, breakpoint.address + 1);
    id = nextBreakpointId_++;
    breakpoints_.emplace(id, std::move(set));
    return CpuResult::Ok;
  });
}

CpuResult UnicornDomain::RemoveBreakpoint(uint32_t id) {
  return Serve([&] {
    auto found = breakpoints_.find(id);
    if (found == breakpoints_.end()) return CpuResult::UnknownBreakpoint;
    for (auto [uc, hook] : found->second.hooks) uc_hook_del(uc, hook);
    const Breakpoint breakpoint = found->second.breakpoint;
    breakpoints_.erase(found);
    if (breakpoint.kind == BreakpointKind::Data) {
      if (--dataBreakpoints_ == 0) {
        for (auto [uc, hook] : dataTriggers_) uc_hook_del(uc, hook);
        dataTriggers_.clear();
      }
      ClearTranslations();
    } else {
      ClearTranslations(breakpoint.address, breakpoint.address + 1);
    }
    return CpuResult::Ok;
  });
}

uint32_t UnicornDomain::AddStopListener(StopListener listener) {
  const uint32_t id = nextListenerId_++;
  Serve([&] {
    listeners_.emplace(id, std::move(listener));
    return CpuResult::Ok;
  });
  return id;
}

void UnicornDomain::RemoveStopListener(uint32_t id) {
  Serve([&] {
    listeners_.erase(id);
    return CpuResult::Ok;
  });
}

// The schedule starts again too, so that the domain runs the same way from
// every reset.
void UnicornDomain::RestartSchedule() {
  std::sort(threads_.begin(), threads_.end(), [](const auto& a, const auto& b) { return a->index < b->index; });
  turnOwner_ = nullptr;
}

CpuResult UnicornDomain::Reset(ResetMode mode) {
  return Serve([&] {
    machine_->Reset();
    RestartSchedule();
    for (auto& thread : threads_) {
      ResetThread(*thread);
      thread->state = mode == ResetMode::Run ? RunState::Running : RunState::Halted;
    }
    ClearTranslations();
    if (mode == ResetMode::HaltAfterReset)
      for (uint32_t index = 0; index < threads_.size(); ++index)
        Report({index, StopReason::Reset, LinearRip(*FindThread(index)), 0, 0});
    return CpuResult::Ok;
  });
}

CpuResult UnicornDomain::SetBreakOnHlt(uint32_t thread, bool on) {
  return Serve([&] {
    Thread* found = FindThread(thread);
    if (!found) return CpuResult::UnknownThread;
    found->breakOnHlt = on;
    return CpuResult::Ok;
  });
}

void UnicornDomain::Shutdown() {
  {
    std::lock_guard lock(mutex_);
    if (quit_) return;
    quit_ = true;
    interrupt_.store(true, std::memory_order_relaxed);
  }
  wake_.notify_one();
  if (host_.joinable() && servingDomain != this) host_.join();
  shutDown_.store(true);
}

}  // namespace voxtrel::platform::cpu_engine
