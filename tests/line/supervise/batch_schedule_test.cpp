// SPDX-License-Identifier: MIT
#include "line/supervise/batch_schedule.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace line {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using UnitVerdict = BatchSchedule::UnitVerdict;
using Started = std::vector<std::size_t>;

// So many units, each at an interface of its own.
std::vector<InterfaceUse> Units(std::uint32_t count) {
  std::vector<InterfaceUse> units;
  for (std::uint32_t i = 1; i <= count; ++i) {
    units.push_back({i, false});
  }
  return units;
}

// Everything that may start at this time.
Started StartAll(BatchSchedule& schedule, std::uint64_t now_ms = 0) {
  Started started;
  while (const auto next = schedule.TakeNext(now_ms)) {
    started.push_back(*next);
  }
  return started;
}

TEST(BatchSchedule, StartsAllUnitsInTheirOrderAtOnce) {
  BatchSchedule schedule({}, Units(3));
  EXPECT_THAT(StartAll(schedule), ElementsAre(0, 1, 2));
  EXPECT_TRUE(schedule.IsEmpty());
  EXPECT_THAT(schedule.TakeLeftOut(), IsEmpty());
}

TEST(BatchSchedule, NoMoreRunAtOnceThanAllowed) {
  BatchRules rules;
  rules.jobs_at_once = 2;
  BatchSchedule schedule(rules, Units(4));
  EXPECT_THAT(StartAll(schedule), ElementsAre(0, 1));
  schedule.OnEnd(1, UnitVerdict::kPassed);
  EXPECT_THAT(StartAll(schedule), ElementsAre(2));
  schedule.OnEnd(0, UnitVerdict::kFailed);
  EXPECT_THAT(StartAll(schedule), ElementsAre(3));
}

TEST(BatchSchedule, StartsAreApartByTheStagger) {
  BatchRules rules;
  rules.stagger_ms = 200;
  BatchSchedule schedule(rules, Units(3));
  EXPECT_THAT(StartAll(schedule, 1000), ElementsAre(0));
  EXPECT_EQ(schedule.WakesAtMs(), 1200u);
  EXPECT_THAT(StartAll(schedule, 1199), IsEmpty());
  EXPECT_THAT(StartAll(schedule, 1200), ElementsAre(1));
  schedule.OnEnd(0, UnitVerdict::kPassed);
  EXPECT_THAT(StartAll(schedule, 1300), IsEmpty());
  EXPECT_THAT(StartAll(schedule, 1500), ElementsAre(2));
}

TEST(BatchSchedule, TheClockDoesNotWakeWhatWaitsForAnEnd) {
  BatchRules rules;
  rules.jobs_at_once = 1;
  rules.stagger_ms = 200;
  BatchSchedule schedule(rules, Units(2));
  EXPECT_THAT(StartAll(schedule, 1000), ElementsAre(0));
  EXPECT_EQ(schedule.WakesAtMs(), std::nullopt);
}

TEST(BatchSchedule, UnitsAtOneInterfaceRunOneAfterTheOther) {
  BatchSchedule schedule({}, {{3, false}, {3, false}, {4, false}});
  EXPECT_THAT(StartAll(schedule), ElementsAre(0, 2));
  schedule.OnEnd(2, UnitVerdict::kPassed);
  EXPECT_THAT(StartAll(schedule), IsEmpty());
  schedule.OnEnd(0, UnitVerdict::kFailed);
  EXPECT_THAT(StartAll(schedule), ElementsAre(1));
}

TEST(BatchSchedule, AUnitThatMustBeAloneOverlapsNoOther) {
  BatchSchedule schedule({}, {{1, false}, {2, true}, {3, false}});
  EXPECT_THAT(StartAll(schedule), ElementsAre(0, 2));
  schedule.OnEnd(0, UnitVerdict::kPassed);
  EXPECT_THAT(StartAll(schedule), IsEmpty());
  schedule.OnEnd(2, UnitVerdict::kPassed);
  EXPECT_THAT(StartAll(schedule), ElementsAre(1));
}

class FirstArticle : public testing::Test {
 protected:
  FirstArticle() : m_schedule(Rules(), Units(3)) {}
  static BatchRules Rules() {
    BatchRules rules;
    rules.first_article = true;
    return rules;
  }
  BatchSchedule m_schedule;
};

