// `vxt gdbserver` driven by Debian's gdb and by a client that sends it
// malformed and hostile packets.
#include <chrono>
#include <memory>
#include <regex>
#include <string>
#include <thread>
#include <vector>

#include "GdbServerTestSupport.h"

namespace {

using vxt::test::GdbServerProcess;
using vxt::test::RawGdbClient;
using vxt::test::RunGdb;

constexpr int kThreads = 4;  // Of the default target's domain

class VxtGdbServer : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_NE(server.port(), 0) << "the server did not say where it listens";
    vxt::test::WaitUntilLooping(server.port(), kThreads);
  }
  // The domain's shared counter, read by a client that connects (halting
  // the threads) and detaches (letting them run).
  uint64_t Counter() {
    RawGdbClient client(server.port());
    const uint64_t value = vxt::test::LittleEndian(client.Ask("m1000,8"));
    client.Ask("D");
    return value;
  }
  // A thread held by a breakpoint left behind would move one loop
  // iteration for each connection; running freely, the threads count
  // thousands in 100 ms.
  void ExpectRunningFreely() {
    const uint64_t first = Counter();
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
    EXPECT_GT(Counter(), first + 1000);
  }
  GdbServerProcess server;
};

// Lets the threads run and interrupts them as Ctrl-C in gdb does.
void Interrupt(RawGdbClient& client) {
  client.Send("vCont;c");
  EXPECT_EQ(client.Next(), "+");
  // No reply while the threads run: it comes with the stop.
  client.SendBytes("\x03");
  const std::string stop = client.Next();
  EXPECT_TRUE(std::regex_match(stop, std::regex(R"(\$T02(\w+:\w+;)*thread:[1-4];)"))) << stop;
  // Halted: the counter stands still.
  EXPECT_EQ(client.Ask("m1000,8"), client.Ask("m1000,8"));
}

std::vector<std::string> Matches(const std::string& text, const std::string& pattern) {
  std::vector<std::string> found;
  const std::regex expression(pattern);
  for (auto it = std::sregex_iterator(text.begin(), text.end(), expression); it != std::sregex_iterator(); ++it)
    found.push_back((*it)[1]);
  return found;
}

TEST_F(VxtGdbServer, GdbSeesTheFirmwareLoopOnEveryThread) {
  if (!vxt::test::GdbInstalled()) GTEST_SKIP() << "gdb is not installed";
  const std::string output =
      RunGdb(server.port(), {"symbol-file " VXT_FIRMWARE_ELF, "info threads", "p/x $pc", "info symbol $pc",
                             "x/8i $pc", "info registers cs efer cr0", "info mem", "detach"});
  // Every hardware thread, with its id and identifier.
  for (const char* thread : {"0x03000000 Thread0_0", "0x03000001 Thread0_1", "0x03000002 Thread1_0",
                             "0x03000003 Thread1_1"})
    EXPECT_NE(output.find(thread), std::string::npos) << thread << "\n" << output;
  // The loop's instructions, disassembled by gdb from the memory the server
  // read, in the firmware's ROM.
  EXPECT_NE(output.find("lock incq 0x1000"), std::string::npos) << output;
  EXPECT_NE(output.find("incq   0x1100(,%rbx,8)"), std::string::npos) << output;
  const std::vector<std::string> pc = Matches(output, R"(\$1 = (0x[0-9a-f]+))");
  ASSERT_EQ(pc.size(), 1u) << output;
  EXPECT_GE(std::stoull(pc[0], nullptr, 16), 0xFFFF0000ull) << output;
  EXPECT_TRUE(std::regex_search(output, std::regex(R"(\nloop( \+ \d+)? in section \.text)"))) << output;
  // Long mode with paging, 64-bit code segment.
  EXPECT_TRUE(std::regex_search(output, std::regex(R"(cs\s+0x18\s)"))) << output;
  EXPECT_TRUE(std::regex_search(output, std::regex(R"(efer\s+0x500\s)"))) << output;
  EXPECT_TRUE(std::regex_search(output, std::regex(R"(cr0\s+0x80000011\s)"))) << output;
  // The memory map of the description: RAM, and the firmware's ROM.
  EXPECT_NE(output.find("Using memory regions provided by the target."), std::string::npos) << output;
  EXPECT_TRUE(std::regex_search(output, std::regex(R"(\n0 +y\s+0x0+ 0x0+1000000 rw)"))) << output;
  EXPECT_TRUE(std::regex_search(output, std::regex(R"(\n1 +y\s+0x0+ffff0000 0x0+100000000 ro)"))) << output;
}

