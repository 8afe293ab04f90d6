// The main bit vector operations on 1 Mbit vectors through the services, as
// a client calls them: checks, handle lookup under the table's lock, the
// frame with its trace levels off, then the BitData library. Names sort
// beside the library-alone and dynamic_bitset figures of the same work
// (BM_<Operation>_Service), so that one run shows what the service adds.
#include <benchmark/benchmark.h>

#include <cstdint>
#include <random>
#include <string>
#include <vector>

#include "BenchmarkClient.h"
#include "InProc_Vxt.h"
#include "PlatformTestControl.h"

namespace {

constexpr uint32_t kBits = uint32_t{1} << 20;
constexpr int32_t kShift = 13;  // odd, so every word is split

// One client holding both services for the whole run, as a tool would.
struct BitDataConnection {
  BenchmarkClient client{2, "bitdata_benchmark_2@localhost"};
  IInternalService_BitData* bits = BenchmarkClient::Get<IInternalService_BitData>(VXT_Service_BitData);
  IInternalService_BitDataOperations* ops =
      BenchmarkClient::Get<IInternalService_BitDataOperations>(VXT_Service_BitDataOperations);
};

BitDataConnection& Connected() {
  static BitDataConnection connection;
  // Trace off: what a client pays when nobody is watching.
  voxtrel::testing::SetLogLevel(5);
  return connection;
}

// A vector of the service, destroyed with the benchmark.
class ServiceVector {
 public:
  explicit ServiceVector(const std::vector<uint8_t>& bytes) {
    Connected().bits->CreateFromRawBits(&record_, kBits, bytes.data(), static_cast<uint32_t>(bytes.size()));
  }
  ServiceVector() { Connected().bits->Create(&record_, kBits, 0); }
  ~ServiceVector() { Connected().bits->Destroy(&record_); }
  ServiceVector(const ServiceVector&) = delete;
  ServiceVector& operator=(const ServiceVector&) = delete;

  const VXT_BitData* get() const { return &record_; }

