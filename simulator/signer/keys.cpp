// SPDX-License-Identifier: MIT
#include "signer/keys.h"

#include <sys/stat.h>

#include <algorithm>
#include <string_view>

#include "plugin/zvisp_plugin.h"
#include "signer/input_file.h"
#include "signer/library.h"
#include "signer/pem.h"
#include "signer/report.h"

namespace signer {
namespace {

using namespace std::string_view_literals;

constexpr char kAlgorithm[] = "ED25519";

// What comes before the 32 bytes in the DER form of a private and of a public Ed25519 key. Taking
// these alone, instead of parsing, leaves one form for each key.
constexpr std::string_view kPrivatePrefix =
    "\x30\x2e\x02\x01\x00\x30\x05\x06\x03\x2b\x65\x70\x04\x22\x04\x20"sv;
constexpr std::string_view kPublicPrefix = "\x30\x2a\x30\x05\x06\x03\x2b\x65\x70\x03\x21\x00"sv;

struct FreeContext {
  void operator()(EVP_MD_CTX* context) const { EVP_MD_CTX_free(context); }
};
using ContextHandle = std::unique_ptr<EVP_MD_CTX, FreeContext>;

// The 32 bytes of a key in DER; null, after printing why, when it is not an Ed25519 key.
const unsigned char* KeyBytesOf(const char* role, const WipedBytes& der, std::string_view prefix) {
  if (der.Size() == prefix.size() + kKeyBytes && der.Text().substr(0, prefix.size()) == prefix) {
    return der.Data() + prefix.size();
  }
  Refuse("the %s is a key of another kind, not Ed25519", role);
  return nullptr;
}

// What a key file should allow to its group and to others, and how a warning names it.
struct KeyPolicy {
  const char* kind;
  mode_t mode;
};
constexpr KeyPolicy kPrivateKey = {"private key", 0600};
// Whoever may write a verify key decides what passes for genuine.
constexpr KeyPolicy kPublicKey = {"verify key", 0644};

void WarnOfOthers(const char* role, const InputFile& file, const KeyPolicy& policy) {
  const mode_t excess = file.Mode() & ~policy.mode & (S_IRWXG | S_IRWXO);
  const bool read = (excess & (S_IRGRP | S_IROTH)) != 0;
  const bool write = (excess & (S_IWGRP | S_IWOTH)) != 0;
  if (!read && !write) return;
  Note("warning: others may %s the %s file: %s has mode %04o, a %s should have %04o",
       read && write ? "read and write" : (read ? "read" : "write"), role, file.Path().c_str(),
       static_cast<unsigned>(file.Mode()), policy.kind, static_cast<unsigned>(policy.mode));
}

// Opens and reads a key file, with a warning when others may do more with it than they should.
bool ReadKeyFile(const char* role, const std::string& path, const KeyPolicy& policy,
                 WipedBytes& text) {
  InputFile file(role, path);
  if (!file.Open(kSmallFileLimit)) return false;
  WarnOfOthers(role, file, policy);
  text = WipedBytes(file.Size());
  return file.ReadInto(text.Data());
}

bool DecodeVerifyKey(const char* role, std::string_view text, VerifyKey& key) {
  WipedBytes der;
  if (!DecodePem(role, text, "PUBLIC KEY", der)) return false;
  const unsigned char* const bytes = KeyBytesOf(role, der, kPublicPrefix);
  if (bytes == nullptr) return false;
  std::copy_n(bytes, kKeyBytes, key.begin());
  return true;
}

}  // namespace

bool ReadSignKey(const char* role, const std::string& path, KeyHandle& key) {
  WipedBytes text;
  WipedBytes der;
  if (!ReadKeyFile(role, path, kPrivateKey, text) ||
      !DecodePem(role, text.Text(), "PRIVATE KEY", der)) {
    return false;
  }
  const unsigned char* const seed = KeyBytesOf(role, der, kPrivatePrefix);
  if (seed == nullptr) return false;
  key = SignKeyFromSeed(seed);
  return key != nullptr || Refuse("the %s cannot be used", role);
}

bool ReadVerifyKey(const char* role, const std::string& path, VerifyKey& key) {
  WipedBytes text;
  return ReadKeyFile(role, path, kPublicKey, text) && DecodeVerifyKey(role, text.Text(), key);
}

bool ReadDeviceKey(const char* bytes, VerifyKey& key) {
  const char* const end = bytes + kDeviceKeyCapacity;
  const char* const text_end = std::find(bytes, end, '\0');
  if (std::any_of(text_end, end, [](char byte) { return byte != '\0'; })) {
    return Refuse("the verify key of the device has something after its end");
  }
  return DecodeVerifyKey("verify key of the device",
                         std::string_view(bytes, static_cast<std::size_t>(text_end - bytes)), key);
}

KeyHandle SignKeyFromSeed(const unsigned char* seed) {
  return KeyHandle(
      EVP_PKEY_new_raw_private_key_ex(Library::Context(), kAlgorithm, nullptr, seed, kKeyBytes));
}

KeyHandle HandleOf(const VerifyKey& key) {
  return KeyHandle(EVP_PKEY_new_raw_public_key_ex(Library::Context(), kAlgorithm, nullptr,
                                                  key.data(), key.size()));
}

bool VerifyKeyOf(const EVP_PKEY* key, VerifyKey& verify_key) {
  std::size_t size = verify_key.size();
  return EVP_PKEY_is_a(key, kAlgorithm) == 1 &&
         EVP_PKEY_get_raw_public_key(key, verify_key.data(), &size) == 1 &&
         size == verify_key.size();
}

bool Sign(EVP_PKEY* key, const WipedBytes& message, SignatureValue& signature) {
  const ContextHandle context(EVP_MD_CTX_new());
  std::size_t size = signature.size();
  if (context != nullptr &&
      EVP_DigestSignInit_ex(context.get(), nullptr, nullptr, Library::Context(), nullptr, key,
                            nullptr) == 1 &&
      EVP_DigestSign(context.get(), signature.data(), &size, message.Data(), message.Size()) == 1 &&
      size == signature.size()) {
    return true;
  }
  return Refuse("signing failed in libcrypto");
}

// Whatever fails here counts as not genuine: there is no third answer.
bool IsGenuine(const VerifyKey& key, const WipedBytes& message, const SignatureValue& signature) {
  const ContextHandle context(EVP_MD_CTX_new());
  const KeyHandle handle = HandleOf(key);
  if (context != nullptr && handle != nullptr &&
      EVP_DigestVerifyInit_ex(context.get(), nullptr, nullptr, Library::Context(), nullptr,
                              handle.get(), nullptr) == 1 &&
      EVP_DigestVerify(context.get(), signature.data(), signature.size(), message.Data(),
                       message.Size()) == 1) {
    return true;
  }
  return Refuse("the signature does not belong to this firmware and this key");
}

}  // namespace signer
