// SPDX-License-Identifier: MIT
#include "settings/isp_setting.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cwchar>
#include <iterator>
#include <limits>

#include "base/path.h"
#include "base/string_util.h"
#include "base/transform.h"
#include "settings/profile.h"

namespace {

using Record = STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING;

// A scalar setting: where it stands in the file, and the field of the record that it fills.
struct SettingRow {
  const wchar_t* section;
  const wchar_t* key;
  // cppcheck-suppress syntaxError  ; version 2.10 does not know pointers to members of an alias
  std::uint32_t Record::*field;
  int default_value;
};

// In the order in which they are read.
// clang-format off
constexpr SettingRow kSettings[] = {
  // section          key                            field                                default
  {L"Communication", L"enumCommID",                 &Record::enumCommID,                 0},
  {L"ISP_Action",    L"enumActionType",             &Record::enumActionType,             CP_ISPTOOL_ACTION_ISP},
  {L"ISP_DualBank",  L"enumDigitalSignatureType",   &Record::enumDigitalSignatureType,   0},
  {L"ISP_DualBank",  L"enumSWDigitalSignatureMode", &Record::enumSWDigitalSignatureMode, 0},
  {L"ISP_DualBank",  L"enumBootCodeType",           &Record::enumBootCodeType,           0},
  {L"ISP_DualBank",  L"enumIspMode",                &Record::enumIspMode,                ISP_MODE_NORMAL},
  {L"ISP_Fw",        L"ulProgStartBank",            &Record::ulProgStartBank,            0},
};
// clang-format on

// The section "ISP_Fw" of one settings file, as the writers of the firmware list see it.
class FirmwareList {
 public:
  explicit FirmwareList(const wchar_t* settings) : m_settings(settings) {}

  void WriteCount(std::uint32_t count) const { Write(L"fwFileCount", Decimal(count)); }
  void WriteTargetBank(std::uint32_t number, std::uint32_t value) const {
    Write(Key(number, L"TargetBank"), Decimal(value));
  }
  void WriteFileBank(std::uint32_t number, std::uint32_t value) const {
    Write(Key(number, L"FileBank"), Decimal(value));
  }
  void WritePath(std::uint32_t number, const wchar_t* path) const {
    Write(Key(number, L"Path"), path);
  }

 private:
  static CCpZvString Key(std::uint32_t number, const wchar_t* kind) {
    CCpZvString key;
    key.Format(L"%ls%d_%ls", L"fw", static_cast<int>(number), kind);
    return key;
  }
  static CCpZvString Decimal(std::uint32_t value) {
    CCpZvString text;
    text.Format(L"%d", static_cast<int>(value));
    return text;
  }
  void Write(const CCpZvString& key, const CCpZvString& value) const {
    CpZvWritePrivateProfileStringW(L"ISP_Fw", key.GetString(), value.GetString(), m_settings);
  }

  const wchar_t* m_settings;
};

}  // namespace

void GetDefaultSettingFilePathName(wchar_t* output, unsigned int output_size) {
  if (output_size == 0) return;
  const CCpZvString path = GetCurrentProcessDir(nullptr) + L"IspSetting.ini";
  const bool fits = output_size > static_cast<unsigned int>(path.GetLength());
  std::wcscpy(output, fits ? path.GetString() : L"");
}

void FillSettingFilePath(const std::string& setting_file,
                         wchar_t (&wszSettingFilePath)[kPathCapacity]) {
  // The record goes to a plug-in whole: no tail of a longer path that stood here before.
  std::fill(std::begin(wszSettingFilePath), std::end(wszSettingFilePath), L'\0');
  if (setting_file.empty()) {
    GetDefaultSettingFilePathName(wszSettingFilePath, kPathCapacity);
    return;
  }
  const std::string directory = GetCurrentProcessDir(nullptr).GetUtf8String();
  const std::string path = GetFileFullPath(setting_file, directory);
  CopyWideToBuffer(CCpTransform().ConvertUTF8StringToUnicode(path), kPathCapacity,
                   wszSettingFilePath, kPathCapacity);
}

bool GetFwBankCount(CCpZvString path, unsigned int& banks) {
  std::uint64_t bytes = 0;
  const char* const name = path.GetStringBufferBaseOnOS();
  if (!GetRegularFileSize(name, bytes)) {
    std::printf("File open fail! %s\n", name);
    return false;
  }
  const std::uint64_t count = bytes / kFwBankBytes + (bytes % kFwBankBytes != 0 ? 1 : 0);
  constexpr std::uint64_t kMost = std::numeric_limits<unsigned int>::max();
  banks = static_cast<unsigned int>(std::min(count, kMost));
  return true;
}

void SaveFwPathFromFile(CCpZvString fw, CCpZvString settings, unsigned int start_bank) {
  unsigned int banks = 0;
  if (!GetFwBankCount(fw, banks)) return;
  const FirmwareList list(settings.GetString());
  list.WriteCount(banks);
  for (unsigned int i = 0; i < banks; ++i) {
    list.WriteTargetBank(i, start_bank + i);
    list.WriteFileBank(i, i);
    list.WritePath(i, fw.GetString());
  }
}

std::uint32_t STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING::LoadSetting() {
  for (const SettingRow& row : kSettings) {
    this->*row.field = static_cast<std::uint32_t>(
        CpZvGetPrivateProfileIntW(row.section, row.key, row.default_value, wszSettingFilePath));
  }
  return ulProgStartBank;
}

void STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING::SaveSetting() {
  const FirmwareList list(wszSettingFilePath);
  list.WriteCount(stMapFw.ulCount);
  // The target bank names the key and the index is the value: who wants the target bank of file i
  // looks for the key whose value is i. Files in the field are written that way.
  const std::uint32_t entries = std::min<std::uint32_t>(stMapFw.ulCount, kMapFwCapacity);
  for (std::uint32_t i = 0; i < entries; ++i) {
    list.WriteTargetBank(stMapFw.ulTargetBank[i], i);
    list.WriteFileBank(i, i);
    list.WritePath(i, stMapFw.stBank[i].wszPath);
  }
}