 private:
  VXT_BitData record_{VXT_BITDATA_SIZE, 0, 0};
};

std::vector<uint8_t> RandomBytes(uint64_t seed) {
  std::mt19937_64 random(seed);
  std::vector<uint8_t> bytes(kBits / 8);
  for (size_t i = 0; i < bytes.size(); i += 8) {
    const uint64_t word = random();
    for (size_t b = 0; b < 8; ++b) bytes[i + b] = static_cast<uint8_t>(word >> (8 * b));
  }
  return bytes;
}

void BM_PopCount_Service(benchmark::State& state) {
  IInternalService_BitDataOperations& ops = *Connected().ops;
  const ServiceVector vector(RandomBytes(1));
  for (auto _ : state) {
    uint32_t count = 0;
    ops.PopCount(vector.get(), &count);
    benchmark::DoNotOptimize(count);
  }
}
BENCHMARK(BM_PopCount_Service);

// Only the top bit is set: the search crosses the whole vector.
void BM_FindFirst_Service(benchmark::State& state) {
  IInternalService_BitDataOperations& ops = *Connected().ops;
  const ServiceVector vector;
  ops.SetBitOn(vector.get(), kBits - 1);
  for (auto _ : state) {
    uint32_t index = 0;
    ops.FindFirst(vector.get(), &index);
    benchmark::DoNotOptimize(index);
  }
}
BENCHMARK(BM_FindFirst_Service);

// Only bit 0 is set.
void BM_FindLast_Service(benchmark::State& state) {
  IInternalService_BitDataOperations& ops = *Connected().ops;
  const ServiceVector vector;
  ops.SetBitOn(vector.get(), 0);
  for (auto _ : state) {
    uint32_t index = 0;
    ops.FindLast(vector.get(), &index);
    benchmark::DoNotOptimize(index);
  }
}
BENCHMARK(BM_FindLast_Service);

// In place, as the library-alone figures: left = left <op> right.
void BitwiseInPlace(benchmark::State& state, BitwiseOperation operation) {
  IInternalService_BitDataOperations& ops = *Connected().ops;
  const ServiceVector left(RandomBytes(1));
  const ServiceVector right(RandomBytes(2));
  for (auto _ : state) {
    ops.BitwiseOp(left.get(), 0, kBits, left.get(), 0, kBits, right.get(), 0, kBits, operation);
    benchmark::ClobberMemory();
  }
}

void BM_And_Service(benchmark::State& state) { BitwiseInPlace(state, VXT_BitwiseOperation_AND); }
BENCHMARK(BM_And_Service);
void BM_Or_Service(benchmark::State& state) { BitwiseInPlace(state, VXT_BitwiseOperation_OR); }
BENCHMARK(BM_Or_Service);
void BM_Xor_Service(benchmark::State& state) { BitwiseInPlace(state, VXT_BitwiseOperation_XOR); }
BENCHMARK(BM_Xor_Service);

// And into a new vector, destroyed again: what a client of And pays.
void BM_AndIntoNewVector_Service(benchmark::State& state) {
  IInternalService_BitData& bits = *Connected().bits;
  IInternalService_BitDataOperations& ops = *Connected().ops;
  const ServiceVector left(RandomBytes(1));
  const ServiceVector right(RandomBytes(2));
  for (auto _ : state) {
    VXT_BitData result{VXT_BITDATA_SIZE, 0, 0};
    ops.And(left.get(), right.get(), &result);
    bits.Destroy(&result);
  }
}
BENCHMARK(BM_AndIntoNewVector_Service);

// Equal vectors: the whole length is read.
void BM_Compare_Service(benchmark::State& state) {
  IInternalService_BitDataOperations& ops = *Connected().ops;
  const ServiceVector left(RandomBytes(1));
  const ServiceVector right(RandomBytes(1));
  for (auto _ : state) {
    int32_t order = 0;
    ops.BitData_Compare(left.get(), right.get(), &order);
    benchmark::DoNotOptimize(order);
  }
}
BENCHMARK(BM_Compare_Service);

void BM_ShiftLeft_Service(benchmark::State& state) {
  IInternalService_BitDataOperations& ops = *Connected().ops;
  const ServiceVector vector(RandomBytes(1));
  for (auto _ : state) {
    ops.ShiftLeft(vector.get(), kShift);
    benchmark::ClobberMemory();
  }
}
BENCHMARK(BM_ShiftLeft_Service);

void BM_ShiftRight_Service(benchmark::State& state) {
  IInternalService_BitDataOperations& ops = *Connected().ops;
  const ServiceVector vector(RandomBytes(1));
  for (auto _ : state) {
    ops.ShiftRight(vector.get(), kShift);
    benchmark::ClobberMemory();
  }
}
BENCHMARK(BM_ShiftRight_Service);

void BM_ToHex_Service(benchmark::State& state) {
  IInternalService_BitDataOperations& ops = *Connected().ops;
  const ServiceVector vector(RandomBytes(1));
  std::string buffer(kBits / 4 + 3, '\0');
  for (auto _ : state) {
    uint32_t size = 0;
    ops.ToStringHexadecimal(vector.get(), buffer.data(), static_cast<uint32_t>(buffer.size()), &size);
    benchmark::DoNotOptimize(size);
  }
}
BENCHMARK(BM_ToHex_Service);

void BM_FromHex_Service(benchmark::State& state) {
  IInternalService_BitData& bits = *Connected().bits;
  IInternalService_BitDataOperations& ops = *Connected().ops;
  std::string text(kBits / 4 + 3, '\0');
  {
    const ServiceVector vector(RandomBytes(1));
    uint32_t size = 0;
    ops.ToStringHexadecimal(vector.get(), text.data(), static_cast<uint32_t>(text.size()), &size);
    text.resize(size);
  }
  for (auto _ : state) {
    VXT_BitData record{VXT_BITDATA_SIZE, 0, 0};
    bits.CreateFromString(&record, text.c_str());
    bits.Destroy(&record);
  }
}
BENCHMARK(BM_FromHex_Service);

}  // namespace
