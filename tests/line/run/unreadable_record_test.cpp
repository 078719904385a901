// SPDX-License-Identifier: MIT
//
// `journal`, when its record cannot be read: the exit status never says that all is well.
#include <string>

#include "line/support/line_tool.h"
#include "support/files.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using testing::HasSubstr;

class UnreadableRecord : public testing::Test {
 protected:
  UnreadableRecord() { GivenFirmware(m_line / "fw.bin", 3 * 65536); }

  void GivenAnUnreadableDay() const {
    GivenDirectory(m_line.DataDirectory() + "/journal/2026-01-01.jsonl");
  }

  LineTool m_line;
};

TEST_F(UnreadableRecord, IsNotAvailable) {
  ASSERT_EQ(m_line.Run({"--isp", "--fw", "fw.bin", "--comm", "3"}).status, 0);
  EXPECT_EQ(m_line.Doctor().status, 0);
  GivenAnUnreadableDay();
  const RunResult doctor = m_line.Doctor();
  EXPECT_EQ(doctor.status, 3);
  EXPECT_THAT(FieldOf(EventOf(doctor.out, "error"), "text"),
              HasSubstr("2026-01-01.jsonl cannot be read: "));
}

TEST_F(UnreadableRecord, ThatIsNotThereIsNotAvailable) {
  const RunResult doctor = m_line.Doctor();
  EXPECT_EQ(doctor.status, 3);
  EXPECT_EQ(FieldOf(EventOf(doctor.out, "error"), "text"),
            "There is no record in " + m_line.DataDirectory() + "; check --data.");
}

TEST_F(UnreadableRecord, ADisplayInDoubtCountsForMore) {
  m_line.AllDisplays().GivenFaults(3, "fail bank=1\n");
  ASSERT_EQ(m_line.Run({"--isp", "--fw", "fw.bin", "--comm", "3"}).status, 5);
  GivenAnUnreadableDay();
  const RunResult doctor = m_line.Doctor();
  EXPECT_EQ(doctor.status, 5);
  EXPECT_NE(EventOf(doctor.out, "finding"), "");
  EXPECT_NE(EventOf(doctor.out, "error"), "");
}

}  // namespace
