// SPDX-License-Identifier: MIT
//
// `run` on a simulated display: outcomes, interfaces, plug-ins, signals, and a parent that is gone.
#include <signal.h>

#include <chrono>
#include <filesystem>
#include <string>
#include <thread>

#include "line/support/line_tool.h"
#include "support/files.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using testing::HasSubstr;

class RunOf : public testing::Test {
 protected:
  RunOf() { GivenFirmware(m_line / "fw.bin", 3 * 65536); }

  static LineTool::Words Programming(const std::string& comm = "3") {
    return {"--isp", "--fw", "fw.bin", "--comm", comm};
  }
  // On interface 0.
  static LineTool::Words ProgrammingWithoutInterface() { return {"--isp", "--fw", "fw.bin"}; }
  void GivenFaults(const std::string& faults) const { m_line.AllDisplays().GivenFaults(3, faults); }

  static void ExpectResult(const RunResult& run, int status, const std::string& outcome,
                           const std::string& state) {
    EXPECT_EQ(run.status, status) << run.out << run.err;
    EXPECT_EQ(FieldOf(EventOf(run.out, "result"), "outcome"), outcome) << run.out;
    EXPECT_EQ(FieldOf(EventOf(run.out, "result"), "state"), state);
    EXPECT_EQ(FieldOf(EventOf(run.out, "unit_result"), "state"), state);
  }

  LineTool m_line;
};

TEST_F(RunOf, ADisplayIsProgrammedAndRecorded) {
  const RunResult run = m_line.Run(Programming());
  ExpectResult(run, 0, "passed", "programmed");
  EXPECT_EQ(m_line.AllDisplays().Flash(3), ReadWholeFile(m_line / "fw.bin"));
  const std::string state = EventOf(m_line.Record(), "state");
  EXPECT_EQ(FieldOf(state, "state"), "programming");
  EXPECT_EQ(FieldOf(state, "call"), "IspFlash");
  EXPECT_EQ(FieldOf(state, "unit"), "ZP1");
  EXPECT_EQ(FieldOf(state, "place"), "comm-3");
  EXPECT_EQ(FieldOf(EventOf(m_line.Record(), "result"), "state"), "programmed");
}

TEST_F(RunOf, AFailureOfAWritingCallLeavesTheDisplayUncertain) {
  GivenFaults("fail bank=1 at=write code=0x71\n");
  ExpectResult(m_line.Run(Programming()), 5, "failed", "uncertain");
}

TEST_F(RunOf, ACodeThatPromisesThatNothingWasWrittenKeepsTheState) {
  GivenFaults("fail code=0x5A26\n");
  ExpectResult(m_line.Run(Programming()), 5, "failed", "uncertain");
  ExpectResult(m_line.Run(Programming(), {"--nothing-written", "0x5A29,0x5A26"}), 3, "unavailable",
               "untouched");
  GivenFaults("fail code=0x5A27\n");
  ExpectResult(m_line.Run(Programming(), {"--nothing-written", "0x5A29,0x5A26"}), 5, "failed",
               "uncertain");
}

// A display that was never there has another code than one that is lost in the middle of a bank.
TEST_F(RunOf, ADisplayThatDoesNotAnswerIsUntouchedOrUncertain) {
  const LineTool::Words promised = {"--nothing-written", "0x5A29"};
  GivenFaults("no-answer\n");
  ExpectResult(m_line.Run(Programming(), promised), 3, "unavailable", "untouched");
  GivenFaults("no-answer bank=1 at=write\n");
  const RunResult lost = m_line.Run(Programming(), promised);
  ExpectResult(lost, 5, "failed", "uncertain");
  EXPECT_EQ(FieldOf(EventOf(lost.out, "result"), "code_hex"), "0x5A30");
}

TEST_F(RunOf, AScalerTypeHasToBeTheExpectedOne) {
  const LineTool::Words words = {"--getscalertype", "--comm", "3"};
  ExpectResult(m_line.Run(words, {"--expect", "1"}), 0, "passed", "untouched");
  const RunResult other = m_line.Run(words, {"--expect", "3"});
  ExpectResult(other, 1, "failed", "untouched");
  EXPECT_EQ(FieldOf(EventOf(other.out, "result"), "value"), "1");
  EXPECT_EQ(FieldOf(EventOf(other.out, "result"), "expected"), "3");
}

TEST_F(RunOf, AnExportThatThePlugInLacksIsUnavailable) {
  m_line.Tool().WithIspPlugin(TestPlugin("bad_plugin"));
  ExpectResult(m_line.Run({"--getscalertype", "--comm", "3"}, {"--expect", "6"}), 3, "unavailable",
               "untouched");
}

