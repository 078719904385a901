// SPDX-License-Identifier: MIT
#include <new>

#include "plugin/zvisp_plugin.h"
#include "signer/library.h"
#include "signer/report.h"
#include "signer/request.h"

namespace {

using Args = STRUCT_C_STYLE_CP_DIGITAL_SIGN_ARGS;

// Runs one request; nothing but its verdict crosses the edge of the library.
template <typename Request>
int Answer(const Args* args, Request request) noexcept {
  if (args == nullptr) return 0;
  const signer::Library library;
  if (!library.IsReady()) return signer::Refuse("libcrypto cannot be started") ? 1 : 0;
  try {
    return request(*args) ? 1 : 0;
  } catch (const std::bad_alloc&) {
    return signer::Refuse("there is not enough memory") ? 1 : 0;
  }
}

}  // namespace

int SignFwExport(const Args* args) {
  return Answer(args, signer::SignFirmware);
}

int VerifySignatureExport(const Args* args, char* device_key) {
  return Answer(args,
                [&](const Args& request) { return signer::VerifyFirmware(request, device_key); });
}
