// SPDX-License-Identifier: MIT
//
// Two batches at once on overlapping interfaces, from two accounts. The referee is what the
// simulated displays themselves wrote down: their journals know nothing of locks.
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <iostream>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "line/support/batch_tool.h"
#include "support/files.h"
#include "support/unprivileged.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using testing::AllOf;
using testing::Each;
using testing::HasSubstr;
using Words = LineTool::Words;

// A run of these batches is these calls, in this order.
const std::vector<std::string> kRun = {"IspFlash",      "DumpFlash",     "GetScalerType",
                                       "GetScalerType", "GetScalerType", "GetScalerType"};

// What a referee found in the journal of one display.
struct Findings {
  int runs = 0;
  int overlaps = 0;  // calls that began where another run was not over
};

Findings Judge(const std::vector<std::string>& journal) {
  Findings findings;
  std::size_t next = 0;
  bool is_open = false;
  for (const std::string& line : journal) {
    if (line.starts_with("end ")) is_open = false;
    if (!line.starts_with("call ")) continue;
    if (is_open || line.find("name=" + kRun[next] + " ") == std::string::npos) ++findings.overlaps;
    if (line.find("name=IspFlash ") != std::string::npos) {
      ++findings.runs;
      next = 0;
    }
    next = (next + 1) % kRun.size();
    is_open = true;
  }
  return findings;
}

// A display that is in the middle of a call refuses another one, and does not note it down.
int RefusedByDisplays(const std::string& json_lines) {
  int refused = 0;
  for (const std::string& event : EventsOf(json_lines, "result")) {
    refused += FieldOf(event, "code_hex") == "0x5A26" ? 1 : 0;
  }
  return refused;
}

class TwoBatches : public testing::Test {
 protected:
  static constexpr unsigned kDisplays = 6;

  // Two accounts write the same displays; in a factory the device files are open to both.
  TwoBatches() : m_umask_before(umask(0)) {
    SetMode(m_tool.Tool().Elsewhere(""), 0777);
    SetMode(m_tool.DisplaysDirectory(), 0777);
    for (unsigned comm = 1; comm <= kDisplays; ++comm) {
      m_tool.AllDisplays().GivenFaults(comm, "slow ms=8\n");
    }
    GivenJobFor("one", 1, 4);
    GivenJobFor("two", 3, 6);
  }
  ~TwoBatches() override { umask(m_umask_before); }

  // A job with a firmware of its own, for the displays `first` to `last`.
  void GivenJobFor(const std::string& name, unsigned first, unsigned last) {
    GivenFirmware(m_tool.NextToJob(name + ".bin"), 100000, first);
    Words options = {
        "--output",  m_tool.NextToJob(name + ".toml"), "--name", name, "--pattern", "^ZP[0-9]{8}$",
        "--readback"};
    for (unsigned comm = first; comm <= last; ++comm) {
      options.insert(options.end(), {"--place", Place(comm)});
    }
    const RunResult made =
        m_tool.Init(options, {"--isp", "--fw1", m_tool.NextToJob(name + ".bin"), "--bank1", "0"});
    ASSERT_EQ(made.status, 0) << made.err;
    const std::string job = ReadWholeFile(m_tool.NextToJob(name + ".toml"));
    GivenFile(m_tool.NextToJob(name + ".toml"),
              job + TypeStep(1) + TypeStep(2) + TypeStep(3) + TypeStep(4));
    GivenDirectory(m_tool.Tool().Elsewhere("data-" + name));
    SetMode(m_tool.Tool().Elsewhere("data-" + name), 0777);
  }

  static std::string TypeStep(int number) {
    return "[[step]]\nname = \"type " + std::to_string(number) +
           "\"\nzvisp = [\"--getscalertype\"]\nexpect = 1\n";
  }

  static std::string Place(unsigned comm) {
    return "P" + std::to_string(comm) + "=" + std::to_string(comm);
  }

  // A batch at the displays `first` to `last`; another account has no privileges.
  Command BatchOf(const std::string& name, unsigned first, unsigned last, Words options) const {
    options.insert(options.begin(),
                   {"batch", "--json", "--data", m_tool.Tool().Elsewhere("data-" + name)});
    for (unsigned comm = first; comm <= last; ++comm) {
      const std::string digit = std::to_string(comm);
      options.insert(options.end(), {"--unit", "P" + digit + "=ZP0000000" + digit});
    }
    options.push_back(m_tool.NextToJob(name + ".toml"));
    Command command = m_tool.LineOf(options);
    command.without_privileges = name == "two";
    return command;
  }

  Findings JudgeAll() const {
    Findings all;
    for (unsigned comm = 1; comm <= kDisplays; ++comm) {
      const Findings found = Judge(m_tool.AllDisplays().Journal(comm));
      all.runs += found.runs;
      all.overlaps += found.overlaps;
    }
    return all;
  }

  BatchTool m_tool;
  mode_t m_umask_before;
};

// Every unit of the output passed, and was compared with the firmware of its own batch.
void ExpectAllPassed(const RunResult& batch, std::size_t units) {
  EXPECT_EQ(batch.status, 0) << batch.out << batch.err;
  const std::vector<std::string> results = EventsOf(batch.out, "unit_result");
  EXPECT_EQ(results.size(), units);
  EXPECT_THAT(results, Each(AllOf(HasSubstr("\"outcome\":\"passed\""),
                                  HasSubstr("\"state\":\"identical\""))));
}

