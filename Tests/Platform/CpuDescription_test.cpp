// The members of a target domain that describe its CPUs: mistakes refused
// when the description is read, and a domain without them needing no engine.
#include <fstream>
#include <iterator>

#include <nlohmann/json.hpp>

#include "CpuTestSupport.h"

namespace vxt::test {
namespace {

using voxtrel::platform::target::Failure;

// Default.json with `change` applied to its one target domain.
std::string DefaultWith(const std::function<void(nlohmann::ordered_json&)>& change) {
  auto description = nlohmann::ordered_json::parse(ShippedDescription("Default"));
  change(description["targetDomains"][0]);
  return description.dump();
}

std::string Refusal(const std::string& text) {
  auto parsed = voxtrel::platform::target::ParseTargetDescription(text, {"Test", "Test.json"}, {});
  auto* failure = std::get_if<Failure>(&parsed);
  return failure ? failure->message : "";
}

TEST(CpuDescriptionTest, MistakesInTheCpuMembersAreRefusedWithTheirPlace) {
  using Json = nlohmann::ordered_json;
  struct Case {
    std::function<void(Json&)> change;
    std::string message;
  };
  const std::string prefix = "Target description 'Test.json' is invalid at /targetDomains/0/";
  const Case cases[] = {
      {[](Json& d) { d["memoryMap"][0]["size"] = "0x1001"; }, "memoryMap/0: base and size must be multiples of 0x1000"},
      {[](Json& d) { d["memoryMap"][1]["base"] = "0xFF0000"; }, "memoryMap: regions 'Ram' and 'Firmware' overlap"},
      {[](Json& d) { d["memoryMap"][1].erase("image"); }, "memoryMap/1: missing member 'image'"},
      {[](Json& d) { d["memoryMap"][1]["image"] = "Missing"; },
       "memoryMap/1/image: no built-in firmware and no file is named \"Missing\""},
      {[](Json& d) { d["memoryMap"][1]["size"] = "0x1000"; }, "memoryMap/1/image: the image is larger than the region"},
      {[](Json& d) { d["memoryMap"][0]["kind"] = "flash"; }, "memoryMap/0/kind: expected \"ram\" or \"rom\""},
      {[](Json& d) { d["ioDevices"][1]["port"] = "0x3FC"; }, "ioDevices/1/port: the ports overlap those of 'COM1'"},
      {[](Json& d) { d["ioDevices"][0]["type"] = "vga"; }, "ioDevices/0/type: expected \"uart16550\" or \"postCodes\""},
      {[](Json& d) { d["apicIds"][3] = "0x1"; }, "apicIds/3: APIC id 1 is given twice"},
      {[](Json& d) { d["packages"][0]["cores"][0]["memoryMap"] = Json::array(); },
       "packages/0/cores/0/memoryMap: only a target domain has this member"},
  };
  for (const Case& check : cases) {
    EXPECT_EQ(Refusal(DefaultWith(check.change)), prefix + check.message);
  }
  EXPECT_EQ(Refusal(DefaultWith([](Json&) {})), "");
}

TEST(CpuDescriptionTest, ADomainWithoutMemoryRunsNoCpusAndNeedsNoEngine) {
  const std::string plain = DefaultWith([](nlohmann::ordered_json& domain) { domain.erase("memoryMap"); });
  ScopedEnvironment missing("VXT_CPU_ENGINE_MODULE", "/nonexistent/libVoxtrelCpuEngine.so");
  auto parsed = voxtrel::platform::target::ParseTargetDescription(plain, {"Plain", "Plain.json"}, {});
  const auto& topology = *std::get<voxtrel::platform::target::ParsedDescription>(parsed).topology;
  ASSERT_FALSE(CpuDomains::Instance().Start(topology));
  EXPECT_TRUE(CpuDomains::Instance().Domains().empty());
  EXPECT_EQ(CpuDomains::Instance().Find(topology.TargetDomainIds().front()).result, LookupResult::NotEmulated);
  CpuDomains::Instance().Stop();
  // Each test runs in a process of its own: here nothing loaded the engine yet.
  std::ifstream maps("/proc/self/maps");
  const std::string mapped{std::istreambuf_iterator<char>(maps), std::istreambuf_iterator<char>()};
  if (mapped.find("libVoxtrelCpuEngine.so") != std::string::npos) GTEST_SKIP() << "the engine is loaded already";
  auto emulated = voxtrel::platform::target::ParseTargetDescription(ShippedDescription("Default"), {"D", "D"}, {});
  const auto failure =
      CpuDomains::Instance().Start(*std::get<voxtrel::platform::target::ParsedDescription>(emulated).topology);
  ASSERT_TRUE(failure);
  EXPECT_NE(failure->message.find("cannot start: the CPU engine module /nonexistent/libVoxtrelCpuEngine.so cannot "
                                  "be loaded"),
            std::string::npos)
      << failure->message;
  EXPECT_TRUE(CpuDomains::Instance().Domains().empty());
}

}  // namespace
}  // namespace vxt::test
