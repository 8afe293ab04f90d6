// Waiting for the firmware's loop through the GDB server, and Debian's gdb
// in batch mode against the server.
#pragma once

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "GdbRemoteClient.h"

namespace vxt::test {

// The firmware boots for a while before its loop: waits until every thread
// has counted an iteration of it (0x1100 + 8 * APIC id), connecting anew
// each time so that the threads run in between. Every connection halts the
// domain, and the threads take turns on one host thread: the pauses grow,
// so that a slow build does not keep the later threads from their turn.
inline void WaitUntilLooping(int port, int threads) {
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(60);
  auto pause = std::chrono::milliseconds(50);
  for (;;) {
    RawGdbClient client(port);
    ASSERT_TRUE(client.connected());
    const std::string counts = client.Ask("m1100," + std::to_string(8 * threads));
    client.Ask("D");
    bool looping = true;
    for (int thread = 0; thread < threads; ++thread) looping = looping && LittleEndian(counts, 8 * thread) != 0;
    if (looping) return;
    ASSERT_LT(std::chrono::steady_clock::now(), deadline) << "the threads never reached their loop";
    std::this_thread::sleep_for(pause);
    pause = std::min(2 * pause, std::chrono::milliseconds(2000));
  }
}

inline bool GdbInstalled() { return std::system("gdb --version >/dev/null 2>&1") == 0; }

// gdb -batch connected to the server, running `commands` in order; its
// output, stdout and stderr interleaved.
inline std::string RunGdb(int port, const std::vector<std::string>& commands) {
  std::string line = "timeout 120 gdb -batch -nx -ex 'set pagination off' -ex 'target remote 127.0.0.1:" +
                     std::to_string(port) + "'";
  for (const std::string& command : commands) line += " -ex '" + command + "'";
  line += " 2>&1";
  std::string output;
  FILE* pipe = popen(line.c_str(), "r");
  if (pipe == nullptr) return output;
  std::array<char, 4096> chunk;
  size_t got = 0;
  while ((got = fread(chunk.data(), 1, chunk.size(), pipe)) > 0) output.append(chunk.data(), got);
  pclose(pipe);
  return output;
}

}  // namespace vxt::test
