// SPDX-License-Identifier: MIT
#include "line/job/judged_files.h"

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <set>
#include <system_error>

#include "base/transform.h"

namespace line {

namespace {

namespace fs = std::filesystem;

void AddOnce(const std::string& path, std::vector<std::string>& files) {
  const std::string name = OneNameOf(path);
  if (std::find(files.begin(), files.end(), name) == files.end()) files.push_back(name);
}

// A file has an entry for each of its banks.
std::set<std::wstring> BankFiles(const STRUCT_C_STYLE_MAP_FW& map) {
  std::set<std::wstring> paths;
  for (std::uint32_t i = 0; i < map.ulCount; ++i) {
    paths.insert(map.stBank[i].wszPath);
  }
  return paths;
}

}  // namespace

std::string OneNameOf(const std::string& path) {
  std::error_code failure;
  const fs::path full = fs::canonical(path, failure);
  return failure ? path : full.string();
}

bool IsOrdinaryFile(const std::string& path) {
  std::error_code failure;
  return fs::is_regular_file(path, failure) && !failure;
}

std::vector<std::string> FilesOf(const JudgedWords& words) {
  std::vector<std::string> files;
  for (const std::wstring& path : BankFiles(words.setting->stMapFw)) {
    AddOnce(CCpTransform().ConvertUnicodeStringToUTF8(path), files);
  }
  const char(&boot)[kPathCapacity] = words.setting->szBootFwPath;
  if (boot[0] != '\0') AddOnce({boot, strnlen(boot, sizeof boot)}, files);
  for (const auto field : kSignFiles) {
    const char(&text)[kSignTextCapacity] = (*words.sign_args).*field;
    const std::string path(text, strnlen(text, sizeof text));
    if (IsOrdinaryFile(path)) AddOnce(path, files);
  }
  return files;
}

}  // namespace line
