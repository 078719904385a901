// SPDX-License-Identifier: MIT
#include <cstring>
#include <filesystem>
#include <map>
#include <system_error>

#include "base/string_util.h"
#include "base/transform.h"
#include "line/job/judged_files.h"
#include "line/supervise/private_copies.h"

using namespace zvisp;

namespace line {

namespace {

namespace fs = std::filesystem;

template <std::size_t kCapacity>
std::string TextIn(const char (&field)[kCapacity]) {
  return {field, strnlen(field, kCapacity)};
}

// Banks of each file as they were judged.
using BankCounts = std::map<std::string, std::uint64_t>;

bool HasItsBanks(const std::string& source, const std::string& copy, std::uint64_t banks,
                 std::string& error) {
  std::error_code failure;
  const std::uint64_t size = fs::file_size(copy, failure);
  if (!failure && (size + kFwBankBytes - 1) / kFwBankBytes == banks) return true;
  error = source + " changed its size since it was judged; try again when nobody writes it.";
  return false;
}

bool CopyBanks(PrivateCopies& copies, STRUCT_C_STYLE_MAP_FW& map, std::string& error) {
  const CCpTransform transform;
  BankCounts counts;
  for (std::uint32_t i = 0; i < map.ulCount; ++i) {
    STRUCT_C_STYLE_FW_BANK_SETTING& bank = map.stBank[i];
    const std::string source = transform.ConvertUnicodeStringToUTF8(bank.wszPath);
    const std::string copy = copies.CopyOf(OneNameOf(source), error);
    if (copy.empty()) return false;
    const std::wstring path = transform.ConvertUTF8StringToUnicode(copy);
    CopyWideToBuffer(path, kPathCapacity - 1, bank.wszPath, kPathCapacity);
    std::uint64_t& banks = counts[copy];
    // The highest index of a file gives the number of its banks.
    banks = std::max<std::uint64_t>(banks, std::uint64_t{bank.ulFileBank} + 1);
  }
  for (const auto& [copy, banks] : counts) {
    if (!HasItsBanks(fs::path(copy).filename().string(), copy, banks, error)) return false;
  }
  return true;
}

template <std::size_t kCapacity>
bool CopyField(PrivateCopies& copies, char (&field)[kCapacity], std::string& error) {
  const std::string copy = copies.CopyOf(OneNameOf(TextIn(field)), error);
  if (copy.empty()) return false;
  CopyUtf8ToBuffer(copy, field, kCapacity);
  return true;
}

}  // namespace

bool UseCopies(PrivateCopies& copies, JudgedWords& words, std::string& error) {
  STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING& setting = *words.setting;
  if (!CopyBanks(copies, setting.stMapFw, error)) return false;
  if (setting.szBootFwPath[0] != '\0' && !CopyField(copies, setting.szBootFwPath, error)) {
    return false;
  }
  for (const auto field : kSignFiles) {
    char(&text)[kSignTextCapacity] = (*words.sign_args).*field;
    if (IsOrdinaryFile(TextIn(text)) && !CopyField(copies, text, error)) return false;
  }
  return true;
}

}  // namespace line