TEST_F(VxtGdbServer, BreakpointsStepsAndWatchpointsStopWhereTheyShould) {
  if (!vxt::test::GdbInstalled()) GTEST_SKIP() << "gdb is not installed";
  const std::string output = RunGdb(
      server.port(),
      {// An execution breakpoint where the second thread stands: some thread stops there.
       "thread 2", "set $loop = $pc", "break *$loop", "continue", "p $pc == $loop", "delete",
       // The second thread's loop is 5 instructions: one step leaves the
       // place, five come back to it.
       "thread 2", "set $start = $pc", "stepi", "p $pc != $start", "stepi 4", "p $pc == $start",
       // The shared counter stops the threads at their next write.
       "watch *(long*)0x1000", "continue", "delete", "detach"});
  EXPECT_TRUE(std::regex_search(output, std::regex(R"(hit Breakpoint 1, 0x[0-9a-f]+ in)"))) << output;
  EXPECT_EQ(Matches(output, R"(\$\d+ = (\d+))"), (std::vector<std::string>{"1", "1", "1"})) << output;
  EXPECT_NE(output.find("hit Hardware watchpoint 2: *(long*)0x1000"), std::string::npos) << output;
  const std::vector<std::string> before = Matches(output, R"(Old value = (\d+))");
  const std::vector<std::string> after = Matches(output, R"(New value = (\d+))");
  ASSERT_EQ(before.size(), 1u) << output;
  ASSERT_EQ(after.size(), 1u) << output;
  // The reporting thread wrote once; each other thread writes at most once
  // more before its own hit or the all-stop halt holds it.
  EXPECT_GT(std::stoull(after[0]), std::stoull(before[0])) << output;
  EXPECT_LE(std::stoull(after[0]), std::stoull(before[0]) + kThreads) << output;
}

TEST_F(VxtGdbServer, MonitorRunsSessionCommandsAndDetachLeavesTheTargetRunning) {
  if (!vxt::test::GdbInstalled()) GTEST_SKIP() << "gdb is not installed";
  // A reset through the pins restarts the firmware: the bootstrap thread
  // meets a breakpoint in code that only the boot runs, while the command
  // runs or after it.
  const std::string output = RunGdb(
      server.port(), {"monitor topology", "monitor nosuchcommand", "symbol-file " VXT_FIRMWARE_ELF,
                      "set breakpoint always-inserted on", "break uart_init", "monitor pins pulse Pins0 Reset 10",
                      "continue", "detach"});
  EXPECT_TRUE(std::regex_search(output, std::regex(R"(0x03000003\s+LogicalThread\s+Thread1_1)"))) << output;
  EXPECT_NE(output.find("vxt: unknown command or argument 'nosuchcommand'"), std::string::npos) << output;
  EXPECT_NE(output.find("Reset pulsed for 10 us\n"), std::string::npos) << output;
  EXPECT_TRUE(std::regex_search(output, std::regex(R"(Thread 1 hit Breakpoint 1, 0x[0-9a-f]+ in uart_init \(\))")))
      << output;
  EXPECT_NE(output.find("detached"), std::string::npos) << output;
  ExpectRunningFreely();
}

TEST_F(VxtGdbServer, MonitorResetRestartsTheFirmware) {
  if (!vxt::test::GdbInstalled()) GTEST_SKIP() << "gdb is not installed";
  // Only the boot calls uart_init: the bootstrap thread meets it again
  // once the reset has restarted it, while the command runs or after it.
  const std::string output =
      RunGdb(server.port(), {"symbol-file " VXT_FIRMWARE_ELF, "set breakpoint always-inserted on", "break uart_init",
                             "monitor reset", "continue", "delete", "detach"});
  EXPECT_NE(output.find("\nreset\n"), std::string::npos) << output;
  EXPECT_TRUE(std::regex_search(output, std::regex(R"(Thread 1 hit Breakpoint 1, 0x[0-9a-f]+ in uart_init \(\))")))
      << output;
  ExpectRunningFreely();
}

// After a reset the threads stand in real mode, where rip is an offset in
// the code segment: GDB's pc is the linear address that its memory reads
// and breakpoints use, read and written.
TEST_F(VxtGdbServer, InRealModeThePcIsTheLinearAddressOfTheNextInstruction) {
  RawGdbClient client(server.port());
  EXPECT_EQ(client.Ask("QStartNoAckMode"), "OK");
  client.StopAcknowledging();
  EXPECT_EQ(client.Ask("Z1,fffffff0,1"), "OK");
  EXPECT_EQ(client.Ask("qRcmd," + vxt::gdb::ToHex("reset")), "O" + vxt::gdb::ToHex("reset\n"));
  EXPECT_EQ(client.Next(), "$OK");
  client.Send("vCont;c");
  const std::string stop = client.Next();
  EXPECT_NE(stop.find(";10:f0ffffff00000000;"), std::string::npos) << stop;
  EXPECT_EQ(client.Ask("p10"), "f0ffffff00000000");
  EXPECT_EQ(client.Ask("mfffffff0,1"), "e9");  // The reset vector's near jump
  // Stepped, the jump goes to the start of the ROM; sent back to the
  // vector, the thread takes it again.
  for (int round = 0; round < 2; ++round) {
    const std::string step = client.Ask("vCont;s");
    EXPECT_NE(step.find(";10:0000ffff00000000;"), std::string::npos) << step;
    EXPECT_EQ(client.Ask("g").substr(2 * 16 * 8, 16), "0000ffff00000000");
    EXPECT_EQ(client.Ask("P10=f0ffffff00000000"), "OK");
  }
  EXPECT_EQ(client.Ask("z1,fffffff0,1"), "OK");
}

