// SPDX-License-Identifier: MIT
//
// The scanning of a command line: its diagnostics on standard error, what standard output says of
// them, and that a run continues where it should.
#include "support/end_to_end.h"
#include "support/record_offsets.h"

namespace {

using namespace std::string_literals;
using testing::IsEmpty;

struct ScanRow {
  Words words;      // given besides --resetmcu, which keeps the line legal
  std::string err;  // standard error
  std::string out;  // standard output in front of the banner
};

// clang-format off
const ScanRow kMistakes[] = {
  // unknown
  {{"--nonsense"},   "zvisp: unrecognized command '--nonsense'\n",      "illegal option ' \0 '!\n"s},
  {{"--no=1"},       "zvisp: unrecognized command '--no=1'\n",          "illegal option ' \0 '!\n"s},
  {{"--ISP"},        "zvisp: unrecognized command '--ISP'\n",           "illegal option ' \0 '!\n"s},
  {{"--fw10", "x"},  "zvisp: unrecognized command '--fw10'\n",
   "illegal option ' \0 '!\nnon-option ARGV-elements: x \n"s},
  // surplus argument; the unknown character is the option's value
  {{"--resetmcu=1"}, "zvisp: option '--resetmcu' doesn't allow an argument\n",
   "illegal option ' \0 '!\n"s},
  {{"--verify="},    "zvisp: option '--verify' doesn't allow an argument\n",
   "illegal option ' \1 '!\n"},
  {{"--verif=1"},    "zvisp: option '--verify' doesn't allow an argument\n",
   "illegal option ' \1 '!\n"},
  {{"--newboot=1"},  "zvisp: option '--newboot' doesn't allow an argument\n",
   "illegal option ' ( '!\n"},
  // missing argument
  {{"--comm"},       "zvisp: option '--comm' requires an argument\n",   "illegal option ' \x0F '!\n"},
  {{"--edpm"},       "zvisp: option '--edpmode' requires an argument\n", "illegal option ' 6 '!\n"},
  {{"--write"},      "zvisp: option '--write' requires an argument\n",  "illegal option ' \2 '!\n"},
  // ambiguous
  {{"--edp"},
   "zvisp: command '--edp' is ambiguous; possibilities: '--edpisp' '--edpmode'\n",
   "illegal option ' \0 '!\n"s},
  {{"--ver"},
   "zvisp: command '--ver' is ambiguous; possibilities: '--verify' '--veraddr'\n",
   "illegal option ' \0 '!\n"s},
  {{"--dump=1"},
   "zvisp: command '--dump=1' is ambiguous; possibilities: '--dumpflash' '--dumpaddr'\n"
   " '--dumplen'\n"
   " '--dumpname'\n",
   "illegal option ' \0 '!\n"s},
  // short options
  {{"-v"},           "zvisp: invalid option -- 'v'\n",                  "illegal option ' v '!\n"},
  {{"-ab"},          "zvisp: invalid option -- 'a'\nzvisp: invalid option -- 'b'\n",
   "illegal option ' a '!\nillegal option ' b '!\n"},
  {{"-:"},           "zvisp: invalid option -- ':'\n",                  "illegal option ' : '!\n"},
  {{"-isp"},
   "zvisp: invalid option -- 'i'\nzvisp: invalid option -- 's'\nzvisp: invalid option -- 'p'\n",
   "illegal option ' i '!\nillegal option ' s '!\nillegal option ' p '!\n"},
  // words that are no options
  {{"a", "b c"},     "",   "non-option ARGV-elements: a b c \n"},
  {{"-"},            "",   "non-option ARGV-elements: - \n"},
  {{""},             "",   "non-option ARGV-elements:  \n"},
  {{"--", "--comm"}, "",   "non-option ARGV-elements: --comm \n"},
};
// clang-format on

class CommandLine : public EndToEnd {
 protected:
  RunResult RunWithReset(Words words) {
    words.insert(words.begin(), "--resetmcu");
    return m_tool.Run(words);
  }
};

TEST_F(CommandLine, MistakesAreToldAndTheRunGoesOn) {
  for (const ScanRow& row : kMistakes) {
    SCOPED_TRACE(Shown(row.words));
    const RunResult run = RunWithReset(row.words);
    EXPECT_EQ(run.err, row.err);
    EXPECT_EQ(run.out, row.out + kBanner + kSuccess);
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(m_tool.TakeRecord().U32(setting_at::enumActionType), 15u);
  }
}

TEST_F(CommandLine, TheProgramIsNamedInDiagnosticsAsItWasCalled) {
  Command command = m_tool.Line({"--nonsense", "--resetmcu"});
  command.name = "";
  EXPECT_EQ(RunCommand(command).err, m_tool.Executable() + ": unrecognized command '--nonsense'\n");
}

TEST_F(CommandLine, AnEmptyLineIsRefused) {
  ExpectRejected({}, "Action type undefined or illegal!\n");
  ExpectRejected({"--"}, "Action type undefined or illegal!\n");
}

TEST_F(CommandLine, ALineWithNothingButMistakesIsRefused) {
  const RunResult run = m_tool.Run({"--nonsense", "word"});
  EXPECT_EQ(run.err, "zvisp: unrecognized command '--nonsense'\n");
  EXPECT_EQ(run.out,
            "illegal option ' \0 '!\nnon-option ARGV-elements: word \n"
            "Action type undefined or illegal!\nargument is illegal.\n"s);
  EXPECT_EQ(run.status, 0);
  EXPECT_THAT(m_tool.TakeCallLines(), IsEmpty());
}

TEST_F(CommandLine, OptionsMayStandBehindOtherWords) {
  const RunResult run = m_tool.Run({"first", "--resetmcu", "second", "--comm", "9", "third"});
  EXPECT_EQ(run.out, "non-option ARGV-elements: first second third \n"s + kBanner + kSuccess);
  EXPECT_EQ(m_tool.TakeRecord().U32(setting_at::enumCommID), 9u);
}

TEST_F(CommandLine, WordsBehindTwoDashesAreNoOptions) {
  const RunResult run = m_tool.Run({"a", "--resetmcu", "--", "--comm", "9"});
  EXPECT_EQ(run.out, "non-option ARGV-elements: a --comm 9 \n"s + kBanner + kSuccess);
  EXPECT_EQ(m_tool.TakeRecord().U32(setting_at::enumCommID), 0u);
}

TEST_F(CommandLine, AnArgumentMayLookLikeAnOption) {
  ExpectRejected({"--resetmcu", "--comm", "--slave"}, "Parameter illegal! --comm --slave \n");
}

TEST_F(CommandLine, AFurtherEqualsSignBelongsToTheValue) {
  ExpectRejected({"--resetmcu", "--comm=a=b"}, "Parameter illegal! --comm a=b \n");
}

TEST_F(CommandLine, UniqueAbbreviationsAreTaken) {
  ExpectRecord({"--resetm", "--compa", "--slav=0x20"}, PlainCommandSetting(15, m_tool.ToolDir())
                                                           .PutU32(setting_at::bAutoSlaveAddr, 0)
                                                           .PutU8(setting_at::ucSlaveAddr, 0x20)
                                                           .PutU32(setting_at::bCompareVer, 1));
  ExpectRun({"--getsc"}, kBanner + ScalerTypeLine("0"), 0);
}

TEST_F(CommandLine, AnExactNameIsNoAbbreviationOfALongerOne) {
  GivenFirmware(m_tool / "a.bin", 1);
  ExpectSuccess({"--isp", "--fw", "a.bin", "--bank", "2"});
  EXPECT_EQ(m_tool.TakeRecord().U32(setting_at::enumActionType), 4u);
}

TEST_F(CommandLine, AnUnknownEdpModeIsRefusedWithoutALineEnd) {
  ExpectRejected({"--edpisp", "--edpmode", "x"}, "wrong edp isp mode!");
  ExpectRejected({"--edpisp", "--edpmode", "ISP"}, "wrong edp isp mode!");
  ExpectRejected({"--edpisp", "--edpmode="}, "wrong edp isp mode!");
}

TEST_F(CommandLine, ARefusalWhileScanningStopsBeforeTheRestIsRead) {
  ExpectRejected({"--edpmode", "x", "--nonsense", "--isp", "--erase", "word"},
                 "wrong edp isp mode!");
}

TEST_F(CommandLine, AFileAndASearchExcludeEachOtherInSilence) {
  GivenFirmware(m_tool / "a.bin", 1);
  ExpectRejected({"--isp", "--fw", "a.bin", "--searchfw", "auto"}, "");
  ExpectRejected({"--isp", "--searchfw", "auto", "--fw", "a.bin"}, "");
  ExpectRejected({"--isp", "--fw", "a.bin", "--searchfw", "nonsense"}, "");
}

TEST_F(CommandLine, AnUnknownSearchIsRefused) {
  ExpectRejected({"--isp", "--searchfw", "x"}, "auto search fw parameter illegal!\n");
  ExpectRejected({"--isp", "--searchfw", ""}, "auto search fw parameter illegal!\n");
}

TEST_F(CommandLine, AnAutomaticSearchWithoutAnyBinFileIsRefused) {
  GivenFile(m_tool / "a.txt", "x");
  ExpectRejected({"--isp", "--searchfw", "auto"}, "cann't find bin file!\n");
}

TEST_F(CommandLine, AnAutomaticSearchTakesTheBinFileOfTheWorkingDirectory) {
  GivenFirmware(m_tool / "only.bin", 65537);
  ExpectRecord({"--isp", "--searchfw", "auto", "--bank", "4"},
               PlainCommandSetting(4, m_tool.ToolDir())
                   .PutU32(setting_at::bSearchFw, 1)
                   .PutU32(setting_at::ulCount, 2)
                   .PutU32(setting_at::ulTargetBank, 4)
                   .PutU32(setting_at::ulTargetBank + 4, 5)
                   .PutWide(setting_at::wszPath, m_tool / "only.bin")
                   .PutU32(setting_at::ulFileBank + setting_at::kEntryBytes, 1)
                   .PutWide(setting_at::wszPath + setting_at::kEntryBytes, m_tool / "only.bin"));
}

}  // namespace
