// I2C transfers through the I2cAccess service on the default target's bus:
// the EEPROM at 0x50 read through its address pointer (one bundle: the
// pointer written, then 1 or 16 bytes read), each receipt read and
// destroyed. A real bus at 100 kHz needs about 0.4 ms for the 1-byte read
// and 1.8 ms for the 16-byte one.
#include <benchmark/benchmark.h>

#include <cstdint>
#include <vector>

#include "BenchmarkClient.h"

namespace {

constexpr uint32_t kI2cBus = 0x11000000;
constexpr uint8_t kEeprom = 0x50;

void BM_I2cEepromRead(benchmark::State& state) {
  BenchmarkClient client(7, "bench_7@here", BenchmarkClient::Target::kBuilt);
  auto* i2c = BenchmarkClient::Get<IInternalService_I2cAccess>(VXT_Service_I2cAccess);
  auto* receipts = BenchmarkClient::Get<IInternalService_OperationReceipt>(VXT_Service_OperationReceipt);
  const auto count = static_cast<uint8_t>(state.range(0));
  const std::vector<uint8_t> bundle = {'W', kEeprom, 1, 0, 0x10, 'R', kEeprom, count, 0};
  std::vector<uint8_t> bytes(count);
  for (auto _ : state) {
    uint64_t token = 0;
    uint32_t read = 0;
    if (i2c->BundleScan(kI2cBus, bundle.data(), static_cast<uint32_t>(bundle.size()), &token) != 0 ||
        receipts->Flush(token) != 0 || receipts->GetValueAsRawBytes(token, bytes.data(), count, &read) != 0) {
      state.SkipWithError(GetLastErrorMessage());
      break;
    }
    receipts->Destroy(token);
    benchmark::DoNotOptimize(bytes.data());
  }
  state.SetItemsProcessed(state.iterations());
}

BENCHMARK(BM_I2cEepromRead)->ArgName("bytes")->Arg(1)->Arg(16)->Unit(benchmark::kMicrosecond);

}  // namespace
