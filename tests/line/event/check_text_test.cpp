// SPDX-License-Identifier: MIT
#include "line/event/check_text.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace line {
namespace {

using testing::ElementsAre;

std::vector<std::string> Lines(CheckOutcome outcome, const std::string& text) {
  std::vector<std::string> lines;
  for (const TextLine& line : LinesOfCheck({"id", "is a library that loads", outcome, text})) {
    EXPECT_TRUE(line.is_result);
    lines.push_back(line.text);
  }
  return lines;
}

TEST(CheckText, BeginsWithTheOutcome) {
  EXPECT_THAT(Lines(CheckOutcome::kPassed, ""), ElementsAre("PASS     is a library that loads"));
  EXPECT_THAT(Lines(CheckOutcome::kWarning, ""), ElementsAre("WARN     is a library that loads"));
  EXPECT_THAT(Lines(CheckOutcome::kFailed, ""), ElementsAre("FAIL     is a library that loads"));
  EXPECT_THAT(Lines(CheckOutcome::kNotRun, ""), ElementsAre("not run  is a library that loads"));
}

TEST(CheckText, HasAShortTextOnTheLineOfItsTitle) {
  EXPECT_THAT(Lines(CheckOutcome::kNotRun, "Needs --with-device."),
              ElementsAre("not run  is a library that loads                Needs --with-device."));
  EXPECT_EQ(Lines(CheckOutcome::kFailed, std::string(32, 'x')).front().size(), 80u);
}

TEST(CheckText, BreaksALongTextBetweenWords) {
  EXPECT_THAT(
      Lines(CheckOutcome::kFailed, std::string(33, 'x') + " " + std::string(37, 'y') + " z"),
      ElementsAre("FAIL     is a library that loads",
                  "         " + std::string(33, 'x') + " " + std::string(37, 'y'), "         z"));
  // A path is never broken.
  EXPECT_THAT(Lines(CheckOutcome::kFailed, std::string(100, 'x')),
              ElementsAre("FAIL     is a library that loads", "         " + std::string(100, 'x')));
}

TEST(CheckText, LeavesOutWhatAScreenWouldObey) {
  EXPECT_THAT(Lines(CheckOutcome::kFailed, "a\x1b[31mb"),
              ElementsAre("FAIL     is a library that loads                ab"));
}

TEST(CheckText, CountsTheChecksOfASummary) {
  EXPECT_EQ(CountsOfChecks({}), "");
  EXPECT_EQ(CountsOfChecks({{}, {}, {{CheckOutcome::kPassed, 3}, {CheckOutcome::kNotRun, 1}}}),
            "3 passed, 1 not run");
}

}  // namespace
}  // namespace line
