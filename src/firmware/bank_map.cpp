// SPDX-License-Identifier: MIT
#include "firmware/bank_map.h"

#include <algorithm>

#include "base/string_util.h"

using namespace zvisp;

namespace {

// Wide units of a bank entry's path that are filled; plug-ins have always seen at most these.
constexpr std::size_t kBankPathUnits = 256;

STRUCT_FW_BANK_SETTING FromCStyle(const STRUCT_C_STYLE_FW_BANK_SETTING& bank) {
  STRUCT_FW_BANK_SETTING entry;
  entry.ulReserved = bank.ulReserved;
  entry.ulBank = bank.ulFileBank;
  entry.strFwPath = bank.wszPath;
  return entry;
}

}  // namespace

void CopyMapFwToCStyleStruct(STRUCT_C_STYLE_MAP_FW& out, const FwBankMap& bankMap) {
  out.ulCount = 0;
  for (const auto& [target_bank, entry] : bankMap) {
    // The caller has checked the number (FitsTheRecord). This only keeps the write inside the
    // array.
    if (out.ulCount == kMapFwCapacity) return;
    out.ulTargetBank[out.ulCount] = target_bank;
    STRUCT_C_STYLE_FW_BANK_SETTING& bank = out.stBank[out.ulCount];
    bank.ulReserved = entry.ulReserved;
    bank.ulFileBank = entry.ulBank;
    CopyWideToBuffer(entry.strFwPath.GetString(), kBankPathUnits, bank.wszPath, kPathCapacity);
    ++out.ulCount;
  }
}

void CopyCStyleStructToMapFw(FwBankMap& out, const STRUCT_C_STYLE_MAP_FW& map) {
  out.clear();
  // The record may come from a host, with any count in it.
  const std::uint32_t count = std::min<std::uint32_t>(map.ulCount, kMapFwCapacity);
  for (std::uint32_t i = 0; i < count; ++i) {
    out[map.ulTargetBank[i]] = FromCStyle(map.stBank[i]);
  }
}
