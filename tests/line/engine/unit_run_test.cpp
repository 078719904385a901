// SPDX-License-Identifier: MIT
//
// Units of several steps on simulated displays.
#include "line/supervise/unit_run.h"

#include <signal.h>
#include <sys/wait.h>

#include <thread>

#include "line/engine/engine.h"
#include "line/job/sha256.h"
#include "line/support/line_tool.h"
#include "support/files.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace line {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

class UnitRunOf : public EngineTest {
 protected:
  // Of the flash's first four bytes.
  StepRequest Read(const std::string& equals) const {
    StepRequest step = Step("read", {"--dumpflash", "--dumpaddr", "0", "--dumplen", "4",
                                     "--dumpname", m_scratch / "x", "--comm", "3"});
    step.read = FlashRead{0, 4, equals};
    return step;
  }
  StepRequest ScalerType(std::uint32_t expected) const {
    StepRequest step = Step("type", {"--getscalertype", "--comm", "3"});
    step.wanted.scaler_type = expected;
    return step;
  }
  std::string FirstBytes() const { return ReadWholeFile(Firmware()).substr(0, 4); }
  std::vector<std::string> Fields(const std::string& type, const std::string& name) const {
    std::vector<std::string> values;
    for (const std::string& event : EventsOf(Lines(), type)) {
      values.push_back(FieldOf(event, name));
    }
    return values;
  }
};

TEST_F(UnitRunOf, AllStepsAreOneUnitAndCarryItsState) {
  UnitRequest unit = ProgrammedUnit(3);
  unit.steps[0].reads_back = true;
  unit.steps.push_back(ScalerType(1));
  unit.steps.push_back(Read(FirstBytes()));
  const UnitEnd end = RunOne(std::move(unit));
  EXPECT_EQ(end.outcome, Outcome::kPassed);
  EXPECT_EQ(end.state, UnitState::kIdentical);
  EXPECT_TRUE(end.started && end.touched && end.recorded && !end.interrupted);
  EXPECT_EQ(EventsOf(Lines(), "unit_start").size(), 1u);
  EXPECT_THAT(Fields("result", "step"), ElementsAre("program", "type", "read"));
  EXPECT_THAT(Fields("result", "step_index"), ElementsAre("0", "1", "2"));
  EXPECT_THAT(Fields("result", "state"), ElementsAre("identical", "identical", "identical"));
  EXPECT_THAT(Fields("unit_result", "outcome"), ElementsAre("passed"));
  EXPECT_EQ(FieldOf(EventOf(Lines(), "unit_result"), "step"), "-");
}

TEST_F(UnitRunOf, TheFirstStepThatDoesNotPassEndsIt) {
  UnitRequest unit = ProgrammedUnit(3);
  unit.steps.push_back(ScalerType(7));
  unit.steps.push_back(Read(FirstBytes()));
  const UnitEnd end = RunOne(std::move(unit));
  EXPECT_EQ(end.outcome, Outcome::kFailed);
  EXPECT_EQ(end.state, UnitState::kProgrammed);
  EXPECT_EQ(end.failed_step, "type");
  EXPECT_THAT(Fields("result", "step"), ElementsAre("program", "type"));
}

TEST_F(UnitRunOf, AReadThatDiffersNamesBothValuesAndKeepsTheState) {
  UnitRequest unit = ProgrammedUnit(3);
  unit.steps.push_back(Read(std::string("\xFF\x00\x12\xAB", 4)));
  const UnitEnd end = RunOne(std::move(unit));
  EXPECT_EQ(end.outcome, Outcome::kDifferent);
  EXPECT_EQ(end.state, UnitState::kProgrammed);
  EXPECT_EQ(end.failed_step, "read");
  const std::string result = EventsOf(Lines(), "result").back();
  EXPECT_EQ(FieldOf(result, "expected"), "FF 00 12 AB");
  EXPECT_EQ(FieldOf(result, "value").size(), 11u);
  EXPECT_EQ(FieldOf(result, "state"), "programmed");
}

TEST_F(UnitRunOf, AReadTouchesNothing) {
  UnitRequest unit = Unit(3);
  unit.steps.push_back(Read(std::string(4, '\xFF')));
  const UnitEnd end = RunOne(std::move(unit));
  EXPECT_EQ(end.state, UnitState::kUntouched);
  EXPECT_FALSE(end.touched);
  EXPECT_TRUE(EventsOf(Lines(), "state").empty());
}

