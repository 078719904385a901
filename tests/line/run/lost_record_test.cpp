// SPDX-License-Identifier: MIT
//
// A record that takes no more lines in the middle of a run: the limit of a file's size is reached.
#include <sys/stat.h>

#include <filesystem>
#include <string>

#include "line/support/line_tool.h"
#include "support/files.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

constexpr std::size_t kLimitUnit = 1024;

class ALostRecord : public testing::Test {
 protected:
  ALostRecord() {
    m_line.Tool().WithIspPlugin(TestPlugin("bad_plugin"));
    GivenFile(m_line / "fw.bin", "firmware");
  }

  // A run whose files may not grow beyond so many KiB.
  RunResult RunWithLimit(std::size_t kib) const {
    Command run = m_line.Line("run", {}, {"--isp", "--fw", "fw.bin", "--comm", "3"});
    run.environment["ZVISP_BAD_PLUGIN"] = "succeed";
    run.arguments.insert(
        run.arguments.begin(),
        {"-c", "ulimit -f " + std::to_string(kib) + "; exec \"$@\"", "bash", run.program});
    run.program = "/bin/bash";
    run.name = "bash";
    return RunCommand(run);
  }

  // Makes today's record so long that only this many bytes are left below the limit.
  void GivenRoomFor(std::size_t bytes, std::size_t kib) const {
    ASSERT_EQ(RunWithLimit(1000).status, 0);
    const std::string directory = m_line.DataDirectory() + "/journal";
    for (const auto& entry : std::filesystem::directory_iterator(directory)) {
      if (entry.path().extension() != ".jsonl") continue;
      const std::string record = ReadWholeFile(entry.path().string());
      const std::size_t length = kib * kLimitUnit - bytes;
      ASSERT_GT(length, record.size());
      GivenFile(entry.path().string(),
                record + std::string(length - record.size() - 1, ' ') + "\n");
    }
  }

  LineTool m_line;
};

// The limit ends nobody by its signal.
TEST_F(ALostRecord, AFirmwareFileAboveTheLimitIsRefused) {
  GivenFirmware(m_line / "fw.bin", 8 * kLimitUnit);
  const RunResult run = RunWithLimit(4);
  EXPECT_EQ(run.status, 2);
  EXPECT_THAT(FieldOf(EventOf(run.out, "error"), "text"), testing::HasSubstr("File too large"));
}

// Wherever the record ends, the exit status and the state say it.
TEST_F(ALostRecord, BeforeTheCallKeepsThePlugInFromBeingCalledAndAfterItIsStatusFour) {
  bool before = false;
  bool after = false;
  for (std::size_t room = 50; room < 4000; room += 150) {
    std::filesystem::remove_all(m_line.DataDirectory());
    GivenRoomFor(room, 64);
    const RunResult run = RunWithLimit(64);
    const std::string result = EventOf(run.out, "result");
    const bool was_called = !EventsOf(run.out, "progress").empty();
    EXPECT_EQ(FieldOf(result, "state"), was_called ? "programmed" : "untouched") << room;
    EXPECT_EQ(FieldOf(result, "outcome"), was_called ? "passed" : "unavailable") << room;
    if (!was_called) {
      EXPECT_EQ(run.status, 3) << room << run.out;
      before = true;
    } else if (run.status != 0) {
      EXPECT_EQ(run.status, 4) << room << run.out;
      after = true;
    }
  }
  EXPECT_TRUE(before);
  EXPECT_TRUE(after);
}

}  // namespace
