// Recording and steering of component operations for test control.
#include "Support/ComponentCall.h"

#include <algorithm>

#include "Error.h"
#include "Support/CallInterceptor.h"

namespace voxtrel::platform {

std::atomic<bool> componentControlActive{false};

CallInterceptor& CallInterceptor::Instance() {
  // Immortal: operations may be called from static destructors at exit.
  static auto& interceptor = *new CallInterceptor;
  return interceptor;
}

std::optional<testing::Behaviour> CallInterceptor::Intercept(const char* operation, const std::string& arguments) {
  const std::lock_guard lock(mutex_);
  if (recording_) recorded_.push_back({operation, arguments});
  const auto found = behaviours_.find(std::string_view(operation));
  if (found == behaviours_.end()) return std::nullopt;
  testing::Behaviour applied = found->second;
  if (found->second.times > 0 && --found->second.times == 0) {
    behaviours_.erase(found);
    UpdateActiveFlag();
  }
  return applied;
}

void CallInterceptor::StartRecording() {
  const std::lock_guard lock(mutex_);
  recorded_.clear();
  recording_ = true;
  UpdateActiveFlag();
}

std::vector<testing::RecordedCall> CallInterceptor::Recorded() const {
  const std::lock_guard lock(mutex_);
  return recorded_;
}

size_t CallInterceptor::CountOf(const std::string& operation) const {
  const std::lock_guard lock(mutex_);
  return static_cast<size_t>(std::count_if(recorded_.begin(), recorded_.end(),
                                           [&](const testing::RecordedCall& call) { return call.operation == operation; }));
}

void CallInterceptor::SetBehaviour(const std::string& operation, const testing::Behaviour& behaviour) {
  const std::lock_guard lock(mutex_);
  behaviours_.insert_or_assign(operation, behaviour);
  UpdateActiveFlag();
}

void CallInterceptor::ClearBehaviour(const std::string& operation) {
  const std::lock_guard lock(mutex_);
  behaviours_.erase(operation);
  UpdateActiveFlag();
}

void CallInterceptor::Reset() {
  const std::lock_guard lock(mutex_);
  recording_ = false;
  recorded_.clear();
  behaviours_.clear();
  UpdateActiveFlag();
}

void CallInterceptor::UpdateActiveFlag() {
  componentControlActive.store(recording_ || !behaviours_.empty(), std::memory_order_relaxed);
}

std::optional<uint32_t> InterceptComponentCall(const char* operation, const std::string& arguments) {
  std::optional<testing::Behaviour> behaviour = CallInterceptor::Instance().Intercept(operation, arguments);
  if (!behaviour) return std::nullopt;
  // Applied outside the interceptor's lock: posting reaches the Error
  // library, and the exception unwinds into the caller.
  if (!behaviour->postText.empty()) {
    const uint32_t postCode = behaviour->postCode != 0 ? behaviour->postCode : behaviour->returnCode;
    Voxtrel_ErrorPostError(postCode, behaviour->postText.c_str(), __FILE__, __LINE__);
  }
  if (behaviour->throwException) throw Voxtrel_Error_Exception(behaviour->returnCode);
  return behaviour->returnCode;
}

}  // namespace voxtrel::platform
