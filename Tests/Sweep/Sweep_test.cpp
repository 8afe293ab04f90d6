// Every operation of every service, as the public interfaces declare them,
// called with valid arguments and then with each argument made hostile in
// turn, connected, before FinishInitialization and after the last
// Disconnect. Each call must return a public code, leave a last error when
// it fails, write its Out line, and neither crash nor trip a sanitizer.
#include <chrono>
#include <cstdio>
#include <set>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "HostileArguments.h"
#include "InProc_Vxt.h"
#include "PlatformTestControl.h"
#include "VxtTestSupport.h"

namespace vxt::sweep {
namespace {

struct Operation {
  const char* service;
  const char* name;
  uint32_t serviceId;
  std::vector<ArgKind> kinds;
  VXT_Result (*call)(void* service, const Variant& variant, Arena& arena);
};

template <auto Method>
struct Binding;

template <class Service, class... Args, VXT_Result (Service::*Method)(Args...)>
struct Binding<Method> {
  static VXT_Result Call(void* service, const Variant& variant, Arena& arena) {
    return CallWith(static_cast<Service*>(service), variant, arena, std::index_sequence_for<Args...>{});
  }
  template <size_t... Index>
  static VXT_Result CallWith(Service* service, const Variant& variant, Arena& arena, std::index_sequence<Index...>) {
    return (service->*Method)(MakeArg<Args>(Index, variant, arena)...);
  }
  static std::vector<ArgKind> Kinds() { return {KindOf<Args>()...}; }
};

#define VXT_SWEEP_OPERATION(Service, Name)                                                                   \
  Operation{#Service, #Name, VXT_Service_##Service, Binding<&IInternalService_##Service::Name>::Kinds(), \
            &Binding<&IInternalService_##Service::Name>::Call},

const std::vector<Operation>& Operations() {
  static const std::vector<Operation> all = {
#include "SweepOperations.inc"
  };
  return all;
}

std::vector<std::string> Services() {
  std::vector<std::string> names;
  for (const Operation& operation : Operations())
    if (names.empty() || names.back() != operation.service) names.push_back(operation.service);
  return names;
}

// The valid call, then every hostile argument of the operation.
std::vector<Variant> VariantsOf(const Operation& operation) {
  std::vector<Variant> variants{Variant{}};
  for (size_t index = 0; index < operation.kinds.size(); ++index)
    for (Mutation mutation : MutationsOf(operation.kinds[index]))
      variants.push_back(Variant{static_cast<int>(index), mutation});
  return variants;
}

bool Is(const Operation& operation, const char* service, const char* name) {
  return std::string(operation.service) == service && std::string(operation.name) == name;
}

// Failures that leave the thread's last error as it was: the JTAG lock's,
// and every refusal of an operation the target does not implement.
bool KeepsTheLastError(const Operation& operation, VXT_Result result) {
  return Is(operation, "JtagAccess", "Lock") || result == VXT_E_NOT_IMPLEMENTED;
}

// A deprecated operation that answers without a trace line.
bool WritesNoTrace(const Operation& operation) { return Is(operation, "PlatformControl", "GetTargetPowerStatus"); }

std::string Describe(const Operation& operation, const Variant& variant) {
  std::string text = std::string(operation.service) + "::" + operation.name;
  if (variant.index >= 0) text += " with argument " + std::to_string(variant.index) + " " + MutationName(variant.mutation);
  return text;
}

class SweepTest : public vxt::test::PlatformTest {
 protected:
  void SetUp() override {
    PlatformTest::SetUp();
    ASSERT_TRUE(arena.ok());
  }

  // Calls the operation and writes down what is wrong with how it ended.
  void Sweep(const Operation& operation, const Variant& variant) {
    void* service = nullptr;
    if (GetService(nullptr, operation.serviceId, &service) != VXT_SUCCESS || service == nullptr) {
      problems.push_back(Describe(operation, variant) + ": the service is not served");
      return;
    }
    // A call before may have turned the trace down or off.
    voxtrel::testing::SetLogLevel(1);
    voxtrel::testing::SetLoggingSuppressed(false);
    voxtrel::testing::ClearCapturedTrace();
    const auto start = std::chrono::steady_clock::now();
    const VXT_Result result = operation.call(service, variant, arena);
    const std::string what = Describe(operation, variant);
    if (std::chrono::steady_clock::now() - start > std::chrono::seconds(2)) problems.push_back(what + ": took over 2 s");
    char code[16];
    std::snprintf(code, sizeof code, "0x%08x", static_cast<uint32_t>(result));
    if (result != VXT_SUCCESS && (static_cast<uint32_t>(result) & 0x80000000u) == 0)
      problems.push_back(what + ": returned " + code + ", no public code");
    if (result != VXT_SUCCESS && !KeepsTheLastError(operation, result) && std::string(GetLastErrorMessage()).empty())
      problems.push_back(what + ": failed with " + code + " and left no last error");
    if (WritesNoTrace(operation)) return;
    const std::vector<std::string> trace = voxtrel::testing::CapturedTraceTexts();
    std::string out;
    for (const std::string& line : trace)
      if (line.rfind("Out InProc_", 0) == 0) out = line;
    // Some operations trace under a name of their own (GetOperatingModes for
    // OperatingModes), some write the code inside the parentheses: the
    // service and the code are checked, not the name or the form.
    if (out.rfind(std::string("Out InProc_") + operation.service + "::", 0) != 0 ||
        out.find(std::string("ErrorCode = ") + code) == std::string::npos)
      problems.push_back(what + ": its last Out line is '" + out + "', expected ErrorCode = " + code);
  }

  void SweepEveryOperation(bool hostile) {
    for (const Operation& operation : Operations())
      for (const Variant& variant : hostile ? VariantsOf(operation) : std::vector<Variant>{Variant{}})
        Sweep(operation, variant);
  }

  VXT_Client client = vxt::test::MakeClient(5, "sweep_5@here");
  Arena arena;
  std::vector<std::string> problems;
};

class SweepService : public SweepTest, public ::testing::WithParamInterface<std::string> {};

TEST_P(SweepService, EveryOperationWithEveryHostileArgument) {
  ASSERT_EQ(StartNewInstance(&client, 1, 0, nullptr), 0);
  ASSERT_EQ(FinishInitialization(), 0);
  size_t calls = 0;
  for (const Operation& operation : Operations()) {
    if (GetParam() != operation.service) continue;
    for (const Variant& variant : VariantsOf(operation)) {
      Sweep(operation, variant);
      ++calls;
    }
  }
  EXPECT_GT(calls, 0u);
  RecordProperty("calls", static_cast<int>(calls));
  EXPECT_EQ(problems, std::vector<std::string>{});
  if (IsConnected() != 0) Disconnect(client.clientId);
}

INSTANTIATE_TEST_SUITE_P(Every, SweepService, ::testing::ValuesIn(Services()),
                         [](const ::testing::TestParamInfo<std::string>& info) { return info.param; });

TEST_F(SweepTest, EveryOperationBeforeFinishInitialization) {
  ASSERT_EQ(StartNewInstance(&client, 1, 0, nullptr), 0);
  SweepEveryOperation(false);
  EXPECT_EQ(problems, std::vector<std::string>{});
  if (IsConnected() != 0) Disconnect(client.clientId);
}

TEST_F(SweepTest, EveryOperationAfterTheLastDisconnect) {
  ASSERT_EQ(StartNewInstance(&client, 1, 0, nullptr), 0);
  ASSERT_EQ(FinishInitialization(), 0);
  ASSERT_EQ(Disconnect(client.clientId), 0);
  SweepEveryOperation(false);
  EXPECT_EQ(problems, std::vector<std::string>{});
}

}  // namespace
}  // namespace vxt::sweep
