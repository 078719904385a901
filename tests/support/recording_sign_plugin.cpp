// SPDX-License-Identifier: MIT
//
// A signature plug-in that does no cryptography and writes every call down (see
// recording_plugin.h). LACKS_<Name> leaves a call out.
#include "plugin/zvisp_plugin.h"
#include "support/record_offsets.h"
#include "support/recording_plugin.h"

namespace {

[[maybe_unused]] constexpr std::size_t kKeyBytes = 1220;

}  // namespace

#ifndef LACKS_SignFwExport
int SignFwExport(const STRUCT_C_STYLE_CP_DIGITAL_SIGN_ARGS* args) {
  return RecordedCall("SignFwExport").Keep("record", args, sign_at::kRecordBytes).Answer(1);
}
#endif

#ifndef LACKS_VerifySignatureExport
int VerifySignatureExport(const STRUCT_C_STYLE_CP_DIGITAL_SIGN_ARGS* args, char* device_key) {
  return RecordedCall("VerifySignatureExport", device_key == nullptr ? " null" : " set")
      .Keep("record", args, sign_at::kRecordBytes)
      .Keep("key", device_key, kKeyBytes)
      .Answer(1);
}
#endif
