// SPDX-License-Identifier: MIT
//
// The plain calls of OpenSSL's libcrypto. Its newer ones read the system's configuration file
// and look up an implementation first, which costs every start more than the hash itself; for them
// the plain calls are marked as deprecated.
#define OPENSSL_SUPPRESS_DEPRECATED

#include <openssl/sha.h>

#include "line/job/hex_text.h"
#include "line/job/sha256.h"

namespace line {

struct Sha256::State {
  SHA256_CTX context;
};

Sha256::Sha256() : m_state(std::make_unique<State>()) {
  SHA256_Init(&m_state->context);
}
Sha256::~Sha256() = default;

void Sha256::Add(const void* bytes, std::size_t count) {
  SHA256_Update(&m_state->context, bytes, count);
}

std::string Sha256::Take() {
  unsigned char digest[SHA256_DIGEST_LENGTH];
  SHA256_Final(digest, &m_state->context);
  SHA256_Init(&m_state->context);
  return HexText(digest, sizeof digest);
}

}  // namespace line
