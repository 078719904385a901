// SPDX-License-Identifier: MIT
//
// Serials at places: each refusal, and who takes part.
#include "line/job/serials.h"

#include "journal/record_writer.h"
#include "support/scratch_dir.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace line {
namespace {

using Texts = std::vector<std::string>;

Job JobOfThree() {
  Job job;
  job.name = "j";
  job.pattern = "Z.*";
  job.places = {{"A1", 1, {}, {}}, {"A2", 2, {}, {}}, {"A3", 3, {}, {}}};
  return job;
}

Texts TextsOf(const Serials& serials) {
  Texts texts;
  for (const JobError& error : serials.errors)
    texts.push_back(error.text);
  return texts;
}

Texts Refusals(const Texts& units, const Texts& skipped = {}) {
  return TextsOf(ReadSerials(JobOfThree(), units, skipped));
}

TEST(SerialsTest, EachPlaceThatTakesPartHasItsSerial) {
  const Serials serials = ReadSerials(JobOfThree(), {"A3=Z=3", "A1=Z1"}, {"A2"});
  EXPECT_THAT(serials.errors, testing::IsEmpty());
  ASSERT_EQ(serials.units.size(), 2u);
  EXPECT_EQ(serials.units[0].place, 0u);
  EXPECT_EQ(serials.units[0].unit, "Z1");
  EXPECT_EQ(serials.units[1].place, 2u);
  EXPECT_EQ(serials.units[1].unit, "Z=3");
}

TEST(SerialsTest, ACheckTakesThePlacesInstead) {
  const Serials serials = PlacesInsteadOfSerials(JobOfThree(), {"A1"});
  EXPECT_THAT(serials.errors, testing::IsEmpty());
  ASSERT_EQ(serials.units.size(), 2u);
  EXPECT_EQ(serials.units[0].unit, "A2");
  EXPECT_EQ(serials.units[1].place, 2u);
}

struct Row {
  Texts units, skipped, sentences;
};

// clang-format off
const Row kRows[] = {
  {{"A1=Z1", "A2=Z2"}, {},
   {"The place \"A3\" has no serial; give --unit A3=SERIAL, or leave it out with --skip A3."}},
  {{"A1=Z1", "A2=Z2", "A3=Z3", "A1=Z4"}, {},
   {"The place \"A1\" has two serials; give --unit once for it."}},
  {{"A1=Z1", "A2=Z2", "A4=Z3"}, {"A3"},
   {"--unit A4=Z3: the job has no place \"A4\"; did you mean \"A1\"?"}},
  {{"A1=Z1", "A2=Z2"}, {"A3", "west wing"},
   {"--skip west wing: the job has no place \"west wing\"; give one of its [[place]]s."}},
  {{"A1=Z1", "A2=Z2", "A3=Z3"}, {"A3"},
   {"The place \"A3\" has a serial and is skipped; leave out --unit or --skip."}},
  {{"A1=Z1", "Z2"}, {"A2", "A3"},
   {"--unit Z2 names no place; give PLACE=SERIAL."}},
  {{"A1="}, {"A2", "A3"},
   {"Place \"A1\": The serial of --unit is blank; give the display's, or leave --unit out."}},
  {{"A1=\u00A0 \u3000"}, {"A2", "A3"},
   {"Place \"A1\": The serial of --unit is blank; give the display's, or leave --unit out."}},
  {{"A1=Z\x01"}, {"A2", "A3"},
   {"Place \"A1\": The serial of --unit has control characters, or is not UTF-8; give it as it is printed on the display."}},
  {{"A1=Y1"}, {"A2", "A3"},
   {"Place \"A1\": the serial Y1 does not match the job's pattern Z.*; read it again."}},
  {{"A1=Z1", "A2=Z1"}, {"A3"},
   {"The serial Z1 is at two places, \"A1\" and \"A2\"; read both again."}},
  {{}, {"A1", "A2", "A3"},
   {"Every place is skipped, so there is nothing to do; leave out one --skip."}},
  {{"A1=Y1", "A2=", "A5"}, {},
   {"Place \"A1\": the serial Y1 does not match the job's pattern Z.*; read it again.",
    "Place \"A2\": The serial of --unit is blank; give the display's, or leave --unit out.",
    "--unit A5 names no place; give PLACE=SERIAL.",
    "The place \"A3\" has no serial; give --unit A3=SERIAL, or leave it out with --skip A3."}},
};
// clang-format on

TEST(SerialsTest, EveryRefusalHasItsSentence) {
  for (const Row& row : kRows) {
    EXPECT_EQ(Refusals(row.units, row.skipped), row.sentences);
  }
}

TEST(SerialsTest, ASerialThatNamesAFileLeadsToNoOtherDirectory) {
  Job job = JobOfThree();
  JobStep step;
  step.name = "dump";
  step.words = {"--dumpflash", "--dumpname", "{unit}.bin"};
  job.steps = {step};
  EXPECT_THAT(
      TextsOf(ReadSerials(job, {"A1=Z/1"}, {"A2", "A3"})),
      testing::ElementsAre("Place \"A1\": The serial Z/1 has \"/\" or \"..\" in it, and the "
                           "words of step \"dump\" name a file by {unit}; take {place} "
                           "instead."));
}

class PassedSerialsTest : public testing::Test {
 protected:
  Texts Passed(bool once) {
    Job job = JobOfThree();
    job.once = once;
    Serials serials = ReadSerials(job, {"A1=Z1", "A2=Z2", "A3=Z3"}, {});
    AskRecord(job, m_directory.Path(), serials);
    EXPECT_EQ(serials.units[0].attempt, 2u);
    EXPECT_EQ(serials.units[1].attempt, 1u);
    return TextsOf(serials);
  }
  ScratchDir m_directory;
};

TEST_F(PassedSerialsTest, WhatPassedThisJobIsRefused) {
  RecordWriter record;
  record.OfJob("j").Add("r1", "Z1", 1, UnitStartEvent{});
  record.Ends("r1", "Z1", 1, UnitState::kIdentical, Outcome::kPassed);
  record.OfJob("other").Add("r2", "Z2", 1, UnitStartEvent{});
  record.Ends("r2", "Z2", 1, UnitState::kIdentical, Outcome::kPassed);
  record.Save(m_directory.Path());
  EXPECT_THAT(Passed(true),
              testing::ElementsAre("Place \"A1\": the serial Z1 has passed this job already; take "
                                   "another display, or write once = false under [unit]."));
  EXPECT_THAT(Passed(false), testing::IsEmpty());
}

}  // namespace
}  // namespace line
