// SPDX-License-Identifier: MIT
#include "cmdline/isp_args_parse.h"

#include <string>
#include <vector>

#include "base/path.h"
#include "support/command_line_fixture.h"
#include "support/printed.h"
#include "support/record_offsets.h"

#include <gtest/gtest.h>

using namespace zvisp;

namespace {

class IspArgsParse : public CommandLineTest {};

TEST_F(IspArgsParse, AnActionAloneGivesTheRecordOfThatAction) {
  // clang-format off
  constexpr struct {
    const char* option;
    std::uint32_t action;
  } kCases[] = {
      {"--verify",              1},
      {"--sign",                2},
      {"--erase",               3},
      {"--recordver",           8},
      {"--srstatus",            9},
      {"--flashtype",           10},
      {"--readsr",              11},
      {"--writesr",             12},
      {"--readsafeguard",       13},
      {"--writesafeguard",      14},
      {"--resetmcu",            15},
      {"--getstatus",           18},
      {"--userdefinedinfo",     19},
      {"--edpisp",              20},
      {"--enterispmode",        21},
      {"--mergefwinfo",         22},
      {"--senduserdefinedinfo", 23},
      {"--getscalertype",       25},
  };
  // clang-format on
  const std::string directory = GetCurrentProcessDir(nullptr).GetUtf8String();
  for (const auto& test : kCases) {
    GivenFreshParser();
    EXPECT_EQ(Parse({test.option}), 1) << test.option;
    EXPECT_TRUE(SameBytes(Setting(), PlainCommandSetting(test.action, directory))) << test.option;
    EXPECT_TRUE(SameBytes(SignArgs(), RecordBytes(sign_at::kRecordBytes))) << test.option;
    EXPECT_EQ(m_out + m_err, "") << test.option;
  }
}

TEST_F(IspArgsParse, SwitchesReachTheirFields) {
  // clang-format off
  const struct {
    std::vector<std::string> words;
    std::size_t offset;
    std::uint32_t value;
  } cases[] = {
      {{"--newboot"},            52, 1},
      {{"--factory"},            56, 2},
      {{"--ispchannel"},         48, 1},
      {{"--comparever"},         44, 1},
      {{"--comm", "0x10"},       24, 16},
      {{"--comm=6"},             24, 6},
      {{"--edpmode", "isp"},     28, 1},
      {{"--edpmode", "readver"}, 28, 2},
      {{"--slave", "0x50"},      36, 0x50},
      {{"--slave", "0x50"},      32, 0},
      {{"--userdefined", "3"},   16, 3},
      {{"--userdefined", "3"},   12, 8},
      {{"--copydiffer"},         12, 7},
  };
  // clang-format on
  for (const auto& test : cases) {
    GivenFreshParser();
    std::vector<std::string> words = test.words;
    words.insert(words.begin(), "--erase");
    EXPECT_EQ(Parse(words), 1) << words[1];
    EXPECT_EQ(Setting().U32(test.offset), test.value) << words[1];
  }
}

TEST_F(IspArgsParse, TextsReachTheirFields) {
  EXPECT_EQ(Parse({"--dumpflash", "--dumpaddr", "0x100", "--dumplen", "32", "--dumpname", "a.bin"}),
            1);
  EXPECT_EQ(Setting().U32(setting_at::ulDumpAddr), 0x100u);
  EXPECT_EQ(Setting().U32(setting_at::ulDumpLen), 32u);
  EXPECT_EQ(Setting().Wide(setting_at::wszDumpFile), "a.bin");
  GivenFreshParser();
  EXPECT_EQ(Parse({"--recordver", "--flash", "--veraddr", "16", "--totalverlen", "8",
                   "--majorverlen", "3", "--subverlen", "2", "--recordvermode", "1"}),
            1);
  EXPECT_EQ(Setting().U32(setting_at::enumRecordVerMode), 1u);
  EXPECT_EQ(Setting().U32(setting_at::ulVerAddr), 16u);
  EXPECT_EQ(Setting().U32(setting_at::ulTotalVerLen), 8u);
  EXPECT_EQ(Setting().U32(setting_at::ulMajorVerLen), 3u);
  EXPECT_EQ(Setting().U32(setting_at::ulSubVerLen), 2u);
}

TEST_F(IspArgsParse, TheUserFlagAndTheI2cCommandReachTheirFields) {
  GivenFw("a.bin");
  EXPECT_EQ(Parse({"--ispuser", "--fw", "a.bin", "--flagaddr", "0x20", "--flagdata", "1,2"}), 1);
  EXPECT_EQ(Setting().U32(setting_at::ulFlagLength), 2u);
  EXPECT_EQ(Setting().U32(setting_at::ulFlagAddr), 0x20u);
  EXPECT_EQ(Setting().U8(setting_at::ucFlagData + 1), 2);
  GivenFreshParser();
  EXPECT_EQ(Parse({"--i2cwrite", "--writedata", "1,2,0x81,9", "--ddccicmd"}), 1);
  EXPECT_EQ(Setting().U8(setting_at::ucDataLen), 1);
  EXPECT_EQ(Setting().U8(setting_at::ucData), 9);
  EXPECT_EQ(Setting().U32(setting_at::bDdcciCmd), 1u);
}

TEST_F(IspArgsParse, EachSlotTakesItsFileAndItsStartBank) {
  std::vector<std::string> words = {"--isp", "--bank", "1", "--fw", "0.bin"};
  GivenFw("0.bin");
  for (int slot = 1; slot <= 9; ++slot) {
    const std::string number = std::to_string(slot);
    GivenFw(number + ".bin");
    words.insert(words.end(), {"--fw" + number, number + ".bin", "--bank" + number,
                               std::to_string(1 + 10 * slot)});
  }
  EXPECT_EQ(Parse(words), 1);
  const RecordBytes setting = Setting();
  EXPECT_EQ(setting.U32(setting_at::ulCount), 10u);
  for (std::size_t i = 0; i < 10; ++i) {
    EXPECT_EQ(setting.U32(setting_at::ulTargetBank + 4 * i), 1 + 10 * i);
    EXPECT_EQ(setting.Wide(setting_at::wszPath + setting_at::kEntryBytes * i),
              m_scratch / (std::to_string(i) + ".bin"));
  }
}

TEST_F(IspArgsParse, ARefusedSlotEndsTheReadingAtOnce) {
  constexpr struct {
    const char* option;
    const char* first;
    const char* second;
    const char* printed;
  } kCases[] = {
      {"--fw", "a", "b", "Parameter has been detected two or more times! --fw0 \n"},
      {"--fw9", "a", "b", "Parameter has been detected two or more times! --fw9 \n"},
      {"--bank", "1", "x", "Parameter illegal! --bank0 x \n"},
      {"--bank9", "1", "256", "Parameter out of range 0~255! --bank9 256\n"},
      {"--bank5", "1", "-1", "Parameter illegal, start bank value is loss! --bank5 -1 \n"},
  };
  for (const auto& test : kCases) {
    GivenFreshParser();
    EXPECT_EQ(Parse({"--isp", test.option, test.first, test.option, test.second, "--nothing"}), 0);
    EXPECT_EQ(m_out, test.printed);
    EXPECT_EQ(m_err, "") << test.option;
  }
}

TEST_F(IspArgsParse, AMergeCommandIsStoredOnlyAfterTheActionThatNeedsIt) {
  EXPECT_EQ(Parse({"--mergefwinfo", "--write", "1.2.3"}), 1);
  EXPECT_EQ(Setting().U32(setting_at::enumMergeFwInfoType), 1u);
  EXPECT_EQ(Setting().U32(setting_at::ulMergeLength), 3u);
  EXPECT_EQ(Setting().U8(setting_at::ucMergeData + 2), 3);
  GivenFreshParser();
  EXPECT_EQ(Parse({"--write", "1.2.3", "--mergefwinfo"}), 1);
  EXPECT_EQ(Setting().U32(setting_at::enumMergeFwInfoType), 1u);
  EXPECT_EQ(Setting().U32(setting_at::ulMergeLength), 0u);
  GivenFreshParser();
  EXPECT_EQ(Parse({"--mergefwinfo", "--write", "1.2.3", "--reg"}), 1);
  EXPECT_EQ(Setting().U32(setting_at::ulMergeLength), 0u);
}

TEST_F(IspArgsParse, ReadAndWriteTogetherCountAsRead) {
  EXPECT_EQ(Parse({"--mergefwinfo", "--read"}), 1);
  EXPECT_EQ(Setting().U32(setting_at::enumMergeFwInfoType), 0u);
  GivenFreshParser();
  EXPECT_EQ(Parse({"--mergefwinfo", "--read", "--write", "junk"}), 1);
  EXPECT_EQ(Setting().U32(setting_at::enumMergeFwInfoType), 0u);
  EXPECT_EQ(Setting().U32(setting_at::ulMergeLength), 0u);
}

TEST_F(IspArgsParse, AUserDefinedVersionIsEmptiedByALaterOptionWithABit) {
  EXPECT_EQ(Parse({"--erase", "--userdefined", "2"}), 1);
  EXPECT_EQ(Setting().U32(setting_at::enumUserDefinedVersionType), 2u);
  GivenFreshParser();
  EXPECT_EQ(Parse({"--userdefined", "2", "--erase"}), 0);
  EXPECT_EQ(m_out,
            "Get user defined version mode fail, mode is: \n"
            "Get version type fail\n");
  GivenFreshParser();
  EXPECT_EQ(Parse({"--erase", "--userdefined", "2", "--newboot"}), 1) << "--newboot has no bit";
  EXPECT_EQ(Setting().U32(setting_at::enumUserDefinedVersionType), 2u);
}

TEST_F(IspArgsParse, FirmwareIsEitherNamedOrSearched) {
  GivenFw("a.bin");
  EXPECT_EQ(Parse({"--isp", "--fw", "a.bin", "--searchfw", "auto"}), 0);
  EXPECT_EQ(m_out, "");
  GivenFreshParser();
  EXPECT_EQ(Parse({"--isp", "--searchfw", "auto", "--fw", "a.bin"}), 0);
  EXPECT_EQ(m_out, "");
  GivenFreshParser();
  EXPECT_EQ(Parse({"--isp", "--searchfw", "auto", "--fw1", "a.bin"}), 0);
  EXPECT_EQ(m_out, "Program fw bank duplicate!\n");
}

TEST_F(IspArgsParse, AnAutomaticSearchTakesTheFirstBinFile) {
  EXPECT_EQ(Parse({"--isp", "--searchfw", "auto"}), 0);
  EXPECT_EQ(m_out, "cann't find bin file!\n");
  GivenFw("only.bin", 2);
  GivenFw("other.txt");
  GivenFreshParser();
  EXPECT_EQ(Parse({"--isp", "--searchfw", "auto"}), 1);
  EXPECT_EQ(Setting().U32(setting_at::bSearchFw), 1u);
  EXPECT_EQ(Setting().U32(setting_at::ulCount), 2u);
  EXPECT_EQ(Setting().Wide(setting_at::wszPath), m_scratch / "only.bin");
}

TEST_F(IspArgsParse, AnotherKindOfSearchIsRefused) {
  for (const char* const word : {"", "Auto", "autox", "prefix "}) {
    GivenFreshParser();
    EXPECT_EQ(Parse({"--isp", "--searchfw", word, "--nothing"}), 0) << word;
    EXPECT_EQ(m_out, "auto search fw parameter illegal!\n") << word;
    EXPECT_EQ(m_err, "") << word;
  }
}

TEST_F(IspArgsParse, ASearchByPrefixUsesTheSettingsFileThatWasNamedBefore) {
  GivenFw("abc.bin");
  GivenFw("xyz.bin");
  const std::string settings = GivenFile(m_scratch / "my.ini", "[ISP_Fw]\nstrFwPrefix=ab\n");
  EXPECT_EQ(Parse({"--isp", "--settingfile", settings, "--searchfw", "prefix"}), 1);
  EXPECT_EQ(Setting().Wide(setting_at::wszPath), m_scratch / "abc.bin");
  EXPECT_EQ(Setting().Wide(setting_at::wszSettingFilePath), settings);
  GivenFreshParser();
  EXPECT_EQ(Parse({"--isp", "--searchfw", "prefix", "--settingfile", settings}), 0);
  EXPECT_EQ(m_out, "Cannot fw prefix setting!\n");
}

TEST_F(IspArgsParse, ASearchByIdentificationUsesTheFileInTheDirectory) {
  EXPECT_EQ(Parse({"--isp", "--searchfw", "userdefined"}), 0);
  EXPECT_EQ(m_out, "get userdefined info fail!\n");
}

TEST_F(IspArgsParse, AnotherEdpModeIsRefusedWithoutANewline) {
  for (const char* const mode : {"", "ISP", "read"}) {
    GivenFreshParser();
    EXPECT_EQ(Parse({"--edpisp", "--edpmode", mode}), 0) << mode;
    EXPECT_EQ(m_out, "wrong edp isp mode!") << mode;
  }
}

TEST_F(IspArgsParse, WordsThatAreNotOptionsAreListedAndIgnored) {
  EXPECT_EQ(Parse({"one", "--erase", "two", "--", "--sign"}), 1);
  EXPECT_EQ(m_out, "non-option ARGV-elements: one two --sign \n");
  EXPECT_EQ(Setting().U32(setting_at::enumActionType), 3u);
}

TEST_F(IspArgsParse, AWordThatCannotBeReadIsReportedAndTheNextIsRead) {
  const struct {
    std::string word;
    std::string printed;
    std::string err;
  } cases[] = {
      {"-v", "illegal option ' v '!\n", "prog: invalid option -- 'v'\n"},
      {"--nothing", std::string("illegal option ' \0 '!\n", 22),
       "prog: unrecognized command '--nothing'\n"},
      {"--ver", std::string("illegal option ' \0 '!\n", 22),
       "prog: command '--ver' is ambiguous; possibilities: '--verify' '--veraddr'\n"},
      {"--edp", std::string("illegal option ' \0 '!\n", 22),
       "prog: command '--edp' is ambiguous; possibilities: '--edpisp' '--edpmode'\n"},
      {"--newboot=1", "illegal option ' ( '!\n",
       "prog: option '--newboot' doesn't allow an argument\n"},
  };
  for (const auto& test : cases) {
    GivenFreshParser();
    EXPECT_EQ(Parse({test.word, "--getsc"}), 1) << test.word;
    EXPECT_EQ(m_out, test.printed) << test.word;
    EXPECT_EQ(m_err, test.err) << test.word;
    EXPECT_EQ(Setting().U32(setting_at::enumActionType), 25u) << test.word;
  }
}

TEST_F(IspArgsParse, AMissingArgumentAtTheEndIsReportedAndTheRestJudged) {
  EXPECT_EQ(Parse({"--erase", "--comm"}), 1);
  EXPECT_EQ(m_err, "prog: option '--comm' requires an argument\n");
  EXPECT_EQ(m_out, "illegal option ' \x0F '!\n");
}

TEST_F(IspArgsParse, AnEmptyCommandLineHasNoAction) {
  EXPECT_EQ(Parse({}), 0);
  EXPECT_EQ(m_out, "Action type undefined or illegal!\n");
}

TEST_F(IspArgsParse, TheSameCommandLineGivesTheSameBytes) {
  GivenFw("a.bin", 3);
  const std::vector<std::string> words = {"--isp", "--fw", "a.bin", "--bank", "7", "--comm", "3"};
  EXPECT_EQ(Parse(words), 1);
  const RecordBytes first = Setting();
  const RecordBytes first_sign_args = SignArgs();
  GivenFreshParser();
  EXPECT_EQ(Parse(words), 1);
  EXPECT_TRUE(SameBytes(Setting(), first));
  EXPECT_TRUE(SameBytes(SignArgs(), first_sign_args));
}

TEST_F(IspArgsParse, TheCallersRecordIsJudgedAndReturned) {
  STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING setting{};
  setting.enumActionType = CP_ISPTOOL_ACTION_ISP;
  setting.enumCommID = 9;
  m_parser->SetISPCmdSetting(setting);
  EXPECT_EQ(Setting().U32(setting_at::enumActionType), 4u);
  EXPECT_EQ(Setting().U32(setting_at::enumCommID), 9u);
  GivenFw("boot.bin", 2);
  FwBankMap map;
  EXPECT_EQ(m_parser->InsertCommandFwFile(0, "boot.bin"), 1);
  EXPECT_EQ(m_parser->InsertCommandStartBank(0, "5"), 1);
  EXPECT_EQ(m_parser->JudgeFwMap(map), 1);
  EXPECT_EQ(map.size(), 2u);
  EXPECT_EQ(map.count(6), 1u);
}

// A host may hand over what no shell does.
TEST_F(IspArgsParse, ANullVectorIsRefusedAndANullWordIsPassedOver) {
  EXPECT_EQ(m_parser->ParseArgs(3, nullptr), 0);
  char tool[] = "zvisp";
  char action[] = "--erase";
  char first[] = "first";
  char second[] = "se\033cond";
  char* words[] = {tool, first, nullptr, action, second, nullptr};
  int result = 0;
  const std::string printed = Printed([&] { result = m_parser->ParseArgs(6, words); });
  EXPECT_EQ(result, 1);
  EXPECT_EQ(printed, "non-option ARGV-elements: first se\033cond \n") << "as it was typed";
}

}  // namespace
