// SPDX-License-Identifier: MIT
//
// The three searches of --searchfw in real directories, by what the ISP plug-in then receives.
#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <string>
#include <vector>

#include "support/files.h"
#include "support/installation.h"
#include "support/record_bytes.h"
#include "support/record_offsets.h"
#include "support/scratch_dir.h"
#include "support/unprivileged.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

const std::string kRejected = "argument is illegal.\n";

class Search : public testing::Test {
 protected:
  Search() { m_tool.WithIspPlugin(TestPlugin("recording_isp")); }

  void GivenFirmwareFiles(const std::vector<std::string>& names) const {
    for (const std::string& name : names)
      GivenSparseFile(m_tool / name, 65536);
  }
  void GivenSettings(const std::string& content) const {
    GivenFile(m_tool.ToolDir() + "IspSetting.ini", content);
  }
  void GivenIdentification(const std::string& lines) const {
    GivenFile(m_tool / "IspUserDefined.txt", "[UserDefinedInfo]\n" + lines);
  }

  RunResult Run(const std::string& mode) const { return m_tool.Run({"--isp", "--searchfw", mode}); }

  // The search succeeds and the display gets this file of the working directory.
  void ExpectProgrammed(const std::string& mode, const std::string& name) const {
    const RunResult result = Run(mode);
    EXPECT_THAT(result.out, testing::HasSubstr("Success")) << mode;
    const RecordBytes record = m_tool.TakeRecord();
    EXPECT_EQ(record.U32(setting_at::bSearchFw), 1u);
    EXPECT_EQ(record.U32(setting_at::ulCount), 1u);
    EXPECT_EQ(record.Wide(setting_at::wszPath), m_tool / name);
  }

  // The command line is refused with this output, and no plug-in is called.
  void ExpectRefused(const std::string& mode, const std::string& output) const {
    const RunResult result = Run(mode);
    EXPECT_EQ(result.out, output + kRejected) << mode;
    EXPECT_EQ(result.err, "");
    EXPECT_EQ(result.status, 0);
    EXPECT_TRUE(m_tool.TakeCalls().empty());
  }

  Installation m_tool;
};

TEST_F(Search, AutoTakesTheOnlyFirmwareOfTheWorkingDirectory) {
  GivenFirmwareFiles({"\xC3\xBC \xE5\xB1\x8F.bin", "A.BIN", "a.txt"});
  ExpectProgrammed("auto", "\xC3\xBC \xE5\xB1\x8F.bin");
}

TEST_F(Search, AutoTakesOneOfSeveral) {
  GivenFirmwareFiles({"a.bin", "b.bin"});
  EXPECT_THAT(Run("auto").out, testing::HasSubstr("Success"));
  EXPECT_THAT(m_tool.TakeRecord().Wide(setting_at::wszPath),
              testing::AnyOf(m_tool / "a.bin", m_tool / "b.bin"));
}

TEST_F(Search, AutoRefusesADirectoryWithoutFirmware) {
  ExpectRefused("auto", "cann't find bin file!\n");
}

TEST_F(Search, AnUnknownModeIsRefused) {
  GivenFirmwareFiles({"a.bin"});
  ExpectRefused("Auto", "auto search fw parameter illegal!\n");
}

TEST_F(Search, PrefixTakesTheOnlyMatchAndTellsThePluginTheSettingsFile) {
  GivenFirmwareFiles({"main_1.bin", "other.bin"});
  GivenSettings("[ISP_Fw]\nstrFwPrefix=main\n");
  EXPECT_THAT(Run("prefix").out, testing::HasSubstr("Success"));
  const RecordBytes record = m_tool.TakeRecord();
  EXPECT_EQ(record.Wide(setting_at::wszPath), m_tool / "main_1.bin");
  EXPECT_EQ(record.Wide(setting_at::wszSettingFilePath), m_tool.ToolDir() + "IspSetting.ini");
}

TEST_F(Search, PrefixWorksWithNamesThatAreNotAscii) {
  GivenFirmwareFiles({"\xC3\xBC.bin", "u.bin"});
  GivenSettings("[ISP_Fw]\nstrFwPrefix=\xC3\xBC\n");
  ExpectProgrammed("prefix", "\xC3\xBC.bin");
}

TEST_F(Search, PrefixReadsTheSettingsFileNamedBeforeIt) {
  GivenFirmwareFiles({"a.bin", "b.bin"});
  GivenSettings("[ISP_Fw]\nstrFwPrefix=a\n");
  GivenFile(m_tool.ToolDir() + "my.ini", "[ISP_Fw]\nstrFwPrefix=b\n");
  m_tool.Run({"--isp", "--settingfile", "my.ini", "--searchfw", "prefix"});
  EXPECT_EQ(m_tool.TakeRecord().Wide(setting_at::wszPath), m_tool / "b.bin");
  m_tool.Run({"--isp", "--searchfw", "prefix", "--settingfile", "my.ini"});
  EXPECT_EQ(m_tool.TakeRecord().Wide(setting_at::wszPath), m_tool / "a.bin");
}

