// The StatePort service on the default target's ports: trace lines whole,
// the checks and the refused operations, stored ports with their address
// fields, the ports wired to the firmware's POST code and to a thread's run
// state, and the "ValueChanged" event.
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <chrono>
#include <cstdlib>
#include <functional>
#include <future>
#include <string>
#include <vector>

#include "RunControlTestSupport.h"

namespace vxt::test {
namespace {

constexpr VXT_Result kInvalidArgument = static_cast<VXT_Result>(0x80000001);
constexpr VXT_Result kOutOfRange = static_cast<VXT_Result>(0x80000002);
constexpr VXT_Result kNotSupported = static_cast<VXT_Result>(0x80000003);
constexpr VXT_Result kNotImplemented = static_cast<VXT_Result>(0x80000004);

template <class Base>
class PortsOn : public Base {
 protected:
  void SetUp() override {
    Base::SetUp();
    ports = Base::template Service<IInternalService_StatePort>(VXT_Service_StatePort);
    Base::ClearTrace();
  }

  uint64_t ReadPort(const char* name, std::vector<uint64_t> address) {
    uint64_t token = 0;
    const uint64_t none = 0;  // The array must be there even for a port without fields
    EXPECT_EQ(ports->Read(kTargetDomain, name, static_cast<uint32_t>(address.size()),
                          address.empty() ? &none : address.data(), &token),
              VXT_SUCCESS)
        << GetLastErrorMessage();
    return Base::Number(token);
  }

