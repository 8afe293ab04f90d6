// Round trips through `vxt gdbserver` over the loopback socket, as GDB
// makes them after QStartNoAckMode: one register, 4 KiB of memory, one
// step, and memory reads of the largest size the advertised packet holds.
#include <benchmark/benchmark.h>

#include <memory>
#include <string>

#include "GdbRemoteClient.h"

namespace {

struct Connected {
  vxt::test::GdbServerProcess server;
  std::unique_ptr<vxt::test::RawGdbClient> client;
  Connected() {
    client = std::make_unique<vxt::test::RawGdbClient>(server.port());
    client->Ask("QStartNoAckMode");
    client->StopAcknowledging();
  }
};

Connected& Server() {
  static Connected connected;
  return connected;
}

void Ask(benchmark::State& state, const std::string& packet, size_t expectedSize) {
  auto& client = *Server().client;
  for (auto _ : state) {
    const std::string reply = client.Ask(packet);
    if (reply.size() < expectedSize) {
      state.SkipWithError(("unexpected reply to " + packet + ": " + reply.substr(0, 40)).c_str());
      return;
    }
  }
}

void GdbReadRip(benchmark::State& state) { Ask(state, "p10", 16); }
BENCHMARK(GdbReadRip)->Unit(benchmark::kMicrosecond)->UseRealTime();

void GdbReadMemory4KiB(benchmark::State& state) {
  Ask(state, "m100000,1000", 2 * 0x1000);
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * 0x1000);
}
BENCHMARK(GdbReadMemory4KiB)->Unit(benchmark::kMicrosecond)->UseRealTime();

// 0x2000 bytes: the most a reply of PacketSize 0x4000 holds.
void GdbReadMemoryLargest(benchmark::State& state) {
  Ask(state, "m100000,2000", 2 * 0x2000);
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * 0x2000);
}
BENCHMARK(GdbReadMemoryLargest)->Unit(benchmark::kMicrosecond)->UseRealTime();

void GdbStep(benchmark::State& state) { Ask(state, "vCont;s:2", 3); }
BENCHMARK(GdbStep)->Unit(benchmark::kMicrosecond)->UseRealTime();

}  // namespace
