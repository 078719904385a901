// SPDX-License-Identifier: MIT
#include "signer/certificate.h"

#include <openssl/x509.h>
#include <openssl/x509v3.h>

#include <cstring>

#include "signer/input_file.h"
#include "signer/library.h"
#include "signer/pem.h"
#include "signer/report.h"

namespace signer {
namespace {

constexpr char kRole[] = "sub-certificate";

struct FreeCertificate {
  void operator()(X509* certificate) const { X509_free(certificate); }
};
using CertificateHandle = std::unique_ptr<X509, FreeCertificate>;

struct FreeEncoding {
  void operator()(unsigned char* encoding) const { OPENSSL_free(encoding); }
};

// Whether the certificate is written the one way that DER allows; the parser takes others too.
bool IsWrittenAs(X509* certificate, const WipedBytes& der) {
  unsigned char* encoding = nullptr;
  const int size = i2d_X509(certificate, &encoding);
  const std::unique_ptr<unsigned char, FreeEncoding> owner(encoding);
  return size >= 0 && static_cast<std::size_t>(size) == der.Size() &&
         std::memcmp(encoding, der.Data(), der.Size()) == 0;
}

CertificateHandle Parse(const WipedBytes& der) {
  const unsigned char* position = der.Data();
  X509* certificate = X509_new_ex(Library::Context(), nullptr);
  // Frees the certificate, and sets the pointer to null, when it fails.
  if (certificate != nullptr) {
    d2i_X509(&certificate, &position, static_cast<long>(der.Size()));
  }
  CertificateHandle handle(certificate);
  if (handle != nullptr && !IsWrittenAs(handle.get(), der)) handle.reset();
  return handle;
}

bool IsInItsTerm(const X509* certificate) {
  return X509_cmp_current_time(X509_get0_notBefore(certificate)) < 0 &&
         X509_cmp_current_time(X509_get0_notAfter(certificate)) > 0;
}

bool MaySign(X509* certificate) {
  const bool understood =
      (X509_get_extension_flags(certificate) & (EXFLAG_INVALID | EXFLAG_CRITICAL)) == 0;
  return understood && (X509_get_key_usage(certificate) & KU_DIGITAL_SIGNATURE) != 0;
}

// Every bit is set when the certificate does not state an extended key usage.
bool MaySignCode(X509* certificate) {
  return (X509_get_extended_key_usage(certificate) & XKU_CODE_SIGN) != 0;
}

// A verify key has no name to compare with, but a certificate that names itself as its issuer and
// was signed by another key contradicts itself.
bool NamesAnotherIssuer(const X509* certificate, const VerifyKey& issuer,
                        const VerifyKey& subject) {
  return issuer == subject ||
         X509_NAME_cmp(X509_get_issuer_name(certificate), X509_get_subject_name(certificate)) != 0;
}

bool ReadSubject(const X509* certificate, VerifyKey& subject) {
  const EVP_PKEY* const key = X509_get0_pubkey(certificate);
  return (key != nullptr && VerifyKeyOf(key, subject)) ||
         Refuse("the %s certifies a key of another kind, not Ed25519", kRole);
}

bool IsGoodForFirmware(X509* certificate) {
  if (!IsInItsTerm(certificate)) return Refuse("the %s is not valid today", kRole);
  if (!MaySign(certificate)) return Refuse("the %s may not be used for signatures", kRole);
  return MaySignCode(certificate) ||
         Refuse(
             "the %s may not be used for code signing: its extended key usage names other "
             "purposes",
             kRole);
}

}  // namespace

bool ReadSubCertificate(const std::string& path, const VerifyKey& issuer, VerifyKey& subject) {
  WipedBytes text;
  WipedBytes der;
  if (!ReadSmallFile(kRole, path, text) || !DecodePem(kRole, text.Text(), "CERTIFICATE", der)) {
    return false;
  }
  const CertificateHandle certificate = Parse(der);
  if (certificate == nullptr)
    return Refuse("the %s is not an X.509 certificate in DER form", kRole);
  const KeyHandle issuer_key = HandleOf(issuer);
  if (issuer_key == nullptr || X509_verify(certificate.get(), issuer_key.get()) != 1) {
    return Refuse("the %s is not signed by the verify key", kRole);
  }
  if (!IsGoodForFirmware(certificate.get()) || !ReadSubject(certificate.get(), subject)) {
    return false;
  }
  return NamesAnotherIssuer(certificate.get(), issuer, subject) ||
         Refuse("the %s names itself as its issuer, but the verify key has signed it", kRole);
}

}  // namespace signer
