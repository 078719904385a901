// SPDX-License-Identifier: MIT
#include "line/supervise/output_follower.h"

#include <unistd.h>

#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace line {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class OutputFollowerOf : public testing::Test {
 protected:
  OutputFollowerOf() {
    std::string error;
    EXPECT_TRUE(m_output.Open(error)) << error;
  }
  void Print(const std::string& text) const {
    ASSERT_EQ(write(m_output.Descriptor(), text.data(), text.size()),
              static_cast<ssize_t>(text.size()));
  }
  OutputFollower m_output;
};

TEST_F(OutputFollowerOf, LinesComeWhenTheyAreWholeAndTheRestAtTheEnd) {
  EXPECT_THAT(m_output.TakeLines(false), IsEmpty());
  Print("one\ntw");
  EXPECT_THAT(m_output.TakeLines(false), ElementsAre("one"));
  Print("o\n\nthree");
  EXPECT_THAT(m_output.TakeLines(false), ElementsAre("two", ""));
  EXPECT_THAT(m_output.TakeLines(true), ElementsAre("three"));
  EXPECT_EQ(m_output.DroppedBytes(), 0u);
}

TEST_F(OutputFollowerOf, TextBeforeTheLinesIsTakenWhole) {
  Print("a verdict\nof zvisp");
  EXPECT_EQ(m_output.TakeText(), "a verdict\nof zvisp");
  Print("\nmore\n");
  EXPECT_THAT(m_output.TakeLines(true), ElementsAre("", "more"));
}

TEST_F(OutputFollowerOf, OfAFloodTheFirstMegabyteIsKeptAndTheRestCounted) {
  const std::string line = std::string(1023, 'x') + "\n";
  std::size_t lines = 0;
  for (int i = 0; i < 20 * 1024; ++i) {
    Print(line);
    if (i % 100 == 0) lines += m_output.TakeLines(false).size();
  }
  lines += m_output.TakeLines(true).size();
  EXPECT_EQ(lines, 1024u);
  EXPECT_EQ(m_output.DroppedBytes(), (20u * 1024 - 1024) * 1024);
  // The file itself does not grow without end.
  EXPECT_LT(lseek(m_output.Descriptor(), 0, SEEK_END), 10 * 1024 * 1024);
}

TEST_F(OutputFollowerOf, LinesAreCountedAsWell) {
  Print(std::string(20000, '\n'));
  EXPECT_EQ(m_output.TakeLines(true).size(), 10000u);
  EXPECT_EQ(m_output.DroppedBytes(), 10000u);
}

}  // namespace
}  // namespace line
