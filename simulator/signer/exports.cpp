// SPDX-License-Identifier: MIT
#include <openssl/crypto.h>
#include <openssl/err.h>

#include <new>

#include "plugin/zvisp_plugin.h"
#include "signer/report.h"
#include "signer/request.h"

namespace {

using Args = STRUCT_C_STYLE_CP_DIGITAL_SIGN_ARGS;

// Runs one request; nothing but its verdict crosses the edge of the library.
template <typename Request>
int Answer(const Args* args, Request request) noexcept {
  // A configuration file of the machine must not decide how keys are judged.
  OPENSSL_init_crypto(OPENSSL_INIT_NO_LOAD_CONFIG, nullptr);
  bool accepted = false;
  try {
    accepted = args != nullptr && request(*args);
  } catch (const std::bad_alloc&) {
    accepted = signer::Refuse("there is not enough memory");
  }
  ERR_clear_error();
  return accepted ? 1 : 0;
}

}  // namespace

int SignFwExport(const Args* args) {
  return Answer(args, signer::SignFirmware);
}

int VerifySignatureExport(const Args* args, char* device_key) {
  return Answer(args,
                [&](const Args& request) { return signer::VerifyFirmware(request, device_key); });
}
