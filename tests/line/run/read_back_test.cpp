// SPDX-License-Identifier: MIT
//
// What is read back, and what it is compared with.
#include <csignal>
#include <string>

#include "line/support/line_tool.h"
#include "support/files.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using testing::HasSubstr;

constexpr std::size_t kBank = 65536;

class ReadBackOf : public testing::Test {
 protected:
  ReadBackOf() { GivenFirmware(m_line / "fw.bin", 2 * kBank + 1000); }

  static LineTool::Words Programming(const std::string& action) {
    return {action, "--fw", "fw.bin", "--bank", "1", "--comm", "3"};
  }

  // Changes one byte of the display's flash.
  void GivenFlashByte(std::size_t address, char byte) const {
    std::string flash = m_line.AllDisplays().Flash(3);
    flash.at(address) = byte;
    GivenFile(m_line.AllDisplays().File(3, "flash"), flash);
  }
  char FlashByte(std::size_t address) const { return m_line.AllDisplays().Flash(3).at(address); }

  static void ExpectResult(const RunResult& run, int status, const std::string& outcome,
                           const std::string& state, const std::string& compared) {
    EXPECT_EQ(run.status, status) << run.out << run.err;
    const std::string result = EventOf(run.out, "result");
    EXPECT_EQ(FieldOf(result, "outcome"), outcome) << run.out;
    EXPECT_EQ(FieldOf(result, "state"), state);
    EXPECT_EQ(FieldOf(result, "compared_bytes"), compared);
  }

  LineTool m_line;
};

TEST_F(ReadBackOf, EveryActionThatProgramsFilesIsIdentical) {
  for (const char* const action : {"--isp", "--ispdiff", "--ispcopy"}) {
    ExpectResult(m_line.Run(Programming(action), {"--readback"}), 0, "passed", "identical",
                 "132072");
    ExpectResult(m_line.ReadBack(Programming(action)), 0, "passed", "identical", "132072");
  }
}

TEST_F(ReadBackOf, TheUserFlagIsLaidOverTheFirmware) {
  LineTool::Words words = Programming("--ispuser");
  words.insert(words.end(), {"--flagaddr", "0x10010", "--flagdata", "1,2,3"});
  ExpectResult(m_line.Run(words, {"--readback"}), 0, "passed", "identical", "132072");
  GivenFlashByte(0x10011, 'x');
  const RunResult differs = m_line.ReadBack(words);
  // Up to the flag's end, where the comparison ends.
  ExpectResult(differs, 1, "different", "different", "19");
  EXPECT_THAT(differs.out, HasSubstr("\"address\":65553"));
}

TEST_F(ReadBackOf, AFlagOutsideOfThePlannedBanksCountsAlone) {
  LineTool::Words words = Programming("--ispuser");
  words.insert(words.end(), {"--flagaddr", "0x90000", "--flagdata", "1,2,3"});
  ExpectResult(m_line.Run(words, {"--readback"}), 0, "passed", "identical", "132075");
}

TEST_F(ReadBackOf, OneFlippedBitIsNamedByBankAndAddress) {
  ASSERT_EQ(m_line.Run(Programming("--isp")).status, 0);
  const char byte = FlashByte(kBank + 77777);
  GivenFlashByte(kBank + 77777, static_cast<char>(byte ^ 4));
  const RunResult run = m_line.ReadBack(Programming("--isp"));
  ExpectResult(run, 1, "different", "different", "131072");
  EXPECT_EQ(FieldOf(EventOf(run.out, "result"), "bank"), "2");
  EXPECT_EQ(FieldOf(EventOf(run.out, "result"), "address"), std::to_string(kBank + 77777));
  EXPECT_EQ(FieldOf(EventOf(run.out, "result"), "expected"),
            std::to_string(static_cast<unsigned char>(byte)));
  EXPECT_EQ(FieldOf(EventOf(run.out, "result"), "actual"),
            std::to_string(static_cast<unsigned char>(byte ^ 4)));
}

TEST_F(ReadBackOf, WhatIsAfterTheFilesEndInItsLastBankIsNotCompared) {
  ASSERT_EQ(m_line.Run(Programming("--isp")).status, 0);
  GivenFlashByte(kBank + 2 * kBank + 1000, 'x');
  ExpectResult(m_line.ReadBack(Programming("--isp")), 0, "passed", "identical", "132072");
  GivenFlashByte(kBank + 2 * kBank + 999, 'x');
  ExpectResult(m_line.ReadBack(Programming("--isp")), 1, "different", "different", "132072");
}

TEST_F(ReadBackOf, IgnoredRangesAreNotCompared) {
  ASSERT_EQ(m_line.Run(Programming("--isp")).status, 0);
  GivenFlashByte(kBank, 'x');
  GivenFlashByte(kBank + 9, 'x');
  ExpectResult(m_line.ReadBack(Programming("--isp"), {"--ignore", "0x10000-0x10009"}), 0, "passed",
               "identical", "132062");
  ExpectResult(m_line.ReadBack(Programming("--isp"), {"--ignore", "0x10000-0x10008"}), 1,
               "different", "different", "65527");
}

TEST_F(ReadBackOf, APlugInThatLiesAboutItsSuccessIsFound) {
  m_line.Tool().WithIspPlugin(TestPlugin("bad_plugin"));
  Command command = m_line.Line("run", {"--readback"}, Programming("--isp"));
  command.environment["ZVISP_BAD_PLUGIN"] = "succeed";
  ExpectResult(RunCommand(command), 1, "different", "different", "65536");
}

