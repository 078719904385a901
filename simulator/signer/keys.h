// SPDX-License-Identifier: MIT
//
// Ed25519 keys: from PEM files and from a device, and what is done with them. Every function that
// returns false has printed why. Nothing here prints, stores or copies a private key; the bytes
// that it was read from are wiped.
#ifndef ZVISP_SIMULATOR_SIGNER_KEYS_H_
#define ZVISP_SIMULATOR_SIGNER_KEYS_H_

#include <openssl/evp.h>

#include <array>
#include <memory>
#include <string>

#include "signer/wiped_bytes.h"

namespace signer {

inline constexpr std::size_t kKeyBytes = 32;
inline constexpr std::size_t kSignatureBytes = 64;

// A verify key is public.
using VerifyKey = std::array<unsigned char, kKeyBytes>;
using SignatureValue = std::array<unsigned char, kSignatureBytes>;

struct FreeKey {
  void operator()(EVP_PKEY* key) const { EVP_PKEY_free(key); }
};
// OpenSSL wipes a private key when it frees it.
using KeyHandle = std::unique_ptr<EVP_PKEY, FreeKey>;

// Reads a "PRIVATE KEY". A file that others than its owner may read or write gets a warning.
bool ReadSignKey(const char* role, const std::string& path, KeyHandle& key);

// Reads a "PUBLIC KEY" from a file, or from kDeviceKeyCapacity bytes: the text of such a file with
// zeros after it. A file that others than its owner may write gets a warning.
bool ReadVerifyKey(const char* role, const std::string& path, VerifyKey& key);
bool ReadDeviceKey(const char* bytes, VerifyKey& key);

// The key made of 32 secret bytes; null when the library fails.
KeyHandle SignKeyFromSeed(const unsigned char* seed);
KeyHandle HandleOf(const VerifyKey& key);

bool VerifyKeyOf(const EVP_PKEY* key, VerifyKey& verify_key);

// Signs, or verifies, pure Ed25519 over the whole message.
bool Sign(EVP_PKEY* key, const WipedBytes& message, SignatureValue& signature);
bool IsGenuine(const VerifyKey& key, const WipedBytes& message, const SignatureValue& signature);

}  // namespace signer

#endif  // ZVISP_SIMULATOR_SIGNER_KEYS_H_
