// Helpers of the bit vector service tests: a connected client holding both
// services, and short ways to make vectors and read them back as text.
#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "InProc_Vxt.h"
#include "PlatformTestControl.h"
#include "VxtTestSupport.h"

namespace vxt::test {

// A record that holds no vector, ready to receive one.
inline VXT_BitData EmptyRecord() { return VXT_BitData{VXT_BITDATA_SIZE, 0, 0}; }

// The captured trace as (level, text) pairs, or the texts at one level.
inline std::vector<std::pair<uint32_t, std::string>> TraceWithLevels() {
  std::vector<std::pair<uint32_t, std::string>> lines;
  for (const voxtrel::testing::TraceLine& line : voxtrel::testing::CapturedTrace())
    lines.emplace_back(line.level, line.text);
  return lines;
}
inline std::vector<std::string> TraceAtLevel(uint32_t level) {
  std::vector<std::string> lines;
  for (const auto& [lineLevel, text] : TraceWithLevels())
    if (lineLevel == level) lines.push_back(text);
  return lines;
}

template <class Service>
Service* GetServiceAs(VXT_ServiceId id) {
  void* service = nullptr;
  EXPECT_EQ(GetService(nullptr, id, &service), VXT_SUCCESS);
  return static_cast<Service*>(service);
}

inline IInternalService_BitData& BitDataService() {
  return *GetServiceAs<IInternalService_BitData>(VXT_Service_BitData);
}
inline IInternalService_BitDataOperations& BitDataOperationsService() {
  return *GetServiceAs<IInternalService_BitDataOperations>(VXT_Service_BitDataOperations);
}

// Client 3 is connected on the test's thread; the trace is captured from
// the first call of the test on.
class BitDataServiceTest : public PlatformTest {
 protected:
  static constexpr uint32_t kClientId = 3;

  void SetUp() override {
    PlatformTest::SetUp();
    client_ = MakeClient(kClientId, "tool_3@here");
    ASSERT_EQ(StartNewInstance(&client_, 1, 0, nullptr), VXT_SUCCESS);
    bits = &BitDataService();
    ops = &BitDataOperationsService();
    ClearTrace();
  }
  void TearDown() override {
    if (IsConnected() != 0) Disconnect(kClientId);
    PlatformTest::TearDown();
  }

  // A vector of bitSize bits holding value; the test stops if it cannot be made.
  VXT_BitData Make(uint32_t bitSize, uint64_t value = 0) {
    VXT_BitData record = EmptyRecord();
    EXPECT_EQ(bits->Create(&record, bitSize, value), VXT_SUCCESS) << GetLastErrorMessage();
    return record;
  }
  VXT_BitData Parse(const char* text) {
    VXT_BitData record = EmptyRecord();
    EXPECT_EQ(bits->CreateFromString(&record, text), VXT_SUCCESS) << GetLastErrorMessage();
    return record;
  }

  // The vector's text, as the hexadecimal or binary operation writes it.
  std::string Hex(const VXT_BitData& record) {
    return Text(record, &IInternalService_BitDataOperations::ToStringHexadecimal);
  }
  std::string Binary(const VXT_BitData& record) {
    return Text(record, &IInternalService_BitDataOperations::ToStringBinary);
  }

  IInternalService_BitData* bits = nullptr;
  IInternalService_BitDataOperations* ops = nullptr;

 private:
  using TextOperation = VXT_Result (IInternalService_BitDataOperations::*)(const VXT_BitData*, char*, uint32_t,
                                                                           uint32_t*);
  std::string Text(const VXT_BitData& record, TextOperation operation) {
    uint32_t size = 0;
    EXPECT_EQ((ops->*operation)(&record, nullptr, 0, &size), VXT_SUCCESS) << GetLastErrorMessage();
    std::vector<char> buffer(size + 1);
    uint32_t written = 0;
    EXPECT_EQ((ops->*operation)(&record, buffer.data(), size + 1, &written), VXT_SUCCESS) << GetLastErrorMessage();
    return std::string(buffer.data(), written);
  }

  VXT_Client client_{};
};

}  // namespace vxt::test
