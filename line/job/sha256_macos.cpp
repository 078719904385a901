// SPDX-License-Identifier: MIT
//
// CommonCrypto, which is part of the system's own library.
#include <CommonCrypto/CommonDigest.h>

#include "line/job/hex_text.h"
#include "line/job/sha256.h"

namespace line {

struct Sha256::State {
  CC_SHA256_CTX context;
};

Sha256::Sha256() : m_state(std::make_unique<State>()) {
  CC_SHA256_Init(&m_state->context);
}
Sha256::~Sha256() = default;

void Sha256::Add(const void* bytes, std::size_t count) {
  constexpr std::size_t kAtMost = 1u << 30;  // the call counts in 32 bits
  const char* rest = static_cast<const char*>(bytes);
  while (count > 0) {
    const std::size_t part = count < kAtMost ? count : kAtMost;
    CC_SHA256_Update(&m_state->context, rest, static_cast<CC_LONG>(part));
    rest += part;
    count -= part;
  }
}

std::string Sha256::Take() {
  unsigned char digest[CC_SHA256_DIGEST_LENGTH];
  CC_SHA256_Final(digest, &m_state->context);
  CC_SHA256_Init(&m_state->context);
  return HexText(digest, sizeof digest);
}

}  // namespace line
