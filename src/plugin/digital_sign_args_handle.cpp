// SPDX-License-Identifier: MIT
#include "plugin/digital_sign_args_handle.h"

#include <sys/stat.h>

#include <cstdio>
#include <cstring>

#include "base/path.h"
#include "base/string_util.h"

using namespace zvisp;

namespace {

using Args = STRUCT_C_STYLE_CP_DIGITAL_SIGN_ARGS;
using Action = ENUM_CP_DIGITAL_SIGNATURE_ACTION_TYPE;
using Type = ENUM_CP_DIGITAL_SIGNATURE_TYPE;
using SwMode = ENUM_CP_DIGITAL_SIGNATURE_SW_MODE;

constexpr int kLastInternalKeyPair = 4;

// How the messages name each file.
constexpr char kFirmware[] = "fw";
constexpr char kSignature[] = "Signature";
constexpr char kTaveroVerifyKey[] = "Tavero verify key";
constexpr char kTaveroSubCert[] = "Tavero subcert";
constexpr char kExternalSignKey[] = "Zrv external sign key";
constexpr char kExternalVerifyKey[] = "Zrv external verify key";
constexpr char kExternalNextVerifyKey[] = "Zrv external next verify key";
constexpr char kHwSignKey[] = "Zrv hw sign key";
constexpr char kHwNextVerifyKey[] = "Zrv hw next verify key";

// The record may come from a host that filled a field to its last byte.
std::string TextOf(const char* buffer) {
  return std::string(buffer, strnlen(buffer, kSignTextCapacity));
}

bool Refuse(const char* reason) {
  std::printf("Digital signature: %s\n", reason);
  return false;
}

bool IsDirectory(const std::string& path) {
  struct stat look = {};
  return stat(path.c_str(), &look) == 0 && S_ISDIR(look.st_mode);
}

bool IsSymbolicLink(const std::string& path) {
  struct stat look = {};
  return lstat(path.c_str(), &look) == 0 && S_ISLNK(look.st_mode);
}

// Whether the full path of a file to be written is the file that was named. Resolving follows a
// link to another file, and of a directory that does not exist it leaves that directory's name,
// which a signer would then make a file of.
bool IsOwnName(const std::string& name, const std::string& current_dir) {
  const std::string path = IsAbsolutePath(name) ? name : current_dir + name;
  const std::string directory = path.substr(0, path.rfind('/') + 1);
  if (!directory.empty() && !IsDirectory(directory)) {
    std::printf("Digital signature: Signature file is in a directory that does not exist! %s\n",
                path.c_str());
    return false;
  }
  if (IsSymbolicLink(path)) {
    std::printf("Digital signature: Signature file is a symbolic link, name the file itself! %s\n",
                path.c_str());
    return false;
  }
  return true;
}

bool RefuseMissing(const char* role, const std::string& path) {
  std::printf("Digital signature: %s file is not exist! %s\n", role, path.c_str());
  return false;
}

// A path that is cut names another file: what is verified would not be what was meant.
bool Fits(const std::string& path) {
  return path.size() < kSignTextCapacity;
}

}  // namespace

std::string zvisp::DefaultSignatureFile(const std::string& firmware, const std::string& directory) {
  return GetFileFullPath(firmware, directory) + ".sig";
}

bool CCpDigitalSignArgsHandle::JudgeArgument(Args* args) const {
  return JudgeArgumentFwFileAndSigFile(args) && CheckKeys(*args);
}

bool CCpDigitalSignArgsHandle::JudgeArgumentFwFileAndSigFile(Args* args) const {
  const auto action = static_cast<Action>(args->enumActionType);
  return CheckDigitalSignatureType(action, static_cast<Type>(args->enumSignatureType),
                                   static_cast<SwMode>(args->enumSwMode)) &&
         StoreExisting(kFirmware, args->szFwFile) &&
         GetSignatureFile(action, TextOf(args->szFwFile), args->szSignatureFile);
}

bool CCpDigitalSignArgsHandle::CheckDigitalSignatureType(Action action, Type type,
                                                         SwMode sw_mode) const {
  if (action == CP_DIGITAL_SIGNATURE_ACTION_SIGN && type == CP_DIGITAL_SIGNATURE_SW &&
      sw_mode == CP_DIGITAL_SIGNATURE_SW_MODE_TAVERO) {
    return Refuse("Tavero digital signature can not support sign function!");
  }
  if (action == CP_DIGITAL_SIGNATURE_ACTION_VERIFY && type == CP_DIGITAL_SIGNATURE_HW) {
    return Refuse("Hw digital signature can not support verify function!");
  }
  return true;
}

