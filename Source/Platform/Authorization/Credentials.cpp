#include "Authorization/Credentials.h"

#include <crypt.h>

#include <array>
#include <cstring>
#include <memory>
#include <mutex>
#include <string>

namespace voxtrel::platform::authorization {
namespace {

struct Held {
  std::mutex mutex;
  bool present = false;
  std::array<char, kMaxCredentialLength + 1> username{};
  std::array<char, kMaxCredentialLength + 1> password{};
};

Held& Store() {
  static Held held;
  return held;
}

void WipeLocked(Held& held) {
  explicit_bzero(held.username.data(), held.username.size());
  explicit_bzero(held.password.data(), held.password.size());
  held.present = false;
}

bool Fits(const char* text) { return text == nullptr || strnlen(text, kMaxCredentialLength + 1) <= kMaxCredentialLength; }

void CopyIn(const char* text, std::array<char, kMaxCredentialLength + 1>& field) {
  if (text != nullptr) std::memcpy(field.data(), text, strnlen(text, kMaxCredentialLength));
}

// Equal texts of equal length, looking at every byte whatever differs.
bool SameInConstantTime(const char* a, const std::string& b) {
  const size_t length = std::strlen(a);
  unsigned char difference = length == b.size() ? 0 : 1;
  for (size_t i = 0; i < b.size(); ++i) difference |= static_cast<unsigned char>(a[i < length ? i : 0] ^ b[i]);
  return difference == 0;
}

}  // namespace

bool HoldCredentials(const char* username, const char* password) {
  Held& held = Store();
  std::lock_guard lock(held.mutex);
  WipeLocked(held);
  if (!Fits(username) || !Fits(password)) return false;
  CopyIn(username, held.username);
  CopyIn(password, held.password);
  held.present = true;
  return true;
}

void WipeCredentials() {
  Held& held = Store();
  std::lock_guard lock(held.mutex);
  WipeLocked(held);
}

bool CredentialsHeld() {
  Held& held = Store();
  std::lock_guard lock(held.mutex);
  return held.present;
}

bool CredentialsMatch(std::string_view username, const std::string& passwordHash) {
  Held& held = Store();
  std::lock_guard lock(held.mutex);
  if (!held.present || username != held.username.data()) return false;
  // crypt_data is large: on the heap, and wiped, as it held the password's hash.
  auto data = std::make_unique<crypt_data>();
  const char* hash = crypt_r(held.password.data(), passwordHash.c_str(), data.get());
  const bool same = hash != nullptr && hash[0] != '*' && SameInConstantTime(hash, passwordHash);
  explicit_bzero(data.get(), sizeof(crypt_data));
  return same;
}

}  // namespace voxtrel::platform::authorization