TEST_F(RunOf, WithoutThePlugInNothingIsAvailable) {
  std::filesystem::remove(m_line.Tool().IspPluginPath());
  EXPECT_EQ(m_line.Run(Programming()).status, 3);
  EXPECT_FALSE(FileExists(m_line.AllDisplays().File(3, "flash")));
}

TEST_F(RunOf, PlugInsAreTakenFromTheDirectoryThatIsNamed) {
  const std::string elsewhere = GivenDirectory(m_line.Tool().Elsewhere("plug-ins/PlugIn"));
  std::filesystem::rename(m_line.Tool().IspPluginPath(), elsewhere + "/libIsp.dylib");
  ExpectResult(m_line.Run(Programming(), {"--plugins", m_line.Tool().Elsewhere("plug-ins")}), 0,
               "passed", "programmed");
}

TEST_F(RunOf, BootCodeIsAPhaseOfItsOwn) {
  GivenFile(m_line / "boot.bin", "boot");
  LineTool::Words words = Programming();
  words.insert(words.end(),
               {"--hw", "--dsmode", "1", "--factory", "--newboot", "--boot", m_line / "boot.bin"});
  const RunResult run = m_line.Run(words, {"--allow-unsigned"});
  ExpectResult(run, 0, "passed", "programmed");
  ASSERT_EQ(EventsOf(run.out, "state").size(), 2u);
  EXPECT_EQ(FieldOf(EventsOf(run.out, "state")[0], "phase"), "boot");
  EXPECT_EQ(FieldOf(EventsOf(run.out, "state")[1], "phase"), "program");
  EXPECT_EQ(m_line.AllDisplays().Flash(0).substr(0, 4), "boot");
}

TEST_F(RunOf, AFailureAfterTheBootCodeIsUncertainWhateverItsCodePromises) {
  GivenFile(m_line / "boot.bin", "boot");
  GivenFaults("fail code=0x5A26\n");
  LineTool::Words words = Programming();
  words.insert(words.end(),
               {"--hw", "--dsmode", "1", "--factory", "--newboot", "--boot", m_line / "boot.bin"});
  ExpectResult(m_line.Run(words, {"--allow-unsigned", "--nothing-written", "0x5A26"}), 5, "failed",
               "uncertain");
}

TEST_F(RunOf, AnInterfaceInUseIsRefusedByTheNameOfItsHolder) {
  GivenFaults("slow ms=700\n");
  StartedRun first(m_line.Line("run", {}, Programming()));
  ASSERT_TRUE(m_line.AllDisplays().WaitForJournal(3, "erase bank=0"));
  const RunResult second = m_line.Run(Programming());
  EXPECT_EQ(second.status, 3) << second.out;
  EXPECT_THAT(FieldOf(EventOf(second.out, "error"), "text"),
              HasSubstr("Interface 3 is in use by process"));
  EXPECT_EQ(m_line.Run(ProgrammingWithoutInterface()).status, 3);
  EXPECT_EQ(m_line.Run(Programming("4")).status, 0);
  ExpectResult(m_line.Run(Programming(), {"--wait", "60"}), 0, "passed", "programmed");
  ExpectResult(first.Wait(), 0, "passed", "programmed");
}

TEST_F(RunOf, ARecordThatCannotBeWrittenStartsNothing) {
  GivenFile(m_line.DataDirectory(), "in the way of the directory");
  const RunResult run = m_line.Run(Programming());
  EXPECT_EQ(run.status, 3) << run.out;
  EXPECT_FALSE(FileExists(m_line.AllDisplays().File(3, "flash")));
}

TEST_F(RunOf, TheFirstSignalLetsARunningCallFinish) {
  GivenFaults("slow ms=300\n");
  StartedRun run(m_line.Line("run", {}, Programming()));
  ASSERT_TRUE(m_line.AllDisplays().WaitForJournal(3, "erase bank=0"));
  run.Kill(SIGINT);
  const RunResult result = run.Wait();
  ExpectResult(result, 0, "passed", "programmed");
  EXPECT_THAT(result.out, HasSubstr("Nothing new is started"));
}

TEST_F(RunOf, TheSecondSignalEndsARunningCall) {
  unsigned comm = 3;
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
    ++comm;
    m_line.AllDisplays().GivenFaults(comm, "hang bank=1 at=write\n");
    StartedRun run(m_line.Line("run", {}, Programming(std::to_string(comm))));
    ASSERT_TRUE(m_line.AllDisplays().WaitForJournal(comm, "erase bank=1"));
    run.Kill(signal);
    ASSERT_TRUE(WaitForOutput(run, "Nothing new is started"));
    // Sooner, it would be the same terminal that closes.
    if (signal == SIGHUP) std::this_thread::sleep_for(std::chrono::milliseconds(2100));
    run.Kill(signal);
    const RunResult result = run.Wait();
    EXPECT_EQ(result.signal, 0);
    ExpectResult(result, 5, "interrupted", "uncertain");
  }
}

