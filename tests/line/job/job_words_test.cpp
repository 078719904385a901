// SPDX-License-Identifier: MIT
#include "line/job/job_words.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace line {
namespace {

using Words = std::vector<std::string>;

JobStep StepOf(const Words& words) {
  JobStep step;
  step.name = "dump";
  step.words = words;
  return step;
}

TEST(JobWordsTest, UnitAndPlaceAreReplacedOnceAndOtherBracesStay) {
  EXPECT_EQ(Expanded("{unit}-{place}-{unit}", "Z1", "A1"), "Z1-A1-Z1");
  EXPECT_EQ(Expanded("{unit}", "{place}", "A1"), "{place}");
  EXPECT_EQ(Expanded("{{unit}} {uni} {", "Z1", "A1"), "{Z1} {uni} {");
  EXPECT_EQ(Expanded("", "Z1", "A1"), "");
}

TEST(JobWordsTest, ThePlaceNamesTheDisplay) {
  JobPlace place = {"A1", 3, {}, {}};
  const JobStep step = StepOf({"--dumpflash", "--dumpname", "{unit}.bin"});
  EXPECT_EQ(WordsOf(step, place, "Z1"),
            (Words{"--comm", "3", "--dumpflash", "--dumpname", "Z1.bin"}));
  place.slave = 0x6E;
  EXPECT_EQ(WordsOf(step, place, "Z1"),
            (Words{"--comm", "3", "--slave", "110", "--dumpflash", "--dumpname", "Z1.bin"}));
}

TEST(JobWordsTest, ASerialLeadsToNoOtherDirectory) {
  const JobStep step = StepOf({"--dumpflash", "--dumpname", "{unit}.bin"});
  EXPECT_EQ(WhyNotInWords(step, "Z.1"), "");
  for (const char* const serial : {"../Z1", "a/b", "..", "/etc/x"}) {
    EXPECT_EQ(WhyNotInWords(step, serial), std::string("The serial ") + serial +
                                               " has \"/\" or \"..\" in it, and the words of step "
                                               "\"dump\" name a file by {unit}; take {place} "
                                               "instead.");
  }
  EXPECT_EQ(WhyNotInWords(StepOf({"--dumpflash", "--dumpname", "{place}.bin"}), "a/b"), "");
}

}  // namespace
}  // namespace line
