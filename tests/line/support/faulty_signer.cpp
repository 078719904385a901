// SPDX-License-Identifier: MIT
//
// A signature plug-in that keeps every rule of the header, but for the fault of fault.h. It
// refuses every file. LACKS_CALLS leaves a required call out.
#include "plugin/zvisp_plugin.h"
#include "support/fault.h"

namespace {

using Args = STRUCT_C_STYLE_CP_DIGITAL_SIGN_ARGS;

void DoWrong(const Args* args) {
  auto* const bytes = reinterpret_cast<volatile unsigned char*>(const_cast<Args*>(args));
  ChangeProcess("call");
  if (Has("writes-request")) bytes[20] = 'X';
  if (Has("overrun")) bytes[sizeof *args] = 1;
  if (Has("underrun")) bytes[-1] = 1;
}

int Answer(const Args* args) {
  if (args->enumSignatureType == 0) return Has("zeros") ? 1 : 0;
  const bool is_ended = std::memchr(args->szFwFile, 0, sizeof args->szFwFile) != nullptr;
  if (!is_ended) {
    // Volatile, so that the compiler neither knows the field's size nor leaves the call out.
    const char* const volatile last = args->szNextVerifyKeyFile;
    volatile std::size_t length = Has("strlen") ? std::strlen(last) : 0;
    return Has("endless") && length == 0 ? 1 : 0;
  }
  EndBadly("call");
  DoWrong(args);
  return Has("missing-file") ? 1 : 0;
}

}  // namespace

int SignFwExport(const Args* args) {
  return Answer(args);
}

#ifndef LACKS_CALLS
int VerifySignatureExport(const Args* args, char*) {
  return Answer(args);
}
#endif
