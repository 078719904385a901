// SPDX-License-Identifier: MIT
//
// Which units the doctor names, from records as runs leave them.
#include "line/journal/doctor.h"

#include <unistd.h>

#include <set>

#include "journal/record_writer.h"
#include "support/files.h"
#include "support/scratch_dir.h"
#include "support/unprivileged.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace line {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class DoctorTest : public testing::Test {
 protected:
  // "unit run state", the oldest first; `held` are the interfaces in use.
  std::vector<std::string> Named(const RecordWriter& record,
                                 const std::set<std::uint32_t>& held = {}) {
    record.Save(m_directory.Path());
    m_report =
        Examine(m_directory.Path(), [&held](std::uint32_t comm) { return held.count(comm) == 0; });
    std::vector<std::string> named;
    for (const Doubt& doubt : m_report.doubts) {
      named.push_back(doubt.where.unit + " " + doubt.where.run + " " +
                      std::string(NameOf(doubt.finding.state)));
    }
    return named;
  }

  ScratchDir m_directory;
  DoctorReport m_report;
};

TEST_F(DoctorTest, WithoutARecordNobodyIsNamed) {
  const DoctorReport report = Examine(m_directory / "none", [](std::uint32_t) { return true; });
  EXPECT_THAT(report.doubts, IsEmpty());
  EXPECT_THAT(report.skipped, IsEmpty());
  EXPECT_EQ(report.failure, "");
}

TEST_F(DoctorTest, WhatCannotBeReadIsNoGoodNewsAndHidesNothingElse) {
  RecordWriter record;
  record.Programming("r1", "A", 1).Save(m_directory.Path());
  const std::string second = GivenDirectory(m_directory / "journal/2026-11-20.jsonl");
  EXPECT_THAT(Named(record), ElementsAre("A r1 programming"));
  EXPECT_EQ(m_report.failure,
            "The record " + second +
                " cannot be read: Invalid argument; read it as an account that may, or name "
                "another directory with --data.");
  ASSERT_EQ(rmdir(second.c_str()), 0);
  Named(record);
  EXPECT_EQ(m_report.failure, "");
}

TEST_F(DoctorTest, ARecordOfAnotherAccountIsNotTakenForAnEmptyOne) {
  SetMode(m_directory.Path(), 0755);
  RecordWriter record;
  record.Programming("r1", "A", 1).Save(m_directory.Path());
  const auto can_read = [this] {
    return AsOrdinaryUser([this] {
      const DoctorReport report = Examine(m_directory.Path(), [](std::uint32_t) { return true; });
      return report.failure.find("Permission denied") == std::string::npos ? 1 : 0;
    });
  };
  SetMode(m_directory / "journal", 0755);
  SetMode(m_directory / "journal/2026-11-21.jsonl", 0600);
  EXPECT_EQ(can_read(), geteuid() == 0 ? 0 : 1);
  SetMode(m_directory / "journal/2026-11-21.jsonl", 0000);
  EXPECT_EQ(can_read(), 0);
  SetMode(m_directory / "journal", 0000);
  EXPECT_EQ(can_read(), 0);
  SetMode(m_directory / "journal", 0755);
}

TEST_F(DoctorTest, WithoutANameOfTheDirectoryNothingIsKnown) {
  EXPECT_THAT(Examine("", [](std::uint32_t) { return true; }).failure,
              testing::HasSubstr("HOME is not set"));
}

TEST_F(DoctorTest, ARunWithoutAnEndIsNamed) {
  RecordWriter record;
  record.Programming("r1", "A", 1).Add("r1", "A", 1, ProgressEvent{30, 1});
  record.Add("r1", "A", 1, ProgressEvent{40, 1}).Add("r9", "Z", 1, ProgressEvent{90, 1});
  EXPECT_THAT(Named(record), ElementsAre("A r1 programming"));
  const Doubt& doubt = m_report.doubts[0];
  EXPECT_EQ(doubt.where.place, "comm-1");
  EXPECT_EQ(doubt.where.step, "program");
  EXPECT_EQ(doubt.finding.last_percent, 40);
  EXPECT_EQ(doubt.finding.since, "2026-11-21T12:00:00.000Z");
}

