// The Register service on the emulated target: its checks and list walk,
// registers, MSRs, CPUID and APIC ids as the description gives them.
#include <string>
#include <vector>

#include "CpuServiceTestSupport.h"

namespace {

namespace tc = voxtrel::testing;
using vxt::test::kFirstThread;
using vxt::test::kSecondThread;
using vxt::test::kTargetDomain;

constexpr VXT_Result kInvalidArgument = static_cast<VXT_Result>(0x80000001);

class RegisterTest : public vxt::test::CpuServiceTest {
 protected:
  uint64_t ReadRegister(uint32_t device, const char* name) {
    uint64_t token = 0;
    EXPECT_EQ(registers->ReadRegister(device, name, &token), 0) << GetLastErrorMessage();
    return Number(token);
  }
};

TEST_F(RegisterTest, ChecksWalkEveryNameAndStopBeforeTheComponent) {
  const char* names[] = {"rax", nullptr, "rbx", nullptr};
  uint64_t tokens[4] = {};
  VXT_BitData values[2] = {Vector({1}), {VXT_BITDATA_SIZE, 8, 0x7777}};
  const uint32_t msrs[2] = {0x1A0, 0x1A0};
  const std::string head = "InProc_Register::";
  tc::StartRecordingCalls();
  ExpectRefusals({
      {[&] { return registers->ReadRegisters(kFirstThread, names, tokens, 4); }, kInvalidArgument,
       head + "ReadRegisters() argument error (registerNames[1]) : Null pointer" + head +
           "ReadRegisters() argument error (registerNames[3]) : Null pointer"},
      {[&] { return registers->WriteMsrs(kFirstThread, msrs, values, tokens, 2); }, static_cast<VXT_Result>(0x80010003),
       head + "WriteMsrs() argument error Invalid"},
      {[&] { return registers->WriteRegisters(kFirstThread, names, values, nullptr, 0); }, kInvalidArgument,
       head + "WriteRegisters() argument error (operationTokens) : Null pointer"},
      {[&] { return registers->ReadAPICIDValue(kFirstThread, nullptr); }, kInvalidArgument,
       head + "ReadAPICIDValue() argument error (operationToken) : Null pointer"},
  });
  EXPECT_EQ(registers->ReadMsrs(kFirstThread, msrs, tokens, 0), 0);
  EXPECT_EQ(tc::CallCount("RunControl.WriteMsrs") + tc::CallCount("RunControl.ReadMsrs") +
                tc::CallCount("RunControl.ReadRegisters") + tc::CallCount("RunControl.WriteRegisters"),
            0u);
  EXPECT_EQ(registers->ReadRegisters(kFirstThread, names, tokens, 0), 0);
  EXPECT_EQ(tc::CallCount("RunControl.ReadRegisters"), 1u);
  bitData->Destroy(&values[0]);
}

TEST_F(RegisterTest, RegistersAreListedReadAndWrittenByName) {
  uint32_t count = 0;
  ASSERT_EQ(registers->GetNumRegisters(kTargetDomain, &count), 0);
  std::vector<char[VXT_REGISTER_NAME_SIZE]> names(count);
  ASSERT_EQ(registers->GetRegisters(kFirstThread, count, names.data()), 0);
  std::vector<std::string> listed(names.begin(), names.end());
  for (const char* name : {"rax", "r15", "rip", "rflags", "cs", "cr0", "cr3", "efer", "dr7", "gdtr_base"})
    EXPECT_NE(std::find(listed.begin(), listed.end(), name), listed.end()) << name;
  EXPECT_EQ(registers->GetRegisters(kFirstThread, 2, names.data()), static_cast<VXT_Result>(0x80000013));
  EXPECT_EQ(Trace().back(), "Out InProc_Register::GetRegisters(registerNames = {'rax', 'rbx'}) ErrorCode = 0x80000013");

  // The firmware leaves the debug registers alone.
  VXT_BitData value = Vector({0x00, 0x10, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00});
  uint64_t token = 0;
  ASSERT_EQ(registers->WriteRegister(kSecondThread, "DR0", &value, &token), 0) << GetLastErrorMessage();
  receipts->Destroy(token);
  EXPECT_EQ(ReadRegister(kSecondThread, "dr0"), 0x1000u);
  EXPECT_EQ(ReadRegister(kFirstThread, "dr0"), 0u);
  uint32_t bits = 0;
  ASSERT_EQ(registers->ReadRegister(kFirstThread, "cs", &token), 0);
  VXT_BitData read{VXT_BITDATA_SIZE, 0, 0};
  ASSERT_EQ(receipts->GetValue(token, &read), 0);
  bits = read.bitSize;
  EXPECT_EQ(bits, 16u);
  receipts->Destroy(token);
  bitData->Destroy(&read);
  bitData->Destroy(&value);
}

TEST_F(RegisterTest, RefusalsNameTheRegisterAndChangeNothing) {
  const std::vector<uint8_t> wide(16, 0xFF);
  VXT_BitData tooWide = Vector(wide);
  VXT_BitData fits = Vector({0x34, 0x12});
  uint64_t tokens[2] = {};
  const char* names[] = {"dr1", "cr0"};
  const VXT_BitData pair[] = {fits, tooWide};
  const struct {
    VXT_Result result;
    std::function<VXT_Result()> call;
  } refusals[] = {
      {static_cast<VXT_Result>(0x80160000), [&] { return registers->ReadRegister(kFirstThread, "xyz", tokens); }},
      {static_cast<VXT_Result>(0x80040007), [&] { return registers->ReadRegister(kTargetDomain, "rax", tokens); }},
      {static_cast<VXT_Result>(0x80000009), [&] { return registers->ReadRegister(0x03FFFFFF, "rax", tokens); }},
      {static_cast<VXT_Result>(0x80000002),
       [&] { return registers->WriteRegister(kFirstThread, "dr1", &tooWide, tokens); }},
      {static_cast<VXT_Result>(0x80000002),
       [&] { return registers->WriteRegisters(kFirstThread, names, pair, tokens, 2); }},
      {static_cast<VXT_Result>(0x80160001), [&] { return registers->ReadMsr(kFirstThread, 0x12345, tokens); }},
  };
  for (const auto& [result, call] : refusals) {
    EXPECT_EQ(call(), result);
    EXPECT_NE(std::string(GetLastErrorMessage()), "");
  }
  EXPECT_EQ(ReadRegister(kFirstThread, "dr1"), 0u);
  bitData->Destroy(&tooWide);
  bitData->Destroy(&fits);
}

TEST_F(RegisterTest, MsrsCpuidAndApicIdsComeFromTheDescription) {
  const uint32_t msrs[] = {0x1A0, 0xCE};
  uint64_t tokens[2] = {};
  ASSERT_EQ(registers->ReadMsrs(kFirstThread, msrs, tokens, 2), 0) << GetLastErrorMessage();
  EXPECT_EQ(Number(tokens[0]), 0x850089u);
  EXPECT_EQ(Number(tokens[1]), 0x80C3BF0811A00u);

  uint64_t token = 0;
  ASSERT_EQ(registers->ReadCPUIDValue(kFirstThread, 0, 0, VXT_CpuidRegister_EBX, &token), 0);
  EXPECT_EQ(Number(token), 0x756D6953u);
  EXPECT_EQ(registers->ReadCPUIDValue(kFirstThread, 0, 0, static_cast<VXT_CpuidRegister>(7), &token),
            static_cast<VXT_Result>(0x80000002));
  ASSERT_EQ(registers->ReadAPICIDValue(kSecondThread, &token), 0);
  EXPECT_EQ(Number(token), 1u);
}

}  // namespace
