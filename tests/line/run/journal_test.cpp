// SPDX-License-Identifier: MIT
//
// `journal doctor` and `journal resolve` after a run that failed, and a record of very many runs.
#include <sys/resource.h>

#include <algorithm>
#include <string>

#include "line/support/line_tool.h"
#include "support/files.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using testing::HasSubstr;

class JournalOf : public testing::Test {
 protected:
  JournalOf() { GivenFirmware(m_line / "fw.bin", 3 * 65536); }

  RunResult Program() const { return m_line.Run({"--isp", "--fw", "fw.bin", "--comm", "3"}); }
  // Leaves the display uncertain; returns the run.
  std::string GivenAFailedRun() const {
    m_line.AllDisplays().GivenFaults(3, "fail bank=1 at=write code=0x71\n");
    const RunResult run = Program();
    EXPECT_EQ(run.status, 5) << run.out;
    return FieldOf(EventOf(run.out, "unit_result"), "run");
  }

  LineTool m_line;
};

TEST_F(JournalOf, ResolveClearsTheDisplayOfTheRunThatDoctorNames) {
  const std::string run = GivenAFailedRun();
  const RunResult doctor = m_line.Doctor();
  EXPECT_EQ(doctor.status, 5);
  EXPECT_EQ(FieldOf(EventOf(doctor.out, "finding"), "run"), run);
  EXPECT_EQ(FieldOf(EventOf(doctor.out, "finding"), "unit"), "ZP1");
  EXPECT_EQ(FieldOf(EventOf(doctor.out, "finding"), "state"), "uncertain");
  const RunResult resolve = m_line.Journal({"resolve", run, "--note", "programmed by hand"});
  EXPECT_EQ(resolve.status, 0) << resolve.out;
  EXPECT_EQ(m_line.Doctor().status, 0);
  const std::string resolved = EventOf(m_line.Record(), "resolved");
  EXPECT_EQ(FieldOf(resolved, "note"), "programmed by hand");
  EXPECT_EQ(FieldOf(resolved, "run"), run);
  EXPECT_EQ(FieldOf(resolved, "unit"), "ZP1");
  EXPECT_THAT(m_line.Journal({"show", "--run", run}).out, HasSubstr("programmed by hand"));
  const RunResult mistyped = m_line.Journal({"show", "--unit", "ZP-1"});
  EXPECT_EQ(mistyped.status, 0);
  EXPECT_EQ(FieldOf(EventOf(mistyped.out, "message"), "text"),
            "The record in " + m_line.DataDirectory() + " has no event of display ZP-1.");
}

TEST_F(JournalOf, ResolveClearsNothingElse) {
  const std::string run = GivenAFailedRun();
  EXPECT_EQ(m_line.Journal({"resolve", "another", "--note", "text"}).status, 2);
  EXPECT_EQ(m_line.Journal({"resolve", run, "--note", " "}).status, 2);
  EXPECT_EQ(m_line.Doctor().status, 5);
  EXPECT_EQ(m_line.Journal({"resolve", run, "--note", "text"}).status, 0);
  EXPECT_EQ(m_line.Journal({"resolve", run, "--note", "text"}).status, 2);
  GivenAFailedRun();
  EXPECT_EQ(m_line.Doctor().status, 5);
}

TEST_F(JournalOf, APassOfTheSameSerialClearsTheDisplay) {
  GivenAFailedRun();
  m_line.AllDisplays().GivenFaults(3, "");
  EXPECT_EQ(Program().status, 0);
  EXPECT_EQ(m_line.Doctor().status, 0);
}

class ALongRecord : public JournalOf {
 protected:
#ifdef ZVISP_INSTRUMENTED
  // Here the time is not that of what ships.
  static constexpr int kRuns = 2000;
#else
  static constexpr int kRuns = 100000;
#endif
  static constexpr int kRunsOfADay = 1000;

  // What each of so many runs left, a thousand a day.
  void GivenRuns(int runs) const {
    for (int first = 0; first < runs; first += kRunsOfADay) {
      std::string lines;
      for (int run = first; run < first + kRunsOfADay; ++run) {
        const std::string where = "\",\"session\":\"s\",\"seq\":0,\"run\":\"r" +
                                  std::to_string(run) + "\",\"unit\":\"U" + std::to_string(run) +
                                  "\",\"place\":\"comm-1\",\"comm\":1,";
        lines += LineOf("unit_start", where, "\"attempt\":1,\"unsigned\":false");
        lines += LineOf("state", where, "\"state\":\"programming\",\"previous\":\"untouched\"");
        lines += LineOf("unit_result", where,
                        "\"outcome\":\"passed\",\"state\":\"programmed\",\"attempt\":1,"
                        "\"recorded\":true,\"duration_ms\":1");
      }
      GivenFile(m_line.DataDirectory() + "/journal/" + DayName(first / kRunsOfADay) + ".jsonl",
                lines);
    }
  }

  // A day that exists, 28 a month.
  static std::string DayName(int day) {
    const int of_month = 1 + day % 28;
    return "2025-0" + std::to_string(1 + day / 28) + (of_month < 10 ? "-0" : "-") +
           std::to_string(of_month);
  }

  static std::string LineOf(const std::string& type, const std::string& where,
                            const std::string& fields) {
    return "{\"v\":1,\"type\":\"" + type +
           "\",\"time\":\"2026-01-01T00:00:00.000Z\",\"mono_ms\":1" + where.substr(1) + fields +
           "}\n";
  }

  // Of the processor, because other work of the machine does not count; the least of a few starts.
  double MillisecondsOfAStart() const {
    double least = 1e9;
    for (int i = 0; i < 5; ++i) {
      const double before = MillisecondsOfChildren();
      EXPECT_EQ(m_line.Run({"--resetmcu", "--comm", "4"}).status, 0);
      least = std::min(least, MillisecondsOfChildren() - before);
    }
    return least;
  }

  static double MillisecondsOfChildren() {
    rusage usage = {};
    getrusage(RUSAGE_CHILDREN, &usage);
    const auto milliseconds = [](const timeval& time) {
      return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_usec) / 1e3;
    };
    return milliseconds(usage.ru_utime) + milliseconds(usage.ru_stime);
  }
};

TEST_F(ALongRecord, OfAHundredThousandRunsDelaysNoStart) {
  const double without = MillisecondsOfAStart();
  GivenRuns(kRuns);
  const double with = MillisecondsOfAStart();
  RecordProperty("milliseconds_without", std::to_string(without));
  RecordProperty("milliseconds_with", std::to_string(with));
  EXPECT_LT(with, 2 * without + 20) << "without the record: " << without;
  const RunResult again = m_line.Run({"--resetmcu", "--comm", "4"});
  EXPECT_EQ(FieldOf(EventOf(again.out, "unit_result"), "attempt"), "11");
}

}  // namespace
