// The credentials a client handed the Authorization component. They live
// only here, in a fixed buffer that is wiped when they are replaced or
// cleared, and are never written to a message, a trace or a file.
#pragma once

#include <cstdint>
#include <string_view>

namespace voxtrel::platform::authorization {

inline constexpr size_t kMaxCredentialLength = 255;

// False, holding nothing, for a name or password longer than
// kMaxCredentialLength. A null name or password is held as empty.
bool HoldCredentials(const char* username, const char* password);
void WipeCredentials();
bool CredentialsHeld();

// True when the held credentials are `username`'s and the held password
// hashes to `passwordHash` (a salted crypt(3) hash, as "$6$..." or "$y$...").
// The comparison of the hashes takes the same time wherever they differ.
bool CredentialsMatch(std::string_view username, const std::string& passwordHash);

}  // namespace voxtrel::platform::authorization
