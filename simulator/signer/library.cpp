// SPDX-License-Identifier: MIT
#include "signer/library.h"

#include <openssl/crypto.h>
#include <openssl/err.h>
#include <openssl/provider.h>

#include <utility>

namespace signer {

OSSL_LIB_CTX* Library::s_context = nullptr;

Library::Library() {
  if (OPENSSL_init_crypto(OPENSSL_INIT_NO_LOAD_CONFIG, nullptr) != 1) return;
  s_context = OSSL_LIB_CTX_new();
  // Asked for by name: a provider that cannot start is found here and not in the middle.
  m_ready = s_context != nullptr && OSSL_PROVIDER_load(s_context, "default") != nullptr;
}

Library::~Library() {
  ERR_clear_error();
  // Frees the provider with it.
  OSSL_LIB_CTX_free(std::exchange(s_context, nullptr));
}

}  // namespace signer
