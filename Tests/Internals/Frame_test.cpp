// The call frame, seen through a small service written with it.
#include <functional>
#include <ostream>
#include <stdexcept>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "Common.h"
#include "PlatformTestControl.h"
#include "VXT_ErrorCodes.h"
#include "VxtTestSupport.h"
#include "frame/Frame.h"
#include "frame/LastError.h"

namespace vxt {
namespace {

using namespace frame;
namespace tc = voxtrel::testing;

// A service of one operation: checks its out pointer and its record, then
// asks the Common component for the number of clients.
struct ProbeService {
  ServiceLogger logger;
  const CommonComponent* common = nullptr;

  struct Record {
    uint32_t structureSize;
  };

  VXT_Result Count(uint32_t deviceId, const Record* record, uint32_t* count) {
    return RunOperation(logger, VXT_OPERATION(Probe, Count).Counted(), TraceArgs("deviceId", Hex8{deviceId}),
                        TraceArgs("count", Out<Dec>(count)), [&](Call& call) {
                          return call.NotNull(count, "count")
                              .StructureSize(record, 8, "record")
                              .Core(common, [&](const CommonComponent& c) { return c.GetNumConnectedClients(count); });
                        });
  }
};

class FrameTest : public test::PlatformTest {
 protected:
  void SetUp() override {
    PlatformTest::SetUp();
    Voxtrel_GetCommon(&probe.common);
  }
  ProbeService probe;
  ProbeService::Record goodRecord{8};
};

TEST_F(FrameTest, SucceedingCallWritesInAndOutLinesAndLeavesTheLastError) {
  ReportErrorMessage(nullptr, "earlier failure");
  ClearTrace();
  uint32_t count = 99;
  EXPECT_EQ(probe.Count(1, &goodRecord, &count), 0);
  EXPECT_EQ(count, 0u);
  EXPECT_EQ(Trace(), (std::vector<std::string>{
                         "In  InProc_Probe::Count(deviceId = 0x00000001) [ClientID: 0]",
                         "Out InProc_Probe::Count(count = 0) ErrorCode = 0x00000000 [ClientID: 0]",
                     }));
  EXPECT_STREQ(LastErrorMessage(), "earlier failure");
  EXPECT_EQ(tc::TelemetryCounter("Server_Lifespan", "VXT_Call", "Method", "Probe::Count"), 1u);
}

// The client id of every trailer is decimal, whatever base the values ahead
// of it left the line's stream in.
TEST_F(FrameTest, FailingCheckWritesItsLinesInOrderAndSkipsTheComponent) {
  const VXT_Client client = test::MakeClient(26, "frame_26@localhost");
  ASSERT_EQ(probe.common->RegisterClient(&client), 0u);
  tc::StartRecordingCalls();
  const VXT_Result result = probe.Count(0xAB, &goodRecord, nullptr);
  probe.common->UnregisterClient(26);
  EXPECT_EQ(result, static_cast<VXT_Result>(0x80000001));
  const std::string message = "InProc_Probe::Count() argument error (count) : Null pointer";
  EXPECT_EQ(Trace(), (std::vector<std::string>{
                         "In  InProc_Probe::Count(deviceId = 0x000000ab) [ClientID: 26]",
                         "VXT Error = '" + message + "' [ClientID: 26]",
                         "In  InProc ReportErrorMessage(<NULL>'" + message + "')",
                         "Out InProc ReportErrorMessage()",
                         "Out InProc_Probe::Count(count = <NULL>) ErrorCode = 0x80000001 [ClientID: 26]",
                     }));
  EXPECT_EQ(LastErrorMessage(), message);
  EXPECT_EQ(tc::CallCount("Common.GetNumConnectedClients"), 0u);
}

// What the public code and the last error are when a check or the
// component fails.
TEST_F(FrameTest, FailuresGiveThePublicCodeAndTheMessage) {
  struct Case {
    const char* name;
    ProbeService::Record record;
    tc::Behaviour behaviour;
    VXT_Result publicCode;
    std::string lastError;
  };
  const Case cases[] = {
      {"structure size",
       {0},
       {},
       static_cast<VXT_Result>(0x80000010),
       "InProc_Probe::Count() argument error (record) : Structure size not initialized"},
      {"component posts",
       {8},
       {0x20002, "the component says why"},
       static_cast<VXT_Result>(0x80000003),
       "the component says why"},
      {"component fails silently",
       {8},
       {.returnCode = 0x20002, .postText = ""},
       static_cast<VXT_Result>(0x80000003),
       Voxtrel_ErrorGetDefaultMessage(0x20002)},
      {"component posts, then throws",
       {8},
       {0, "posted before the throw", 0x20002, true},
       static_cast<VXT_Result>(0x8000000f),
       "posted before the throw"},
      {"no row for the code",
       {8},
       {0x123456, "", 0, false, 0},
       static_cast<VXT_Result>(0x8000000f),
       Voxtrel_ErrorGetDefaultMessage(0x123456)},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    tc::SetBehaviour("Common.GetNumConnectedClients", c.behaviour);
    uint32_t count = 0;
    EXPECT_EQ(probe.Count(1, &c.record, &count), c.publicCode);
    EXPECT_EQ(LastErrorMessage(), c.lastError);
  }
}

TEST_F(FrameTest, UnboundTableFailsWithNoConnection) {
  probe.common = nullptr;
  uint32_t count = 0;
  EXPECT_EQ(probe.Count(1, &goodRecord, &count), static_cast<VXT_Result>(0x8000000f));
  EXPECT_STREQ(LastErrorMessage(), "InProc_Probe::Count() Error no connection to component");
}

// With level 1 off, or logging suppressed, nothing is rendered and the
// client id is not fetched.
TEST_F(FrameTest, QuietLoggingRendersNothing) {
  for (const bool suppressed : {false, true}) {
    SCOPED_TRACE(suppressed ? "suppressed" : "level 5");
    tc::SetLogLevel(suppressed ? 1 : 5);
    tc::SetLoggingSuppressed(suppressed);
    tc::StartRecordingCalls();
    uint32_t count = 0;
    EXPECT_EQ(probe.Count(1, &goodRecord, &count), 0);
    EXPECT_EQ(probe.Count(1, &goodRecord, nullptr), static_cast<VXT_Result>(0x80000001));
    EXPECT_TRUE(Trace().empty());
    EXPECT_EQ(tc::CallCount("Common.GetClientId"), 0u);
  }
}

TEST_F(FrameTest, ErrorContextOfTheCallDoesNotLeakIntoTheCaller) {
  const ErrorContextScope outer;
  uint32_t count = 0;
  probe.Count(1, &goodRecord, nullptr);
  EXPECT_EQ(GetContextMessage(outer.id()), "");
  EXPECT_EQ(probe.Count(1, &goodRecord, &count), 0);
}

// An operation whose site and body the test chooses, with one in and one
// out argument in hexadecimal, so that a trailer after them must switch the
// stream back to decimal.
template <class Body>
VXT_Result RunProbe(const ServiceLogger& logger, const OperationSite& site, uint32_t* value, Body body) {
  return RunOperation(logger, site, TraceArgs("deviceId", Hex8{0x1au}), TraceArgs("value", Out<Hex8>(value)), body);
}

// The forms of the Out line: its level, and whether it ends with the client
// id. Every other line of the call keeps its level and trailer; with level 1
// off, only the Out line of large results is written.
TEST_F(FrameTest, OutLineForms) {
  struct Form {
    const char* name;
    OperationSite site;
    uint32_t outLevel;
    std::string outLine;
  };
  const OperationSite site = VXT_OPERATION(Probe, Read);
  const Form forms[] = {
      {"plain", site, 1, "Out InProc_Probe::Read(value = 0x00000007) ErrorCode = 0x00000000 [ClientID: 0]"},
      {"large results", site.LargeOut(), 2, "Out InProc_Probe::Read(value = 0x00000007) ErrorCode = 0x00000000"},
      {"large results at level 1", site.UntrailedOut(), 1,
       "Out InProc_Probe::Read(value = 0x00000007) ErrorCode = 0x00000000"},
  };
  for (const Form& form : forms) {
    SCOPED_TRACE(form.name);
    uint32_t value = 0;
    const auto run = [&] {
      ClearTrace();
      EXPECT_EQ(RunProbe(probe.logger, form.site, &value,
                         [&](Call& call) {
                           return call.Core([&] {
                             value = 7;
                             return 0u;
                           });
                         }),
                0);
    };
    tc::SetLogLevel(1);
    run();
    EXPECT_EQ(tc::CapturedTrace(),
              (std::vector<tc::TraceLine>{{1, 1, "In  InProc_Probe::Read(deviceId = 0x0000001a) [ClientID: 0]", 0},
                                          {1, form.outLevel, form.outLine, 0}}));
    tc::SetLogLevel(2);
    run();
    EXPECT_EQ(Trace(), form.outLevel == 2 ? std::vector<std::string>{form.outLine} : std::vector<std::string>{});
  }
}

// Whatever the body throws becomes 0x20009: an empty post, then the text
// the body wrote before it threw, if any, which becomes the last error.
TEST_F(FrameTest, ThrowingBodies) {
  struct Case {
    const char* name;
    std::function<uint32_t(Call&)> body;
    std::string lastError;  // Empty: the standing text of 0x20009
  };
  const Case cases[] = {
      {"a check throws", [](Call&) -> uint32_t { throw std::runtime_error("check"); }, ""},
      {"the core throws after writing to the message stream",
       [](Call& call) {
         return call.Core([&]() -> uint32_t {
           call.message() << "half done";
           throw std::runtime_error("core");
         });
       },
       "half done"},
      {"a failed check is overtaken by a throw",
       [](Call& call) -> uint32_t {
         call.Fail(0x20000, "first text");
         throw std::runtime_error("after the check");
       },
       "first text"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    ClearTrace();
    uint32_t value = 0;
    EXPECT_EQ(RunProbe(probe.logger, VXT_OPERATION(Probe, Read), &value, c.body), static_cast<VXT_Result>(0x8000000f));
    const std::string expected = c.lastError.empty() ? Voxtrel_ErrorGetDefaultMessage(0x20009) : c.lastError;
    EXPECT_EQ(LastErrorMessage(), expected);
    EXPECT_EQ(Trace().back(), "Out InProc_Probe::Read(value = 0x00000000) ErrorCode = 0x8000000f [ClientID: 0]");
  }
}

// A trace argument that throws while its line is rendered.
struct ThrowsWhenRendered {
  friend std::ostream& operator<<(std::ostream& out, ThrowsWhenRendered) {
    throw std::runtime_error("rendering");
    return out;
  }
};

// An exception outside the catch-all (here from the Out line) still closes
// the call's error context: what is posted after it lands in the caller's.
TEST_F(FrameTest, ErrorContextIsClosedWhenAnExceptionPassesTheFrame) {
  const ErrorContextScope outer;
  EXPECT_THROW(
      RunOperation(probe.logger, VXT_OPERATION(Probe, Read), NoArgs{}, TraceArgs("value", ThrowsWhenRendered{}),
                   [](Call& call) { return call.Fail(0x20000, "inner text").code(); }),
      std::runtime_error);
  Voxtrel_ErrorPostError(0x20002, "outer text", __FILE__, __LINE__);
  EXPECT_EQ(GetContextMessage(outer.id()), "outer text");
}

// The last error is "<source>: <message>", leaving out what is null or empty;
// the In line shows both as they were given, side by side.
TEST_F(FrameTest, ReportErrorMessageJoinsSourceAndMessage) {
  struct Case {
    const char* source;
    const char* message;
    std::string inLine;
    std::string stored;
  };
  const Case cases[] = {
      {nullptr, "Null pointer", "In  InProc ReportErrorMessage(<NULL>'Null pointer')", "Null pointer"},
      {"Memory", "Null pointer", "In  InProc ReportErrorMessage('Memory''Null pointer')", "Memory: Null pointer"},
      {"Memory", nullptr, "In  InProc ReportErrorMessage('Memory'<NULL>)", "Memory: "},
      {"", "text", "In  InProc ReportErrorMessage('''text')", "text"},
      {nullptr, nullptr, "In  InProc ReportErrorMessage(<NULL><NULL>)", ""},
  };
  for (const Case& report : cases) {
    ReportErrorMessage(nullptr, "earlier");
    ClearTrace();
    ReportErrorMessage(report.source, report.message);
    EXPECT_EQ(Trace(), (std::vector<std::string>{report.inLine, "Out InProc ReportErrorMessage()"}));
    EXPECT_EQ(LastErrorMessage(), report.stored) << report.inLine;
  }
}

// A count with a detail made by the operation: the detail is made after
// the In line and before the call's error context opens, so that what it
// posts lands in the caller's context and not in the call's message.
TEST_F(FrameTest, DetailCountComesBetweenTheInLineAndTheErrorContext) {
  struct Case {
    const char* name;
    OperationSite site;
    std::string lastError;  // Empty: the standing text of 0x20002
  };
  const OperationSite site = VXT_OPERATION(Probe, Read);
  const Case cases[] = {
      {"context after the count", site, ""},
      {"context ahead of the In line", site.ContextFirst(), "posted while counting"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    const ErrorContextScope outer;
    tc::ClearTelemetryCalls();
    ClearTrace();
    std::vector<std::string> linesWhenCounted;
    uint32_t value = 0;
    const VXT_Result result =
        RunOperation(probe.logger, c.site, NoArgs{}, TraceArgs("value", Out<Hex8>(&value)), WithDetail([&] {
                       linesWhenCounted = Trace();
                       Voxtrel_ErrorPostError(0x20002, "posted while counting", __FILE__, __LINE__);
                       return std::string("PORT_A");
                     }),
                     [](Call& call) { return call.Core([] { return 0x20002u; }); });
    EXPECT_EQ(result, static_cast<VXT_Result>(0x80000003));
    EXPECT_EQ(linesWhenCounted, (std::vector<std::string>{"In  InProc_Probe::Read() [ClientID: 0]"}));
    EXPECT_EQ(tc::TelemetryCalls(),
              (std::vector<tc::TelemetryCall>{
                  {"CountEvent", {"Server_Lifespan", "VXT_Call", "Method", "Probe::Read(PORT_A)"}}}));
    const std::string expected = c.lastError.empty() ? Voxtrel_ErrorGetDefaultMessage(0x20002) : c.lastError;
    EXPECT_EQ(LastErrorMessage(), expected);
  }
}

// A count with a detail goes under "<method>(<detail>)".
TEST_F(FrameTest, CountMethodCallCarriesItsDetail) {
  struct Case {
    const char* detail;
    std::string counted;
  };
  const Case cases[] = {
      {"", "StatePort::Read()"},
      {nullptr, "StatePort::Read(<NULL>)"},
  };
  for (const Case& count : cases) {
    tc::ClearTelemetryCalls();
    CountMethodCall("StatePort::Read", count.detail);
    EXPECT_EQ(
        tc::TelemetryCalls(),
        (std::vector<tc::TelemetryCall>{{"CountEvent", {"Server_Lifespan", "VXT_Call", "Method", count.counted}}}));
  }
}

}  // namespace
}  // namespace vxt