TEST_F(DoctorTest, AnUncertainEndIsNamedAndAGoodOneIsNot) {
  RecordWriter record;
  record.Programming("r1", "A", 1).Ends("r1", "A", 1, UnitState::kUncertain);
  record.Programming("r2", "B", 2).Ends("r2", "B", 2, UnitState::kProgrammed);
  record.Programming("r3", "C", 3).Ends("r3", "C", 3, UnitState::kDifferent);
  EXPECT_THAT(Named(record), ElementsAre("A r1 uncertain"));
}

TEST_F(DoctorTest, ALaterReadBackThatDiffersClearsNothing) {
  RecordWriter record;
  record.Programming("r1", "A", 1).Ends("r1", "A", 1, UnitState::kUncertain);
  record.Ends("r2", "A", 1, UnitState::kDifferent);
  EXPECT_THAT(Named(record), ElementsAre("A r1 uncertain"));
}

TEST_F(DoctorTest, ALaterPassClearsTheUnit) {
  RecordWriter record;
  record.Programming("r1", "A", 1).Programming("r2", "A", 1);
  record.Ends("r2", "A", 1, UnitState::kIdentical);
  EXPECT_THAT(Named(record), IsEmpty());
}

TEST_F(DoctorTest, ARunThatTouchedNothingClearsNothing) {
  RecordWriter record;
  record.Programming("r1", "A", 1).Ends("r1", "A", 1, UnitState::kUncertain);
  record.Ends("r2", "A", 1, UnitState::kUntouched);
  EXPECT_THAT(Named(record), ElementsAre("A r1 uncertain"));
}

TEST_F(DoctorTest, APromiseThatNothingWasWrittenGivesTheEarlierStateBack) {
  RecordWriter record;
  record.Programming("r1", "A", 1).Ends("r1", "A", 1, UnitState::kUntouched);
  EXPECT_THAT(Named(record), IsEmpty());
  record.Programming("r2", "A", 1).Ends("r2", "A", 1, UnitState::kUncertain);
  record.Programming("r3", "A", 1).Ends("r3", "A", 1, UnitState::kUntouched);
  EXPECT_THAT(Named(record), ElementsAre("A r2 uncertain"));
}

TEST_F(DoctorTest, TheOrphansOwnResultCounts) {
  RecordWriter record;
  ResultEvent result;
  result.state = UnitState::kProgrammed;
  record.Programming("r1", "A", 1).Add("r1", "A", 1, result);
  EXPECT_THAT(Named(record), IsEmpty());
}

TEST_F(DoctorTest, AResolvedUnitIsNotNamed) {
  RecordWriter record;
  record.Programming("r1", "A", 1).Add("r1", "A", 1, ResolvedEvent{"scrapped"});
  EXPECT_THAT(Named(record), IsEmpty());
  record.Programming("r2", "A", 1);
  EXPECT_THAT(Named(record), ElementsAre("A r2 programming"));
}

TEST_F(DoctorTest, OnlyTheNewestRunAtAHeldInterfaceIsUnderWay) {
  RecordWriter record;
  record.Programming("r1", "A", 1).Programming("r2", "B", 1).Programming("r3", "C", 2);
  EXPECT_THAT(Named(record, {1}), ElementsAre("A r1 programming", "C r3 programming"));
  record.Ends("r2", "B", 1, UnitState::kUncertain);
  EXPECT_THAT(Named(record, {1, 2}), ElementsAre("A r1 programming", "B r2 uncertain"));
}

TEST_F(DoctorTest, TornLinesAreSkippedAndReportedWhereverTheyAre) {
  RecordWriter record;
  record.Add("{\"v\":1,\"type\":\"sta\n").Programming("r1", "A", 1).Add("\n").Add("\xff\xff\n");
  record.Add("{\"v\":1,\"type\":\"state\",}\n").Programming("r2", "B", 2);
  record.Add("{\"v\":1,\"type\":\"unit_res");  // in the making
  EXPECT_THAT(Named(record), ElementsAre("A r1 programming", "B r2 programming"));
  std::vector<std::uint64_t> lines;
  for (const SkippedLine& line : m_report.skipped) {
    EXPECT_EQ(line.file, "2026-11-21.jsonl");
    lines.push_back(line.number);
  }
  EXPECT_THAT(lines, ElementsAre(1, 3, 4, 5));
}

TEST_F(DoctorTest, DaysAreReadInTheirOrder) {
  RecordWriter().Ends("r1", "A", 1, UnitState::kIdentical).Save(m_directory.Path(), "2026-11-22");
  EXPECT_THAT(Named(RecordWriter().Programming("r1", "A", 1)), IsEmpty());
}

}  // namespace
}  // namespace line
