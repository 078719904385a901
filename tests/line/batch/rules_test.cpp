// SPDX-License-Identifier: MIT
//
// What decides which displays start and when: first article, stop rule, jobs at once, stagger and
// serialise. What a display's journal does not have was not done to it.
#include <string>
#include <vector>

#include "line/support/batch_floor.h"
#include "support/files.h"

#include <gtest/gtest.h>

namespace {

using Words = LineTool::Words;

constexpr const char* kGood = "passed identical";
constexpr const char* kBad = "failed uncertain";
constexpr const char* kLeftOut = "refused untouched";

// "P1 passed identical" for each place.
Words Ends(const Words& ends) {
  Words all;
  for (const std::string& end : ends)
    all.push_back("P" + std::to_string(all.size() + 1) + " " + end);
  return all;
}

// Lets these displays fail as soon as their flash is erased.
void GivenBroken(const BatchFloor& floor, const std::vector<unsigned>& places) {
  for (const unsigned place : places)
    floor.AllDisplays().GivenFaults(place, "fail bank=0");
}

void GivenSlow(const BatchFloor& floor, unsigned ms) {
  for (unsigned place = 1; place <= floor.Places(); ++place)
    floor.AllDisplays().GivenFaults(place, "slow ms=" + std::to_string(ms));
}

// These were left out, for this reason: no call reached them, and nothing about them began.
void ExpectLeftOut(const BatchFloor& floor, const std::string& events, unsigned first,
                   unsigned last, const std::string& reason) {
  for (unsigned place = first; place <= last; ++place) {
    SCOPED_TRACE(place);
    EXPECT_FALSE(floor.WasCalled(place));
    EXPECT_EQ(FieldOf(EventAt(events, "unit_result", place), "reason"), reason);
    EXPECT_EQ(EventsAt(events, "unit_start", place).size(), 0u);
    EXPECT_EQ(EventsAt(events, "start", place).size(), 0u);
    EXPECT_EQ(EventsAt(events, "result", place).size(), 0u);
  }
}

TEST(FirstArticle, AWrongImageCostsOneDisplay) {
  BatchFloor floor(6);
  floor.GivenTables("[line]\nfirst_article = true\n");
  // The image is programmed as it is, and is not the release that it should be.
  floor.GivenSteps(std::string(kProgramStep) +
                   "[[step]]\nname = \"version\"\n"
                   "read = { addr = 0x100, len = 4, equals = \"52 34 2E 31\" }\n");
  const RunResult batch = floor.RunBatch();
  EXPECT_EQ(batch.status, 1);
  EXPECT_EQ(EndsOf(batch.out, 6),
            Ends({"different identical", kLeftOut, kLeftOut, kLeftOut, kLeftOut, kLeftOut}));
  EXPECT_EQ(FieldOf(EventAt(batch.out, "unit_result", 1), "failed_step"), "version");
  EXPECT_EQ(floor.Noted(1, "write bank="), 1u);
  ExpectLeftOut(floor, batch.out, 2, 6, "the first article did not pass");
}

TEST(FirstArticle, ThatHangsCostsOneDisplay) {
  BatchFloor floor(4);
  floor.GivenTables("[line]\nfirst_article = true\n");
  floor.GivenSteps(std::string(kProgramStep) + "timeout_s = 1\n");
  floor.AllDisplays().GivenFaults(1, "hang bank=0 at=write");
  const RunResult batch = floor.RunBatch();
  EXPECT_EQ(batch.status, 5);
  EXPECT_EQ(EndsOf(batch.out, 4), Ends({"timed_out uncertain", kLeftOut, kLeftOut, kLeftOut}));
  ExpectLeftOut(floor, batch.out, 2, 4, "the first article did not pass");
}

TEST(FirstArticle, ThatPassesIsOverBeforeAnyOtherStarts) {
  BatchFloor floor(4);
  floor.GivenTables("[line]\nfirst_article = true\n");
  floor.AllDisplays().GivenFaults(1, "slow ms=200");
  // A later failure is the stop rule's business.
  GivenBroken(floor, {3});
  const RunResult batch = floor.RunBatch();
  EXPECT_EQ(batch.status, 5);
  EXPECT_EQ(EndsOf(batch.out, 4), Ends({kGood, kGood, kBad, kGood}));
  const std::uint64_t end = MsOf(EventAt(batch.out, "unit_result", 1));
  for (unsigned place = 2; place <= 4; ++place) {
    EXPECT_GE(MsOf(EventAt(batch.out, "unit_start", place)), end) << place;
  }
}

TEST(FirstArticle, ThatAHookRefusesIsReplacedByTheNext) {
  BatchFloor floor(5);
  floor.GivenTables(
      "[line]\nfirst_article = true\n[hook]\nbefore_unit = [\"./may\", \"{unit}\"]\n");
  floor.GivenScript("may", "case $1 in ZP1|ZP2) echo \"$1 is blocked\"; exit 1;; esac");
  GivenBroken(floor, {3});
  const RunResult batch = floor.RunBatch();
  EXPECT_EQ(batch.status, 5);
  EXPECT_EQ(EndsOf(batch.out, 5), Ends({kLeftOut, kLeftOut, kBad, kLeftOut, kLeftOut}));
  EXPECT_FALSE(floor.WasCalled(1));
  EXPECT_FALSE(floor.WasCalled(2));
  ExpectLeftOut(floor, batch.out, 4, 5, "the first article did not pass");
}

TEST(StopRule, ThreeFailuresInARowLeaveOutTheRest) {
  BatchFloor floor(6);
  floor.GivenTables("[line]\nstop_after = 3\njobs_at_once = 1\n");
  GivenBroken(floor, {1, 2, 3});
  const RunResult batch = floor.RunBatch();
  EXPECT_EQ(batch.status, 5);
  EXPECT_EQ(EndsOf(batch.out, 6), Ends({kBad, kBad, kBad, kLeftOut, kLeftOut, kLeftOut}));
  ExpectLeftOut(floor, batch.out, 4, 6, "3 units in a row did not pass");
}

TEST(StopRule, APassStartsTheCountAgain) {
  BatchFloor floor(8);
  floor.GivenTables("[line]\nstop_after = 3\njobs_at_once = 1\n");
  GivenBroken(floor, {1, 2, 4, 5, 6});
  const RunResult batch = floor.RunBatch();
  EXPECT_EQ(EndsOf(batch.out, 8), Ends({kBad, kBad, kGood, kBad, kBad, kBad, kLeftOut, kLeftOut}));
  ExpectLeftOut(floor, batch.out, 7, 8, "3 units in a row did not pass");
}

TEST(StopRule, WithoutItNothingIsLeftOut) {
  BatchFloor floor(6);
  floor.GivenTables("[line]\njobs_at_once = 2\n");
  GivenBroken(floor, {1, 2, 3, 4, 5});
  EXPECT_EQ(EndsOf(floor.RunBatch().out, 6), Ends({kBad, kBad, kBad, kBad, kBad, kGood}));
}

// Of those that run when the third one fails, each is finished as if nothing had happened.
TEST(StopRule, WhatRunsIsFinished) {
  BatchFloor floor(8);
  floor.GivenTables("[line]\nstop_after = 3\njobs_at_once = 4\n");
  GivenBroken(floor, {2, 3, 4, 5, 6});
  floor.AllDisplays().GivenFaults(1, "slow ms=2000");
  const RunResult batch = floor.RunBatch();
  EXPECT_EQ(batch.status, 5);
  // The next two may have started after the first failure and the second.
  const Words ends = EndsOf(batch.out, 8);
  EXPECT_EQ(Words(ends.begin(), ends.begin() + 4), Ends({kGood, kBad, kBad, kBad}));
  ExpectLeftOut(floor, batch.out, 7, 8, "3 units in a row did not pass");
}

TEST(StopRule, NeverStartsMoreThanAreUnderWay) {
  BatchFloor floor(10);
  floor.GivenTables("[line]\nstop_after = 3\njobs_at_once = 2\n");
  GivenBroken(floor, {1, 2, 3, 4, 5, 6, 7, 8, 9, 10});
  const RunResult batch = floor.RunBatch();
  EXPECT_EQ(batch.status, 5);
  unsigned called = 0;
  for (unsigned place = 1; place <= 10; ++place)
    called += floor.WasCalled(place) ? 1 : 0;
  EXPECT_GE(called, 3u);
  EXPECT_LE(called, 4u);
  ExpectLeftOut(floor, batch.out, 5, 10, "3 units in a row did not pass");
}

TEST(JobsAtOnce, AreNeverMore) {
  for (const unsigned limit : {1u, 3u}) {
    BatchFloor floor(7);
    floor.GivenTables("[line]\njobs_at_once = " + std::to_string(limit) + "\n");
    GivenSlow(floor, 200);
    const WatchedBatch batch = RunAndWatch(floor);
    EXPECT_EQ(batch.run.status, 0) << batch.run.out;
    EXPECT_EQ(batch.most_at_once, limit);
  }
}

TEST(JobsAtOnce, AreAllWhenNothingIsSaid) {
  BatchFloor floor(16);
  GivenSlow(floor, 2000);
  const WatchedBatch batch = RunAndWatch(floor);
  EXPECT_EQ(batch.run.status, 0) << batch.run.out;
  EXPECT_EQ(batch.most_at_once, 16u);
}

TEST(Stagger, KeepsStartsApart) {
  BatchFloor floor(4);
  floor.GivenTables("[line]\nstagger_ms = 700\n");
  const RunResult batch = floor.RunBatch();
  EXPECT_EQ(batch.status, 0) << batch.out;
  for (unsigned place = 2; place <= 4; ++place) {
    const std::uint64_t before = MsOf(EventAt(batch.out, "unit_start", place - 1));
    // A unit is let go before it says so, which takes a moment on a busy machine.
    EXPECT_GE(MsOf(EventAt(batch.out, "unit_start", place)), before + 350) << place;
  }
}

// P1 and P2 are at one hub. P3 is not, and waits for neither.
TEST(Serialise, PlacesAtOneInterfaceTakeTurns) {
  BatchFloor floor(3);
  floor.GivenTables("[line]\nserialise = true\n");
  floor.GivenInterface(2, 1);
  for (const unsigned place : {1u, 2u, 3u}) {
    floor.GivenFile("P" + std::to_string(place) + ".bin", 1, 10 + place);
  }
  floor.GivenSteps(
      "[[step]]\nname = \"program\"\nreadback = true\n"
      "zvisp = [\"--isp\", \"--fw1\", \"{place}.bin\", \"--bank1\", \"0\"]\n");
  floor.AllDisplays().GivenFaults(1, "slow ms=700");
  const RunResult batch = floor.RunBatch();
  EXPECT_EQ(batch.status, 0) << batch.out;
  EXPECT_EQ(EndsOf(batch.out, 3), Ends({kGood, kGood, kGood}));
  // The first one's bytes were read back before the second one's replaced them.
  Words calls;
  for (const std::string& line : floor.AllDisplays().Journal(1)) {
    const std::size_t name = line.find(" name=");
    if (name != std::string::npos) calls.push_back(line.substr(name + 6, 9));
  }
  EXPECT_EQ(calls, (Words{"IspFlash ", "DumpFlash", "IspFlash ", "DumpFlash"}));
  EXPECT_EQ(floor.AllDisplays().Flash(1), ReadWholeFile(floor.NextToJob("P2.bin")));
  EXPECT_EQ(floor.AllDisplays().Flash(3), ReadWholeFile(floor.NextToJob("P3.bin")));
  const std::uint64_t first_ended = MsOf(EventAt(batch.out, "unit_result", 1));
  EXPECT_GE(MsOf(EventAt(batch.out, "unit_start", 2)), first_ended);
  EXPECT_LT(MsOf(EventAt(batch.out, "unit_result", 3)), first_ended);
}

// Whoever was not started is as before: no attempt, and what was in doubt stays so.
TEST(LeftOut, ChangesNothingThatIsKnown) {
  BatchFloor floor(3);
  floor.GivenTables("[line]\nfirst_article = true\n");
  GivenBroken(floor, {1});
  EXPECT_EQ(floor.RunBatch().status, 5);
  floor.GivenTables("");
  floor.AllDisplays().GivenFaults(1, "");
  GivenBroken(floor, {2});
  const RunResult second = floor.RunBatch();
  EXPECT_EQ(EndsOf(second.out, 3), Ends({kGood, kBad, kGood}));
  for (const unsigned place : {1u, 2u, 3u}) {
    EXPECT_EQ(FieldOf(EventAt(second.out, "unit_start", place), "attempt"), place == 1 ? "2" : "1");
  }
  // Now the second is in doubt, and is left out.
  floor.GivenTables("[line]\nfirst_article = true\n");
  GivenBroken(floor, {1});
  const RunResult third = floor.RunBatch();
  EXPECT_EQ(EndsOf(third.out, 3), Ends({kBad, kLeftOut, kLeftOut}));
  const RunResult doctor = floor.Doctor();
  EXPECT_EQ(doctor.status, 5);
  EXPECT_EQ(EventsOf(doctor.out, "finding").size(), 2u);
  EXPECT_EQ(FieldOf(EventAt(doctor.out, "finding", 2), "run"),
            FieldOf(EventAt(second.out, "unit_start", 2), "run"));
}

}  // namespace
