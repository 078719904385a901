// SPDX-License-Identifier: MIT
//
// Writing the signature file.
#ifndef ZVISP_SIMULATOR_SIGNER_OUTPUT_FILE_H_
#define ZVISP_SIMULATOR_SIGNER_OUTPUT_FILE_H_

#include <string>
#include <string_view>
#include <vector>

namespace signer {

// Writes the whole file, or prints why it does not; the file then is what it was. A kill at any
// moment leaves the old file or the new one.
//
// Refuses a symbolic link, what is not a regular file, a file that is neither empty nor a
// signature, and every file of `inputs`, by whatever name: a signature path that was cut to fit its
// buffer may be the path of the firmware itself.
bool WriteSignatureFile(const std::string& path, std::string_view text,
                        const std::vector<std::string>& inputs);

}  // namespace signer

#endif  // ZVISP_SIMULATOR_SIGNER_OUTPUT_FILE_H_
