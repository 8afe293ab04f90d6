// What the call frame costs a client: the same component call made directly,
// through a service with its trace levels off (from one thread and from two
// clients' threads at once), with every level on (lines written to a raw log
// file, each handed to the system before the call returns), spdlog writing
// the same lines to a file with the same durability, and a call that fails
// its first check.
#include <benchmark/benchmark.h>
#include <spdlog/logger.h>
#include <spdlog/sinks/basic_file_sink.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

#include <unistd.h>

#include "BenchmarkClient.h"
#include "Common.h"
#include "Error.h"
#include "Logging.h"
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

// The calls every frame makes into the Logging and Error libraries, alone:
// with the direct component call they are the least a traced-off call can
// cost.
void BM_FrameLevelTest(benchmark::State& state) {
  Connected();
  const Voxtrel_LoggerHandle logger = Voxtrel_LoggingGetLogger(1);
  tc::SetLogLevel(5);
  for (auto _ : state) benchmark::DoNotOptimize(Voxtrel_LoggingIsLogEnabled(logger, 1));
}
BENCHMARK(BM_FrameLevelTest);

void BM_FrameErrorContext(benchmark::State& state) {
  for (auto _ : state) {
    const Voxtrel_ErrorContext context = Voxtrel_ErrorEnterContex(1);
    benchmark::DoNotOptimize(context);
    Voxtrel_ErrorExitContex(context);
  }
}
BENCHMARK(BM_FrameErrorContext);

// The trace-off call from each of several threads at once, each thread a
// client of its own: the frame takes no lock and writes nothing shared, so
// the calls per second should grow with the threads.
void BM_ServiceCallThreads(benchmark::State& state) {
  IInternalService_General* general = Connected().general;
  tc::SetLogLevel(5);
  BenchmarkClient client(100 + static_cast<uint32_t>(state.thread_index()), "benchmark_thread@localhost");
  uint32_t count = 0;
  for (auto _ : state) {
    general->GetNumConnectedClients(&count);
    benchmark::DoNotOptimize(count);
  }
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_ServiceCallThreads)->Threads(1)->Threads(2)->UseRealTime();

// What a user would pick instead of the library's trace: spdlog's file sink,
// flushed after every line so that a crash loses none, writing the In and
// Out lines of the same call.
void BM_SpdlogSameLinesFlushedEachLine(benchmark::State& state) {
  const std::string path = "/tmp/vxt_frame_benchmark_spdlog_" + std::to_string(getpid()) + ".log";
  auto sink = std::make_shared<spdlog::sinks::basic_file_sink_st>(path, true);
  spdlog::logger logger("VxtInterface", sink);
  logger.set_pattern("%v");
  logger.set_level(spdlog::level::trace);
  logger.flush_on(spdlog::level::trace);
  const uint32_t count = 1;
  for (auto _ : state) {
    logger.trace("In  InProc_General::{}() [ClientID: {}]", "GetNumConnectedClients", 1);
    logger.trace("Out InProc_General::{}(numConnectedClients = {}) ErrorCode = 0x{:08x} [ClientID: {}]",
                 "GetNumConnectedClients", count, 0, 1);
  }
  std::remove(path.c_str());
}
BENCHMARK(BM_SpdlogSameLinesFlushedEachLine);

// A refused null pointer: message, translation and the thread's last error.
void BM_FailingCallTraceOff(benchmark::State& state) {
  IInternalService_General* general = Connected().general;
  tc::SetLogLevel(5);
  for (auto _ : state) benchmark::DoNotOptimize(general->GetNumConnectedClients(nullptr));
}
BENCHMARK(BM_FailingCallTraceOff);

}  // namespace
