// Helpers of the tests of the emulated CPUs: a target built from a
// description, its CPUs started, and waiting on what they do.
#pragma once

#include <chrono>
#include <cstring>
#include <fstream>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <sstream>
#include <string>
#include <thread>
#include <variant>
#include <vector>

#include <gtest/gtest.h>

#include "../../Source/Platform/Cpu/CpuDomains.h"
#include "../../Source/Platform/Target/TargetDescription.h"
#include "TargetTestSupport.h"

namespace vxt::test {

using namespace voxtrel::platform::cpu;

inline bool WaitForCondition(const std::function<bool()>& condition, double seconds = 20);

// The text of a description in Configurations/.
inline std::string ShippedDescription(const std::string& name) {
  std::ifstream file(kConfigurationsDir + "/" + name + ".json");
  std::stringstream text;
  text << file.rdbuf();
  return text.str();
}

// The CPUs of a description's first emulated domain, running from reset;
// stopped again at the end of the test.
class CpuTarget {
 public:
  explicit CpuTarget(std::string_view text = ShippedDescription("Default")) {
    auto parsed = voxtrel::platform::target::ParseTargetDescription(text, {"Test", "test"}, {});
    if (auto* failure = std::get_if<voxtrel::platform::target::Failure>(&parsed)) {
      ADD_FAILURE() << failure->message;
      return;
    }
    topology_ = std::get<voxtrel::platform::target::ParsedDescription>(parsed).topology;
    if (auto failure = CpuDomains::Instance().Start(*topology_)) ADD_FAILURE() << failure->message;
    auto domains = CpuDomains::Instance().Domains();
    if (!domains.empty()) domain_ = domains.front();
  }
  ~CpuTarget() { CpuDomains::Instance().Stop(); }

  CpuBackend& Cpus() const { return *domain_->backend; }
  const CpuDomain& Domain() const { return *domain_; }

  uint64_t ReadQword(uint64_t address) const {
    uint64_t value = 0;
    EXPECT_EQ(Cpus().ReadPhysical(address, {reinterpret_cast<uint8_t*>(&value), 8}), CpuResult::Ok);
    return value;
  }
  void SetRegister(uint32_t thread, std::string_view name, uint64_t value) const {
    EXPECT_EQ(Cpus().WriteRegister(thread, name, {reinterpret_cast<const uint8_t*>(&value), 8}), CpuResult::Ok) << name;
  }
  void Write(uint64_t address, const std::vector<uint8_t>& bytes) const {
    EXPECT_EQ(Cpus().WritePhysical(address, bytes), CpuResult::Ok);
  }
  // Once the firmware runs its loop on every thread (all are in long mode).
  void WaitForFirmwareLoop() const {
    EXPECT_TRUE(WaitForCondition([&] {
      for (uint32_t apicId = 0; apicId < Cpus().ThreadCount(); ++apicId)
        if (ReadQword(0x1100 + 8ull * apicId) == 0) return false;
      return true;
    }));
  }
  uint64_t Register(uint32_t thread, std::string_view name) const {
    uint64_t value = 0;
    EXPECT_EQ(Cpus().ReadRegister(thread, name, {reinterpret_cast<uint8_t*>(&value), 8}), CpuResult::Ok) << name;
    return value;
  }

 private:
  std::shared_ptr<const voxtrel::platform::target::Topology> topology_;
  std::shared_ptr<const CpuDomain> domain_;
};

// True once `condition` holds, false after `seconds`.
inline bool WaitForCondition(const std::function<bool()>& condition, double seconds) {
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::duration<double>(seconds);
  while (!condition()) {
    if (std::chrono::steady_clock::now() > deadline) return false;
    std::this_thread::sleep_for(std::chrono::milliseconds(2));
  }
  return true;
}

// Every stop a backend reports, as its listener hears them on the domain's thread.
class StopLog {
 public:
  explicit StopLog(CpuBackend& cpus, std::function<void(const StopEvent&)> also = {}) : cpus_(cpus) {
    id_ = cpus.AddStopListener([this, also](const StopEvent& event) {
      {
        std::lock_guard lock(mutex_);
        events_.push_back(event);
      }
      if (also) also(event);
    });
  }
  ~StopLog() { cpus_.RemoveStopListener(id_); }
  std::vector<StopEvent> Events() const {
    std::lock_guard lock(mutex_);
    return events_;
  }
  // The first event of that reason, once it came.
  std::optional<StopEvent> WaitFor(StopReason reason) const {
    std::optional<StopEvent> found;
    WaitForCondition([&] {
      for (const StopEvent& event : Events())
        if (event.reason == reason) found = event;
      return found.has_value();
    });
    return found;
  }
  void Clear() {
    std::lock_guard lock(mutex_);
    events_.clear();
  }

 private:
  CpuBackend& cpus_;
  uint32_t id_ = 0;
  mutable std::mutex mutex_;
  std::vector<StopEvent> events_;
};

// The default firmware's counters (see Firmware/Default.s).
inline constexpr uint64_t kSharedCounter = 0x1000;
inline constexpr uint64_t ThreadCounter(uint32_t apicId) { return 0x1100 + 8ull * apicId; }

}  // namespace vxt::test
