// The state behind VOXTREL_COMPONENT_CALL: the calls recorded and the
// behaviours set by test control, shared by every thread.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "PlatformTestControl.h"

namespace voxtrel::platform {

class CallInterceptor {
 public:
  static CallInterceptor& Instance();

  // Records the call if recording, and gives the behaviour to apply, if any.
  // A behaviour set for a number of calls is used up by this one.
  std::optional<testing::Behaviour> Intercept(const char* operation, const std::string& arguments);

  // Forgets what was recorded and records from now on.
  void StartRecording();
  std::vector<testing::RecordedCall> Recorded() const;
  size_t CountOf(const std::string& operation) const;

  void SetBehaviour(const std::string& operation, const testing::Behaviour& behaviour);
  void ClearBehaviour(const std::string& operation);

  // No recording, nothing recorded, no behaviours.
  void Reset();

 private:
  CallInterceptor() = default;
  // The hot path tests one flag; keep it true exactly while there is work here.
  void UpdateActiveFlag();

  mutable std::mutex mutex_;
  bool recording_ = false;
  std::vector<testing::RecordedCall> recorded_;
  std::map<std::string, testing::Behaviour, std::less<>> behaviours_;
};

}  // namespace voxtrel::platform
