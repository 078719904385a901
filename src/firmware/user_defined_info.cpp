// SPDX-License-Identifier: MIT
#include "firmware/user_defined_info.h"

#include <cstdio>

#include "base/string_util.h"
#include "base/transform.h"
#include "settings/profile.h"

using namespace zvisp;

namespace {

using Info = STRUCT_CP_GET_USER_DEFINED_BIN_INFO;

constexpr std::size_t kTextCapacity = 260;  // wide units of a text value, terminating zero included
constexpr std::uint32_t kRecordModes = 3;
constexpr int kVersionModes = 2;

// The record mode of a text. A wrong one is reported; unless it is fatal, the mode stays 0.
struct RecordModeRow {
  const wchar_t* key;
  std::uint32_t Info::*mode;
  bool fatal;
  const char* complaint;
};

struct IgnoreRow {
  const wchar_t* key;
  std::uint32_t Info::*ignore;
};

// A text, how its list of numbers reads, and where both go.
struct TextRow {
  const wchar_t* key;
  std::uint32_t Info::*mode;
  std::string Info::*text;
  std::string (*format)(int number, bool is_first);
};

// Empty for a code that is not a character. Zero is such a code, because text ends there.
std::string FormatCharacter(int code, bool /*is_first*/) {
  const wchar_t text[] = {static_cast<wchar_t>(code), L'\0'};
  return CCpTransform().ConvertUnicodeStringToUTF8(text);
}

std::string FormatVersionNumber(int number, bool is_first) {
  return std::string(is_first ? "" : ".") + std::to_string(number);
}

// All in the order in which they are read.
// clang-format off
constexpr RecordModeRow kRecordModeRows[] = {
  // key                   mode                       fatal  complaint
  {L"RecordSIMode",       &Info::nRecordSIMode,       false, "Record si mode setting error!"},
  {L"RecordModelMode",    &Info::nRecordModelMode,    false, "Record model mode setting error!"},
  {L"RecordPanelMode",    &Info::nRecordPanelMode,    false, "Record panel mode setting error!"},
  {L"RecordVersionMode",  &Info::nRecordVersionMode,  true,  "Record version mode setting error!"},
};

constexpr IgnoreRow kIgnoreRows[] = {
  // key                   ignore
  {L"IgnoreSIName",       &Info::bIgnoreSIName},
  {L"IgnoreModelName",    &Info::bIgnoreModelName},
  {L"IgnorePanelName",    &Info::bIgnorePanelName},
  {L"IgnoreVersionName",  &Info::bIgnoreVersionName},
};

constexpr TextRow kTextRows[] = {
  // key           mode                       text                  format
  {L"SIName",     &Info::nRecordSIMode,      &Info::strSIName,     FormatCharacter},
  {L"ModelName",  &Info::nRecordModelMode,   &Info::strModelName,  FormatCharacter},
  {L"PanelName",  &Info::nRecordPanelMode,   &Info::strPanelName,  FormatCharacter},
  {L"Version",    &Info::nRecordVersionMode, &Info::strVersion,    FormatVersionNumber},
};
// clang-format on

// The identification file, opened anew for each key.
class InfoFile {
 public:
  explicit InfoFile(const std::string& dir)
      : m_path(CCpTransform().ConvertUTF8StringToUnicode(dir + "IspUserDefined.txt")) {}

  int Int(const wchar_t* key) const {
    return CpZvGetPrivateProfileIntW(kSection, key, 0, m_path.c_str());
  }
  std::wstring Text(const wchar_t* key) const {
    return ReadProfileText(kSection, key, m_path.c_str(), kTextCapacity);
  }

 private:
  static constexpr const wchar_t* kSection = L"UserDefinedInfo";
  std::wstring m_path;
};

bool ReadRecordModes(const InfoFile& file, Info& info) {
  for (const RecordModeRow& row : kRecordModeRows) {
    const auto mode = static_cast<std::uint32_t>(file.Int(row.key));
    if (mode < kRecordModes) {
      info.*row.mode = mode;
    } else {
      std::printf("%s", row.complaint);
      if (row.fatal) return false;
    }
  }
  return true;
}

bool ReadVersionMode(const InfoFile& file, Info& info) {
  const int mode = file.Int(L"FindBinUseVerMode");
  // Unlike the record modes, a negative number passes here, and then selects no file.
  if (mode >= kVersionModes) {
    std::printf("Find bin version mode setting error!");
    return false;
  }
  info.eFindBinUseVerMode = static_cast<ENUM_FIND_BIN_MODE_USE_VER_MODE>(mode);
  return true;
}

bool ReadIgnores(const InfoFile& file, Info& info) {
  bool all_ignored = true;
  for (const IgnoreRow& row : kIgnoreRows) {
    info.*row.ignore = static_cast<std::uint32_t>(file.Int(row.key));
    if (info.*row.ignore == 0) all_ignored = false;
  }
  if (all_ignored) std::printf("Ignore setting error!");
  return !all_ignored;
}

// Stores the text for a list of numbers such as "77 49"; false when a piece is not a number.
bool StoreNumbers(const TextRow& row, const std::string& list, Info& info) {
  std::string text;
  bool is_first = true;
  for (const std::string& piece : StringSplit(list, " ", 0)) {
    int number = 0;
    if (!StringtoInt(piece, number)) return false;
    text += row.format(number, is_first);
    is_first = false;
  }
  info.*row.text = text;
  return true;
}

bool ReadTexts(const InfoFile& file, Info& info) {
  for (const TextRow& row : kTextRows) {
    std::wstring value = file.Text(row.key);
    const bool is_plain = info.*row.mode == 0;
    if (is_plain) DeleteBlankW(value);
    const std::string text = CCpTransform().ConvertUnicodeStringToUTF8(value);
    if (text.empty()) continue;
    if (is_plain) {
      info.*row.text = text;
    } else if (!StoreNumbers(row, text, info)) {
      return false;
    }
  }
  return true;
}

bool HasText(const Info& info) {
  for (const TextRow& row : kTextRows) {
    if (!(info.*row.text).empty()) return true;
  }
  return false;
}

}  // namespace

int GetUserDefinedInfoFromTxt(const std::string& dir, STRUCT_CP_GET_USER_DEFINED_BIN_INFO& info) {
  const InfoFile file(dir);
  const bool usable = ReadRecordModes(file, info) && ReadVersionMode(file, info) &&
                      ReadIgnores(file, info) && ReadTexts(file, info) && HasText(info);
  return usable ? 1 : 0;
}
