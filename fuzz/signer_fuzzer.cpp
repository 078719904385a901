// SPDX-License-Identifier: MIT
//
// The files of the reference signer. Input: a file, which is read as each of its kinds.
//
// Promises: a key or signature that is accepted is, written anew, the file again, so no byte of it
// can change unnoticed; a device's key reads as the same bytes from a file do; and no certificate
// passes under two issuers.
#include <openssl/pem.h>

#include <algorithm>
#include <memory>

#include "plugin/zvisp_plugin.h"
#include "signer/certificate.h"
#include "signer/keys.h"
#include "signer/signature_file.h"
#include "support/fuzzing.h"

namespace {

// The issuer of the certificate among the seeds.
constexpr signer::VerifyKey kIssuer = {
    0x5E, 0x6C, 0x4B, 0xDE, 0x27, 0xBF, 0x57, 0xB8, 0x56, 0xDD, 0x9A, 0x89, 0x76, 0xE7, 0xDC, 0xC4,
    0x32, 0xEB, 0x49, 0x23, 0x6C, 0xBC, 0xCF, 0x29, 0xDB, 0x86, 0xC8, 0xBA, 0xF4, 0xA1, 0xF7, 0xEA};
constexpr signer::VerifyKey kAnotherIssuer = {};

struct FreeBio {
  void operator()(BIO* bio) const { BIO_free(bio); }
};

// The key as a PEM file, by one of the library's writers.
template <typename Write>
std::string PemBy(Write write) {
  const std::unique_ptr<BIO, FreeBio> memory(BIO_new(BIO_s_mem()));
  PROMISE(write(memory.get()) == 1);
  char* text = nullptr;
  const long size = BIO_get_mem_data(memory.get(), &text);
  return std::string(text, static_cast<std::size_t>(size));
}

void CheckSignature(const std::string& path, const std::string& content) {
  signer::Signature signature;
  if (!signer::ReadSignatureFile(path, signature)) return;
  PROMISE(signer::FormatSignatureFile(signature) == content);
}

void CheckSignKey(const std::string& path, const std::string& content) {
  signer::KeyHandle key;
  if (!signer::ReadSignKey("sign key", path, key)) return;
  const auto write = [&](BIO* bio) {
    return PEM_write_bio_PrivateKey(bio, key.get(), nullptr, nullptr, 0, nullptr, nullptr);
  };
  PROMISE(PemBy(write) == content);
}

void CheckVerifyKey(const std::string& path, const std::string& content) {
  signer::VerifyKey key = {};
  const bool accepted = signer::ReadVerifyKey("verify key", path, key);
  if (accepted) {
    const signer::KeyHandle handle = signer::HandleOf(key);
    const auto write = [&](BIO* bio) { return PEM_write_bio_PUBKEY(bio, handle.get()); };
    PROMISE(PemBy(write) == content);
  }
  if (content.size() > kDeviceKeyCapacity) return;
  char on_device[kDeviceKeyCapacity] = {};
  std::copy(content.begin(), content.end(), on_device);
  signer::VerifyKey device_key = {};
  const bool accepted_from_device = signer::ReadDeviceKey(on_device, device_key);
  PROMISE(!accepted || (accepted_from_device && device_key == key));
}

void CheckCertificate(const std::string& path) {
  signer::VerifyKey subject = {};
  if (!signer::ReadSubCertificate(path, kIssuer, subject)) return;
  PROMISE(!signer::ReadSubCertificate(path, kAnotherIssuer, subject));
}

}  // namespace

void PrepareTarget() {}

void FuzzInput(const std::uint8_t* data, std::size_t size) {
  const std::string content(InputLines(data, size).Rest());
  const std::string path = FuzzDirectory() + "file";
  WriteFile(path, content);
  CheckSignature(path, content);
  CheckSignKey(path, content);
  CheckVerifyKey(path, content);
  CheckCertificate(path);
}
