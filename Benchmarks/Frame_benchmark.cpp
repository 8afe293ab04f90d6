// What the call frame costs a client: the same component call made directly,
// through a service with its trace levels off, with every level on (lines
// written to a raw log file), and a call that fails its first check.
#include <benchmark/benchmark.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

#include <unistd.h>

#include "BenchmarkClient.h"
#include "Common.h"
#include "InProc_Vxt.h"
#include "PlatformTestControl.h"

namespace {

namespace tc = voxtrel::testing;

// The log file is chosen when the platform first logs, so it is named
// before anything runs. Lines of the traced runs go there, not to stderr.
const bool logFileNamed = [] {
  static const std::string path = "/tmp/vxt_frame_benchmark_" + std::to_string(getpid()) + ".log";
  setenv("VXT_LOG_FILE", path.c_str(), 1);
  setenv("VXT_LOG_FORMAT", "raw", 1);
  std::atexit([] { std::remove(path.c_str()); });
  return true;
}();

// One client for the whole run, as a tool would hold it.
struct Connection {
  Connection() { Voxtrel_GetCommon(&common); }

  BenchmarkClient client{1, "benchmark_1@localhost", BenchmarkClient::Target::kBuilt};
  IInternalService_General* general = BenchmarkClient::Get<IInternalService_General>(VXT_Service_General);
  const CommonComponent* common = nullptr;
};

Connection& Connected() {
  static Connection connection;
  return connection;
}

void BM_ComponentCallDirect(benchmark::State& state) {
  const CommonComponent* common = Connected().common;
  uint32_t count = 0;
  for (auto _ : state) {
    common->GetNumConnectedClients(&count);
    benchmark::DoNotOptimize(count);
  }
}
BENCHMARK(BM_ComponentCallDirect);

// Argument: the lowest level written; 5 writes nothing, 1 every line.
void BM_ServiceCall(benchmark::State& state) {
  IInternalService_General* general = Connected().general;
  tc::SetLogLevel(static_cast<uint32_t>(state.range(0)));
  uint32_t count = 0;
  for (auto _ : state) {
    general->GetNumConnectedClients(&count);
    benchmark::DoNotOptimize(count);
  }
  tc::SetLogLevel(5);
  general->ClearLogs();  // Keeps the file small between runs
}
BENCHMARK(BM_ServiceCall)->ArgName("lowestLevel")->Arg(5)->Arg(1);

// A refused null pointer: message, translation and the thread's last error.
void BM_FailingCallTraceOff(benchmark::State& state) {
  IInternalService_General* general = Connected().general;
  tc::SetLogLevel(5);
  for (auto _ : state) benchmark::DoNotOptimize(general->GetNumConnectedClients(nullptr));
}
BENCHMARK(BM_FailingCallTraceOff);

}  // namespace
