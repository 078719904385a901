// SPDX-License-Identifier: MIT
//
// Several simulated displays at once.
#include "line/supervise/batch_run.h"

#include <signal.h>
#include <unistd.h>

#include <thread>

#include "line/engine/engine.h"
#include "line/supervise/judge_words.h"
#include "line/support/line_tool.h"
#include "support/files.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace line {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

class BatchRunOf : public EngineTest {
 protected:
  std::vector<UnitRequest> ProgrammedUnits(unsigned count) const {
    std::vector<UnitRequest> units;
    for (unsigned comm = 1; comm <= count; ++comm) {
      units.push_back(ProgrammedUnit(comm));
    }
    return units;
  }
  static std::vector<Outcome> Outcomes(const std::vector<UnitEnd>& ends) {
    std::vector<Outcome> outcomes;
    for (const UnitEnd& end : ends) {
      outcomes.push_back(end.outcome);
    }
    return outcomes;
  }
  // The first signal has been taken.
  bool WaitForStop() const {
    return WaitUntil(
        [this] { return Lines().find("Nothing new is started") != std::string::npos; });
  }
  // Signals this process as soon as a display is in its first bank.
  std::thread Signaller(unsigned comm) const {
    return std::thread([this, comm] {
      if (m_displays.WaitForJournal(comm, "erase bank=0")) kill(getpid(), SIGINT);
    });
  }
};

TEST_F(BatchRunOf, OneWorkerJudgesListsThatKeepTheirOwnText) {
  std::string error;
  const auto judged = JudgeInWorker({Programming(3), {"--nonsense"}, Programming(4), {}}, error);
  ASSERT_TRUE(judged) << error;
  ASSERT_EQ(judged->size(), 4u);
  EXPECT_TRUE((*judged)[0].accepted);
  EXPECT_EQ((*judged)[0].setting->enumCommID, 3u);
  EXPECT_FALSE((*judged)[1].accepted);
  EXPECT_THAT((*judged)[1].said, HasSubstr("nonsense"));
  EXPECT_TRUE((*judged)[2].accepted);
  EXPECT_EQ((*judged)[2].setting->enumCommID, 4u);
  EXPECT_EQ((*judged)[2].setting->stMapFw.ulCount, 2u);
  EXPECT_THAT((*judged)[2].said, Not(HasSubstr("nonsense")));
  EXPECT_FALSE((*judged)[3].accepted);
}

TEST_F(BatchRunOf, AHangACrashAndAFailureKeepToTheirOwnPlaces) {
  m_displays.GivenFaults(1, "hang bank=1\n");
  m_displays.GivenFaults(2, "crash bank=1 at=write\n");
  m_displays.GivenFaults(3, "flip bank=0\n");
  std::vector<UnitRequest> units = ProgrammedUnits(5);
  units[0].steps[0].timeout_s = 0.5;
  const std::vector<UnitEnd> ends = Run(std::move(units));
  EXPECT_THAT(Outcomes(ends), ElementsAre(Outcome::kTimedOut, Outcome::kCrashed, Outcome::kFailed,
                                          Outcome::kPassed, Outcome::kPassed));
  for (const std::size_t unit : {0, 1, 2}) {
    EXPECT_EQ(ends[unit].state, UnitState::kUncertain) << unit;
  }
  EXPECT_EQ(m_displays.Flash(4), ReadWholeFile(Firmware()));
  EXPECT_EQ(m_displays.Flash(5), ReadWholeFile(Firmware()));
}

TEST_F(BatchRunOf, WhatTheFirstArticleLeavesOutIsReportedAndToldToTheHook) {
  GivenHook("to-mes", "cat >> told\n");
  m_displays.GivenFaults(1, "flip bank=0\n");
  std::vector<UnitRequest> units = ProgrammedUnits(3);
  for (UnitRequest& unit : units) {
    unit.after_words = {"./to-mes"};
  }
  BatchRules rules;
  rules.first_article = true;
  const std::vector<UnitEnd> ends = Run(std::move(units), rules);
  EXPECT_THAT(Outcomes(ends), ElementsAre(Outcome::kFailed, Outcome::kRefused, Outcome::kRefused));
  EXPECT_EQ(ends[1].reason, "the first article did not pass");
  EXPECT_FALSE(ends[1].interrupted);
  EXPECT_EQ(EventsOf(Lines(), "unit_start").size(), 1u);
  EXPECT_EQ(EventsOf(ReadWholeFile(m_scratch / "told"), "unit_result").size(), 3u);
  EXPECT_THAT(m_displays.Journal(2), IsEmpty());
}

TEST_F(BatchRunOf, TwoUnitsAtOneInterfaceDoNotOverlap) {
  m_displays.GivenFaults(3, "slow ms=100\n");
  std::vector<UnitRequest> units;
  units.push_back(ProgrammedUnit(3));
  units.push_back(ProgrammedUnit(3));
  EXPECT_THAT(Outcomes(Run(std::move(units))), ElementsAre(Outcome::kPassed, Outcome::kPassed));
  EXPECT_TRUE(EventsOf(Lines(), "wait").empty());
}

