// SPDX-License-Identifier: MIT
#include "display/counters.h"

#include "support/files.h"
#include "support/scratch_dir.h"

#include <gtest/gtest.h>

namespace {

using simulator::Counters;

class CountersTest : public testing::Test {
 protected:
  std::string Line(std::size_t number) const {
    return ReadWholeFile(m_path).substr(number * 26, 26);
  }

  ScratchDir m_scratch;
  std::string m_path = m_scratch / "counters";
};

TEST_F(CountersTest, ANewFileHasALineOfZerosForEachBank) {
  Counters counters;
  ASSERT_TRUE(counters.Open(m_path));
  EXPECT_EQ(ReadWholeFile(m_path).size(), 6656u);
  EXPECT_EQ(Line(0), "  0          0          0\n");
  EXPECT_EQ(Line(255), "255          0          0\n");
}

TEST_F(CountersTest, CountsGoOnFromOneRunToTheNext) {
  for (int run = 0; run < 3; ++run) {
    Counters counters;
    ASSERT_TRUE(counters.Open(m_path));
    ASSERT_TRUE(counters.CountErase(7));
    ASSERT_TRUE(run == 0 || counters.CountWrite(7));
  }
  EXPECT_EQ(Line(6), "  6          0          0\n");
  EXPECT_EQ(Line(7), "  7          3          2\n");
}

TEST_F(CountersTest, ALineThatCannotBeReadCountsFromZeroAndTheOthersStay) {
  Counters first;
  ASSERT_TRUE(first.Open(m_path) && first.CountErase(0) && first.CountErase(1));
  std::string text = ReadWholeFile(m_path);
  GivenFile(m_path, text.replace(26, 5, "?????").substr(0, 60));
  Counters second;
  ASSERT_TRUE(second.Open(m_path) && second.CountWrite(1));
  EXPECT_EQ(Line(0), "  0          1          0\n");
  EXPECT_EQ(Line(1), "  1          0          1\n");
  EXPECT_EQ(ReadWholeFile(m_path).size(), 6656u);
}

TEST_F(CountersTest, AFileThatCannotBeMadeIsReported) {
  EXPECT_FALSE(Counters().Open(m_scratch / "missing/counters"));
}

}  // namespace
