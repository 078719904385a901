// SPDX-License-Identifier: MIT
//
// A whole command line through ParseArgs, in a directory with some firmware and settings files.
// Input: one word a line; file names come from the dictionary.
//
// Promises: an accepted line gives what support/command_line_model.h expects of it, and the same
// command line gives the same verdict and the same bytes.
#include <unistd.h>

#include <cstring>

#include "cmdline/isp_args_parse.h"
#include "support/argument_vector.h"
#include "support/command_line_model.h"

namespace {

using Setting = STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING;

// A path of 258 bytes, of which a bank entry has room for 256 and the signature record for all, and
// another file that has the first 256 of them.
void MakeLongPaths() {
  std::string name = std::string(256 - FuzzDirectory().size(), 'p');
  WriteFile(name, "x");
  WriteFile(name + "py", "x");
  // The dictionary and the seeds cannot know how long the directory's name is.
  PROMISE(symlink((name + "py").c_str(), "long.bin") == 0);
}

// The bytes of two records; entries above the count are not used.
bool IsSame(const Setting& left, const Setting& right) {
  constexpr std::size_t kBanks =
      offsetof(Setting, stMapFw) + offsetof(STRUCT_C_STYLE_MAP_FW, stBank);
  constexpr std::size_t kAfterBanks = offsetof(Setting, stFlagSetting);
  const auto* const a = reinterpret_cast<const char*>(&left);
  const auto* const b = reinterpret_cast<const char*>(&right);
  const std::size_t used = left.stMapFw.ulCount * sizeof(STRUCT_C_STYLE_FW_BANK_SETTING);
  return std::memcmp(a, b, kBanks + used) == 0 &&
         std::memcmp(a + kAfterBanks, b + kAfterBanks, sizeof(Setting) - kAfterBanks) == 0;
}

bool IsSame(const CCpIspArgsParse& left, const CCpIspArgsParse& right) {
  return IsSame(left.GetISPCmdSetting(), right.GetISPCmdSetting()) &&
         std::memcmp(&left.GetDigitalSignArgs(), &right.GetDigitalSignArgs(),
                     sizeof(STRUCT_C_STYLE_CP_DIGITAL_SIGN_ARGS)) == 0;
}

}  // namespace

void PrepareTarget() {
  PROMISE(chdir(FuzzDirectory().c_str()) == 0);
  WriteFile("empty.bin", "");
  WriteFile("one.bin", std::string(65536, 'x'));
  WriteFile("two.bin", std::string(65537, 'x'));
  WriteFile("fw_1.bin", "x");
  WriteFile("huge.bin", "");
  PROMISE(truncate("huge.bin", 300 * 65536) == 0);
  WriteFile("full.bin", "");
  PROMISE(truncate("full.bin", 255 * 65536) == 0);
  MakeLongPaths();
  WriteFile("s.ini", "[ISP_Fw]\nstrFwPrefix=fw_\n");
  WriteFile(
      "IspUserDefined.txt",
      "[UserDefinedInfo]\nModelName=tw\nIgnoreSIName=1\nIgnorePanelName=1\nIgnoreVersionName=1\n");
}

void FuzzInput(const std::uint8_t* data, std::size_t size) {
  InputLines lines(data, size);
  ArgumentVector arguments(lines);
  STRUCT_CP_ISP_CMD_ARGS args;
  CCpIspArgsParse first;
  const int accepted = first.ParseArgs(arguments.Count(), arguments.Fresh(), args);
  PROMISE(accepted == 0 || accepted == 1);
  if (accepted != 0) CheckAgainstModel(args, first, FuzzDirectory());

  CCpIspArgsParse second;
  PROMISE(second.ParseArgs(arguments.Count(), arguments.Fresh()) == accepted);
  PROMISE(IsSame(first, second));
}