TEST_F(BatchRunOf, AnInterfaceOfSomebodyElseIsUnavailable) {
  InterfaceLock lock;
  std::string reason;
  ASSERT_EQ(lock.Take({2, false}, "somebody", reason), InterfaceLock::Answer::kTaken);
  const std::vector<UnitEnd> ends = Run(ProgrammedUnits(2));
  EXPECT_THAT(Outcomes(ends), ElementsAre(Outcome::kPassed, Outcome::kUnavailable));
  EXPECT_FALSE(ends[1].started);
  EXPECT_EQ(ends[1].status, kExitUnavailable);
  EXPECT_THAT(ends[1].reason, HasSubstr("Interface 2 is in use by somebody"));
}

TEST_F(BatchRunOf, TheFirstSignalFinishesStepsAndStartsNoOther) {
  m_displays.GivenFaults(1, "slow ms=200\n");
  m_displays.GivenFaults(2, "slow ms=200\n");
  std::vector<UnitRequest> units = ProgrammedUnits(3);
  units[1].steps.push_back(Step("type", {"--getscalertype", "--comm", "2"}));
  BatchRules rules;
  rules.jobs_at_once = 2;
  std::thread signaller = Signaller(2);
  const std::vector<UnitEnd> ends = Run(std::move(units), rules);
  signaller.join();
  EXPECT_EQ(StopSignal(), SIGINT);
  EXPECT_THAT(Outcomes(ends),
              ElementsAre(Outcome::kPassed, Outcome::kInterrupted, Outcome::kInterrupted));
  EXPECT_FALSE(ends[0].interrupted);
  EXPECT_EQ(ends[1].state, UnitState::kProgrammed);
  EXPECT_EQ(ends[1].reason, "stopped before the step type");
  EXPECT_EQ(ends[2].state, UnitState::kUntouched);
  EXPECT_FALSE(ends[2].started);
  EXPECT_TRUE(ends[1].interrupted && ends[2].interrupted);
}

TEST_F(BatchRunOf, TheSecondSignalEndsWhatRuns) {
  m_displays.GivenFaults(1, "hang bank=1\n");
  m_displays.GivenFaults(2, "hang bank=1\n");
  // The third one has passed, and the others hang.
  std::thread signaller([this] {
    for (const unsigned comm : {1u, 2u}) {
      if (!m_displays.WaitForJournal(comm, "verify bank=0")) return;
    }
    WaitUntil([this] { return !EventOf(Lines(), "unit_result").empty(); });
    kill(getpid(), SIGINT);
    if (WaitForStop()) kill(getpid(), SIGINT);
  });
  const std::vector<UnitEnd> ends = Run(ProgrammedUnits(3));
  signaller.join();
  EXPECT_THAT(Outcomes(ends),
              ElementsAre(Outcome::kInterrupted, Outcome::kInterrupted, Outcome::kPassed));
  EXPECT_EQ(ends[0].state, UnitState::kUncertain);
  EXPECT_EQ(ends[1].state, UnitState::kUncertain);
}

TEST_F(BatchRunOf, AHookIsLeftToFinishAtTheFirstSignalAndItsUnitIsNotStarted) {
  GivenHook("may-program",
            "touch asked; while [ ! -e continue ]; do sleep 0.01; done; touch answered\n");
  UnitRequest unit = ProgrammedUnit(3);
  unit.before_words = {"./may-program"};
  std::thread signaller([this] {
    WaitUntil([this] { return FileExists(m_scratch / "asked"); });
    kill(getpid(), SIGTERM);
    WaitForStop();
    GivenFile(m_scratch / "continue", "");
  });
  const UnitEnd end = RunOne(std::move(unit));
  signaller.join();
  EXPECT_TRUE(FileExists(m_scratch / "answered"));
  EXPECT_EQ(end.outcome, Outcome::kInterrupted);
  EXPECT_TRUE(end.interrupted);
  EXPECT_FALSE(end.started);
}

TEST_F(BatchRunOf, AHookIsEndedAtTheSecondSignal) {
  GivenHook("may-program", "touch asked; sleep 60; touch answered\n");
  UnitRequest unit = ProgrammedUnit(3);
  unit.before_words = {"./may-program"};
  std::thread signaller([this] {
    WaitUntil([this] { return FileExists(m_scratch / "asked"); });
    kill(getpid(), SIGTERM);
    if (WaitForStop()) kill(getpid(), SIGTERM);
  });
  const UnitEnd end = RunOne(std::move(unit));
  signaller.join();
  EXPECT_FALSE(FileExists(m_scratch / "answered"));
  EXPECT_EQ(end.outcome, Outcome::kInterrupted);
}

TEST_F(BatchRunOf, StaggeredUnitsAllStart) {
  BatchRules rules;
  rules.stagger_ms = 150;
  const auto begin = MonotonicMs();
  EXPECT_THAT(Outcomes(Run(ProgrammedUnits(3), rules)),
              ElementsAre(Outcome::kPassed, Outcome::kPassed, Outcome::kPassed));
  EXPECT_GE(MonotonicMs() - begin, 300u);
}

}  // namespace
}  // namespace line
