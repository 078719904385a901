// SPDX-License-Identifier: MIT
//
// The operator's signals in the middle of sixteen displays: what the output, the record and the
// displays' own journals say agrees, and every state is right.
#include <signal.h>

#include <map>
#include <string>
#include <vector>

#include "line/support/batch_tool.h"
#include "support/files.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using testing::Contains;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;
using Words = LineTool::Words;

constexpr unsigned kPlaces = 16;
constexpr std::size_t kBank = 65536;

std::string Serial(unsigned comm) {
  return "ZP" + std::to_string(comm);
}

// "outcome state" of each unit, by its serial.
std::map<std::string, std::string> UnitResults(const std::string& json_lines) {
  std::map<std::string, std::string> results;
  for (const std::string& event : EventsOf(json_lines, "unit_result")) {
    results[FieldOf(event, "unit")] = FieldOf(event, "outcome") + " " + FieldOf(event, "state");
  }
  return results;
}

class Sixteen : public testing::Test {
 protected:
  Sixteen() : m_firmware(m_tool.NextToJob("fw.bin")) { GivenFirmware(m_firmware, 3 * kBank); }

  // `at_once` of the places at the same time; `more` is added to the job.
  void GivenJob(unsigned at_once, const std::string& more = "") {
    const std::string path = m_tool.NextToJob("job.toml");
    Words options = {"--output", path, "--name", "panel", "--pattern", "ZP[0-9]+", "--readback"};
    for (unsigned comm = 1; comm <= kPlaces; ++comm) {
      const std::string number = std::to_string(comm);
      options.insert(options.end(), {"--place", "P" + number + "=" + number});
    }
    const RunResult made = m_tool.Init(options, {"--isp", "--fw1", m_firmware, "--bank1", "0"});
    ASSERT_EQ(made.status, 0) << made.err;
    std::string job = ReadWholeFile(path);
    const std::string rule = "jobs_at_once = 16";
    job.replace(job.find(rule), rule.size(), "jobs_at_once = " + std::to_string(at_once));
    GivenFile(path, job + more);
  }

  void GivenFaults(unsigned first, unsigned last, const std::string& faults) const {
    for (unsigned comm = first; comm <= last; ++comm) {
      m_tool.AllDisplays().GivenFaults(comm, faults);
    }
  }

  StartedRun Start() const {
    Words options;
    for (unsigned comm = 1; comm <= kPlaces; ++comm) {
      options.insert(options.end(), {"--unit", "P" + std::to_string(comm) + "=" + Serial(comm)});
    }
    return StartedRun(m_tool.BatchOf(options));
  }

  void WaitForJournals(unsigned first, unsigned last, const std::string& start) const {
    for (unsigned comm = first; comm <= last; ++comm) {
      ASSERT_TRUE(m_tool.AllDisplays().WaitForJournal(comm, start)) << comm;
    }
  }

  void ExpectJournalBegins(unsigned comm) const {
    EXPECT_THAT(m_tool.AllDisplays().Journal(comm), Contains(StartsWith("call n=1 "))) << comm;
  }

  void ExpectFirmware(unsigned comm) const {
    EXPECT_EQ(m_tool.AllDisplays().Flash(comm), ReadWholeFile(m_firmware)) << comm;
    EXPECT_THAT(m_tool.AllDisplays().Journal(comm), Contains("end n=1 code=0x0")) << comm;
  }

  // Serials that doctor names.
  std::vector<std::string> NamedByDoctor(int status) const {
    const RunResult doctor = m_tool.Doctor();
    EXPECT_EQ(doctor.status, status) << doctor.out;
    std::vector<std::string> serials;
    for (const std::string& event : EventsOf(doctor.out, "finding")) {
      serials.push_back(FieldOf(event, "unit"));
    }
    return serials;
  }

  BatchTool m_tool;
  std::string m_firmware;
};