  IInternalService_StatePort* ports = nullptr;
};
using StatePortTest = PortsOn<CpuServiceTest>;
// With the firmware in its loop.
using WiredStatePortTest = PortsOn<RunControlTest>;

TEST_F(StatePortTest, TraceLinesOfReadsRefusalsAndTheOddForms) {
  const uint64_t address[] = {1, 2};
  uint64_t token = 0;
  uint64_t value = 0x77;
  char names[1][VXT_STATE_PORT_NAME_SIZE] = {};
  struct Case {
    std::function<void()> call;
    std::vector<std::string> lines;
  };
  ports->Read(kTargetDomain, "Scratch", 2, address, &token);
  char tokenText[20];
  std::snprintf(tokenText, sizeof tokenText, "0x%016llx", static_cast<unsigned long long>(token));
  EXPECT_EQ(Trace(), (std::vector<std::string>{
                         "In  InProc_StatePort::Read(deviceId = 0x02000000, statePortName = 'Scratch', "
                         "numAddressFields = 2, addressFields = {0x0000000000000001, 0x0000000000000002}) "
                         "[ClientID: 3]",
                         "Out InProc_StatePort::Read(operationToken = " + std::string(tokenText) +
                             ") ErrorCode = 0x00000000) [ClientID: 3]"}));
  EXPECT_NE(token, 0u);
  const Case cases[] = {
      {[&] { ports->GetAddressFields(kTargetDomain, "Scratch", 1, names); },
       {"In  InProc_StatePort::GetAddressFields(deviceId = 0x02000000, statePortName = 'Scratch' "
        "maxNumAddressFields = 1) [ClientID: 3]",
        "Out InProc_StatePort::GetAddressFields() << ErrorCode = 0x00000000 [ClientID: 3]"}},
      {[&] { ports->GetImplicitAddressFieldValue(kTargetDomain, "Scratch", "Bank", &value); },
       {"In  InProc_StatePort::GetImplicitAddressFieldValue(deviceId = 0x02000000, statePortName = 'Scratch', "
        "addressFieldName = 'Bank') [ClientID: 3]",
        "Out InProc_StatePort::GetImplicitAddressFieldValue(value = 0x0000000000000077) ErrorCode = 0x80000004 "
        "[ClientID: 3]"}},
      {[&] { ports->BulkRead(kTargetDomain, "Scratch", 1, address, address + 1, 0, nullptr); },
       {"In  InProc_StatePort::BulkRead(deviceId = 0x02000000, statePortName = 'Scratch', addressFieldsFrom = "
        "{0x0000000000000001}, addressFieldsTo = {0x0000000000000002}, maxNumOperationTokens = 0x00000000, "
        "operationTokens = <NULL>) [ClientID: 3]",
        "Out InProc_StatePort::BulkRead(operationTokens = <NULL>) ErrorCode = 0x80000004) [ClientID: 3]"}},
  };
  for (const Case& c : cases) {
    ClearTrace();
    c.call();
    EXPECT_EQ(Trace(), c.lines);
  }
  EXPECT_EQ(value, 0x77u) << "a refused operation writes no out argument";
  EXPECT_EQ(voxtrel::testing::TelemetryCounter("Server_Lifespan", "VXT_Call", "Method", "StatePort::Read(Scratch)"), 1u);
  EXPECT_EQ(voxtrel::testing::TelemetryCounter("Server_Lifespan", "VXT_Call", "Method", "StatePort::BulkRead(Scratch)"),
            1u);
}

TEST_F(StatePortTest, ChecksComeFirstAndRefusalsLeaveTheLastErrorAlone) {
  uint64_t token = 0;
  uint32_t size = 0;
  const uint64_t tooFar[] = {2, 0};
  const uint64_t first[] = {0, 0};
  ExpectRefusals({
      {[&] { return ports->Read(kTargetDomain, "Scratch", 0, nullptr, &token); }, kInvalidArgument,
       "InProc_StatePort::Read() argument voxTrelError (addressFields) : Null pointer"},
      {[&] { return ports->GetStatePortDescription(kTargetDomain, "Scratch", nullptr, 0, nullptr); },
       kInvalidArgument,
       "InProc_StatePort::GetStatePortDescription() arguments (description) and (actualStringSize) cannot both be "
       "NULL"},
      {[&] { return ports->GetAccessSize(kTargetDomain, "Nothing", &size); }, kOutOfRange,
       "StatePort.GetAccessSize: device 0x02000000 (TargetDomain0) has no state port 'Nothing'"},
      {[&] { return ports->Read(kTargetDomain, "Scratch", 2, tooFar, &token); }, kOutOfRange,
       "StatePort.Read: address field 'Bank' of port 'Scratch' takes 0 to 0x1, not 0x2"},
      {[&] { return ports->Write(kTargetDomain, "Scratch", 1, tooFar, 0, &token); }, kOutOfRange,
       "StatePort.Write: port 'Scratch' takes 2 address field(s), not 1"},
      {[&] { return ports->Write(kTargetDomain, "Scratch", 2, first, 0x100000000ull, &token); }, kOutOfRange,
       "StatePort.Write: 0x100000000 does not fit port 'Scratch' of 4 byte(s)"},
      {[&] { return ports->Write(kTargetDomain, "PostCode", 0, tooFar, 1, &token); }, kNotSupported,
       "StatePort.Write: port 'PostCode' is read-only"},
  });
  EXPECT_EQ(ports->Poll(kTargetDomain, nullptr, 0, nullptr, 0, 0, 0, nullptr), kNotImplemented);
  EXPECT_EQ(voxtrel::testing::TelemetryCounter("Server_Lifespan", "VXT_Call", "Method", "StatePort::Poll(<NULL>)"), 1u);
  EXPECT_STREQ(GetLastErrorMessage(), "StatePort.Write: port 'PostCode' is read-only");
}

TEST_F(StatePortTest, PortsDescribeThemselvesAndKeepWhatIsWritten) {
  uint32_t count = 0;
  ASSERT_EQ(ports->GetNumStatePorts(kTargetDomain, &count), VXT_SUCCESS);
  ASSERT_EQ(count, 3u);
  char names[4][VXT_STATE_PORT_NAME_SIZE];
  std::memset(names, 'x', sizeof names);
  ASSERT_EQ(ports->GetStatePorts(kTargetDomain, 4, names), VXT_SUCCESS);
  EXPECT_EQ(std::vector<std::string>(names, names + 4),
            (std::vector<std::string>{"PostCode", "ThreadRunState", "Scratch", ""}));
  ASSERT_EQ(ports->GetAddressFields(kTargetDomain, "Scratch", 2, names), VXT_SUCCESS);
  EXPECT_EQ(std::vector<std::string>(names, names + 2), (std::vector<std::string>{"Bank", "Index"}));
  uint32_t needed = 0;
  ASSERT_EQ(ports->GetAddressFieldDescription(kTargetDomain, "ThreadRunState", "Thread", nullptr, 0, &needed),
            VXT_SUCCESS);
  EXPECT_EQ(needed, std::strlen("The thread's index in the domain") + 1);
  char cut[8] = "";
  ASSERT_EQ(ports->GetStatePortDescription(kTargetDomain, "Scratch", cut, sizeof cut, nullptr), VXT_SUCCESS);
  EXPECT_STREQ(cut, "Scratch");

  EXPECT_EQ(ReadPort("Scratch", {1, 15}), 0x5a5a5a5au) << "the reset value until written";
  uint64_t token = 0;
  const uint64_t at[] = {1, 15};
  ASSERT_EQ(ports->Write(kTargetDomain, "Scratch", 2, at, 0x12345678, &token), VXT_SUCCESS);
  ASSERT_EQ(receipts->Destroy(token), VXT_SUCCESS);
  ASSERT_EQ(ports->ReadModifyWrite(kTargetDomain, "Scratch", 2, at, 0xff00, 0xffff, &token), VXT_SUCCESS);
  EXPECT_EQ(Number(token), 0x12345678u) << "a read-modify-write gives the value it replaced";
  EXPECT_EQ(ReadPort("Scratch", {1, 15}), 0x1234ff00u);
  EXPECT_EQ(ReadPort("Scratch", {0, 15}), 0x5a5a5a5au) << "each address keeps its own value";

  // A client cycle builds the target again: the ports start afresh.
  ASSERT_EQ(Disconnect(client.clientId), VXT_SUCCESS);
  ASSERT_EQ(StartNewInstance(&client, 1, 0, nullptr), VXT_SUCCESS);
  ASSERT_EQ(FinishInitialization(), VXT_SUCCESS);
  EXPECT_EQ(ReadPort("Scratch", {1, 15}), 0x5a5a5a5au);
}

TEST_F(WiredStatePortTest, PortsShowThePostCodeAndAThreadsRunState) {
  uint64_t token = 0;
  ASSERT_EQ(runControl->Halt(kSecondThread, &token), VXT_SUCCESS);
  EXPECT_EQ(ReadPort("ThreadRunState", {1}), 1u);
  EXPECT_EQ(ReadPort("ThreadRunState", {0}), 0u);
  // Halted, the firmware writes no more codes: the port shows the last one.
  ASSERT_EQ(runControl->HaltAll(&token), VXT_SUCCESS);
  const std::vector<uint8_t> written = voxtrel::testing::CpuPostCodes(kTargetDomain);
  ASSERT_GE(written.size(), 4u) << "reset, protected mode, long mode and the UART come first";
  EXPECT_EQ(ReadPort("PostCode", {}), written.back());
  EXPECT_EQ(ReadPort("ThreadRunState", {0}), 1u);
}

void RecordChange(const VXT_StatePortEvent* event, void* userData) {
  auto* seen = static_cast<std::vector<std::string>*>(userData);
  seen->push_back(std::string(event->statePortName) + " " + std::to_string(event->portValue) + " " +
                  std::to_string(event->firstValue) + "->" + std::to_string(event->secondValue));
}

TEST_F(StatePortTest, AWriteThatChangesAValueIsAnEvent) {
  auto* events = Service<IInternalService_Event>(VXT_Service_Event);
  std::vector<std::string> seen;
  ASSERT_EQ(events->SubscribeStatePortEvents(&RecordChange, &seen), VXT_SUCCESS);
  uint64_t token = 0;
  const uint64_t at[] = {0, 3};
  ASSERT_EQ(ports->Write(kTargetDomain, "Scratch", 2, at, 7, &token), VXT_SUCCESS);
  ASSERT_EQ(ports->Write(kTargetDomain, "Scratch", 2, at, 7, &token), VXT_SUCCESS);
  ASSERT_EQ(ports->ReadModifyWrite(kTargetDomain, "Scratch", 2, at, 0, 1, &token), VXT_SUCCESS);
  EXPECT_EQ(seen, (std::vector<std::string>{"Scratch 0 1515870810->7", "Scratch 0 7->6"}));
  ASSERT_EQ(events->UnsubscribeStatePortEvents(&RecordChange), VXT_SUCCESS);
}

// Reads the port that changed through the service, from inside its own
// delivery, and takes itself off the list: the component holds no lock a
// subscriber needs while it delivers.
struct ReadingSubscriber {
  IInternalService_StatePort* ports;
  IInternalService_OperationReceipt* receipts;
  IInternalService_Event* events;
  std::vector<uint64_t> valuesRead;
};
ReadingSubscriber* reading = nullptr;

void ReadFromTheCallback(const VXT_StatePortEvent* event, void*) {
  uint64_t token = 0;
  const uint64_t at[] = {0, 3};
  uint64_t value = 0;
  if (reading->ports->Read(kTargetDomain, event->statePortName, 2, at, &token) == VXT_SUCCESS &&
      reading->receipts->Flush(token) == VXT_SUCCESS && reading->receipts->GetValueAsUInt64(token, &value) == VXT_SUCCESS)
    reading->valuesRead.push_back(value);
  reading->receipts->Destroy(token);
  reading->events->UnsubscribeStatePortEvents(&ReadFromTheCallback);
}

TEST_F(StatePortTest, ASubscriberCallsTheServiceAndLeavesFromItsCallback) {
  ReadingSubscriber subscriber{ports, Service<IInternalService_OperationReceipt>(VXT_Service_OperationReceipt),
                               Service<IInternalService_Event>(VXT_Service_Event), {}};
  reading = &subscriber;
  ASSERT_EQ(subscriber.events->SubscribeStatePortEvents(&ReadFromTheCallback, nullptr), VXT_SUCCESS);
  auto writes = std::async(std::launch::async, [&] {
    const uint64_t at[] = {0, 3};
    for (uint64_t value : {11u, 12u}) {
      uint64_t token = 0;
      if (ports->Write(kTargetDomain, "Scratch", 2, at, value, &token) != VXT_SUCCESS) return false;
      receipts->Flush(token);
      receipts->Destroy(token);
    }
    return true;
  });
  if (writes.wait_for(std::chrono::seconds(20)) != std::future_status::ready) {
    ADD_FAILURE() << "a write never completed while its subscriber called the service";
    std::_Exit(1);  // The writing thread is stuck for good
  }
  EXPECT_TRUE(writes.get()) << GetLastErrorMessage();
  // Heard the first change only, and read the value it announced.
  EXPECT_EQ(subscriber.valuesRead, std::vector<uint64_t>{11});
}

}  // namespace
}  // namespace vxt::test
