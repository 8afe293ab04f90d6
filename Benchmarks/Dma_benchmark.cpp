// DMA between target memory and a shared memory region, 1 MiB and 64 MiB a
// transfer, against memcpy of as many bytes between two buffers. The copy
// runs on the caller's thread; a write also hands the domain's thread the
// dropping of the CPUs' translations of the range, which the call does not
// wait for. The time measured is the wall-clock time of the call.
#include <benchmark/benchmark.h>

#include <cstring>
#include <vector>

#include "BenchmarkClient.h"

namespace {

constexpr uint32_t kThread = 0x03000000;

class Region {
 public:
  explicit Region(uint32_t size) : general_(BenchmarkClient::Get<IInternalService_General>(VXT_Service_General)) {
    general_->AllocateSharedMemory(size, &handle_);
  }
  ~Region() { general_->FreeSharedMemory(handle_); }
  uint64_t handle() const { return handle_; }

 private:
  IInternalService_General* general_;
  uint64_t handle_ = 0;
};

template <bool kRead>
void BM_DmaThroughRegion(benchmark::State& state) {
  BenchmarkClient client(7, "bench_7@here", BenchmarkClient::Target::kBuilt, VXT_BENCHMARK_DATA_DIR "/LargeMemory.json");
  auto* dma = BenchmarkClient::Get<IInternalService_Dma>(VXT_Service_Dma);
  const auto size = static_cast<uint32_t>(state.range(0));
  const Region region(size);
  const VXT_Address address{VXT_ADDRESS_SIZE, 0, 0, 0x1000000, VXT_AddressType_Physical};
  for (auto _ : state) {
    uint32_t moved = 0;
    const VXT_Result result =
        kRead ? dma->ReadToSharedMemory(kThread, "SystemBus", &address, size, 0, region.handle(), &moved)
              : dma->WriteFromSharedMemory(kThread, "SystemBus", &address, size, 0, region.handle(), &moved);
    if (result != 0 || moved != size) {
      state.SkipWithError(GetLastErrorMessage());
      break;
    }
  }
  state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(size));
}

void BM_MemcpyOfTheSameSize(benchmark::State& state) {
  const auto size = static_cast<size_t>(state.range(0));
  std::vector<uint8_t> source(size, 0x5A);
  std::vector<uint8_t> destination(size, 0);
  for (auto _ : state) {
    std::memcpy(destination.data(), source.data(), size);
    benchmark::DoNotOptimize(destination.data());
    benchmark::ClobberMemory();
  }
  state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(size));
}

BENCHMARK_TEMPLATE(BM_DmaThroughRegion, true)->Arg(1 << 20)->Arg(64 << 20)->Unit(benchmark::kMicrosecond)->UseRealTime();
BENCHMARK_TEMPLATE(BM_DmaThroughRegion, false)->Arg(1 << 20)->Arg(64 << 20)->Unit(benchmark::kMicrosecond)->UseRealTime();
BENCHMARK(BM_MemcpyOfTheSameSize)->Arg(1 << 20)->Arg(64 << 20)->Unit(benchmark::kMicrosecond)->UseRealTime();

}  // namespace
