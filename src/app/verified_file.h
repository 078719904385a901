// SPDX-License-Identifier: MIT
//
// The firmware file whose signature is verified before programming: whether what gets programmed is
// that file, and still the same. Prints nothing.
#ifndef ZVISP_APP_VERIFIED_FILE_H_
#define ZVISP_APP_VERIFIED_FILE_H_

#include <string>

#include "base/file_identity.h"
#include "plugin/command_setting.h"
#include "plugin/digital_sign_args.h"

namespace zvisp {

class VerifiedFile {
 public:
  // Looks at the file that a request names, which the signature plug-in is about to read.
  explicit VerifiedFile(const STRUCT_C_STYLE_CP_DIGITAL_SIGN_ARGS& args);

  // Whether the path still leads to the same, unchanged file (see base/file_identity.h). A path
  // that led to none and still does is unchanged.
  bool IsUnchanged() const;

  // Whether one of the map's entries has the path of this file, to the byte.
  bool IsIn(const STRUCT_C_STYLE_MAP_FW& map) const;

 private:
  std::string m_path;  // UTF-8
  FileIdentity m_identity;
};

}  // namespace zvisp

#endif  // ZVISP_APP_VERIFIED_FILE_H_
