// SPDX-License-Identifier: MIT
//
// Bytes as lower-case hexadecimal digits, two for each.
#ifndef ZVISP_SIMULATOR_SIGNER_HEX_H_
#define ZVISP_SIMULATOR_SIGNER_HEX_H_

#include <cstddef>
#include <string>
#include <string_view>

namespace signer {

std::string ToHex(const unsigned char* bytes, std::size_t count);

// Reads exactly 2 * count digits into `bytes`; false for any other text, capitals included.
bool FromHex(std::string_view text, unsigned char* bytes, std::size_t count);

}  // namespace signer

#endif  // ZVISP_SIMULATOR_SIGNER_HEX_H_
