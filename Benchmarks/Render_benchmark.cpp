// The cost of an In line with four typed arguments: building its argument
// list, which every call pays, and rendering it, which only an enabled level
// pays.
#include <benchmark/benchmark.h>

#include <cstdint>
#include <sstream>

#include "VXT_Enumerations.h"
#include "frame/Render.h"

namespace vxt::frame {
namespace {

auto AssembleArgs(const uint32_t& deviceId, const char* instruction, const uint64_t& offset, const uint32_t& size) {
  return TraceArgs("deviceId", Hex8{deviceId}, "instructionType", Enum<InstructionTypeName>{VXT_InstructionType_32Bit},
                   "instruction", Quoted{instruction}, "instructionAddressOffset", Hex16{offset}, "maxBufferSize",
                   Dec{size});
}

void BM_BuildArgumentList(benchmark::State& state) {
  uint32_t deviceId = 1;
  uint64_t offset = 0x1000;
  uint32_t size = 16;
  for (auto _ : state) {
    auto args = AssembleArgs(deviceId, "nop", offset, size);
    benchmark::DoNotOptimize(args);
  }
}
BENCHMARK(BM_BuildArgumentList);

void BM_RenderInLine(benchmark::State& state) {
  uint32_t deviceId = 1;
  uint64_t offset = 0x1000;
  uint32_t size = 16;
  for (auto _ : state) {
    std::ostringstream line;
    line << "In  InProc_AsmDasm::Assemble(" << AssembleArgs(deviceId, "nop", offset, size) << ")";
    benchmark::DoNotOptimize(line.str());
  }
}
BENCHMARK(BM_RenderInLine);

}  // namespace
}  // namespace vxt::frame
