// Emulated instructions per second of the default firmware on the default
// target's four threads, without and with 16 execution breakpoints set where
// the firmware never runs.
#include <benchmark/benchmark.h>

#include <chrono>
#include <thread>

#include "../Source/Platform/Cpu/CpuDomains.h"
#include "../Source/Platform/Target/TargetModel.h"

namespace {

using namespace voxtrel::platform::cpu;

constexpr uint64_t kSharedCounter = 0x1000;  // Iterations of all threads (Firmware/Default.s)
constexpr uint64_t kInstructionsPerIteration = 5;

uint64_t Iterations(CpuBackend& cpus) {
  uint64_t value = 0;
  cpus.ReadPhysical(kSharedCounter, {reinterpret_cast<uint8_t*>(&value), 8});
  return value;
}

void RunFirmware(benchmark::State& state, int breakpoints) {
  // With nothing selected, the built-in default description.
  auto selection = voxtrel::platform::target::TargetModel::Instance().CurrentSelection();
  if (!selection || CpuDomains::Instance().Start(*selection->parsed.topology) ||
      CpuDomains::Instance().Domains().empty()) {
    state.SkipWithError("the default target's CPUs cannot start");
    return;
  }
  CpuBackend& cpus = *CpuDomains::Instance().Domains().front()->backend;
  for (int index = 0; index < breakpoints; ++index) {
    uint32_t id = 0;
    cpus.AddBreakpoint({BreakpointKind::Execution, 0x400000 + 0x100ull * index, DataAccess::Write, 1}, id);
  }
  while (Iterations(cpus) < 100000) std::this_thread::sleep_for(std::chrono::milliseconds(5));
  uint64_t instructions = 0;
  for (auto _ : state) {
    const uint64_t before = Iterations(cpus);
    std::this_thread::sleep_for(std::chrono::milliseconds(250));
    instructions += (Iterations(cpus) - before) * kInstructionsPerIteration;
  }
  state.counters["instructions"] = benchmark::Counter(static_cast<double>(instructions), benchmark::Counter::kIsRate);
  CpuDomains::Instance().Stop();
}

void BM_DefaultFirmware(benchmark::State& state) { RunFirmware(state, 0); }
void BM_DefaultFirmwareWith16Breakpoints(benchmark::State& state) { RunFirmware(state, 16); }

BENCHMARK(BM_DefaultFirmware)->UseRealTime()->Unit(benchmark::kMillisecond)->Iterations(8);
BENCHMARK(BM_DefaultFirmwareWith16Breakpoints)->UseRealTime()->Unit(benchmark::kMillisecond)->Iterations(8);

}  // namespace
