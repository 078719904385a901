// SPDX-License-Identifier: MIT
//
// Strict PEM: one block, to the byte as the openssl command writes it. Text around the block, other
// line lengths or newlines, stray bits in the last digit: all of it is refused, so that no bit of
// a key or certificate file can change unnoticed.
#ifndef ZVISP_SIMULATOR_SIGNER_PEM_H_
#define ZVISP_SIMULATOR_SIGNER_PEM_H_

#include <string_view>

#include "signer/wiped_bytes.h"

namespace signer {

// Decodes the block of this label ("PUBLIC KEY"); prints why when it cannot. `role` names the file
// in refusals.
bool DecodePem(const char* role, std::string_view text, std::string_view label, WipedBytes& der);

}  // namespace signer

#endif  // ZVISP_SIMULATOR_SIGNER_PEM_H_