TEST_F(VxtGdbServer, AnInterruptStopsTheRunningThreadsAndALeavingDebuggerTakesItsBreakpoints) {
  auto client = std::make_unique<RawGdbClient>(server.port());
  Interrupt(*client);
  // A breakpoint where the thread stands in its loop, then the debugger
  // goes without detaching: the threads run on, past where it was.
  const uint64_t address = vxt::test::LittleEndian(client->Ask("p10"));
  ASSERT_NE(address, 0u);
  EXPECT_EQ(client->Ask("Z0," + vxt::gdb::HexNumber(address) + ",1"), "OK");
  client.reset();
  ExpectRunningFreely();
}

TEST_F(VxtGdbServer, HostilePacketsGetTheProtocolsAnswers) {
  RawGdbClient client(server.port());
  // Wrong checksums, a checksum that is no hex, and a packet over the
  // advertised size: NAK.
  client.SendBytes("$g#00");
  EXPECT_EQ(client.Next(), "-");
  client.SendBytes("$g#zz");
  EXPECT_EQ(client.Next(), "-");
  client.SendBytes("$" + std::string(0x5000, 'M') + "#00");
  EXPECT_EQ(client.Next(), "-");
  // Noise and interrupts while halted are ignored.
  client.SendBytes("garbage\x03\x03");
  struct Case {
    std::string packet;
    std::string reply;
  };
  const std::vector<Case> cases = {
      {"qNoSuchQuery", ""},                     // unknown: the empty reply
      {"!", ""},
      {"vNoSuchThing", ""},
      {"mzz,4", "E01"},
      {"m1000", "E01"},
      {"m1000,", "E01"},
      {"m10000000000000000,1", "E01"},          // address over 64 bits
      {"mffffffffffffffff,10", "E01"},          // no memory there
      {"M1000,4:zz", "E01"},
      {"M1000,4:00", "E01"},                    // fewer bytes than said
      {"p999", "E01"},
      {"pzz", "E01"},
      {"P10=zz", "E01"},
      {"P0", "E01"},
      {"P18=00000000000000000000", "E01"},      // st0: not on this target
      {"Hg99", "E01"},
      {"Hx1", "E01"},
      {"T0", "E01"},
      {"T5", "E01"},
      {"qThreadExtraInfo,77", "E01"},
      {"Z3,1000,4", ""},                        // read watchpoints: not offered
      {"Z2,1000,3", "E01"},                     // no such width
      {"Z0,zz,1", "E01"},
      {"Z0,1000", "E01"},
      {"z0,1234,1", "E01"},                     // never set
      {"qXfer:features:read:other.xml:0,10", "E00"},
      {"qXfer:features:read:target.xml:zz", "E00"},
      {"qXfer:features:read:target.xml:ffffff,10", "l"},
      {"qXfer:memory-map:read:x:0,fff", "E00"},  // the map has no annex
      {"qRcmd,zz", "E01"},
      {"vCont;x", "E01"},
      {"vCont;s:9", "E01"},
      {"vCont;", "E01"},
      {"cZZ", "E01"},
      {"", ""},
  };
  for (const Case& item : cases) EXPECT_EQ(client.Ask(item.packet), item.reply) << item.packet;

  // Binary data ending inside an escape is refused; escaped bytes arrive
  // as themselves.
  client.SendUnescaped("X2000,2:a}");
  EXPECT_EQ(client.Next(), "+");
  EXPECT_EQ(client.Next(), "$E01");
  EXPECT_EQ(client.Ask("X2000,4:}#$*"), "OK");
  EXPECT_EQ(client.Ask("m2000,4"), "7d23242a");

  // The server still answers in full: every register of the description,
  // the general ones, rip, eflags, six selectors, the x87 and SSE state
  // (unavailable), fs_base/gs_base and six control registers.
  const std::string registers = client.Ask("g");
  EXPECT_EQ(registers.size(), 2u * (16 * 8 + 8 + 4 + 6 * 4 + 8 * 10 + 8 * 4 + 16 * 16 + 4 + 2 * 8 + 6 * 8));
  EXPECT_EQ(registers.substr(2 * (16 * 8 + 8 + 4 + 6 * 4), 20), std::string(20, 'x'));
  const std::string features = client.Ask("qSupported:swbreak+;hwbreak+");
  EXPECT_NE(features.find("PacketSize=4000;"), std::string::npos) << features;
  // Without acknowledgements from here on.
  EXPECT_EQ(client.Ask("QStartNoAckMode"), "OK");
  client.StopAcknowledging();
  client.SendBytes("$g#00");
  client.Send("qC");
  EXPECT_EQ(client.Next(), "$QC1") << "no NAK without acknowledgements";
}

}  // namespace
