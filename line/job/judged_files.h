// SPDX-License-Identifier: MIT
//
// The files that judged records name.
#ifndef ZVISP_LINE_JOB_JUDGED_FILES_H_
#define ZVISP_LINE_JOB_JUDGED_FILES_H_

#include <string>
#include <vector>

#include "line/job/judged_words.h"

namespace line {

// The fields of a signature's record that name files. The private key is not among them: nothing
// is signed here.
inline constexpr char (STRUCT_C_STYLE_CP_DIGITAL_SIGN_ARGS::*kSignFiles[])[kSignTextCapacity] = {
    &STRUCT_C_STYLE_CP_DIGITAL_SIGN_ARGS::szFwFile,
    &STRUCT_C_STYLE_CP_DIGITAL_SIGN_ARGS::szSignatureFile,
    &STRUCT_C_STYLE_CP_DIGITAL_SIGN_ARGS::szVerifyKeyFile,
    &STRUCT_C_STYLE_CP_DIGITAL_SIGN_ARGS::szSubCertFile,
    &STRUCT_C_STYLE_CP_DIGITAL_SIGN_ARGS::szNextVerifyKeyFile,
};

// One name for one file, however its path is written: links, "." and ".." are resolved. The path
// itself when it leads to nothing.
std::string OneNameOf(const std::string& path);

bool IsOrdinaryFile(const std::string& path);

// Firmware, boot code, signature, keys to verify with and certificate: each file once, in this
// order, by its one name. Paths of signature files that lead to no ordinary file are left out.
// REQUIRES: zvisp has accepted the words.
std::vector<std::string> FilesOf(const JudgedWords& words);

}  // namespace line

#endif  // ZVISP_LINE_JOB_JUDGED_FILES_H_
