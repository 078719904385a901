// SPDX-License-Identifier: MIT
//
// What the reader leaves in the raw record and in the slots, without a judgement.
#include "cmdline/command_line_reader.h"

#include <initializer_list>
#include <string>

#include "support/files.h"
#include "support/option_scanner_fixture.h"
#include "support/printed.h"
#include "support/scratch_dir.h"

#include <gtest/gtest.h>

using namespace zvisp;

namespace {

class CommandLineReaderTest : public testing::Test {
 protected:
  // Reads into fresh outputs; m_printed is what that printed on standard output.
  bool Read(std::initializer_list<const char*> list) {
    m_args = {};
    m_slots.clear();
    bool complete = false;
    Words words(list);
    m_printed = Printed([&] {
      complete = ReadCommandLine(words.Count(), words.Vector(), m_scratch.Path() + "/", m_slots,
                                 m_args, m_setting_file_path);
    });
    return complete;
  }

  ScratchDir m_scratch;
  STRUCT_CP_ISP_CMD_ARGS m_args;
  FwBankMap m_slots;
  wchar_t m_setting_file_path[kPathCapacity] = L"untouched";
  std::string m_printed;
};

TEST_F(CommandLineReaderTest, KeepsEachTextAsItIsTyped) {
  using Args = STRUCT_CP_ISP_CMD_ARGS;
  // clang-format off
  constexpr struct {
    const char* option;
    std::string Args::*text;
  } kCases[] = {
      {"--boot",          &Args::strBoot},
      {"--dsmode",        &Args::strSignatureMode},
      {"--userdefined",   &Args::strUserDefined},
      {"--veraddr",       &Args::strVerAddr},
      {"--totalverlen",   &Args::strTotalVerLen},
      {"--majorverlen",   &Args::strMajorVerLen},
      {"--subverlen",     &Args::strSubVerLen},
      {"--recordvermode", &Args::strRecordVerMode},
      {"--dumpaddr",      &Args::strDumpAddr},
      {"--dumplen",       &Args::strDumpLen},
      {"--dumpname",      &Args::strDumpName},
      {"--comm",          &Args::strComm},
      {"--fw",            &Args::strFw},
      {"--signfile",      &Args::strSignFile},
      {"--keypair",       &Args::strKeyPair},
      {"--vkfile",        &Args::strVerifyKeyFile},
      {"--skfile",        &Args::strSignKeyFile},
      {"--subcert",       &Args::strSubCertFile},
      {"--nextvkfile",    &Args::strNextVerifyKeyFile},
      {"--settingfile",   &Args::strSettingFile},
      {"--flagaddr",      &Args::strFlagAddr},
      {"--flagdata",      &Args::strFlagData},
      {"--slave",         &Args::strSlave},
      {"--writedata",     &Args::strWriteData},
  };
  // clang-format on
  for (const auto& test : kCases) {
    EXPECT_TRUE(Read({test.option, " not judged \xFF"})) << test.option;
    EXPECT_EQ(m_args.*test.text, " not judged \xFF") << test.option;
    EXPECT_EQ(m_printed, "") << test.option;
  }
}

TEST_F(CommandLineReaderTest, CollectsTheBitsOfEachKind) {
  EXPECT_TRUE(Read({"--isp", "--sign", "--sw", "--hw", "--reg", "--userdefined=x", "--read",
                    "--write=x", "--getscalertype"}));
  EXPECT_EQ(m_args.ulActionBits, 0x100000Au);
  EXPECT_EQ(m_args.ulSignatureTypeBits, 3u);
  EXPECT_EQ(m_args.ulInformationBits, 0x81u);
  EXPECT_EQ(m_args.ulReadWriteBits, 3u);
}

TEST_F(CommandLineReaderTest, KeepsAMergeCommandOnlyWhenMergeFwInfoIsTheOneActionSoFar) {
  // clang-format off
  const struct {
    std::initializer_list<const char*> words;
    const char* text;
  } cases[] = {
      {{"--mergefwinfo", "--write", "1.2"},                  "1.2"},
      {{"--mergefwinfo", "--write", "1.2", "--write", "3"},  "3"},
      {{"--mergefwinfo", "--write", "1.2", "--newboot"},     "1.2"},
      {{"--mergefwinfo", "--write", "1.2", "--read"},        "1.2"},
      {{"--mergefwinfo", "--write", "1.2", "--sw"},          ""},
      {{"--write", "1.2", "--mergefwinfo"},                  ""},
      {{"--write", "1.2"},                                   ""},
      {{"--erase", "--write", "1.2"},                        ""},
      {{"--erase", "--mergefwinfo", "--write", "1.2"},       ""},
  };
  // clang-format on
  for (const auto& test : cases) {
    EXPECT_TRUE(Read(test.words));
    EXPECT_EQ(m_args.strMergeCommand, test.text) << *(test.words.begin() + 1);
  }
}

TEST_F(CommandLineReaderTest, FillsTheSlotsWithoutAFile) {
  EXPECT_TRUE(Read({"--fw", "a.bin", "--bank", "7", "--fw9", "none.bin", "--bank9", "255"}));
  ASSERT_EQ(m_slots.size(), 2u);
  EXPECT_EQ(m_slots[0].strFwPath.GetUtf8String(), "a.bin");
  EXPECT_EQ(m_slots[0].ulBank, 7u);
  EXPECT_EQ(m_slots[9].strFwPath.GetUtf8String(), "none.bin");
  EXPECT_EQ(m_slots[9].ulBank, 255u);
  EXPECT_EQ(m_args.bFw, 1);
}

TEST_F(CommandLineReaderTest, StopsAtTheOptionThatRefuses) {
  EXPECT_FALSE(Read({"--isp", "--edpmode", "other", "--erase", "stray"}));
  EXPECT_EQ(m_args.ulActionBits, 8u);
  EXPECT_EQ(m_printed, "wrong edp isp mode!");
}

TEST_F(CommandLineReaderTest, GivesTheSettingsFileOfASearchByPrefixOnly) {
  GivenFile(m_scratch / "abc.bin", "x");
  const std::string settings = GivenFile(m_scratch / "my.ini", "[ISP_Fw]\nstrFwPrefix=ab\n");
  EXPECT_TRUE(Read({"--settingfile", settings.c_str(), "--searchfw", "auto"}));
  EXPECT_STREQ(m_setting_file_path, L"untouched");
  EXPECT_TRUE(Read({"--settingfile", settings.c_str(), "--searchfw", "prefix"}));
  EXPECT_EQ(CCpZvString(m_setting_file_path).GetUtf8String(), settings);
  EXPECT_EQ(m_args.strFw, "abc.bin");
  EXPECT_EQ(m_slots[0].strFwPath.GetUtf8String(), "abc.bin");
}

}  // namespace