TEST_F(TwoBatches, NeverWriteADisplayAtOnce) {
#ifdef ZVISP_INSTRUMENTED
  // Each round starts a hundred processes, which take their time here.
  constexpr int kRounds = 2;
#else
  constexpr int kRounds = 25;
#endif
  int refused = 0;
  for (int round = 0; round < kRounds; ++round) {
    StartedRun one(BatchOf("one", 1, 4, {"--wait", "60"}));
    std::this_thread::sleep_for(std::chrono::milliseconds(round * 10));
    StartedRun two(BatchOf("two", 3, 6, {"--wait", "60"}));
    for (StartedRun* const batch : {&one, &two}) {
      const RunResult end = batch->Wait();
      ExpectAllPassed(end, 4);
      refused += RefusedByDisplays(end.out);
    }
  }
  const Findings found = JudgeAll();
  EXPECT_EQ(found.runs, kRounds * 8);
  EXPECT_EQ(found.overlaps, 0);
  EXPECT_EQ(refused, 0);
  std::cout << kRounds << " rounds, " << found.runs << " runs, " << found.overlaps
            << " overlaps in the journals, " << refused << " calls refused by a display, "
            << (geteuid() == 0 ? "two accounts" : "one account") << "\n";
}

// The referee would see it: the lock is broken by giving each batch locks of its own.
TEST_F(TwoBatches, WithoutACommonLockDisturbEachOther) {
  constexpr int kMostRounds = 10;
  int round = 0;
  int refused = 0;
  for (; round < kMostRounds && refused + JudgeAll().overlaps == 0; ++round) {
    Command other = BatchOf("two", 3, 6, {"--wait", "60"});
    other.environment["ZVISP_LINE_LOCK_DIR"] = m_tool.Tool().Elsewhere("other-locks");
    StartedRun one(BatchOf("one", 1, 4, {"--wait", "60"}));
    std::this_thread::sleep_for(std::chrono::milliseconds(round * 30));
    StartedRun two(other);
    refused += RefusedByDisplays(one.Wait().out) + RefusedByDisplays(two.Wait().out);
  }
  const Findings found = JudgeAll();
  EXPECT_GT(refused + found.overlaps, 0);
  std::cout << round << " rounds without a common lock: " << found.runs << " runs, "
            << found.overlaps << " overlaps in the journals, " << refused
            << " calls refused by a display\n";
}

class OneInterface : public TwoBatches {
 protected:
  // The first batch programs display 3 for some seconds.
  void GivenBatchThatHolds3() {
    m_tool.AllDisplays().GivenFaults(3, "slow ms=300\n");
    m_holder.emplace(BatchOf("one", 3, 3, {"--skip", "P1", "--skip", "P2", "--skip", "P4"}));
    ASSERT_TRUE(m_tool.AllDisplays().WaitForJournal(3, "call n=1 "));
  }
  std::optional<StartedRun> m_holder;
};

TEST_F(OneInterface, InUseIsWaitedForWhenTheOperatorSaysSo) {
  GivenBatchThatHolds3();
  const RunResult other = RunCommand(
      BatchOf("two", 3, 3, {"--wait", "60", "--skip", "P4", "--skip", "P5", "--skip", "P6"}));
  ExpectAllPassed(other, 1);
  const std::vector<std::string> waits = EventsOf(other.out, "wait");
  ASSERT_FALSE(waits.empty()) << other.out;
  EXPECT_THAT(waits.front(), HasSubstr("Interface 3 is in use by "));
  ExpectAllPassed(m_holder->Wait(), 1);
  EXPECT_EQ(Judge(m_tool.AllDisplays().Journal(3)).overlaps, 0);
}

TEST_F(OneInterface, InUseIsNotAvailableAndItsHolderIsNamed) {
  GivenBatchThatHolds3();
  const RunResult other =
      RunCommand(BatchOf("two", 3, 3, {"--skip", "P4", "--skip", "P5", "--skip", "P6"}));
  EXPECT_EQ(other.status, 3) << other.out;
  const std::string result = EventOf(other.out, "unit_result");
  EXPECT_EQ(FieldOf(result, "outcome"), "unavailable");
  EXPECT_EQ(FieldOf(result, "state"), "untouched");
  EXPECT_THAT(FieldOf(result, "reason"),
              AllOf(HasSubstr("Interface 3 is in use by "), HasSubstr("ZP00000003")));
  ExpectAllPassed(m_holder->Wait(), 1);
}

// Its neighbours are programmed all the same.
TEST_F(OneInterface, InUseKeepsOnlyItsOwnUnitFromStarting) {
  GivenBatchThatHolds3();
  const RunResult other = RunCommand(BatchOf("two", 3, 6, {}));
  EXPECT_EQ(other.status, 1) << other.out;
  EXPECT_EQ(EventsOf(other.out, "unit_start").size(), 3u);
  EXPECT_THAT(other.out, HasSubstr("\"outcome\":\"unavailable\""));
  ExpectAllPassed(m_holder->Wait(), 1);
}

}  // namespace
