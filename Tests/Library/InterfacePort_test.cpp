// The InterfacePort service on the default target: its refusals, a whole
// trace, the firmware's UART text arriving on the port, bytes written to
// the port reaching the target, transfers through a shared memory region,
// and the port's events delivered to a subscriber that calls back in.
#include <atomic>
#include <chrono>
#include <cstring>
#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "BitDataTestSupport.h"
#include "CpuServiceTestSupport.h"

namespace vxt::test {
namespace {

constexpr uint32_t kPort = 0x0f000000;
constexpr VXT_Result kInvalidArgument = static_cast<VXT_Result>(0x80000001);
constexpr VXT_Result kOutOfRange = static_cast<VXT_Result>(0x80000002);
constexpr VXT_Result kRefused = static_cast<VXT_Result>(0x80000003);
constexpr VXT_Result kStructureSize = static_cast<VXT_Result>(0x80000010);
constexpr VXT_Result kInvalidHandle = static_cast<VXT_Result>(0x80000011);
constexpr VXT_Result kWrongDeviceType = static_cast<VXT_Result>(0x80040007);

VXT_InterfacePortConfiguration Window(VXT_InterfacePortAccessMode mode) {
  VXT_InterfacePortConfiguration configuration{};
  configuration.structureSize = VXT_INTERFACE_PORT_CONFIGURATION_SIZE;
  configuration.accessMode = mode;
  return configuration;
}

template <class Condition>
bool Eventually(Condition condition) {
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(20);
  while (!condition()) {
    if (std::chrono::steady_clock::now() > deadline) return false;
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
  }
  return true;
}

class InterfacePortTest : public CpuServiceTest {
 protected:
  void SetUp() override {
    CpuServiceTest::SetUp();
    ports = Service<IInternalService_InterfacePort>(VXT_Service_InterfacePort);
    general = Service<IInternalService_General>(VXT_Service_General);
  }

  void Open(VXT_InterfacePortAccessMode mode) {
    const VXT_InterfacePortConfiguration configuration = Window(mode);
    ASSERT_EQ(ports->OpenWindow(kPort, &configuration), VXT_SUCCESS) << GetLastErrorMessage();
  }
  // What arrived until `text` is among it.
  std::string ReadUntil(const std::string& text) {
    std::string arrived;
    EXPECT_TRUE(Eventually([&] {
      uint8_t buffer[256];
      uint32_t returned = 0;
      EXPECT_EQ(ports->Read(kPort, sizeof buffer, buffer, &returned), VXT_SUCCESS) << GetLastErrorMessage();
      arrived.append(buffer, buffer + returned);
      return arrived.find(text) != std::string::npos;
    })) << arrived;
    return arrived;
  }
  // A byte the target's UART holds for its receiver, taken as the target takes it.
  std::vector<uint8_t> TargetReceives(size_t count) {
    std::vector<uint8_t> bytes;
    for (size_t i = 0; i < count; ++i) {
      uint64_t token = 0;
      EXPECT_EQ(memory->ReadIO(kFirstThread, 0x3FD, 1, &token), VXT_SUCCESS);
      if ((Bytes(token).at(0) & 1) == 0) break;  // Data ready
      EXPECT_EQ(memory->ReadIO(kFirstThread, 0x3F8, 1, &token), VXT_SUCCESS);
      bytes.push_back(Bytes(token).at(0));
    }
    return bytes;
  }

