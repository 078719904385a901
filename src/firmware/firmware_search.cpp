// SPDX-License-Identifier: MIT
#include "firmware/firmware_search.h"

#include <dirent.h>

#include <algorithm>
#include <cstdio>
#include <iterator>
#include <memory>
#include <string_view>

#include "base/string_util.h"
#include "settings/isp_setting.h"

using namespace zvisp;

namespace {

using Info = STRUCT_CP_GET_USER_DEFINED_BIN_INFO;

constexpr const char* kFirmwareExtension = ".bin";

// A text of the identification that the file name must contain.
struct CriterionRow {
  std::uint32_t Info::*ignore;
  std::string Info::*text;
  const char* complaint;
};

// In the order in which they narrow the choice.
// clang-format off
constexpr CriterionRow kCriteria[] = {
  // ignore                 text                 complaint
  {&Info::bIgnoreSIName,    &Info::strSIName,    "cann't find fw use userdefined SI name info!\n"},
  {&Info::bIgnoreModelName, &Info::strModelName, "cann't find fw use userdefined model name info!\n"},
  {&Info::bIgnorePanelName, &Info::strPanelName, "cann't find fw use userdefined panel name info!\n"},
};
// clang-format on

struct CloseDirectory {
  void operator()(DIR* directory) const { closedir(directory); }
};

bool IsLongerAndStartsWith(std::string_view name, std::string_view prefix) {
  return name.size() > prefix.size() && name.substr(0, prefix.size()) == prefix;
}

bool IsLongerAndEndsWith(std::string_view name, std::string_view ext) {
  return name.size() > ext.size() && name.substr(name.size() - ext.size()) == ext;
}

void AppendContaining(FileNames& out, const FileNames& candidates, const std::string& text) {
  std::copy_if(candidates.begin(), candidates.end(), std::back_inserter(out),
               [&](const std::string& name) { return name.find(text) != std::string::npos; });
}

// The version with "." for every blank inside it.
std::string DotVersion(const std::string& version) {
  const std::size_t first = std::min(version.find_first_not_of(' '), version.size());
  std::string dotted = version.substr(first, version.find_last_not_of(' ') + 1 - first);
  std::replace(dotted.begin(), dotted.end(), ' ', '.');
  return dotted;
}

// For "1.2.3", drops a name such as "fw_1.bin": it has the major number and nothing more of the
// version. Names without the major number stay.
void AppendExceptMajor(FileNames& out, const FileNames& candidates, const std::string& version) {
  const std::string dotted = DotVersion(version);
  const std::size_t dot = dotted.find('.');
  if (dot == std::string::npos) return;
  const std::string major = dotted.substr(0, dot + 1);
  const std::string key = major + "bin";
  std::copy_if(candidates.begin(), candidates.end(), std::back_inserter(out),
               [&](const std::string& name) {
                 const std::size_t position = name.find(major);
                 return position == std::string::npos || position != name.find(key);
               });
}

// Replaces the candidates by those that contain the texts; false after a message when none do.
bool NarrowByTexts(const Info& info, FileNames& candidates) {
  for (const CriterionRow& row : kCriteria) {
    const std::string& text = info.*row.text;
    if (info.*row.ignore != 0 || text.empty()) continue;
    FileNames kept;
    AppendContaining(kept, candidates, text);
    if (kept.empty()) {
      std::printf("%s", row.complaint);
      return false;
    }
    candidates.swap(kept);
  }
  return true;
}

bool NarrowByVersion(Info& info, FileNames& candidates) {
  if (info.bIgnoreVersionName != 0 || info.strVersion.empty()) return true;
  FileNames kept;
  FindBinUseVersionInfo(kept, candidates, info.eFindBinUseVerMode, info.strVersion);
  if (kept.empty()) {
    std::printf("cann't find fw use userdefined version name info!\n");
    return false;
  }
  candidates.swap(kept);
  return true;
}

}  // namespace

void FindFile(const std::string& dir, FileNames& out, const std::string& ext) {
  // An empty name is the working directory here; opendir would refuse it.
  const std::unique_ptr<DIR, CloseDirectory> directory(opendir(dir.empty() ? "." : dir.c_str()));
  if (directory == nullptr) return;
  while (const dirent* const entry = readdir(directory.get())) {
    if (IsLongerAndEndsWith(entry->d_name, ext)) out.emplace_back(entry->d_name);
  }
}

int GetBinNameFromPrefixSetting(const std::string& dir, const std::string& setting_file,
                                wchar_t (&wszSettingFilePath)[kPathCapacity],
                                std::string& fw_name) {
  FileNames candidates;
  FindFile(dir, candidates, kFirmwareExtension);
  if (candidates.empty()) {
    std::printf("Cannot find bin in current dir!\n");
    return 0;
  }
  FillSettingFilePath(setting_file, wszSettingFilePath);
  const std::string prefix = ReadFwPrefix(wszSettingFilePath);
  if (prefix.empty()) {
    std::printf("Cannot fw prefix setting!\n");
    return 0;
  }
  FileNames matches;
  std::copy_if(candidates.begin(), candidates.end(), std::back_inserter(matches),
               [&](const std::string& name) { return IsLongerAndStartsWith(name, prefix); });
  // Never a guess between several: the wrong firmware can cost a display.
  if (matches.size() != 1) {
    std::printf("find %d match fw base on prefix %s, fail!\n", static_cast<int>(matches.size()),
                prefix.c_str());
    return 0;
  }
  fw_name = matches.front();
  return 1;
}

int FindBinUseVersionInfo(FileNames& out, const FileNames& candidates,
                          ENUM_FIND_BIN_MODE_USE_VER_MODE& mode, const std::string& version) {
  if (mode == FIND_BIN_USE_VER_MODE_CONTAINS) AppendContaining(out, candidates, version);
  if (mode == FIND_BIN_USE_VER_MODE_EXCEPT_MAJOR) AppendExceptMajor(out, candidates, version);
  return 1;
}

int GetUserDefinedBinNameFromTxt(const std::string& dir, std::string& fw_name) {
  FileNames candidates;
  FindFile(dir, candidates, kFirmwareExtension);
  Info info;
  if (GetUserDefinedInfoFromTxt(dir, info) == 0) {
    std::printf("get userdefined info fail!\n");
    return 0;
  }
  if (!NarrowByTexts(info, candidates) || !NarrowByVersion(info, candidates)) return 0;
  if (candidates.size() != 1) {
    std::printf("%d bin file find user userdefined info!\n", static_cast<int>(candidates.size()));
    return 0;
  }
  fw_name = candidates.front();
  return 1;
}
