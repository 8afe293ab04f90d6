// JTAG scans side by side: through the JtagAccess service in this process,
// and made by OpenOCD over its TCL RPC port against the same chain served
// by `vxt bitbang` (skipped when openocd or vxt cannot be started).
#include <arpa/inet.h>
#include <netinet/in.h>
#include <signal.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <string>
#include <thread>

#include <benchmark/benchmark.h>

#include "BenchmarkClient.h"

namespace {

constexpr uint32_t kCpuTap = 0x0e000000;

// A scan through the service: the scan, its value read, its token ended.
void ServiceScan(benchmark::State& state) {
  BenchmarkClient client(7, "bench_7@here", BenchmarkClient::Target::kBuilt);
  auto* access = BenchmarkClient::Get<IInternalService_JtagAccess>(VXT_Service_JtagAccess);
  auto* receipts = BenchmarkClient::Get<IInternalService_OperationReceipt>(VXT_Service_OperationReceipt);
  auto* bits = BenchmarkClient::Get<IInternalService_BitData>(VXT_Service_BitData);
  const auto length = static_cast<uint32_t>(state.range(0));
  // 32 bits: CpuTap's IDCODE; longer: through its 72-bit CORE_DEBUG
  // register and on, the others in BYPASS.
  VXT_BitData ir{VXT_BITDATA_SIZE, 0, 0};
  VXT_BitData dr{VXT_BITDATA_SIZE, 0, 0};
  bits->Create(&ir, 8, length == 32 ? 0x02 : 0x28);
  bits->Create(&dr, length, 0x12345678);
  for (auto _ : state) {
    uint64_t token = 0;
    uint64_t value = 0;
    access->IrDrScanOptimized(kCpuTap, &ir, length, &dr, &token);
    receipts->GetValueAsUInt64(token, &value);
    receipts->Destroy(token);
    benchmark::DoNotOptimize(value);
  }
  state.counters["Mbit/s"] = benchmark::Counter(static_cast<double>(length) * static_cast<double>(state.iterations()) / 1e6,
                                                benchmark::Counter::kIsRate);
  bits->Destroy(&ir);
  bits->Destroy(&dr);
}
BENCHMARK(ServiceScan)->Arg(32)->Arg(4096)->Arg(65536);

int FreePort() {
  const int fd = ::socket(AF_INET, SOCK_STREAM, 0);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  ::bind(fd, reinterpret_cast<sockaddr*>(&address), sizeof address);
  socklen_t size = sizeof address;
  ::getsockname(fd, reinterpret_cast<sockaddr*>(&address), &size);
  ::close(fd);
  return ntohs(address.sin_port);
}

pid_t Spawn(const std::string& command) {
  const pid_t pid = ::fork();
  if (pid == 0) {
    ::execl("/bin/sh", "sh", "-c", ("exec " + command + " >/dev/null 2>&1").c_str(), static_cast<char*>(nullptr));
    ::_exit(127);
  }
  return pid;
}

int Connect(int port) {
  for (int attempt = 0; attempt < 100; ++attempt) {
    const int fd = ::socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(static_cast<uint16_t>(port));
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    if (::connect(fd, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0) return fd;
    ::close(fd);
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
  }
  return -1;
}

// One TCL RPC command: the text and 0x1a out, the answer up to 0x1a back.
std::string Rpc(int fd, const std::string& command) {
  const std::string request = command + '\x1a';
  ::send(fd, request.data(), request.size(), MSG_NOSIGNAL);
  std::string answer;
  char c = 0;
  while (::recv(fd, &c, 1, 0) == 1 && c != '\x1a') answer += c;
  return answer;
}

// vxt bitbang and openocd for the run; stopped with it.
struct OpenOcdRig {
  OpenOcdRig() {
    const auto vxt = std::filesystem::canonical("/proc/self/exe").parent_path().parent_path() / "Tools/vxt/vxt";
    const int bitbangPort = FreePort();
    bitbang = Spawn(vxt.string() + " bitbang --port " + std::to_string(bitbangPort));
    std::this_thread::sleep_for(std::chrono::milliseconds(300));
    const int tclPort = FreePort();
    openocd = Spawn("openocd -c 'adapter driver remote_bitbang; remote_bitbang port " + std::to_string(bitbangPort) +
                    "; transport select jtag; tcl_port " + std::to_string(tclPort) +
                    "; gdb_port disabled; telnet_port disabled' -c init");
    fd = Connect(tclPort);
  }
  ~OpenOcdRig() {
    if (fd >= 0) ::close(fd);
    for (const pid_t pid : {openocd, bitbang}) {
      ::kill(pid, SIGTERM);
      ::waitpid(pid, nullptr, 0);
    }
  }
  pid_t bitbang = -1;
  pid_t openocd = -1;
  int fd = -1;
};

void OpenOcdScan(benchmark::State& state) {
  OpenOcdRig rig;
  if (rig.fd < 0) {
    state.SkipWithError("openocd or vxt bitbang could not be started");
    return;
  }
  const auto length = static_cast<uint32_t>(state.range(0));
  Rpc(rig.fd, length == 32 ? "irscan auto2.tap 0x02" : "irscan auto2.tap 0x28");
  // drscan takes at most 32 bits a field.
  std::string scan = "drscan auto2.tap";
  for (uint32_t bit = 0; bit < length; bit += 32) scan += " 32 0x12345678";
  if (Rpc(rig.fd, scan).size() != length / 4 + (length / 32 - 1)) {
    state.SkipWithError("openocd did not answer the scan");
    return;
  }
  for (auto _ : state) benchmark::DoNotOptimize(Rpc(rig.fd, scan));
  state.counters["Mbit/s"] = benchmark::Counter(static_cast<double>(length) * static_cast<double>(state.iterations()) / 1e6,
                                                benchmark::Counter::kIsRate);
}
// The work is in the other two processes: wall-clock time.
BENCHMARK(OpenOcdScan)->Arg(32)->Arg(4096)->Unit(benchmark::kMillisecond)->UseRealTime();

}  // namespace
