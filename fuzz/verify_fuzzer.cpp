// SPDX-License-Identifier: MIT
//
// A whole verification by the reference signer. Input: a line that says which request is made, the
// four lines of the signature file, then the firmware. The request is one digit each for:
//
//   software mode, training key pair, verify key file, next verify key file, the device's key,
//   signature type
//
// A key is 0 for none, 1 for the house's, 2 for another one, 3 for a text that is not a key.
//
// Promise: what is accepted is genuine, and what is genuine is accepted. What is genuine is said a
// second time here, from the description of the format and with libcrypto alone.
#include <openssl/pem.h>
#include <openssl/sha.h>
#include <openssl/x509.h>

#include <cstring>
#include <memory>
#include <optional>
#include <string>

#include "signer/library.h"
#include "signer/request.h"
#include "support/fuzzing.h"

namespace {

using Args = STRUCT_C_STYLE_CP_DIGITAL_SIGN_ARGS;

constexpr std::size_t kKeyBytes = 32;
constexpr std::size_t kSignatureBytes = 64;
constexpr std::string_view kHexDigits = "0123456789abcdef";

struct FreeKey {
  void operator()(EVP_PKEY* key) const { EVP_PKEY_free(key); }
};
using Key = std::unique_ptr<EVP_PKEY, FreeKey>;

Key KeyFromSeed(const std::string& seed) {
  const auto* const bytes = reinterpret_cast<const unsigned char*>(seed.data());
  Key key(EVP_PKEY_new_raw_private_key(EVP_PKEY_ED25519, nullptr, bytes, kKeyBytes));
  PROMISE(key != nullptr);
  return key;
}

// The seeds were signed with these.
Key HouseKey() {
  return KeyFromSeed(std::string(kKeyBytes, 'A'));
}
Key AnotherKey() {
  return KeyFromSeed(std::string(kKeyBytes, 'B'));
}
Key LineKey() {
  return KeyFromSeed(std::string(kKeyBytes, 'C'));
}

Key TrainingKey(int index) {
  const std::string text =
      "Zorvane training key pair " + std::to_string(index) + ", never for production";
  std::string seed(SHA256_DIGEST_LENGTH, '\0');
  SHA256(reinterpret_cast<const unsigned char*>(text.data()), text.size(),
         reinterpret_cast<unsigned char*>(seed.data()));
  return KeyFromSeed(seed);
}

struct FreeBio {
  void operator()(BIO* bio) const { BIO_free(bio); }
};

template <typename Write>
void WritePem(const std::string& path, Write write) {
  const std::unique_ptr<BIO, FreeBio> memory(BIO_new(BIO_s_mem()));
  PROMISE(write(memory.get()) == 1);
  char* text = nullptr;
  const long size = BIO_get_mem_data(memory.get(), &text);
  WriteFile(path, {text, static_cast<std::size_t>(size)});
}

void SetName(X509_NAME* name, const char* text) {
  PROMISE(X509_NAME_add_entry_by_txt(name, "CN", MBSTRING_ASC,
                                     reinterpret_cast<const unsigned char*>(text), -1, -1, 0) == 1);
}

// The house's certificate for the line's key, from yesterday on.
void WriteSubCertificate(const std::string& path) {
  constexpr long kDay = 86400;
  X509* const certificate = X509_new();
  PROMISE(X509_set_version(certificate, 2) == 1);
  ASN1_INTEGER_set(X509_get_serialNumber(certificate), 1);
  X509_gmtime_adj(X509_getm_notBefore(certificate), -kDay);
  X509_gmtime_adj(X509_getm_notAfter(certificate), 365 * kDay);
  SetName(X509_get_issuer_name(certificate), "house");
  SetName(X509_get_subject_name(certificate), "line");
  PROMISE(X509_set_pubkey(certificate, LineKey().get()) == 1);
  PROMISE(X509_sign(certificate, HouseKey().get(), nullptr) != 0);
  WritePem(path, [&](BIO* bio) { return PEM_write_bio_X509(bio, certificate); });
  X509_free(certificate);
}

std::string KeyFile(char choice) {
  return choice == '0' ? "" : FuzzDirectory() + "key" + choice;
}

Key KeyOfChoice(char choice) {
  if (choice == '1') return HouseKey();
  if (choice == '2') return AnotherKey();
  return nullptr;
}

struct Request {
  int mode, training_pair, type;
  char verify_key, next_key, device_key;
  std::string signature, firmware;
};

Request ReadRequest(InputLines lines) {
  std::string digits(lines.Next());
  digits.resize(6, '0');
  Request request = {};
  request.mode = digits[0] - '0';
  request.training_pair = digits[1] - '0';
  request.type = digits[5] - '0';
  const auto choice = [](char digit) { return digit >= '1' && digit <= '3' ? digit : '0'; };
  request.verify_key = choice(digits[2]);
  request.next_key = choice(digits[3]);
  request.device_key = choice(digits[4]);
  for (int i = 0; i < 4 && !lines.AtEnd(); ++i)
    request.signature += std::string(lines.Next()) + "\n";
  request.firmware = lines.Rest();
  return request;
}

template <std::size_t kCapacity>
void Store(const std::string& text, char (&field)[kCapacity]) {
  PROMISE(text.size() < kCapacity);
  std::memcpy(field, text.c_str(), text.size() + 1);
}

bool Verify(const Request& request) {
  WriteFile(FuzzDirectory() + "fw", request.firmware);
  WriteFile(FuzzDirectory() + "sig", request.signature);
  Args args = {};
  args.enumActionType = CP_DIGITAL_SIGNATURE_ACTION_VERIFY;
  args.enumSignatureType = static_cast<std::uint32_t>(request.type);
  args.enumSwMode = static_cast<std::uint32_t>(request.mode);
  args.nKeyPairIndex = request.training_pair;
  Store(FuzzDirectory() + "fw", args.szFwFile);
  Store(FuzzDirectory() + "sig", args.szSignatureFile);
  Store(KeyFile(request.verify_key), args.szVerifyKeyFile);
  Store(KeyFile(request.next_key), args.szNextVerifyKeyFile);
  Store(FuzzDirectory() + "cert", args.szSubCertFile);
  if (request.device_key == '0') return signer::VerifyFirmware(args, nullptr);
  char device[kDeviceKeyCapacity] = {};
  const std::string key = ReadFile(KeyFile(request.device_key));
  std::memcpy(device, key.data(), key.size());
  return signer::VerifyFirmware(args, device);
}

// --- What is genuine -----------------------------------------------------------------------------

Key ExpectedKey(const Request& request) {
  switch (request.mode) {
    case 1:
      return request.verify_key == '1' ? LineKey() : nullptr;
    case 2:
      return request.training_pair >= 0 && request.training_pair <= 4
                 ? TrainingKey(request.training_pair)
                 : nullptr;
    case 3:
      return KeyOfChoice(request.verify_key);
    case 4:
      if (request.device_key != '0') return KeyOfChoice(request.device_key);
      return KeyOfChoice(request.verify_key != '0' ? request.verify_key : request.next_key);
    default:
      return nullptr;
  }
}

std::optional<std::string> BytesOfHex(std::string_view hex, std::size_t count) {
  if (hex.size() != 2 * count) return std::nullopt;
  std::string bytes;
  for (std::size_t i = 0; i < hex.size(); i += 2) {
    const std::size_t high = kHexDigits.find(hex[i]);
    const std::size_t low = kHexDigits.find(hex[i + 1]);
    if (high == std::string_view::npos || low == std::string_view::npos) return std::nullopt;
    bytes += static_cast<char>(high * 16 + low);
  }
  return bytes;
}

// What is after the word; nothing when the line does not begin with it.
std::optional<std::string_view> After(std::string_view word, std::string_view line) {
  if (line.substr(0, word.size()) != word) return std::nullopt;
  return line.substr(word.size());
}

std::string RawKey(const EVP_PKEY* key) {
  std::string raw(kKeyBytes, '\0');
  std::size_t size = raw.size();
  PROMISE(EVP_PKEY_get_raw_public_key(key, reinterpret_cast<unsigned char*>(raw.data()), &size) ==
          1);
  return raw;
}

// Mode 4, and it alone, binds a next key: the one of the request, if there is one.
bool IsNextKeyRight(const Request& request, std::string_view text) {
  if (text == "none") return request.mode != 4;
  const auto bound = BytesOfHex(text, kKeyBytes);
  if (!bound || request.mode != 4) return false;
  if (request.next_key == '0') return true;
  const Key given = KeyOfChoice(request.next_key);
  return given != nullptr && RawKey(given.get()) == *bound;
}

bool IsSignedBy(EVP_PKEY* key, const std::string& message, const std::string& signature) {
  EVP_MD_CTX* const context = EVP_MD_CTX_new();
  const bool right =
      EVP_DigestVerifyInit(context, nullptr, nullptr, nullptr, key) == 1 &&
      EVP_DigestVerify(context, reinterpret_cast<const unsigned char*>(signature.data()),
                       signature.size(), reinterpret_cast<const unsigned char*>(message.data()),
                       message.size()) == 1;
  EVP_MD_CTX_free(context);
  return right;
}

bool IsGenuine(const Request& request) {
  const Key key = ExpectedKey(request);
  if (request.type != 1 || key == nullptr || request.firmware.empty()) return false;
  InputLines lines(reinterpret_cast<const std::uint8_t*>(request.signature.data()),
                   request.signature.size());
  if (lines.Next() != "Zorvane firmware signature 1") return false;
  if (lines.Next() != "type: software") return false;
  const auto next_key = After("next verify key: ", lines.Next());
  if (!next_key || !IsNextKeyRight(request, *next_key)) return false;
  const std::string signed_lines =
      "Zorvane firmware signature 1\ntype: software\nnext verify key: " + std::string(*next_key) +
      "\n";
  const auto hex = After("signature: ", lines.Next());
  const auto signature = hex ? BytesOfHex(*hex, kSignatureBytes) : std::nullopt;
  return signature && IsSignedBy(key.get(), signed_lines + request.firmware, *signature);
}

}  // namespace

void PrepareTarget() {
  static const signer::Library library;
  PROMISE(library.IsReady());
  WritePem(KeyFile('1'), [](BIO* bio) { return PEM_write_bio_PUBKEY(bio, HouseKey().get()); });
  WritePem(KeyFile('2'), [](BIO* bio) { return PEM_write_bio_PUBKEY(bio, AnotherKey().get()); });
  WriteFile(KeyFile('3'), "-----BEGIN PUBLIC KEY-----\n");
  WriteSubCertificate(FuzzDirectory() + "cert");
}

void FuzzInput(const std::uint8_t* data, std::size_t size) {
  const Request request = ReadRequest(InputLines(data, size));
  PROMISE(Verify(request) == IsGenuine(request));
}
