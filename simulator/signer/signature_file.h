// SPDX-License-Identifier: MIT
//
// The signature file, version 1: four lines of text, each ended by a line feed, written one way
// only.
//
//   Zorvane firmware signature 1
//   type: software                        or "hardware"
//   next verify key: none                 or the 32 bytes of the key in hexadecimal
//   signature: <64 bytes in hexadecimal>
//
// The signature is pure Ed25519 over the first three lines followed by the firmware, so that it
// covers everything in the file but itself.
#ifndef ZVISP_SIMULATOR_SIGNER_SIGNATURE_FILE_H_
#define ZVISP_SIMULATOR_SIGNER_SIGNATURE_FILE_H_

#include <optional>
#include <string>
#include <string_view>

#include "signer/keys.h"

namespace signer {

enum class SignatureType { kSoftware, kHardware };

struct Signature {
  SignatureType type = SignatureType::kSoftware;
  std::optional<VerifyKey> next_verify_key;
  SignatureValue value = {};
};

// The lines that come before the signature and are signed with the firmware.
std::string SignedLines(const Signature& signature);

// The whole file.
std::string FormatSignatureFile(const Signature& signature);

// Whether a text is, or once was, a signature file of any version: it begins with the format's
// name.
bool IsSignatureText(std::string_view text);

// Reads a file; prints why when it is not one of version 1, to the byte.
bool ReadSignatureFile(const std::string& path, Signature& signature);

}  // namespace signer

#endif  // ZVISP_SIMULATOR_SIGNER_SIGNATURE_FILE_H_