// The terminal itself and its shell both say so.
TEST_F(RunOf, AClosingTerminalLetsARunningCallFinish) {
  GivenFaults("slow ms=300\n");
  StartedRun run(m_line.Line("run", {}, Programming()));
  ASSERT_TRUE(m_line.AllDisplays().WaitForJournal(3, "erase bank=0"));
  run.Kill(SIGHUP);
  ASSERT_TRUE(WaitForOutput(run, "Nothing new is started"));
  run.Kill(SIGHUP);
  ExpectResult(run.Wait(), 0, "passed", "programmed");
}

TEST_F(RunOf, ASignalBeforeTheStartKeepsTheDisplayUntouched) {
  const struct {
    int signal;
    int status;
  } kCases[] = {{SIGINT, 130}, {SIGTERM, 143}, {SIGHUP, 129}};
  GivenFaults("hang bank=0 at=erase\n");
  StartedRun first(m_line.Line("run", {}, Programming()));
  ASSERT_TRUE(m_line.AllDisplays().WaitForJournal(3, "call n=1"));
  for (const auto& test : kCases) {
    StartedRun run(m_line.Line("run", {"--wait", "60"}, Programming()));
    ASSERT_TRUE(WaitForOutput(run, "\"type\":\"wait\""));
    run.Kill(test.signal);
    const RunResult result = run.Wait();
    EXPECT_EQ(result.status, test.status) << result.out;
    EXPECT_EQ(FieldOf(EventOf(result.out, "error"), "id"), "interrupted");
    EXPECT_EQ(EventOf(result.out, "unit_result"), "");
  }
  first.Kill(SIGINT);
  ASSERT_TRUE(WaitForOutput(first, "Nothing new is started"));
  first.Kill(SIGINT);
  first.Wait();
}

TEST_F(RunOf, AnOrphanFinishesAndRecordsItsResult) {
  GivenFaults("slow ms=200\n");
  StartedRun run(m_line.Line("run", {}, Programming()));
  ASSERT_TRUE(m_line.AllDisplays().WaitForJournal(3, "erase bank=0"));
  run.Kill(SIGKILL);
  EXPECT_EQ(run.Wait().signal, SIGKILL);
  ASSERT_TRUE(m_line.WaitForRecord("\"type\":\"unit_result\""));
  const std::string result = EventOf(m_line.Record(), "unit_result");
  EXPECT_EQ(FieldOf(result, "outcome"), "passed");
  EXPECT_EQ(FieldOf(result, "state"), "programmed");
  EXPECT_EQ(FieldOf(result, "unit"), "ZP1");
  EXPECT_EQ(m_line.AllDisplays().Flash(3), ReadWholeFile(m_line / "fw.bin"));
}

TEST_F(RunOf, AnOrphanKeepsItsInterface) {
  GivenFaults("slow ms=700\n");
  StartedRun run(m_line.Line("run", {}, Programming()));
  ASSERT_TRUE(m_line.AllDisplays().WaitForJournal(3, "erase bank=0"));
  run.Kill(SIGKILL);
  run.Wait();
  EXPECT_EQ(m_line.Run(Programming()).status, 3);
  ASSERT_TRUE(m_line.WaitForRecord("\"type\":\"unit_result\""));
  ExpectResult(m_line.Run(Programming(), {"--wait", "60"}), 0, "passed", "programmed");
}

TEST_F(RunOf, AParentThatIsKilledBeforeItsStartLeavesNothingBehind) {
  GivenFaults("slow ms=700\n");
  StartedRun first(m_line.Line("run", {}, Programming()));
  ASSERT_TRUE(m_line.AllDisplays().WaitForJournal(3, "erase bank=0"));
  StartedRun second(m_line.Line("run", {"--wait", "60"}, Programming()));
  ASSERT_TRUE(m_line.WaitForRecord(R"("for":"interface")"));
  second.Kill(SIGKILL);
  second.Wait();
  ExpectResult(first.Wait(), 0, "passed", "programmed");
  GivenFaults("");
  ExpectResult(m_line.Run(Programming()), 0, "passed", "programmed");
  EXPECT_EQ(EventsOf(m_line.Record(), "unit_start").size(), 2u);
}

}  // namespace