  IInternalService_InterfacePort* ports = nullptr;
  IInternalService_General* general = nullptr;
};

TEST_F(InterfacePortTest, RefusalsNameTheirArgumentOrTheirState) {
  VXT_InterfacePortConfiguration shortRecord = Window(VXT_InterfacePortAccessMode_Read);
  shortRecord.structureSize = 528;
  VXT_InterfacePortConfiguration badMode = Window(static_cast<VXT_InterfacePortAccessMode>(3));
  const VXT_InterfacePortConfiguration readOnly = Window(VXT_InterfacePortAccessMode_Read);
  uint8_t byte = 0;
  uint32_t length = 0;
  ExpectRefusals({
      {[&] { return ports->GetInterfacePortState(kPort, nullptr); }, kInvalidArgument,
       "InProc_InterfacePort::GetInterfacePortState() argument error (state) : Null pointer"},
      {[&] { return ports->GetInterfacePortConfiguration(kPort, &shortRecord); }, kStructureSize,
       "InProc_InterfacePort::GetInterfacePortConfiguration() argument error (configuration) : Structure size not "
       "initialized"},
      {[&] { return ports->OpenWindow(kPort, nullptr); }, kInvalidArgument,
       "InProc_InterfacePort::OpenWindow() argument error (configuration) : Null pointer"},
      {[&] { return ports->Read(kPort, 1, &byte, nullptr); }, kInvalidArgument,
       "InProc_InterfacePort::Read() argument error (returnedDataLength) : Null pointer"},
      {[&] { return ports->ReadToSharedMemory(kPort, 1, 0, 0x1234, &length); }, kInvalidHandle,
       "InProc_General::GetSharedMemoryAddress() Unknown shared memory region handle: 0x0000000000001234"},
      {[&] { return ports->CloseWindow(kFirstThread); }, kWrongDeviceType,
       "InterfacePort.CloseWindow needs a InterfacePort, and device 0x03000000 (Thread0_0) is a LogicalThread"},
      {[&] { return ports->Read(kPort, 1, &byte, &length); }, kRefused,
       "InterfacePort.Read: interface port 0x0f000000 (InterfacePort0) has no open window (it is Online)"},
      {[&] { return ports->OpenWindow(kPort, &badMode); }, kOutOfRange,
       "InterfacePort.OpenWindow: unknown access mode 3 (0 Read, 1 Write, 2 ReadWrite)"},
      {[&] { return ports->OpenWindow(kPort, &readOnly) == VXT_SUCCESS ? ports->OpenWindow(kPort, &readOnly) : 0; },
       kRefused,
       "InterfacePort.OpenWindow: interface port 0x0f000000 (InterfacePort0) has a window open already"},
      {[&] { return ports->Write(kPort, 1, &byte, &length); }, kRefused,
       "InterfacePort.Write: interface port 0x0f000000 (InterfacePort0) has a window open for reading only"},
  });
}

TEST_F(InterfacePortTest, ACallsLinesNestTheIdentifierLookupAndReadShowsTheBytesItGave) {
  Open(VXT_InterfacePortAccessMode_ReadWrite);
  ReadUntil("long mode");
  auto calls = [](const char* method) {
    return voxtrel::testing::TelemetryCounter("Server_Lifespan", "VXT_Call", "Method", method);
  };
  const uint64_t readsBefore = calls("InterfacePort::Read(InterfacePort0)");
  ClearTrace();
  VXT_InterfacePortState state = VXT_InterfacePortState_Unknown;
  VXT_InterfacePortConfiguration configuration = Window(VXT_InterfacePortAccessMode_Read);
  configuration.structureSize = 531;
  const uint8_t bytes[] = {'h', 'i'};
  uint32_t written = 0;
  uint8_t nothing[4] = {};
  uint32_t returned = 9;
  ports->GetInterfacePortState(kPort, &state);
  ports->OpenWindow(kPort, &configuration);
  ports->Write(kPort, 2, bytes, &written);
  ports->CloseWindow(kPort);
  ports->Read(kPort, 4, nothing, &returned);
  const std::string client = " [ClientID: 3]";
  const std::string ok = " ErrorCode = 0x00000000" + client;
  const std::string lookup = "In  InProc_Device::GetIdentifierForDeviceId(deviceId = 0x0f000000)" + client;
  const std::string found = "Out InProc_Device::GetIdentifierForDeviceId(identifier = 'InterfacePort0')" + ok;
  const std::string shortError =
      "InProc_InterfacePort::OpenWindow() argument error (configuration) : Structure size not initialized";
  const std::string readError =
      "InterfacePort.Read: interface port 0x0f000000 (InterfacePort0) has no open window (it is Configured)";
  EXPECT_EQ(Trace(), (std::vector<std::string>{
                         "In  InProc_InterfacePort::GetInterfacePortState(portId = 0x0f000000)" + client,
                         "Out InProc_InterfacePort::GetInterfacePortState(state = WindowOpen)" + ok,
                         "In  InProc_InterfacePort::OpenWindow(portId = 0x0f000000 configuration = "
                         "{dataCaptureType = Stream fileName = '' filePath = ''})" + client,
                         "VXT Error = '" + shortError + "'" + client,
                         "In  InProc ReportErrorMessage(<NULL>'" + shortError + "')",
                         "Out InProc ReportErrorMessage()",
                         "Out InProc_InterfacePort::OpenWindow() ErrorCode = 0x80000010" + client,
                         "In  InProc_InterfacePort::Write(portId = 0x0f000000 bufferSize = 2)" + client,
                         lookup,
                         found,
                         "Out InProc_InterfacePort::Write(buffer = {0x68, 0x69} writtenDataLength = 2)" + ok,
                         "In  InProc_InterfacePort::CloseWindow(portId = 0x0f000000)" + client,
                         "Out InProc_InterfacePort::CloseWindow()" + ok,
                         "In  InProc_InterfacePort::Read(portId = 0x0f000000 bufferSize = 4)" + client,
                         lookup,
                         found,
                         "VXT Error = '" + readError + "'" + client,
                         "In  InProc ReportErrorMessage(<NULL>'" + readError + "')",
                         "Out InProc ReportErrorMessage()",
                         "Out InProc_InterfacePort::Read(buffer = <EMPTY> returnedDataLength = 0) ErrorCode = "
                         "0x80000003" + client,
                     }));
  EXPECT_EQ(TraceAtLevel(2).back(),
            "Out InProc_InterfacePort::Read(buffer = <EMPTY> returnedDataLength = 0) ErrorCode = 0x80000003" + client);
  EXPECT_EQ(calls("InterfacePort::Write(InterfacePort0)"), 1u);
  EXPECT_EQ(calls("InterfacePort::Read(InterfacePort0)"), readsBefore + 1);
}

TEST_F(InterfacePortTest, TheFirmwaresTextArrivesAndWrittenBytesReachTheTarget) {
  Open(VXT_InterfacePortAccessMode_ReadWrite);
  EXPECT_EQ(ReadUntil("tick ").rfind("Voxtrel firmware: long mode reached", 0), 0u);
  uint32_t available = 0;
  EXPECT_EQ(ports->IsDataAvailable(kPort, &available), VXT_SUCCESS);
  const uint8_t bytes[] = {'o', 'k', '\n'};
  uint32_t written = 0;
  ASSERT_EQ(ports->Write(kPort, 3, bytes, &written), VXT_SUCCESS) << GetLastErrorMessage();
  EXPECT_EQ(written, 3u);
  EXPECT_EQ(TargetReceives(8), (std::vector<uint8_t>{'o', 'k', '\n'}));
}

TEST_F(InterfacePortTest, RegionTransfersStayInsideTheirRegion) {
  Open(VXT_InterfacePortAccessMode_ReadWrite);
  uint64_t handle = 0;
  ASSERT_EQ(general->AllocateSharedMemory(4096, &handle), VXT_SUCCESS);
  void* address = nullptr;
  ASSERT_EQ(general->GetSharedMemoryAddress(handle, &address), VXT_SUCCESS);
  auto* region = static_cast<uint8_t*>(address);
  std::memcpy(region + 100, "xyz", 3);
  uint32_t length = 0;
  ASSERT_EQ(ports->WriteFromSharedMemory(kPort, 3, 100, handle, &length), VXT_SUCCESS) << GetLastErrorMessage();
  EXPECT_EQ(length, 3u);
  EXPECT_EQ(TargetReceives(8), (std::vector<uint8_t>{'x', 'y', 'z'}));

  ReadUntil("long mode");  // Leaves later text waiting, or none
  std::string arrived;
  ASSERT_TRUE(Eventually([&] {
    EXPECT_EQ(ports->ReadToSharedMemory(kPort, 96, 4000, handle, &length), VXT_SUCCESS) << GetLastErrorMessage();
    arrived.append(region + 4000, region + 4000 + length);
    return arrived.find("tick ") != std::string::npos;
  }));
  EXPECT_EQ(ports->ReadToSharedMemory(kPort, 97, 4000, handle, &length), kOutOfRange);
  EXPECT_EQ(std::string(GetLastErrorMessage()),
            "InProc_InterfacePort::ReadToSharedMemory() argument error (bufferOffset) : The transfer does not fit in "
            "the shared memory region");
  EXPECT_EQ(general->FreeSharedMemory(handle), VXT_SUCCESS);
}

// Records each state change, and asks the service for the port's state from
// inside the callback.
struct Subscriber {
  IInternalService_InterfacePort* ports;
  std::mutex mutex;
  std::vector<std::vector<uint32_t>> seen;  // {port, first, second, state asked, thread differs}
  std::thread::id caller;

