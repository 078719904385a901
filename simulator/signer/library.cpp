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
  if (s_context == nullptr) return;
  // Asked for by name: a provider that cannot start is found here and not in the middle.
  m_provider = OSSL_PROVIDER_load(s_context, "default");
}

Library::~Library() {
  ERR_clear_error();
  // Before the context, which does not free a provider that is still held.
  if (m_provider != nullptr) OSSL_PROVIDER_unload(m_provider);
  OSSL_LIB_CTX_free(std::exchange(s_context, nullptr));
}

}  // namespace signer