TEST_F(FirstArticle, StartsTheOthersWhenItHasPassed) {
  EXPECT_THAT(StartAll(m_schedule), ElementsAre(0));
  m_schedule.OnEnd(0, UnitVerdict::kPassed);
  EXPECT_THAT(StartAll(m_schedule), ElementsAre(1, 2));
}

TEST_F(FirstArticle, StartsNothingWhenItDidNotPass) {
  EXPECT_THAT(StartAll(m_schedule), ElementsAre(0));
  m_schedule.OnEnd(0, UnitVerdict::kFailed);
  EXPECT_THAT(StartAll(m_schedule), IsEmpty());
  EXPECT_THAT(m_schedule.TakeLeftOut(), ElementsAre(1, 2));
  EXPECT_EQ(m_schedule.WhyNot(), "the first article did not pass");
  EXPECT_THAT(m_schedule.TakeLeftOut(), IsEmpty());
  EXPECT_TRUE(m_schedule.IsEmpty());
}

TEST_F(FirstArticle, GoesToTheNextUnitWhenTheFirstWasNotStarted) {
  EXPECT_THAT(StartAll(m_schedule), ElementsAre(0));
  m_schedule.OnEnd(0, UnitVerdict::kUncounted);
  EXPECT_THAT(StartAll(m_schedule), ElementsAre(1));
  m_schedule.OnEnd(1, UnitVerdict::kPassed);
  EXPECT_THAT(StartAll(m_schedule), ElementsAre(2));
}

class StopRule : public testing::Test {
 protected:
  StopRule() : m_schedule(Rules(), Units(20)) { StartAll(m_schedule); }
  static BatchRules Rules() {
    BatchRules rules;
    rules.stop_after = 3;
    return rules;
  }
  void End(const std::vector<UnitVerdict>& verdicts) {
    for (const UnitVerdict verdict : verdicts) {
      m_schedule.OnEnd(m_next++, verdict);
    }
  }
  BatchSchedule m_schedule;
  std::size_t m_next = 0;
};

TEST_F(StopRule, LeavesOutTheRestAfterSoManyFailuresInARow) {
  End({UnitVerdict::kFailed, UnitVerdict::kFailed});
  EXPECT_THAT(m_schedule.TakeLeftOut(), IsEmpty());
  End({UnitVerdict::kFailed});
  EXPECT_THAT(StartAll(m_schedule), IsEmpty());
  EXPECT_THAT(m_schedule.TakeLeftOut(), ElementsAre(16, 17, 18, 19));
  EXPECT_EQ(m_schedule.WhyNot(), "3 units in a row did not pass");
}

TEST_F(StopRule, APassBeginsTheCountAnew) {
  End({UnitVerdict::kFailed, UnitVerdict::kFailed, UnitVerdict::kPassed, UnitVerdict::kFailed,
       UnitVerdict::kFailed});
  EXPECT_THAT(m_schedule.TakeLeftOut(), IsEmpty());
  EXPECT_THAT(StartAll(m_schedule), ElementsAre(16, 17, 18, 19));
}

TEST_F(StopRule, UnitsThatWereNotStartedNeitherCountNorEndTheRow) {
  End({UnitVerdict::kFailed, UnitVerdict::kUncounted, UnitVerdict::kFailed,
       UnitVerdict::kUncounted});
  EXPECT_THAT(m_schedule.TakeLeftOut(), IsEmpty());
  End({UnitVerdict::kFailed});
  EXPECT_EQ(m_schedule.TakeLeftOut().size(), 4u);
}

TEST_F(StopRule, WithoutItFailuresStopNothing) {
  BatchSchedule schedule({}, Units(20));
  StartAll(schedule);
  for (std::size_t unit = 0; unit < 16; ++unit) {
    schedule.OnEnd(unit, UnitVerdict::kFailed);
  }
  EXPECT_THAT(StartAll(schedule), ElementsAre(16, 17, 18, 19));
}

TEST(BatchSchedule, AfterTheOperatorsSignalNothingStarts) {
  BatchRules rules;
  rules.jobs_at_once = 1;
  BatchSchedule schedule(rules, Units(3));
  EXPECT_THAT(StartAll(schedule), ElementsAre(0));
  schedule.Stop();
  schedule.OnEnd(0, UnitVerdict::kPassed);
  EXPECT_THAT(StartAll(schedule), IsEmpty());
  EXPECT_THAT(schedule.TakeLeftOut(), ElementsAre(1, 2));
  EXPECT_EQ(schedule.WhyNot(), "the operator stopped the batch");
}

}  // namespace
}  // namespace line