bool CCpDigitalSignArgsHandle::GetSignatureFile(Action action, const std::string& firmware,
                                                char* signature_file) const {
  const std::string given = TextOf(signature_file);
  switch (action) {
    case CP_DIGITAL_SIGNATURE_ACTION_SIGN: {
      // A default name needs no such check: the directory of the firmware file exists.
      if (!given.empty() && !IsOwnName(given, m_current_dir)) return false;
      const std::string path = given.empty() ? DefaultSignatureFile(firmware, m_current_dir)
                                             : GetFileFullPath(given, m_current_dir);
      if (!Fits(path)) return RefuseMissing(kSignature, path);
      CopyUtf8ToBuffer(path, signature_file, kSignTextCapacity);
      return true;
    }
    case CP_DIGITAL_SIGNATURE_ACTION_VERIFY:
      if (given.empty()) return Refuse("Signature file is missing!");
      return StoreExisting(kSignature, signature_file);
    default:
      std::printf("Digital signature: Digital signature action type illegal! %d\n",
                  static_cast<int>(action));
      return false;
  }
}

bool CCpDigitalSignArgsHandle::CheckTaveroKeyFile(char* verify_key, char* sub_cert) const {
  return StoreRequired(kTaveroVerifyKey, verify_key) && StoreRequired(kTaveroSubCert, sub_cert);
}

bool CCpDigitalSignArgsHandle::CheckZrvInternalKey(const std::string& key_pair, int& index) const {
  // Set first, so that a refused text leaves no index from an earlier request.
  index = 0;
  if (key_pair.empty()) return true;
  int number = 0;
  if (!StringtoInt(key_pair, number)) {
    std::printf("Digital signature: Zrv internal key pair value is illegal! --keypair %s \n",
                key_pair.c_str());
    return false;
  }
  if (number < 0 || number > kLastInternalKeyPair) {
    // The slip in the wording stays: scripts match this text.
    std::printf("Digital signature: Zrv Key Pair out if range! --keypair %s\n", key_pair.c_str());
    return false;
  }
  index = number;
  return true;
}

bool CCpDigitalSignArgsHandle::CheckZrvExternalKeyFile(Action action, char* verify_key,
                                                       char* sign_key) const {
  switch (action) {
    case CP_DIGITAL_SIGNATURE_ACTION_SIGN:
      return StoreRequired(kExternalSignKey, sign_key);
    case CP_DIGITAL_SIGNATURE_ACTION_VERIFY:
      return StoreRequired(kExternalVerifyKey, verify_key);
    default:
      return true;
  }
}

bool CCpDigitalSignArgsHandle::CheckZrvExternalNextKeyFile(Action action, char* sign_key,
                                                           char* next_verify_key) const {
  if (!StoreRequired(kExternalNextVerifyKey, next_verify_key)) return false;
  return action != CP_DIGITAL_SIGNATURE_ACTION_SIGN || StoreRequired(kExternalSignKey, sign_key);
}

bool CCpDigitalSignArgsHandle::CheckZrvHwKeyFile(char* sign_key, char* next_verify_key) const {
  if (sign_key[0] != '\0' && !StoreExisting(kHwSignKey, sign_key)) return false;
  return StoreRequired(kHwNextVerifyKey, next_verify_key);
}

// What each type and mode asks for. The hardware modes all ask for the same.
bool CCpDigitalSignArgsHandle::CheckKeys(Args& args) const {
  const auto action = static_cast<Action>(args.enumActionType);
  if (args.enumSignatureType == CP_DIGITAL_SIGNATURE_HW) {
    return CheckZrvHwKeyFile(args.szSignKeyFile, args.szNextVerifyKeyFile);
  }
  if (args.enumSignatureType != CP_DIGITAL_SIGNATURE_SW) return true;
  switch (args.enumSwMode) {
    case CP_DIGITAL_SIGNATURE_SW_MODE_TAVERO:
      return CheckTaveroKeyFile(args.szVerifyKeyFile, args.szSubCertFile);
    case CP_DIGITAL_SIGNATURE_SW_MODE_INTERNAL_KEY:
      return CheckZrvInternalKey(TextOf(args.szKeyPair), args.nKeyPairIndex);
    case CP_DIGITAL_SIGNATURE_SW_MODE_EXTERNAL_KEY:
      return CheckZrvExternalKeyFile(action, args.szVerifyKeyFile, args.szSignKeyFile);
    case CP_DIGITAL_SIGNATURE_SW_MODE_EXTERNAL_NEXT_KEY:
      return CheckZrvExternalNextKeyFile(action, args.szSignKeyFile, args.szNextVerifyKeyFile);
    default:
      return true;
  }
}

// Replaces the name by its full path when that file exists and the path fits.
bool CCpDigitalSignArgsHandle::StoreExisting(const char* role, char* file) const {
  const std::string path = GetFileFullPath(TextOf(file), m_current_dir);
  if (!Fits(path) || !PathFileExist(path)) return RefuseMissing(role, path);
  CopyUtf8ToBuffer(path, file, kSignTextCapacity);
  return true;
}

// The same for a file that must have been given.
bool CCpDigitalSignArgsHandle::StoreRequired(const char* role, char* file) const {
  if (file[0] != '\0') return StoreExisting(role, file);
  std::printf("Digital signature: %s file should not be empty!\n", role);
  return false;
}