TEST_F(UnitRunOf, AHookThatSaysNoRefusesItsUnit) {
  GivenHook("may-program", "echo \"$1 is unknown\"; exit 1\n");
  UnitRequest unit = ProgrammedUnit(3);
  unit.before_words = {"./may-program", "ZP3"};
  const UnitEnd end = RunOne(std::move(unit));
  EXPECT_FALSE(end.started);
  EXPECT_EQ(end.outcome, Outcome::kRefused);
  EXPECT_THAT(end.reason, HasSubstr("./may-program"));
  EXPECT_THAT(end.reason, HasSubstr("ZP3 is unknown"));
  EXPECT_TRUE(EventsOf(Lines(), "unit_start").empty());
  EXPECT_THAT(Fields("unit_result", "outcome"), ElementsAre("refused"));
  EXPECT_THAT(m_displays.Journal(3), testing::IsEmpty());
}

TEST_F(UnitRunOf, AHookThatCannotBeStartedRefusesItsUnit) {
  UnitRequest unit = ProgrammedUnit(3);
  unit.before_words = {"./missing"};
  const UnitEnd end = RunOne(std::move(unit));
  EXPECT_EQ(end.outcome, Outcome::kRefused);
  EXPECT_THAT(end.reason, HasSubstr("./missing"));
}

// It is done when its result is on the disk, and not because a hook that never ran has ended.
TEST_F(UnitRunOf, AHookThatCannotBeStartedDoesNotEndItsUnitBeforeTheRecord) {
  UnitRequest request = ProgrammedUnit(3);
  request.before_words = {"./missing"};
  std::string error;
  const auto journal = Journal::Open(DataDirectory(), error);
  ASSERT_NE(journal, nullptr) << error;
  JournalSink record(*journal);
  Session session;
  session.Add(record);
  UnitRun unit(std::move(request), {session, *journal, record});
  unit.Start();
  unit.OnTick(MonotonicMs());
  EXPECT_FALSE(unit.IsDone());
  EXPECT_TRUE(WaitUntil([&unit] {
    unit.OnRecorded();
    return unit.IsDone();
  }));
  EXPECT_TRUE(unit.End().recorded);
}

TEST_F(UnitRunOf, TheInterfaceIsHeldWhileTheHookIsAsked) {
  // It also ends with the test's directory, in which it asks.
  GivenHook("may-program",
            "touch asked; while [ -e asked ] && [ ! -e answer ]; do sleep 0.01; done\n");
  UnitRequest unit = ProgrammedUnit(3);
  unit.before_words = {"./may-program"};
  const pid_t parent = RunElsewhere(std::move(unit));
  ASSERT_TRUE(WaitUntil([&] { return FileExists(m_scratch / "asked"); }));
  EXPECT_FALSE(IsInterfaceFree(3));
  // Nothing has begun, so nothing stays locked, although the hook still runs.
  kill(parent, SIGKILL);
  ASSERT_EQ(waitpid(parent, nullptr, 0), parent);
  EXPECT_TRUE(WaitUntil([] { return IsInterfaceFree(3); }));
  GivenFile(m_scratch / "answer", "");
}

// The tick that takes a free interface starts the step, too.
TEST_F(UnitRunOf, AWaitForTheInterfaceEndsInNoTimeOut) {
  constexpr unsigned kUnits = 6;
  GivenHook("hold", "touch held-$1; while [ ! -e go ]; do sleep 0.01; done\n");
  std::vector<pid_t> holders;
  std::vector<UnitRequest> units;
  for (unsigned comm = 1; comm <= kUnits; ++comm) {
    UnitRequest holder = ProgrammedUnit(comm);
    holder.before_words = {"./hold", std::to_string(comm)};
    holders.push_back(RunElsewhere(std::move(holder)));
    units.push_back(ProgrammedUnit(comm));
    units.back().wait_ms = 60000;
    units.back().steps.front().timeout_s = 60;
    ASSERT_TRUE(WaitUntil([&] { return FileExists(m_scratch / "held-" + std::to_string(comm)); }));
  }
  std::thread release([this] {
    EXPECT_TRUE(WaitUntil([this] { return EventsOf(Lines(), "wait").size() == kUnits; }));
    GivenFile(m_scratch / "go", "");
  });
  for (const UnitEnd& end : Run(std::move(units))) {
    EXPECT_EQ(end.outcome, Outcome::kPassed);
  }
  release.join();
  for (const pid_t holder : holders) {
    EXPECT_EQ(waitpid(holder, nullptr, 0), holder);
  }
}

TEST_F(UnitRunOf, TheOtherHookGetsTheResult) {
  GivenHook("to-mes", "cat > told\n");
  UnitRequest unit = ProgrammedUnit(3);
  unit.after_words = {"./to-mes"};
  EXPECT_FALSE(RunOne(std::move(unit)).hook_failed);
  EXPECT_EQ(ReadWholeFile(m_scratch / "told"), EventOf(Lines(), "unit_result") + "\n");
}

