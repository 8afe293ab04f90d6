// Reading target memory and registers through the services: 1 MiB through
// the Memory service and its receipt against memcpy of as many bytes, and
// one register through the Register service against the CPU backend's own
// read of it.
#include <benchmark/benchmark.h>

#include <array>
#include <cstring>
#include <vector>

#include "../Source/Platform/Cpu/CpuDomains.h"
#include "BenchmarkClient.h"

namespace {

constexpr uint32_t kFirstThread = 0x03000000;
constexpr int32_t kMebibyte = 1 << 20;

void BM_ReadMemory1MiBThroughService(benchmark::State& state) {
  BenchmarkClient client(7, "bench_7@here", BenchmarkClient::Target::kBuilt);
  auto* memory = BenchmarkClient::Get<IInternalService_Memory>(VXT_Service_Memory);
  auto* receipts = BenchmarkClient::Get<IInternalService_OperationReceipt>(VXT_Service_OperationReceipt);
  const VXT_Address address{VXT_ADDRESS_SIZE, 0, 0, 0x100000, VXT_AddressType_Physical};
  std::vector<uint8_t> bytes(kMebibyte);
  for (auto _ : state) {
    uint64_t token = 0;
    uint32_t count = 0;
    if (memory->ReadMemory(kFirstThread, &address, kMebibyte, &token) != 0 ||
        receipts->GetValueAsRawBytes(token, bytes.data(), kMebibyte, &count) != 0) {
      state.SkipWithError(GetLastErrorMessage());
      break;
    }
    receipts->Destroy(token);
    benchmark::DoNotOptimize(bytes.data());
  }
  state.SetBytesProcessed(state.iterations() * kMebibyte);
}

void BM_Memcpy1MiB(benchmark::State& state) {
  std::vector<uint8_t> source(kMebibyte, 0x5A);
  std::vector<uint8_t> destination(kMebibyte);
  for (auto _ : state) {
    std::memcpy(destination.data(), source.data(), kMebibyte);
    benchmark::DoNotOptimize(destination.data());
    benchmark::ClobberMemory();
  }
  state.SetBytesProcessed(state.iterations() * kMebibyte);
}

void BM_ReadRegisterThroughService(benchmark::State& state) {
  BenchmarkClient client(7, "bench_7@here", BenchmarkClient::Target::kBuilt);
  auto* registers = BenchmarkClient::Get<IInternalService_Register>(VXT_Service_Register);
  auto* receipts = BenchmarkClient::Get<IInternalService_OperationReceipt>(VXT_Service_OperationReceipt);
  for (auto _ : state) {
    uint64_t token = 0;
    uint64_t value = 0;
    if (registers->ReadRegister(kFirstThread, "rax", &token) != 0 || receipts->GetValueAsUInt64(token, &value) != 0) {
      state.SkipWithError(GetLastErrorMessage());
      break;
    }
    receipts->Destroy(token);
    benchmark::DoNotOptimize(value);
  }
}

void BM_ReadRegisterThroughBackend(benchmark::State& state) {
  BenchmarkClient client(7, "bench_7@here", BenchmarkClient::Target::kBuilt);
  const auto domains = voxtrel::platform::cpu::CpuDomains::Instance().Domains();
  if (domains.empty()) {
    state.SkipWithError("the default target's CPUs are not running");
    return;
  }
  std::array<uint8_t, 8> value{};
  for (auto _ : state) {
    domains.front()->backend->ReadRegister(0, "rax", value);
    benchmark::DoNotOptimize(value.data());
  }
}

BENCHMARK(BM_ReadMemory1MiBThroughService)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_Memcpy1MiB)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_ReadRegisterThroughService)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_ReadRegisterThroughBackend)->Unit(benchmark::kMicrosecond);

}  // namespace
