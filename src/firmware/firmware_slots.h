// SPDX-License-Identifier: MIT
//
// The firmware slots of the command line: up to ten files, each with a start bank, and their
// expansion into the bank map. Functions return 1, or 0 after printing one line on standard
// output; nothing is rolled back on a refusal.
//
// A directory text is joined to a relative name as it is, so it ends in "/"; empty, it means the
// working directory.
#ifndef ZVISP_FIRMWARE_FIRMWARE_SLOTS_H_
#define ZVISP_FIRMWARE_FIRMWARE_SLOTS_H_

#include <cstdint>
#include <string>

#include "firmware/bank_map.h"

namespace zvisp {

// True for the actions that write firmware files to the display.
bool ProgramsFirmware(std::uint32_t action);

}  // namespace zvisp

// Gives a slot its file. Refuses a slot that already has one.
int InsertCommandFwFile(zvisp::FwBankMap& slots, unsigned int slot, const std::wstring& path);

// Gives a slot its start bank, a number 0..255. The last value given counts.
int InsertCommandStartBank(zvisp::FwBankMap& slots, unsigned int slot, const std::string& text);

// Makes the path a full one and counts the file's banks of 65536 bytes, the last one possibly
// partial. Only the low 32 bits of the size count. Refuses what is not a readable regular file.
int GetFwBankCount(const std::string& directory, std::string& path, unsigned int& banks);

// Expands the slots into `bankMap`, which is empty before, when the action of `setting` needs
// firmware files. Refuses missing firmware, unless a search was asked for, files that cannot be
// opened, a bank that two slots claim, and more than 256 banks. The map counts only when the
// result is 1.
int JudgeFwMap(const zvisp::FwBankMap& slots, const std::string& directory,
               const STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING& setting, zvisp::FwBankMap& bankMap);

#endif  // ZVISP_FIRMWARE_FIRMWARE_SLOTS_H_
