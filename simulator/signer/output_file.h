// SPDX-License-Identifier: MIT
//
// Writing the signature file.
#ifndef ZVISP_SIMULATOR_SIGNER_OUTPUT_FILE_H_
#define ZVISP_SIMULATOR_SIGNER_OUTPUT_FILE_H_

#include <string>
#include <string_view>
#include <vector>

namespace signer {

// Writes the whole file, replacing what it held; prints why when it cannot, and leaves no part of
// a file behind. Refuses what is no regular file, and every file of `inputs`, by whatever name: a
// signature path that was cut to fit its buffer may be the path of the firmware itself.
bool WriteSignatureFile(const std::string& path, std::string_view text,
                        const std::vector<std::string>& inputs);

}  // namespace signer

#endif  // ZVISP_SIMULATOR_SIGNER_OUTPUT_FILE_H_
