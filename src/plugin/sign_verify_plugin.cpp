// SPDX-License-Identifier: MIT
#include "plugin/sign_verify_plugin.h"

#include <cstdio>

#include "plugin/dynamic_library.h"

using namespace zvisp;

using enum ExportNeed;

struct CCpSignVerify::Table {
  // clang-format off
  static constexpr ExportRow<CCpSignVerify> kRows[] = {
    // symbol                  need       member
    {"VerifySignatureExport", kRequired, Slot<&CCpSignVerify::m_verify>},
    {"SignFwExport",          kRequired, Slot<&CCpSignVerify::m_sign>},
  };
  // clang-format on
};

std::vector<ExportName> CCpSignVerify::ExportNames() {
  return NamesOfExports(Table::kRows);
}

void CCpSignVerify::Init() {
  m_library = nullptr;
  UnbindExports(*this, Table::kRows);
}

bool CCpSignVerify::LoadSignVerfiyDllFile(const wchar_t* path) {
  FreeSignVerfiyDllFile();
  const OpenedLibrary opened = OpenLibrary(path);
  if (opened.handle == nullptr) {
    std::printf("dlopen - %s\n", opened.reason.c_str());
    return false;
  }
  m_library = opened.handle;
  if (BindExports(m_library, *this, Table::kRows)) return true;
  std::printf("dlsym - %s\n", LastLoaderError());
  FreeSignVerfiyDllFile();
  return false;
}

void CCpSignVerify::FreeSignVerfiyDllFile() {
  if (CloseLibrary(m_library)) Init();
}

int CCpSignVerify::SignFw(const STRUCT_C_STYLE_CP_DIGITAL_SIGN_ARGS* args) const {
  if (!m_sign.IsBound()) return kSignPluginNotLoaded;
  // The plug-in answers 1 for success, the tool 0.
  return m_sign(args) != 0 ? 0 : kSigningFailed;
}

int CCpSignVerify::VerifySignature(const STRUCT_C_STYLE_CP_DIGITAL_SIGN_ARGS* args,
                                   char* key) const {
  if (!m_verify.IsBound()) return kSignPluginNotLoaded;
  return m_verify(args, key) != 0 ? 0 : kVerificationFailed;
}
