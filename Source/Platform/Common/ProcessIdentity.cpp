#include "Common/ProcessIdentity.h"

#include <algorithm>
#include <mutex>

#include <boost/uuid/random_generator.hpp>
#include <boost/uuid/uuid.hpp>

namespace voxtrel::platform::common {

namespace {

std::array<uint8_t, 16> MakeGuid() {
  const boost::uuids::uuid guid = boost::uuids::random_generator()();
  std::array<uint8_t, 16> bytes{};
  std::copy(guid.begin(), guid.end(), bytes.begin());
  return bytes;
}

struct RunNameState {
  std::mutex mutex;
  std::string name;
};

RunNameState& RunNameStorage() {
  static auto& state = *new RunNameState;
  return state;
}

}  // namespace

const std::array<uint8_t, 16>& ProcessGuid() {
  static const auto& guid = *new std::array<uint8_t, 16>(MakeGuid());
  return guid;
}

void SetRunName(std::string name) {
  RunNameState& state = RunNameStorage();
  const std::lock_guard lock(state.mutex);
  state.name = std::move(name);
}

std::string RunName() {
  RunNameState& state = RunNameStorage();
  const std::lock_guard lock(state.mutex);
  return state.name;
}

}  // namespace voxtrel::platform::common
