// SPDX-License-Identifier: MIT
//
// The record on a disk that is full: before a run, before its call, and in the middle of it.
#include <algorithm>
#include <filesystem>
#include <string>

#include "line/support/line_tool.h"
#include "line/support/small_disk.h"
#include "support/files.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using testing::HasSubstr;

constexpr const char* kSkipped = "a small disk needs Linux and the rights of root";

class AFullDisk : public testing::Test {
 protected:
  AFullDisk() { GivenFirmware(m_line / "fw.bin", 3 * 65536); }

  Command Run(const LineTool::Words& options = {}) const {
    return m_line.Line("run", options, {"--isp", "--fw", "fw.bin", "--comm", "3"});
  }
  // The file of the record; empty when there is none.
  std::string RecordFile() const {
    for (const auto& entry :
         std::filesystem::directory_iterator(m_line.DataDirectory() + "/journal"))
      if (entry.path().extension() == ".jsonl") return entry.path().string();
    return "";
  }

  LineTool m_line;
};

TEST_F(AFullDisk, WithLessThan16MiBFreeStartsNothing) {
  const SmallDisk disk(m_line.DataDirectory(), 16 * 1024 - 4);
  if (!disk.IsThere()) GTEST_SKIP() << kSkipped;
  const RunResult run = RunCommand(Run());
  EXPECT_EQ(run.status, 3) << run.out;
  EXPECT_THAT(FieldOf(EventOf(run.out, "error"), "text"),
              HasSubstr("KiB free, less than the 16384 KiB that a run needs; make room, or name "
                        "another directory with --data."));
  EXPECT_FALSE(FileExists(m_line.AllDisplays().File(3, "journal")));
}

TEST_F(AFullDisk, With16MiBFreeDoesNotKeepARunFromStarting) {
  const SmallDisk disk(m_line.DataDirectory(), 16 * 1024 + 64);
  if (!disk.IsThere()) GTEST_SKIP() << kSkipped;
  EXPECT_EQ(RunCommand(Run()).status, 0);
}

// It is filled while the run waits for its interface, after it has checked the space.
TEST_F(AFullDisk, BeforeTheCallIsStatusThreeAndTouchesNothing) {
  const SmallDisk disk(m_line.DataDirectory(), 20 * 1024);
  if (!disk.IsThere()) GTEST_SKIP() << kSkipped;
  m_line.AllDisplays().GivenFaults(3, "slow ms=400\n");
  Command holder = Run();
  const std::string elsewhere = m_line.Tool().Elsewhere("record-of-another");
  std::replace(holder.arguments.begin(), holder.arguments.end(), m_line.DataDirectory(), elsewhere);
  StartedRun first(holder);
  ASSERT_TRUE(m_line.AllDisplays().WaitForJournal(3, "erase bank=0"));
  StartedRun second(Run({"--wait", "60"}));
  ASSERT_TRUE(m_line.WaitForRecord(R"("for":"interface")"));
  disk.Fill(RecordFile());
  EXPECT_EQ(first.Wait().status, 0);
  const RunResult run = second.Wait();
  EXPECT_EQ(run.status, 3) << run.out;
  EXPECT_EQ(FieldOf(EventOf(run.out, "result"), "outcome"), "unavailable");
  EXPECT_EQ(FieldOf(EventOf(run.out, "result"), "state"), "untouched");
  EXPECT_THAT(m_line.AllDisplays().Journal(3),
              testing::Not(testing::Contains(HasSubstr("call n=2"))));
}

// The result is lost, and doctor still names the display.
TEST_F(AFullDisk, InTheMiddleOfARunIsStatusFourAndTheDisplayStaysInDoubt) {
  const SmallDisk disk(m_line.DataDirectory(), 20 * 1024);
  if (!disk.IsThere()) GTEST_SKIP() << kSkipped;
  m_line.AllDisplays().GivenFaults(3, "slow ms=400\n");
  StartedRun started(Run());
  ASSERT_TRUE(m_line.AllDisplays().WaitForJournal(3, "erase bank=0"));
  disk.Fill(RecordFile());
  const RunResult run = started.Wait();
  EXPECT_EQ(run.status, 4) << run.out;
  EXPECT_EQ(FieldOf(EventOf(run.out, "result"), "state"), "programmed");
  EXPECT_EQ(FieldOf(EventOf(run.out, "unit_result"), "recorded"), "false");
  EXPECT_EQ(m_line.AllDisplays().Flash(3), ReadWholeFile(m_line / "fw.bin"));
  disk.MakeRoom();
  EXPECT_EQ(m_line.Doctor().status, 5);
  // A line that was torn takes nothing of the next run along.
  EXPECT_EQ(RunCommand(Run()).status, 0);
  EXPECT_EQ(m_line.Doctor().status, 0);
}

}  // namespace
