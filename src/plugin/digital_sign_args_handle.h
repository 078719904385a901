// SPDX-License-Identifier: MIT
//
// CCpDigitalSignArgsHandle: judges a signing or verification request before it reaches the
// signature plug-in, and turns the names of its files into full paths.
//
// Every check prints its one line on standard output when it refuses, and the first refusal ends
// the judgement. A key file that is accepted has its name replaced by the full path. Names are
// UTF-8 in buffers of kSignTextCapacity bytes. A file whose full path does not fit counts as
// missing.
#ifndef ZVISP_PLUGIN_DIGITAL_SIGN_ARGS_HANDLE_H_
#define ZVISP_PLUGIN_DIGITAL_SIGN_ARGS_HANDLE_H_

#include <string>

#include "plugin/digital_sign_args.h"

namespace zvisp {

// The full path of the signature that signing the firmware writes when none is named. The directory
// ends in "/".
std::string DefaultSignatureFile(const std::string& firmware, const std::string& directory);

}  // namespace zvisp

class CCpDigitalSignArgsHandle {
 public:
  // The directory, ending in "/", against which relative names are resolved.
  void SetCurrentDir(const std::string& directory) { m_current_dir = directory; }
  const std::string& GetCurrentDir() const { return m_current_dir; }

  // The whole check: the part below, then the key files or the key-pair index that the type and
  // mode call for. A software type without a mode needs no keys here; the plug-in decides.
  bool JudgeArgument(STRUCT_C_STYLE_CP_DIGITAL_SIGN_ARGS* args) const;

  // The type, the firmware file and the signature file only.
  bool JudgeArgumentFwFileAndSigFile(STRUCT_C_STYLE_CP_DIGITAL_SIGN_ARGS* args) const;

  // Stores the full path of the signature file. Signing without a name takes the default one; no
  // file needs to exist, but a directory that is named has to, and the name is refused when it is a
  // symbolic link's. Verifying needs an existing file.
  bool GetSignatureFile(ENUM_CP_DIGITAL_SIGNATURE_ACTION_TYPE action, const std::string& firmware,
                        char* signature_file) const;

  // Refuses what no plug-in can do: signing with the Tavero scheme, verifying a hardware signature.
  bool CheckDigitalSignatureType(ENUM_CP_DIGITAL_SIGNATURE_ACTION_TYPE action,
                                 ENUM_CP_DIGITAL_SIGNATURE_TYPE type,
                                 ENUM_CP_DIGITAL_SIGNATURE_SW_MODE sw_mode) const;

  // Software mode 1: both files are required.
  bool CheckTaveroKeyFile(char* verify_key, char* sub_cert) const;
  // Software mode 2: stores the index 0..4; an empty text is index 0, and so is a refused one.
  bool CheckZrvInternalKey(const std::string& key_pair, int& index) const;
  // Software mode 3: signing requires the sign key, verifying the verify key.
  bool CheckZrvExternalKeyFile(ENUM_CP_DIGITAL_SIGNATURE_ACTION_TYPE action, char* verify_key,
                               char* sign_key) const;
  // Software mode 4: the next verify key is required, and for signing the sign key as well.
  bool CheckZrvExternalNextKeyFile(ENUM_CP_DIGITAL_SIGNATURE_ACTION_TYPE action, char* sign_key,
                                   char* next_verify_key) const;
  // Hardware type: the sign key is optional, the next verify key is required.
  bool CheckZrvHwKeyFile(char* sign_key, char* next_verify_key) const;

 private:
  bool CheckKeys(STRUCT_C_STYLE_CP_DIGITAL_SIGN_ARGS& args) const;
  bool StoreExisting(const char* role, char* file) const;
  bool StoreRequired(const char* role, char* file) const;

  std::string m_current_dir;
};

#endif  // ZVISP_PLUGIN_DIGITAL_SIGN_ARGS_HANDLE_H_
