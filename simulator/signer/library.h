// SPDX-License-Identifier: MIT
//
// libcrypto for the time of one request, in a context of its own: neither a configuration of the
// machine nor what the host does with the library decides how keys are judged.
#ifndef ZVISP_SIMULATOR_SIGNER_LIBRARY_H_
#define ZVISP_SIMULATOR_SIGNER_LIBRARY_H_

#include <openssl/types.h>

namespace signer {

// At most one at a time; requests come from one thread.
class Library {
 public:
  Library();
  ~Library();
  Library(const Library&) = delete;
  Library& operator=(const Library&) = delete;

  // False when memory did not suffice to start; the request must then be refused, because without
  // a context libcrypto falls back to the shared one.
  bool IsReady() const { return m_provider != nullptr; }

  // The context of the request under way; outside of one null, which is libcrypto's shared one.
  static OSSL_LIB_CTX* Context() { return s_context; }

 private:
  static OSSL_LIB_CTX* s_context;

  OSSL_PROVIDER* m_provider = nullptr;
};

}  // namespace signer

#endif  // ZVISP_SIMULATOR_SIGNER_LIBRARY_H_
