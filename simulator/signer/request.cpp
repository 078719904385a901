// SPDX-License-Identifier: MIT
#include "signer/request.h"

#include <string.h>

#include <string>
#include <vector>

#include "signer/certificate.h"
#include "signer/keys.h"
#include "signer/message.h"
#include "signer/output_file.h"
#include "signer/report.h"
#include "signer/signature_file.h"
#include "signer/training_keys.h"

namespace signer {
namespace {

using Args = STRUCT_C_STYLE_CP_DIGITAL_SIGN_ARGS;

constexpr char kSignKey[] = "sign key";
constexpr char kVerifyKey[] = "verify key";
constexpr char kNextVerifyKey[] = "next verify key";

// A field that its host filled to the last byte has no terminating zero.
std::string TextOf(const char (&field)[kSignTextCapacity]) {
  return std::string(field, strnlen(field, sizeof field));
}

// Every file of the request but the signature, also those that its mode does not read.
std::vector<std::string> FilesOf(const Args& args) {
  return {TextOf(args.szFwFile), TextOf(args.szVerifyKeyFile), TextOf(args.szSignKeyFile),
          TextOf(args.szSubCertFile), TextOf(args.szNextVerifyKeyFile)};
}

bool IsHardware(const Args& args) {
  return args.enumSignatureType == CP_DIGITAL_SIGNATURE_HW;
}

bool IsNextKeyMode(const Args& args) {
  return args.enumSwMode == CP_DIGITAL_SIGNATURE_SW_MODE_EXTERNAL_NEXT_KEY;
}

bool RefuseType(const Args& args) {
  return Refuse("signature type %u is neither software nor hardware", args.enumSignatureType);
}

bool RefuseMode(const Args& args) {
  return Refuse("software mode %u is none of 1 to 4", args.enumSwMode);
}

// In software, each mode has one place for its sign key. A key that is missing there is not
// replaced by another one.
bool ChooseSoftwareSignKey(const Args& args, KeyHandle& key) {
  switch (args.enumSwMode) {
    case CP_DIGITAL_SIGNATURE_SW_MODE_TAVERO:
      return Refuse("software mode 1 only verifies");
    case CP_DIGITAL_SIGNATURE_SW_MODE_INTERNAL_KEY:
      return TakeTrainingKey(args.nKeyPairIndex, key);
    case CP_DIGITAL_SIGNATURE_SW_MODE_EXTERNAL_KEY:
    case CP_DIGITAL_SIGNATURE_SW_MODE_EXTERNAL_NEXT_KEY:
      return ReadSignKey(kSignKey, TextOf(args.szSignKeyFile), key);
    default:
      return RefuseMode(args);
  }
}

bool ChooseSignKey(const Args& args, KeyHandle& key) {
  if (args.enumSignatureType == CP_DIGITAL_SIGNATURE_SW) return ChooseSoftwareSignKey(args, key);
  if (!IsHardware(args)) return RefuseType(args);
  const std::string file = TextOf(args.szSignKeyFile);
  return file.empty() ? TakeTrainingKey(args.nKeyPairIndex, key) : ReadSignKey(kSignKey, file, key);
}

// The pair is made anew each time, so no public half of it is stored that could differ.
bool TakeTrainingVerifyKey(int index, VerifyKey& key) {
  KeyHandle pair;
  return TakeTrainingKey(index, pair) && VerifyKeyOf(pair.get(), key);
}

// Without a device, the key that the device holds is taken from a file.
bool ChooseNextKeySchemeKey(const Args& args, const char* device_key, VerifyKey& key) {
  if (device_key != nullptr) return ReadDeviceKey(device_key, key);
  const std::string verify_key = TextOf(args.szVerifyKeyFile);
  if (!verify_key.empty()) return ReadVerifyKey(kVerifyKey, verify_key, key);
  return ReadVerifyKey(kNextVerifyKey, TextOf(args.szNextVerifyKeyFile), key);
}

bool ChooseVerifyKey(const Args& args, const char* device_key, VerifyKey& key) {
  if (IsHardware(args)) return Refuse("a hardware signature is verified by the display only");
  if (args.enumSignatureType != CP_DIGITAL_SIGNATURE_SW) return RefuseType(args);
  VerifyKey issuer;
  switch (args.enumSwMode) {
    case CP_DIGITAL_SIGNATURE_SW_MODE_TAVERO:
      return ReadVerifyKey(kVerifyKey, TextOf(args.szVerifyKeyFile), issuer) &&
             ReadSubCertificate(TextOf(args.szSubCertFile), issuer, key);
    case CP_DIGITAL_SIGNATURE_SW_MODE_INTERNAL_KEY:
      return TakeTrainingVerifyKey(args.nKeyPairIndex, key);
    case CP_DIGITAL_SIGNATURE_SW_MODE_EXTERNAL_KEY:
      return ReadVerifyKey(kVerifyKey, TextOf(args.szVerifyKeyFile), key);
    case CP_DIGITAL_SIGNATURE_SW_MODE_EXTERNAL_NEXT_KEY:
      return ChooseNextKeySchemeKey(args, device_key, key);
    default:
      return RefuseMode(args);
  }
}

// A signature made for one scheme says nothing in another.
bool BelongsToScheme(const Args& args, const Signature& signature) {
  if (signature.type != SignatureType::kSoftware) {
    return Refuse("this is a hardware signature, which is verified by the display only");
  }
  if (IsNextKeyMode(args) == signature.next_verify_key.has_value()) return true;
  return signature.next_verify_key
             ? Refuse("the signature binds a next verify key: verify it in software mode 4")
             : Refuse("the signature binds no next verify key, as software mode 4 requires");
}

// Without a file there is nothing to compare with; the signature covers the key that it binds.
bool BindsTheGivenKey(const Args& args, const Signature& signature) {
  const std::string file = TextOf(args.szNextVerifyKeyFile);
  if (!signature.next_verify_key || file.empty()) return true;
  VerifyKey given;
  if (!ReadVerifyKey(kNextVerifyKey, file, given)) return false;
  return *signature.next_verify_key == given ||
         Refuse("the signature binds another next verify key than the one in %s", file.c_str());
}

}  // namespace

bool SignFirmware(const Args& args) {
  const std::string firmware = TextOf(args.szFwFile);
  const std::string next_verify_key = TextOf(args.szNextVerifyKeyFile);
  KeyHandle key;
  Signature signature;
  if (!ChooseSignKey(args, key)) return false;
  if (IsHardware(args)) signature.type = SignatureType::kHardware;
  if ((IsHardware(args) || IsNextKeyMode(args)) &&
      !ReadVerifyKey(kNextVerifyKey, next_verify_key, signature.next_verify_key.emplace())) {
    return false;
  }
  WipedBytes message;
  // The file is written last, so a request that fails leaves an older signature as it was.
  return ReadMessage(SignedLines(signature), firmware, message) &&
         Sign(key.get(), message, signature.value) &&
         WriteSignatureFile(TextOf(args.szSignatureFile), FormatSignatureFile(signature),
                            FilesOf(args));
}

bool VerifyFirmware(const Args& args, const char* device_key) {
  VerifyKey key;
  Signature signature;
  WipedBytes message;
  return ChooseVerifyKey(args, device_key, key) &&
         ReadSignatureFile(TextOf(args.szSignatureFile), signature) &&
         BelongsToScheme(args, signature) && BindsTheGivenKey(args, signature) &&
         ReadMessage(SignedLines(signature), TextOf(args.szFwFile), message) &&
         IsGenuine(key, message, signature.value);
}

}  // namespace signer
