// SPDX-License-Identifier: MIT
//
// What is signed: the signature file's lines and the firmware after them, in one piece.
#ifndef ZVISP_SIMULATOR_SIGNER_MESSAGE_H_
#define ZVISP_SIMULATOR_SIGNER_MESSAGE_H_

#include <string>

#include "signer/wiped_bytes.h"

namespace signer {

// Reads the firmware, 1 to kFirmwareLimit bytes, after the lines; prints why when it cannot.
bool ReadMessage(const std::string& lines, const std::string& firmware, WipedBytes& message);

}  // namespace signer

#endif  // ZVISP_SIMULATOR_SIGNER_MESSAGE_H_
