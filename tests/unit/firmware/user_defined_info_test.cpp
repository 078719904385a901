// SPDX-License-Identifier: MIT
#include "firmware/user_defined_info.h"

#include <string>
#include <vector>

#include "support/files.h"
#include "support/profile_file.h"
#include "support/scratch_dir.h"

#include <gtest/gtest.h>

namespace {

// What reading an identification file gave.
struct Identification {
  STRUCT_CP_GET_USER_DEFINED_BIN_INFO info;
  int usable = -1;
  std::string output;
};

// Reads a file whose section holds these lines.
Identification Read(const std::string& lines) {
  setenv("LC_ALL", "C.UTF-8", 1);
  const ScratchDir directory;
  GivenFile(directory / "IspUserDefined.txt", "[UserDefinedInfo]\n" + lines);
  Identification read;
  read.output =
      Printed([&] { read.usable = GetUserDefinedInfoFromTxt(directory.Path() + "/", read.info); });
  return read;
}

TEST(UserDefinedInfo, AFreshRecordIsAllZeroAndEmpty) {
  const STRUCT_CP_GET_USER_DEFINED_BIN_INFO info;
  EXPECT_EQ(info.nRecordSIMode | info.nRecordModelMode | info.nRecordPanelMode, 0u);
  EXPECT_EQ(info.nRecordVersionMode | info.bIgnoreSIName | info.bIgnoreModelName, 0u);
  EXPECT_EQ(info.bIgnorePanelName | info.bIgnoreVersionName, 0u);
  EXPECT_EQ(info.strSIName + info.strModelName + info.strPanelName + info.strVersion, "");
  EXPECT_EQ(static_cast<int>(info.eFindBinUseVerMode), 0);
}

TEST(UserDefinedInfo, ReadsEveryKey) {
  const Identification read = Read(
      "RecordSIMode=0\nRecordModelMode=1\nRecordPanelMode=2\nRecordVersionMode=1\n"
      "FindBinUseVerMode=1\nIgnoreSIName=1\nIgnoreModelName=0\nIgnorePanelName=-1\n"
      "IgnoreVersionName=7\nSIName=AB C\nModelName=77 49\nPanelName=0x50\nVersion=1 2 3\n");
  EXPECT_EQ(read.usable, 1);
  EXPECT_EQ(read.output, "");
  EXPECT_EQ(read.info.nRecordSIMode, 0u);
  EXPECT_EQ(read.info.nRecordModelMode, 1u);
  EXPECT_EQ(read.info.nRecordPanelMode, 2u);
  EXPECT_EQ(read.info.nRecordVersionMode, 1u);
  EXPECT_EQ(static_cast<int>(read.info.eFindBinUseVerMode), 1);
  EXPECT_EQ(read.info.bIgnoreSIName, 1u);
  EXPECT_EQ(read.info.bIgnoreModelName, 0u);
  EXPECT_EQ(read.info.bIgnorePanelName, 0xFFFFFFFFu);
  EXPECT_EQ(read.info.bIgnoreVersionName, 7u);
  EXPECT_EQ(read.info.strSIName, "ABC");
  EXPECT_EQ(read.info.strModelName, "M1");
  EXPECT_EQ(read.info.strPanelName, "P");
  EXPECT_EQ(read.info.strVersion, "1.2.3");
}

TEST(UserDefinedInfo, TextsAreReadAsTheirModeSays) {
  const struct {
    std::string lines, expected;
  } kCases[] = {
      {"SIName= A B ", "AB"},
      {"SIName=\xC3\xBC \xE5\xB1\x8F", "\xC3\xBC\xE5\xB1\x8F"},
      {"RecordSIMode=1\nSIName=65 66", "AB"},
      {"RecordSIMode=2\nSIName=65   0x42  0103", "ABC"},
      {"RecordSIMode=1\nSIName=252 0x5C4F 0x1F5A5", "\xC3\xBC\xE5\xB1\x8F\xF0\x9F\x96\xA5"},
      {"RecordSIMode=1\nSIName=65 0 66", "AB"},
      {"RecordSIMode=1\nSIName=65 0x110000 -1 0xD800 66", "AB"},
      {"RecordSIMode=1\nSIName=127", "\x7F"},
  };
  for (const auto& [lines, expected] : kCases) {
    const Identification read = Read(lines + "\n");
    EXPECT_EQ(read.usable, 1) << lines;
    EXPECT_EQ(read.info.strSIName, expected) << lines;
  }
}

TEST(UserDefinedInfo, VersionNumbersAreJoinedWithDots) {
  const struct {
    std::string lines, expected;
  } kCases[] = {
      {"RecordVersionMode=2\nVersion=2 10", "2.10"},
      {"RecordVersionMode=1\nVersion=0x10 010 -3", "16.8.-3"},
      {"RecordVersionMode=1\nVersion=7", "7"},
      {"RecordVersionMode=1\nVersion=7   8", "7.8"},
      {"Version=1.2 3", "1.23"},
  };
  for (const auto& [lines, expected] : kCases) {
    const Identification read = Read(lines + "\n");
    EXPECT_EQ(read.usable, 1) << lines;
    EXPECT_EQ(read.info.strVersion, expected) << lines;
  }
}

TEST(UserDefinedInfo, APieceThatIsNotANumberFailsSilently) {
  for (const char* lines :
       {"RecordSIMode=1\nSIName=65 x\nModelName=M\n", "RecordModelMode=1\nSIName=A\nModelName=AB\n",
        "RecordPanelMode=2\nSIName=A\nPanelName=0xG\n",
        "RecordVersionMode=1\nSIName=A\nVersion=1.2\n"}) {
    const Identification read = Read(lines);
    EXPECT_EQ(read.usable, 0) << lines;
    EXPECT_EQ(read.output, "") << lines;
  }
}

TEST(UserDefinedInfo, AWrongTextModeIsReportedAndTheTextTakenAsItIs) {
  for (const char* mode : {"3", "5", "-1"}) {
    const std::string value = std::string("=") + mode + "\n";
    const Identification read =
        Read("RecordSIMode" + value + "RecordModelMode" + value + "RecordPanelMode" + value +
             "SIName=65 66\nModelName=67\nPanelName=68\n");
    EXPECT_EQ(read.output,
              "Record si mode setting error!Record model mode setting error!"
              "Record panel mode setting error!");
    EXPECT_EQ(read.usable, 1);
    EXPECT_EQ(read.info.nRecordSIMode, 0u);
    EXPECT_EQ(read.info.strSIName + read.info.strModelName + read.info.strPanelName, "65666768");
  }
}

TEST(UserDefinedInfo, FatalSettingsAreReportedWithoutANewline) {
  const struct {
    std::string lines, output;
  } kCases[] = {
      {"RecordVersionMode=3", "Record version mode setting error!"},
      {"RecordVersionMode=-1", "Record version mode setting error!"},
      {"FindBinUseVerMode=2", "Find bin version mode setting error!"},
      {"RecordSIMode=9\nRecordVersionMode=9\nFindBinUseVerMode=9",
       "Record si mode setting error!Record version mode setting error!"},
      {"IgnoreSIName=1\nIgnoreModelName=-1\nIgnorePanelName=2\nIgnoreVersionName=1",
       "Ignore setting error!"},
  };
  for (const auto& [lines, output] : kCases) {
    const Identification read = Read("SIName=A\n" + lines + "\n");
    EXPECT_EQ(read.usable, 0) << lines;
    EXPECT_EQ(read.output, output) << lines;
  }
}

TEST(UserDefinedInfo, ANegativeFindModePassesUnlikeTheOtherModes) {
  const Identification read = Read("FindBinUseVerMode=-1\nVersion=1\n");
  EXPECT_EQ(read.usable, 1);
  EXPECT_EQ(static_cast<int>(read.info.eFindBinUseVerMode), -1);
}

TEST(UserDefinedInfo, WithoutAnyTextItFailsSilently) {
  for (const char* lines : {"", "SIName=\n", "RecordSIMode=1\nSIName=0\n", "\nSIName=A\n"}) {
    const Identification read = Read(lines);
    EXPECT_EQ(read.usable, 0) << lines;
    EXPECT_EQ(read.output, "") << lines;
  }
  STRUCT_CP_GET_USER_DEFINED_BIN_INFO info;
  EXPECT_EQ(Printed([&] { EXPECT_EQ(GetUserDefinedInfoFromTxt("/no/such/", info), 0); }), "");
}

TEST(UserDefinedInfo, TheFileNameIsAppendedWithoutASeparator) {
  const ScratchDir directory;
  GivenFile(directory / "sub-IspUserDefined.txt", "[UserDefinedInfo]\nSIName=A\n");
  STRUCT_CP_GET_USER_DEFINED_BIN_INFO with_dash, without;
  EXPECT_EQ(GetUserDefinedInfoFromTxt(directory / "sub-", with_dash), 1);
  EXPECT_EQ(GetUserDefinedInfoFromTxt(directory / "sub", without), 0);
}

TEST(UserDefinedInfo, TextsAreCutTo259Characters) {
  EXPECT_EQ(Read("SIName=" + std::string(300, 'x') + "\n").info.strSIName, std::string(259, 'x'));
}

}  // namespace
