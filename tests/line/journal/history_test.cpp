// SPDX-License-Identifier: MIT
//
// What is known of a serial, with the index and without.
#include "line/journal/history.h"

#include <unistd.h>

#include "journal/record_writer.h"
#include "support/scratch_dir.h"

#include <gtest/gtest.h>

namespace line {
namespace {

RecordWriter TwoRunsOfA() {
  RecordWriter record;
  record.Add("r1", "A", 1, UnitStartEvent{}).Ends("r1", "A", 1, UnitState::kUncertain);
  record.Add("r2", "B", 1, UnitStartEvent{});
  record.OfJob("j").Add("r3", "A", 1, UnitStartEvent{});
  record.Ends("r3", "A", 1, UnitState::kIdentical, Outcome::kPassed);
  return record;
}

class HistoryTest : public testing::Test {
 protected:
  std::uint64_t Attempts(const std::string& unit, const std::string& job = "") const {
    return HistoryOf(m_directory.Path(), unit, job).attempts;
  }
  bool HasPassed(const std::string& unit, const std::string& job = "") const {
    return HistoryOf(m_directory.Path(), unit, job).last_has_passed;
  }
  std::string IndexPath() const { return m_directory / "journal/units.index"; }

  ScratchDir m_directory;
};

TEST_F(HistoryTest, CountsRunsBySerialAndWithinAJobByItsName) {
  TwoRunsOfA().Save(m_directory.Path());
  for (int i = 0; i < 2; ++i) {  // makes the index, then reads it
    EXPECT_EQ(Attempts("A"), 2u);
    EXPECT_EQ(Attempts("A", "j"), 1u);
    EXPECT_EQ(Attempts("A", "other"), 0u);
    EXPECT_EQ(Attempts("B"), 1u);
    EXPECT_EQ(Attempts("C"), 0u);
    EXPECT_TRUE(HasPassed("A"));
    EXPECT_TRUE(HasPassed("A", "j"));
    EXPECT_FALSE(HasPassed("B"));
  }
}

TEST_F(HistoryTest, TheNewestEndCounts) {
  RecordWriter record = TwoRunsOfA();
  record.Add("r4", "A", 1, UnitStartEvent{}).Ends("r4", "A", 1, UnitState::kUncertain);
  record.Save(m_directory.Path());
  EXPECT_FALSE(HasPassed("A", "j"));
}

TEST_F(HistoryTest, AUnitThatWasNeverStartedChangesNothing) {
  RecordWriter record = TwoRunsOfA();
  record.Ends("r4", "A", 1, UnitState::kUntouched, Outcome::kRefused);
  record.Save(m_directory.Path());
  for (int i = 0; i < 2; ++i) {  // makes the index, then reads it
    EXPECT_TRUE(HasPassed("A", "j"));
    EXPECT_EQ(Attempts("A", "j"), 1u);
  }
}

TEST_F(HistoryTest, AnEndIsOfTheRunThatHasBegunBeforeTheIndexWasMade) {
  RecordWriter record = TwoRunsOfA();
  record.Add("r4", "A", 1, UnitStartEvent{});
  record.Save(m_directory.Path());
  EXPECT_TRUE(HasPassed("A", "j"));
  record.Ends("r4", "A", 1, UnitState::kUncertain);
  record.Save(m_directory.Path());
  EXPECT_FALSE(HasPassed("A", "j"));
  EXPECT_EQ(Attempts("A", "j"), 2u);
}

TEST_F(HistoryTest, ManyUnitsAreAskedAtOnce) {
  TwoRunsOfA().Save(m_directory.Path());
  const auto histories = HistoriesOf(m_directory.Path(), {"B", "A", "C", "A"}, "j");
  ASSERT_EQ(histories.size(), 4u);
  EXPECT_EQ(histories[0].attempts, 0u);
  EXPECT_TRUE(histories[1].last_has_passed);
  EXPECT_FALSE(histories[2].last_has_passed);
  EXPECT_EQ(histories[3].attempts, 1u);
}

TEST_F(HistoryTest, LinesThatCameSinceAreAddedToTheIndex) {
  RecordWriter record = TwoRunsOfA();
  record.Save(m_directory.Path());
  EXPECT_EQ(Attempts("A"), 2u);
  record.Add("r5", "A", 1, UnitStartEvent{}).Add("{\"v\":1,\"type\":\"unit_sta");
  record.Save(m_directory.Path());
  EXPECT_EQ(Attempts("A"), 3u);
  record.Add("\n").Add("r6", "A", 1, UnitStartEvent{});
  record.Save(m_directory.Path());
  RecordWriter().Add("r7", "A", 1, UnitStartEvent{}).Save(m_directory.Path(), "2026-11-22");
  EXPECT_EQ(Attempts("A"), 5u);
  EXPECT_EQ(Attempts("A"), 5u);
}

TEST_F(HistoryTest, AnIndexThatDoesNotFitIsMadeAgain) {
  TwoRunsOfA().Save(m_directory.Path());
  const auto damage = [this](const std::string& index) {
    GivenFile(IndexPath(), index);
    return Attempts("A");
  };
  EXPECT_EQ(Attempts("A"), 2u);
  const std::string index = ReadWholeFile(IndexPath());
  EXPECT_EQ(damage(""), 2u);
  EXPECT_EQ(damage("rubbish"), 2u);
  EXPECT_EQ(damage(std::string(64, 'x')), 2u);
  EXPECT_EQ(damage(index.substr(0, index.size() - 1)), 2u);
  EXPECT_EQ(ReadWholeFile(IndexPath()), index);
}

TEST_F(HistoryTest, AnIndexThatIsALinkToAnotherFileIsLeftAlone) {
  const std::string other = GivenFile(m_directory / "other", "theirs");
  for (int (*const make)(const char*, const char*) : {symlink, link}) {
    TwoRunsOfA().Save(m_directory.Path());
    ASSERT_EQ(make(other.c_str(), IndexPath().c_str()), 0);
    EXPECT_EQ(Attempts("A"), 2u);
    EXPECT_EQ(ReadWholeFile(other), "theirs");
    ASSERT_EQ(unlink(IndexPath().c_str()), 0);
  }
}

TEST_F(HistoryTest, ARecordThatBecameShorterOrLostADayIsReadAgain) {
  TwoRunsOfA().Save(m_directory.Path());
  EXPECT_EQ(Attempts("A"), 2u);
  RecordWriter().Add("r1", "A", 1, UnitStartEvent{}).Save(m_directory.Path());
  EXPECT_EQ(Attempts("A"), 1u);
  RecordWriter().Add("r1", "A", 1, UnitStartEvent{}).Save(m_directory.Path(), "2026-11-22");
  EXPECT_EQ(Attempts("A"), 2u);
  ASSERT_EQ(unlink((m_directory / "journal/2026-11-21.jsonl").c_str()), 0);
  EXPECT_EQ(Attempts("A"), 1u);
}

TEST_F(HistoryTest, WithoutARecordNothingIsKnown) {
  EXPECT_EQ(Attempts("A"), 0u);
}

}  // namespace
}  // namespace line
