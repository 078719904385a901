// SPDX-License-Identifier: MIT
#include "settings/isp_setting.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cwchar>
#include <iterator>
#include <limits>
#include <string>
#include <utility>
#include <vector>

#include "base/path.h"
#include "base/string_util.h"
#include "base/transform.h"
#include "settings/profile.h"

using namespace zvisp;

namespace {

using Record = STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING;

// A scalar setting: its place in the file, and the field of the record that it fills.
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

constexpr const wchar_t* kFirmwareSection = L"ISP_Fw";

// The keys of the firmware list, collected so that the settings file is written once.
class FirmwareList {
 public:
  explicit FirmwareList(std::uint32_t count) { Add(L"fwFileCount", Decimal(count)); }

  void AddTargetBank(std::uint32_t number, std::uint32_t value) {
    Add(Key(number, L"TargetBank"), Decimal(value));
  }
  void AddFile(std::uint32_t number, const wchar_t* path) {
    Add(Key(number, L"FileBank"), Decimal(number));
    Add(Key(number, L"Path"), path);
  }
  void WriteTo(const wchar_t* settings) const {
    WriteProfileChanges(kFirmwareSection, m_changes, settings);
  }

 private:
  static std::wstring Key(std::uint32_t number, const wchar_t* kind) {
    return L"fw" + Decimal(number) + L"_" + kind;
  }
  // Kept quirk: numbers are signed, so that the target bank 0xFFFFFFFF is written as -1.
  static std::wstring Decimal(std::uint32_t value) {
    return std::to_wstring(static_cast<std::int32_t>(value));
  }
  void Add(std::wstring key, std::wstring value) {
    m_changes.push_back({std::move(key), std::move(value)});
  }

  std::vector<ProfileChange<std::wstring>> m_changes;
};

}  // namespace

void GetDefaultSettingFilePathName(wchar_t* output, unsigned int output_size) {
  // Not even the terminating zero fits.
  if (output_size == 0) return;
  const CCpZvString path = GetCurrentProcessDir(nullptr) + L"IspSetting.ini";
  const bool fits = output_size > static_cast<unsigned int>(path.GetLength());
  std::wcscpy(output, fits ? path.GetString() : L"");
}

void zvisp::FillSettingFilePath(const std::string& setting_file,
                                wchar_t (&wszSettingFilePath)[kPathCapacity]) {
  // A plug-in receives the record whole, so nothing of a longer path from before may be left.
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

std::string zvisp::ReadFwPrefix(const wchar_t* settings) {
  return CCpTransform().ConvertUnicodeStringToUTF8(
      ReadProfileText(kFirmwareSection, L"strFwPrefix", settings, kPathCapacity));
}

bool GetFwBankCount(CCpZvString path, unsigned int& banks) {
  std::uint64_t bytes = 0;
  const char* const name = path.GetStringBufferBaseOnOS();
  if (!GetRegularFileSize(name, bytes)) {
    std::printf("File open fail! %s\n", name);
    return false;
  }
  const std::uint64_t count = bytes / kFwBankBytes + (bytes % kFwBankBytes != 0 ? 1 : 0);
  // Unlike the count of the firmware slots, this one does not cut the size to 32 bits.
  constexpr std::uint64_t kMost = std::numeric_limits<unsigned int>::max();
  banks = static_cast<unsigned int>(std::min(count, kMost));
  return true;
}

void SaveFwPathFromFile(CCpZvString fw, CCpZvString settings, unsigned int start_bank) {
  unsigned int banks = 0;
  if (!GetFwBankCount(fw, banks)) return;
  FirmwareList list(banks);
  for (unsigned int i = 0; i < banks; ++i) {
    list.AddTargetBank(i, start_bank + i);
    list.AddFile(i, fw.GetString());
  }
  list.WriteTo(settings.GetString());
}

std::uint32_t STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING::LoadSetting() {
  for (const SettingRow& row : kSettings) {
    this->*row.field = static_cast<std::uint32_t>(
        CpZvGetPrivateProfileIntW(row.section, row.key, row.default_value, wszSettingFilePath));
  }
  return ulProgStartBank;
}

void STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING::SaveSetting() {
  FirmwareList list(stMapFw.ulCount);
  // Kept quirk: the target bank names the key and the index is the value. Whoever wants the target
  // bank of file i looks for the key whose value is i. Files in the field are written that way.
  const std::uint32_t entries = std::min<std::uint32_t>(stMapFw.ulCount, kMapFwCapacity);
  for (std::uint32_t i = 0; i < entries; ++i) {
    list.AddTargetBank(stMapFw.ulTargetBank[i], i);
    list.AddFile(i, stMapFw.stBank[i].wszPath);
  }
  list.WriteTo(wszSettingFilePath);
}
