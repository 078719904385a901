// SPDX-License-Identifier: MIT
//
// The sub-certificate: an X.509 certificate in PEM form that the verify key has signed and whose
// Ed25519 key signs the firmware.
#ifndef ZVISP_SIMULATOR_SIGNER_CERTIFICATE_H_
#define ZVISP_SIMULATOR_SIGNER_CERTIFICATE_H_

#include <string>

#include "signer/keys.h"

namespace signer {

// Gives the certificate's own key, once the issuer's signature holds, the issuer's name is not the
// certificate's own (unless the issuer certifies itself), the present time lies in the
// certificate's term, its key usage (if it states one) includes digital signatures, its extended
// key usage (if it states one) includes code signing, and it has no critical extension that is not
// understood. Prints why otherwise.
bool ReadSubCertificate(const std::string& path, const VerifyKey& issuer, VerifyKey& subject);

}  // namespace signer

#endif  // ZVISP_SIMULATOR_SIGNER_CERTIFICATE_H_