TEST_F(ReadBackOf, ADisplayThatLiesAboutOneBitIsFoundByReadingBackAlone) {
  m_line.AllDisplays().GivenFaults(3, "lie bank=2 bit=12\n");
  EXPECT_EQ(m_line.Run(Programming("--isp")).status, 0);
  const RunResult run = m_line.Run(Programming("--isp"), {"--readback"});
  ExpectResult(run, 1, "different", "different", "131072");
  EXPECT_EQ(FieldOf(EventOf(run.out, "result"), "bank"), "2");
  EXPECT_EQ(FieldOf(EventOf(run.out, "result"), "address"), std::to_string(2 * kBank + 1));
}

TEST_F(ReadBackOf, AReadThatFailsLeavesTheDisplayProgrammed) {
  m_line.AllDisplays().GivenFaults(3, "fail call=2 code=0x77\n");
  const RunResult run = m_line.Run(Programming("--isp"), {"--readback"});
  ExpectResult(run, 1, "failed", "programmed", "0");
  EXPECT_EQ(FieldOf(EventOf(run.out, "result"), "code"), "119");
}

TEST_F(ReadBackOf, ACrashWhileItReadsLeavesTheDisplayProgrammed) {
  m_line.AllDisplays().GivenFaults(3, "crash call=2\n");
  ExpectResult(m_line.Run(Programming("--isp"), {"--readback"}), 1, "crashed", "programmed", "0");
}

TEST_F(ReadBackOf, TheTimeOutCoversTheReadBack) {
  m_line.AllDisplays().GivenFaults(3, "hang call=2\n");
  ExpectResult(m_line.Run(Programming("--isp"), {"--readback", "--timeout", "1"}), 1, "timed_out",
               "programmed", "0");
}

TEST_F(ReadBackOf, AnOrphanRecordsThatItWasProgrammedAndNotReadBack) {
  m_line.AllDisplays().GivenFaults(3, "slow call=1 ms=300\n");
  StartedRun run(m_line.Line("run", {"--readback"}, Programming("--isp")));
  ASSERT_TRUE(m_line.AllDisplays().WaitForJournal(3, "erase bank=1"));
  run.Kill(SIGKILL);
  run.Wait();
  ASSERT_TRUE(m_line.WaitForRecord("\"type\":\"unit_result\""));
  const std::string result = EventOf(m_line.Record(), "result");
  EXPECT_EQ(FieldOf(result, "outcome"), "interrupted");
  EXPECT_EQ(FieldOf(result, "state"), "programmed");
}

TEST_F(ReadBackOf, AnOrphanThatWasAboutToReadRecordsTheSame) {
  m_line.Tool().WithIspPlugin(TestPlugin("bad_plugin"));
  Command command = m_line.Line("run", {"--readback"}, Programming("--isp"));
  command.environment["ZVISP_BAD_PLUGIN"] = "kill-parent-later";
  EXPECT_EQ(RunCommand(command).signal, SIGKILL);
  ASSERT_TRUE(m_line.WaitForRecord("\"type\":\"unit_result\""));
  const std::string result = EventOf(m_line.Record(), "result");
  EXPECT_EQ(FieldOf(result, "outcome"), "interrupted");
  EXPECT_EQ(FieldOf(result, "state"), "programmed");
  EXPECT_EQ(FieldOf(result, "code"), "0");
}

TEST_F(ReadBackOf, TheCommandReadbackNeverWrites) {
  ASSERT_EQ(m_line.Run(Programming("--isp")).status, 0);
  ASSERT_EQ(m_line.ReadBack(Programming("--isp")).status, 0);
  for (const std::string& line : m_line.AllDisplays().Journal(3)) {
    if (line.rfind("call n=2", 0) == 0) {
      EXPECT_THAT(line, HasSubstr("name=DumpFlash"));
    }
  }
  EXPECT_EQ(m_line.AllDisplays().Counters(3).front(), "1: 1 1");
}

TEST_F(ReadBackOf, WhatCannotBeReadBackIsRefusedAndTouchesNothing) {
  LineTool::Words compare = Programming("--isp");
  compare.emplace_back("--comparever");
  GivenFile(m_line / "boot.bin", "boot");
  LineTool::Words boot = Programming("--isp");
  boot.insert(boot.end(),
              {"--hw", "--dsmode", "1", "--factory", "--newboot", "--boot", m_line / "boot.bin"});
  for (const LineTool::Words& words :
       {compare, boot, LineTool::Words{"--resetmcu", "--comm", "3"}}) {
    const RunResult run = m_line.Run(words, {"--readback"});
    EXPECT_EQ(run.status, 2) << run.out;
    EXPECT_NE(EventOf(run.out, "error"), "");
  }
  EXPECT_EQ(m_line.Run(Programming("--isp"), {"--readback", "--ignore", "0-0xFFFFFFF"}).status, 2);
  EXPECT_EQ(m_line.Run(Programming("--isp"), {"--readback", "--ignore", "9-8"}).status, 2);
  EXPECT_FALSE(FileExists(m_line.AllDisplays().File(3, "flash")));
  EXPECT_FALSE(FileExists(m_line.AllDisplays().File(3, "journal")));
}

}  // namespace