TEST_F(UnitRunOf, AHookThatFailsChangesNothingElse) {
  GivenHook("to-mes", "exit 7\n");
  UnitRequest unit = ProgrammedUnit(3);
  unit.after_words = {"./to-mes"};
  const UnitEnd end = RunOne(std::move(unit));
  EXPECT_TRUE(end.hook_failed);
  EXPECT_EQ(end.outcome, Outcome::kPassed);
  const std::string message = EventsOf(Lines(), "message").back();
  EXPECT_EQ(FieldOf(message, "level"), "warning");
  EXPECT_THAT(message, HasSubstr("./to-mes"));
}

TEST_F(UnitRunOf, AFileInPlaceThatIsNotWhatWasCheckedIsNotUsed) {
  UnitRequest unit = ProgrammedUnit(3);
  unit.steps[0].checked_files = {{Firmware(), std::string(64, '0')}};
  const UnitEnd end = RunOne(std::move(unit));
  EXPECT_EQ(end.outcome, Outcome::kFailed);
  EXPECT_EQ(end.state, UnitState::kUntouched);
  EXPECT_THAT(FieldOf(EventOf(Lines(), "result"), "meaning"), HasSubstr("is not what was checked"));
  EXPECT_THAT(m_displays.Journal(3), testing::IsEmpty());
}

TEST_F(UnitRunOf, AFileInPlaceThatChangesLeavesTheUnitUncertain) {
  m_displays.GivenFaults(3, "slow ms=300\n");
  UnitRequest unit = ProgrammedUnit(3);
  unit.steps[0].checked_files = {{Firmware(), *Sha256OfFile(Firmware())}};
  std::thread writer([this] {
    if (m_displays.WaitForJournal(3, "erase bank=0")) GivenFirmware(Firmware(), 2 * 65536, 9);
  });
  const UnitEnd end = RunOne(std::move(unit));
  writer.join();
  EXPECT_EQ(end.outcome, Outcome::kFailed);
  EXPECT_EQ(end.state, UnitState::kUncertain);
}

TEST_F(UnitRunOf, AnOrphanRecordsThatTheStepsAfterItsOwnWereNotRun) {
  m_displays.GivenFaults(3, "slow ms=300\n");
  UnitRequest unit = ProgrammedUnit(3);
  unit.steps.insert(unit.steps.begin(), ScalerType(1));
  unit.steps.push_back(ScalerType(1));
  const pid_t parent = RunElsewhere(std::move(unit));
  ASSERT_TRUE(m_displays.WaitForJournal(3, "erase bank=0"));
  kill(parent, SIGKILL);
  ASSERT_EQ(waitpid(parent, nullptr, 0), parent);
  EXPECT_FALSE(IsInterfaceFree(3));
  ASSERT_TRUE(WaitUntil([this] { return !EventOf(Record(), "unit_result").empty(); }));
  const std::string result = EventsOf(Record(), "result").back();
  EXPECT_EQ(FieldOf(result, "step"), "program");
  EXPECT_EQ(FieldOf(result, "step_index"), "1");
  EXPECT_EQ(FieldOf(result, "outcome"), "passed");
  const std::string unit_result = EventOf(Record(), "unit_result");
  EXPECT_EQ(FieldOf(unit_result, "outcome"), "interrupted");
  EXPECT_EQ(FieldOf(unit_result, "state"), "programmed");
  EXPECT_EQ(FieldOf(unit_result, "job_name"), "panel");
  EXPECT_THAT(FieldOf(unit_result, "reason"), HasSubstr("after program was not run"));
  EXPECT_TRUE(WaitUntil([] { return IsInterfaceFree(3); }));
}

TEST_F(UnitRunOf, AnOrphanOfAReadingStepKeepsTheStateOfTheOnesBefore) {
  UnitRequest unit = ProgrammedUnit(3);
  unit.steps.push_back(Read(FirstBytes()));
  m_displays.GivenFaults(3, "slow call=2 ms=700\n");
  const pid_t parent = RunElsewhere(std::move(unit));
  ASSERT_TRUE(m_displays.WaitForJournal(3, "call n=2"));
  kill(parent, SIGKILL);
  ASSERT_EQ(waitpid(parent, nullptr, 0), parent);
  ASSERT_TRUE(WaitUntil([this] { return !EventOf(Record(), "unit_result").empty(); }));
  const std::string unit_result = EventOf(Record(), "unit_result");
  EXPECT_EQ(FieldOf(unit_result, "state"), "programmed");
  EXPECT_EQ(FieldOf(unit_result, "outcome"), "interrupted");
  EXPECT_EQ(FieldOf(unit_result, "failed_step"), "read");
}

}  // namespace
}  // namespace line
