// Helpers of the tests of the target description, the Configuration and
// TargetManager components and the components that bind to the topology.
#pragma once

#include <cstdint>
#include <cstdlib>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "../../Source/Platform/InterfacePort/InterfacePortState.h"
#include "../../Source/Platform/RunControl/RunControlState.h"
#include "../../Source/Platform/StatePort/StatePortState.h"
#include "../../Source/Platform/Target/TargetDescription.h"
#include "../../Source/Platform/Target/TargetModel.h"
#include "Error.h"

namespace vxt::test {

inline const std::string kConfigurationsDir = VXT_TEST_CONFIGURATIONS_DIR;
inline const std::string kDataDir = VXT_TEST_DATA_DIR;

// A component call's code and the whole message it posted.
struct Posted {
  uint32_t code = 0;
  std::string message;

  friend bool operator==(const Posted&, const Posted&) = default;
};

inline std::ostream& operator<<(std::ostream& out, const Posted& posted) {
  return out << "{0x" << std::hex << posted.code << std::dec << ", \"" << posted.message << "\"}";
}

// A component's table, from its getter.
template <class Table>
const Table& Get(uint32_t (*getter)(const Table**)) {
  const Table* table = nullptr;
  EXPECT_EQ(getter(&table), 0u);
  return *table;
}

// Runs `call` in an error context of its own, as the library does.
inline Posted CallPosting(const std::function<uint32_t()>& call) {
  const Voxtrel_ErrorContext context = Voxtrel_ErrorEnterContex(1);
  Posted posted{call(), {}};
  uint32_t size = 0;
  Voxtrel_ErrorGetErrorMessageSize(context, &size);
  if (size > 0) {
    std::string buffer(size, '\0');
    Voxtrel_ErrorGetErrorMessage(context, buffer.data(), size);
    posted.message = buffer.c_str();
  }
  Voxtrel_ErrorExitContex(context);
  return posted;
}

// Sets or clears an environment variable for the life of the object.
class ScopedEnvironment {
 public:
  ScopedEnvironment(const char* name, const std::optional<std::string>& value) : name_(name) {
    if (const char* old = std::getenv(name)) old_ = old;
    if (value)
      setenv(name, value->c_str(), 1);
    else
      unsetenv(name);
  }
  ~ScopedEnvironment() {
    if (old_)
      setenv(name_, old_->c_str(), 1);
    else
      unsetenv(name_);
  }
  ScopedEnvironment(const ScopedEnvironment&) = delete;
  ScopedEnvironment& operator=(const ScopedEnvironment&) = delete;

 private:
  const char* name_;
  std::optional<std::string> old_;
};

// The target of a fresh process: nothing selected, built or bound.
inline void ResetTarget() {
  voxtrel::platform::target::TargetModel::Instance().Reset();
  voxtrel::platform::run_control::RunControlTopology().Unbind();
  voxtrel::platform::state_port::StatePortTopology().Unbind();
  voxtrel::platform::interface_port::InterfacePortTopology().Unbind();
}

}  // namespace vxt::test