TEST_F(Search, PrefixRefusesWithTheReason) {
  ExpectRefused("prefix", "Cannot find bin in current dir!\n");
  GivenFirmwareFiles({"ab.bin", "abc.bin"});
  ExpectRefused("prefix", "Cannot fw prefix setting!\n");
  GivenSettings("[ISP_Fw]\nstrFwPrefix=ab\n");
  ExpectRefused("prefix", "find 2 match fw base on prefix ab, fail!\n");
}

TEST_F(Search, UserDefinedTakesTheFileThatFitsTheIdentification) {
  GivenFirmwareFiles({"X_M1_1.2.bin", "X_M2_1.2.bin"});
  GivenIdentification("ModelName=M1\nVersion=1.2\n");
  ExpectProgrammed("userdefined", "X_M1_1.2.bin");
}

TEST_F(Search, UserDefinedReadsTheExampleFile) {
  GivenFirmwareFiles({"ACME_M27_1.2.3.bin", "ACME_M27_1.2.4.bin", "ACME_M32_1.2.3.bin"});
  GivenFile(m_tool / "IspUserDefined.txt", ReadWholeFile(ZVISP_EXAMPLES_DIR "/IspUserDefined.txt"));
  ExpectProgrammed("userdefined", "ACME_M27_1.2.3.bin");
}

TEST_F(Search, UserDefinedRefusesWithTheReason) {
  GivenFirmwareFiles({"X_M1_1.2.bin", "X_M2_1.2.bin"});
  ExpectRefused("userdefined", "get userdefined info fail!\n");
  GivenIdentification("SIName=X\n");
  ExpectRefused("userdefined", "2 bin file find user userdefined info!\n");
  GivenIdentification("RecordVersionMode=3\n");
  ExpectRefused("userdefined", "Record version mode setting error!get userdefined info fail!\n");
}

TEST_F(Search, ADirectoryWithTheNameOfAFirmwareIsFoundAndThenRefused) {
  GivenDirectory(m_tool / "directory.bin");
  ExpectRefused("auto", "File open fail! " + (m_tool / "directory.bin") + "\n");
}

TEST_F(Search, AFileThatIsListedButGoneWhenOpenedIsRefused) {
  // A link to nothing is what a file that vanishes in between looks like, every time.
  ASSERT_EQ(symlink((m_tool / "gone").c_str(), (m_tool / "a.bin").c_str()), 0);
  ExpectRefused("auto", "File open fail! " + (m_tool / "gone") + "\n");
}

TEST_F(Search, ANameThatIsNoTextIsRefused) {
  const int file = open((m_tool / "\xFF.bin").c_str(), O_CREAT | O_WRONLY, 0644);
  if (file < 0) GTEST_SKIP() << "this file system refuses names that are not UTF-8";
  close(file);
  ExpectRefused("auto", "File open fail! " + m_tool.WorkDir() + "\n");
}

TEST_F(Search, AnUnreadableDirectoryHasNoFirmware) {
  GivenFirmwareFiles({"a.bin"});
  SetMode(m_tool.WorkDir() + "/..", 0755);
  SetMode(m_tool.WorkDir(), 0311);
  EXPECT_EQ(AsOrdinaryUser([&] {
              const RunResult result = Run("auto");
              return result.out == "cann't find bin file!\n" + kRejected ? 7 : 8;
            }),
            7);
}

TEST_F(Search, FilesThatComeAndGoDuringSearchesNeverHarmThem) {
  GivenFirmwareFiles({"stays.bin"});
  GivenSettings("[ISP_Fw]\nstrFwPrefix=stays\n");
  std::vector<StartedRun> runs;
  for (int i = 0; i < 10; ++i) {
    runs.emplace_back(m_tool.Line({"--isp", "--searchfw", "prefix"}));
    for (int j = 0; j < 50; ++j) {
      GivenFirmwareFiles({"comes.bin"});
      unlink((m_tool / "comes.bin").c_str());
    }
  }
  for (StartedRun& run : runs)
    EXPECT_THAT(run.Wait().out, testing::HasSubstr("Success"));
}

TEST(SearchOfManyFiles, AHundredThousandFilesAreSearchedInOneRun) {
  PreferScratchInMemory();
  Installation tool;
  tool.WithIspPlugin(TestPlugin("recording_isp"));
  for (int i = 0; i < 100000; ++i)
    close(open((tool / ("fw_" + std::to_string(i) + ".bin")).c_str(), O_CREAT | O_WRONLY, 0644));
  GivenSparseFile(tool / "fw_x.bin", 65537);
  GivenFile(tool.ToolDir() + "IspSetting.ini", "[ISP_Fw]\nstrFwPrefix=fw_x\n");
  EXPECT_THAT(tool.Run({"--isp", "--searchfw", "prefix"}).out, testing::HasSubstr("Success"));
  const RecordBytes record = tool.TakeRecord();
  EXPECT_EQ(record.U32(setting_at::ulCount), 2u);
  EXPECT_EQ(record.Wide(setting_at::wszPath + setting_at::kEntryBytes), tool / "fw_x.bin");
}

}  // namespace
