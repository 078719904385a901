// SPDX-License-Identifier: MIT
#include "firmware/firmware_slots.h"

#include <cstdio>

#include "base/path.h"
#include "base/string_util.h"

using namespace zvisp;

namespace {

constexpr int kMaxStartBank = 255;
constexpr int kMissingStartBank = -1;

bool NeedsFirmwareFiles(const STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING& setting) {
  // To record the version of a firmware file, that file is read.
  return zvisp::ProgramsFirmware(setting.enumActionType) ||
         (setting.enumActionType == CP_ISPTOOL_ACTION_RECORD_VERSION &&
          (setting.enumVersionLocationType == VERSION_LOCATION_FW_BIN ||
           setting.enumVersionLocationType == VERSION_LOCATION_FW_BIN_CMD));
}

// True when a claimed bank lies in [start, start + banks). Start banks are at most 255, so the
// difference cannot wrap.
bool IsAnyBankTaken(const FwBankMap& bankMap, unsigned int start, unsigned int banks) {
  const auto first = bankMap.lower_bound(start);
  return banks > 0 && first != bankMap.end() && first->first - start < banks;
}

// The record has room for 256 entries. Refused before any bank is claimed, because a map that is
// cut would program half a file.
bool FitsTheRecord(std::size_t count) {
  if (count <= kMapFwCapacity) return true;
  std::printf("Program fw bank count out of range! %zu banks, at most %d\n", count,
              static_cast<int>(kMapFwCapacity));
  return false;
}

void ClaimBanks(const CCpZvString& path, unsigned int start, unsigned int banks,
                FwBankMap& bankMap) {
  for (unsigned int i = 0; i < banks; ++i) {
    STRUCT_FW_BANK_SETTING& entry = bankMap[start + i];
    entry.ulBank = i;
    entry.strFwPath = path;
  }
}

int ExpandSlot(const STRUCT_FW_BANK_SETTING& slot, const std::string& directory,
               FwBankMap& bankMap) {
  std::string path = slot.strFwPath.GetUtf8String();
  unsigned int banks = 0;
  if (GetFwBankCount(directory, path, banks) == 0) return 0;
  if (IsAnyBankTaken(bankMap, slot.ulBank, banks)) {
    std::printf("Program fw bank duplicate!\n");
    return 0;
  }
  if (!FitsTheRecord(bankMap.size() + banks)) return 0;
  CCpZvString full_path;
  full_path = path;
  ClaimBanks(full_path, slot.ulBank, banks, bankMap);
  return 1;
}

}  // namespace

bool zvisp::ProgramsFirmware(std::uint32_t action) {
  switch (action) {
    case CP_ISPTOOL_ACTION_ISP:
    case CP_ISPTOOL_ACTION_ISP_USER:
    case CP_ISPTOOL_ACTION_ISP_DIFF:
    case CP_ISPTOOL_ACTION_ISP_COPY:
    case CP_ISPTOOL_ACTION_FACTORY_ISP:
      return true;
    default:
      return false;
  }
}

int InsertCommandFwFile(FwBankMap& slots, unsigned int slot, const std::wstring& path) {
  STRUCT_FW_BANK_SETTING& entry = slots[slot];
  if (!entry.strFwPath.IsEmpty()) {
    std::printf("Parameter has been detected two or more times! --fw%u \n", slot);
    return 0;
  }
  entry.strFwPath = path;
  return 1;
}

int InsertCommandStartBank(FwBankMap& slots, unsigned int slot, const std::string& text) {
  int bank = 0;
  if (!StringtoInt(text, bank)) {
    std::printf("Parameter illegal! --bank%u %s \n", slot, text.c_str());
    return 0;
  }
  // Before the check of the range: scripts that lose a value pass -1, and match this message.
  if (bank == kMissingStartBank) {
    std::printf("Parameter illegal, start bank value is loss! --bank%u %s \n", slot, text.c_str());
    return 0;
  }
  if (bank < 0 || bank > kMaxStartBank) {
    std::printf("Parameter out of range 0~255! --bank%u %s\n", slot, text.c_str());
    return 0;
  }
  slots[slot].ulBank = static_cast<std::uint32_t>(bank);
  return 1;
}

int GetFwBankCount(const std::string& directory, std::string& path, unsigned int& banks) {
  // "./" gives an empty name the working directory to complain about.
  path = GetFileFullPath(path, directory.empty() ? "./" : directory);
  std::uint64_t bytes = 0;
  if (!GetRegularFileSize(path, bytes)) {
    std::printf("File open fail! %s\n", path.c_str());
    return 0;
  }
  // Kept quirk: only the low 32 bits of the size count, so a file of 4 GiB and 1 byte has one bank.
  const auto low_size = static_cast<std::uint32_t>(bytes);
  banks = low_size / kFwBankBytes + (low_size % kFwBankBytes != 0 ? 1 : 0);
  return 1;
}

int JudgeFwMap(const FwBankMap& slots, const std::string& directory,
               const STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING& setting, FwBankMap& bankMap) {
  if (!NeedsFirmwareFiles(setting)) return 1;
  if (slots.empty()) {
    // A search that left no file in the slots is accepted; the plug-in then gets an empty map.
    if (setting.bSearchFw != 0) return 1;
    std::printf("Program fw bin path should not be empty!\n");
    return 0;
  }
  for (const auto& [slot, entry] : slots) {
    if (ExpandSlot(entry, directory, bankMap) == 0) return 0;
  }
  return 1;
}
