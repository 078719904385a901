// SPDX-License-Identifier: MIT
//
// A whole command line through ParseArgs, in a directory with some firmware and settings files.
// Input: one word a line; file names come from the dictionary.
//
// Promises: every text in both records is terminated, accepted or not; the bank map is in order
// and within its bounds; an accepted line has one known action and values in their ranges; and the
// same command line gives the same verdict and the same bytes.
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <iterator>

#include "cmdline/isp_args_parse.h"
#include "support/fuzzing.h"

namespace {

template <typename Unit, std::size_t kCapacity>
bool IsTerminated(const Unit (&text)[kCapacity]) {
  return std::find(std::begin(text), std::end(text), Unit{}) != std::end(text);
}

void CheckTexts(const CCpIspArgsParse& parser) {
  const auto& setting = parser.GetISPCmdSetting();
  PROMISE(IsTerminated(setting.wszSettingFilePath));
  PROMISE(IsTerminated(setting.stDumpFlash.wszDumpFile));
  for (const auto& bank : setting.stMapFw.stBank) {
    PROMISE(IsTerminated(bank.wszPath));
  }
  const auto& sign = parser.GetDigitalSignArgs();
  for (const auto* const text :
       {&sign.szFwFile, &sign.szSignatureFile, &sign.szKeyPair, &sign.szVerifyKeyFile,
        &sign.szSignKeyFile, &sign.szSubCertFile, &sign.szNextVerifyKeyFile}) {
    PROMISE(IsTerminated(*text));
  }
}

void CheckBankMap(const STRUCT_C_STYLE_MAP_FW& map) {
  PROMISE(map.ulCount <= 256);
  for (std::uint32_t i = 1; i < map.ulCount; ++i) {
    PROMISE(map.ulTargetBank[i - 1] < map.ulTargetBank[i]);
  }
}

void CheckAccepted(const STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING& setting) {
  PROMISE(setting.enumActionType >= 1 && setting.enumActionType <= 25);
  PROMISE(setting.enumVersionLocationType <= 8);
  PROMISE(setting.enumUserDefinedVersionType <= 3);
  PROMISE(setting.enumDigitalSignatureType <= 2);
  PROMISE(setting.enumCommID <= 16);
  PROMISE(setting.enumIspMode == 1 || setting.enumIspMode == 2);
  PROMISE(setting.stMergeFwInfo.ulLength <= 16);
}

int Parse(CCpIspArgsParse& parser, const std::vector<std::string>& lines) {
  std::vector<std::string> words = lines;
  words.insert(words.begin(), "zvisp");
  std::vector<char*> argv;
  for (std::string& word : words) {
    argv.push_back(word.data());
  }
  argv.push_back(nullptr);
  return parser.ParseArgs(static_cast<int>(words.size()), argv.data());
}

bool IsSame(const CCpIspArgsParse& left, const CCpIspArgsParse& right) {
  return std::memcmp(&left.GetISPCmdSetting(), &right.GetISPCmdSetting(),
                     sizeof(STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING)) == 0 &&
         std::memcmp(&left.GetDigitalSignArgs(), &right.GetDigitalSignArgs(),
                     sizeof(STRUCT_C_STYLE_CP_DIGITAL_SIGN_ARGS)) == 0;
}

}  // namespace

int LLVMFuzzerInitialize(int* /*argc*/, char*** /*argv*/) {
  PROMISE(std::freopen("/dev/null", "w", stdout) != nullptr);
  PROMISE(chdir(FuzzDirectory().c_str()) == 0);
  WriteFile("empty.bin", "");
  WriteFile("one.bin", std::string(65536, 'x'));
  WriteFile("two.bin", std::string(65537, 'x'));
  WriteFile("fw_1.bin", "x");
  WriteFile("huge.bin", "");
  PROMISE(truncate("huge.bin", 300 * 65536) == 0);
  WriteFile("s.ini", "[ISP_Fw]\nstrFwPrefix=fw_\n");
  WriteFile(
      "IspUserDefined.txt",
      "[UserDefinedInfo]\nModelName=tw\nIgnoreSIName=1\nIgnorePanelName=1\nIgnoreVersionName=1\n");
  return 0;
}

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::vector<std::string> lines = InputLines(data, size).AllWords();
  CCpIspArgsParse first;
  const int accepted = Parse(first, lines);
  PROMISE(accepted == 0 || accepted == 1);
  CheckTexts(first);
  CheckBankMap(first.GetISPCmdSetting().stMapFw);
  if (accepted != 0) CheckAccepted(first.GetISPCmdSetting());

  CCpIspArgsParse second;
  PROMISE(Parse(second, lines) == accepted);
  PROMISE(IsSame(first, second));
  return 0;
}