  static void Receive(const VXT_InterfacePortStateChangeEvent* event, void* userData) {
    auto* self = static_cast<Subscriber*>(userData);
    VXT_InterfacePortState state = VXT_InterfacePortState_Unknown;
    const VXT_Result asked = self->ports->GetInterfacePortState(event->interfacePortId, &state);
    const std::lock_guard lock(self->mutex);
    self->seen.push_back({event->structureSize, event->eventType, event->interfacePortId, event->firstStateValue,
                          event->secondStateValue, asked == VXT_SUCCESS ? uint32_t{state} : 99u,
                          std::this_thread::get_id() != self->caller});
  }
  size_t Count() {
    const std::lock_guard lock(mutex);
    return seen.size();
  }
};

TEST_F(InterfacePortTest, StateChangesArriveOnAPlatformThreadAndTheSubscriberMayCallBackIn) {
  auto* events = Service<IInternalService_Event>(VXT_Service_Event);
  Subscriber subscriber{ports, {}, {}, std::this_thread::get_id()};
  ASSERT_EQ(events->SubscribeInterfacePortStateChangeEvents(&Subscriber::Receive, &subscriber), VXT_SUCCESS);
  Open(VXT_InterfacePortAccessMode_Read);
  // The first event is delivered before the second is caused: the state
  // the callback reads is then the one the event names.
  ASSERT_TRUE(Eventually([&] { return subscriber.Count() == 1; }));
  ASSERT_EQ(ports->CloseWindow(kPort), VXT_SUCCESS);
  ASSERT_TRUE(Eventually([&] { return subscriber.Count() == 2; }));
  EXPECT_EQ(events->UnsubscribeInterfacePortStateChangeEvents(&Subscriber::Receive), VXT_SUCCESS);
  EXPECT_EQ(subscriber.seen, (std::vector<std::vector<uint32_t>>{{20, 2, kPort, 1, 3, 3, 1}, {20, 2, kPort, 3, 2, 2, 1}}));
}

}  // namespace
}  // namespace vxt::test
