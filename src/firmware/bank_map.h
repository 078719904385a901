// SPDX-License-Identifier: MIT
//
// The two ordered maps of firmware entries, and the way of the bank map into the record.
//
// Slot map: slot 0..9 of the command line -> start bank and file.
// Bank map: flash bank -> which bank of 65536 bytes of which file goes there.
#ifndef ZVISP_FIRMWARE_BANK_MAP_H_
#define ZVISP_FIRMWARE_BANK_MAP_H_

#include <cstdint>
#include <map>

#include "base/zv_string.h"
#include "plugin/command_setting.h"

// Strict less-than, the order of both maps.
template <typename Key>
struct sortAscending {
  bool operator()(const Key& left, const Key& right) const { return left < right; }
};

// One entry of either map.
struct STRUCT_FW_BANK_SETTING {
  std::uint64_t ulReserved = 0;  // always 0, carried through into the record
  std::uint32_t ulBank = 0;      // slot map: start bank; bank map: index of the bank in its file
  CCpZvString strFwPath;         // slot map: as given; bank map: full path
};

namespace zvisp {

using FwBankMap = std::map<unsigned int, STRUCT_FW_BANK_SETTING, sortAscending<unsigned int>>;

}  // namespace zvisp

// Writes the bank map into the record's map in ascending order of the target bank. Paths are cut
// at 256 units. The caller sees to it that the map has at most 256 entries (JudgeFwMap does); more
// are left out.
void CopyMapFwToCStyleStruct(STRUCT_C_STYLE_MAP_FW& out, const zvisp::FwBankMap& bankMap);

// Reads the valid entries of the record's map back into a bank map, which is emptied first.
void CopyCStyleStructToMapFw(zvisp::FwBankMap& out, const STRUCT_C_STYLE_MAP_FW& map);

#endif  // ZVISP_FIRMWARE_BANK_MAP_H_
