// SPDX-License-Identifier: MIT
#include "app/verified_file.h"

#include <string.h>

#include <algorithm>
#include <cstdint>
#include <iterator>

#include "base/transform.h"

namespace zvisp {

namespace {

std::string PathOf(const STRUCT_C_STYLE_FW_BANK_SETTING& bank) {
  const wchar_t* const end = std::find(bank.wszPath, std::end(bank.wszPath), L'\0');
  return CCpTransform().ConvertUnicodeStringToUTF8({bank.wszPath, end});
}

}  // namespace

VerifiedFile::VerifiedFile(const STRUCT_C_STYLE_CP_DIGITAL_SIGN_ARGS& args)
    : m_path(args.szFwFile, strnlen(args.szFwFile, kSignTextCapacity)),
      m_identity(LookAtFile(m_path)) {}

bool VerifiedFile::IsUnchanged() const {
  return LookAtFile(m_path) == m_identity;
}

// Paths are compared, not files: a link that leads to the verified file now may lead to another one
// when the plug-in opens it.
bool VerifiedFile::IsIn(const STRUCT_C_STYLE_MAP_FW& map) const {
  const auto count = std::min<std::uint32_t>(map.ulCount, kMapFwCapacity);
  return std::any_of(map.stBank, map.stBank + count,
                     [this](const auto& bank) { return PathOf(bank) == m_path; });
}

}  // namespace zvisp