// Those that run finish, and nothing new is started.
TEST_F(Sixteen, TheFirstSignalLetsRunningDisplaysFinish) {
  GivenFaults(1, kPlaces, "slow ms=500\n");
  GivenJob(8);
  StartedRun batch = Start();
  WaitForJournals(1, 8, "erase bank=0");
  batch.Kill(SIGINT);
  const RunResult end = batch.Wait();
  EXPECT_EQ(end.status, 130) << end.err;
  const std::map<std::string, std::string> results = UnitResults(end.out);
  EXPECT_EQ(results, UnitResults(m_tool.Record()));
  EXPECT_THAT(NamedByDoctor(0), IsEmpty());
  for (unsigned comm = 1; comm <= kPlaces; ++comm) {
    if (comm <= 8) {
      EXPECT_EQ(results.at(Serial(comm)), "passed identical");
      ExpectFirmware(comm);
    } else {
      EXPECT_EQ(results.at(Serial(comm)), "interrupted untouched");
      EXPECT_THAT(m_tool.AllDisplays().Journal(comm), IsEmpty()) << comm;
    }
  }
  EXPECT_EQ(EventsOf(end.out, "unit_start").size(), 8u);
}

// A step is something new, too.
TEST_F(Sixteen, TheFirstSignalStartsNoFurtherStep) {
  GivenFaults(1, kPlaces, "slow ms=500\n");
  GivenJob(16, "[[step]]\nname = \"type\"\nzvisp = [\"--getscalertype\"]\nexpect = 1\n");
  StartedRun batch = Start();
  WaitForJournals(1, kPlaces, "erase bank=0");
  batch.Kill(SIGTERM);
  const RunResult end = batch.Wait();
  EXPECT_EQ(end.status, 143) << end.err;
  const std::map<std::string, std::string> results = UnitResults(end.out);
  EXPECT_EQ(results, UnitResults(m_tool.Record()));
  EXPECT_THAT(NamedByDoctor(0), IsEmpty());
  EXPECT_EQ(EventsOf(end.out, "result").size(), kPlaces);
  for (unsigned comm = 1; comm <= kPlaces; ++comm) {
    EXPECT_EQ(results.at(Serial(comm)), "interrupted identical");
    ExpectFirmware(comm);
    EXPECT_THAT(m_tool.AllDisplays().Journal(comm),
                Not(Contains(testing::HasSubstr("GetScalerType"))));
  }
}

// Four have passed, four hang before anything is written, four in the middle, and four write.
TEST_F(Sixteen, TheSecondSignalEndsAllThatRun) {
  GivenFaults(5, 8, "hang\n");
  GivenFaults(9, 12, "hang bank=2\n");
  GivenFaults(13, 16, "slow ms=20000\n");
  GivenJob(16);
  StartedRun batch = Start();
  WaitForJournals(1, 4, "end n=2 ");
  WaitForJournals(5, 8, "call n=1 ");
  WaitForJournals(9, 12, "verify bank=1 ok");
  WaitForJournals(13, 16, "call n=1 ");
  ASSERT_TRUE(WaitUntil([&] { return UnitResults(m_tool.Record()).size() == 4; }));
  batch.Kill(SIGINT);
  ASSERT_TRUE(WaitForOutput(batch, "Nothing new is started"));
  batch.Kill(SIGINT);
  const RunResult end = batch.Wait();
  EXPECT_EQ(end.status, 5) << end.err;
  const std::map<std::string, std::string> results = UnitResults(end.out);
  EXPECT_EQ(results, UnitResults(m_tool.Record()));
  EXPECT_EQ(NamedByDoctor(5).size(), 12u);
  for (unsigned comm = 1; comm <= kPlaces; ++comm) {
    if (comm <= 4) {
      EXPECT_EQ(results.at(Serial(comm)), "passed identical");
      ExpectFirmware(comm);
    } else {
      EXPECT_EQ(results.at(Serial(comm)), "interrupted uncertain");
      ExpectJournalBegins(comm);
      EXPECT_THAT(m_tool.AllDisplays().Journal(comm), Not(Contains(StartsWith("end ")))) << comm;
    }
  }
  for (unsigned comm = 9; comm <= 12; ++comm) {
    EXPECT_EQ(m_tool.AllDisplays().Flash(comm), ReadWholeFile(m_firmware).substr(0, 2 * kBank));
  }
}

}  // namespace
