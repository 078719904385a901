// SPDX-License-Identifier: MIT
//
// Many runs at once: each has its own display, or all want the same one.
#include <csignal>
#include <string>

#include "support/end_to_end.h"
#include "support/simulated_display.h"

namespace {

using namespace std::string_literals;
using testing::ElementsAre;

constexpr int kRuns = 1000;
constexpr int kDisplaysOfADirectory = 16;
constexpr int kRivals = 20;

class SimulatedCrowd : public testing::Test {
 protected:
  SimulatedCrowd() { m_tool.WithIspPlugin(ZVISP_SIMULATOR); }

  // The display of a run: 16 in each directory.
  Displays DisplaysOf(int run) const {
    return Displays(m_tool.Elsewhere("displays-" + std::to_string(run / kDisplaysOfADirectory)));
  }
  static unsigned CommOf(int run) { return static_cast<unsigned>(run % kDisplaysOfADirectory) + 1; }

  // Its own firmware, programmed to its own banks.
  static std::string FirmwareOf(int run) {
    return Pattern(static_cast<std::size_t>(1000 + run), static_cast<unsigned>(run));
  }
  std::string PathOf(int run) const { return m_tool / ("fw-" + std::to_string(run) + ".bin"); }
  Command LineOf(int run) const {
    return DisplaysOf(run).Line(
        m_tool, {"--isp", "--fw", PathOf(run), "--bank", std::to_string(run % 3), "--comm",
                 std::to_string(CommOf(run))});
  }

  void ExpectOwnFirmware(int run) const {
    const Displays displays = DisplaysOf(run);
    std::string expected(static_cast<std::size_t>(65536 * (run % 3 + 1)), '\xFF');
    const std::string firmware = FirmwareOf(run);
    expected.replace(static_cast<std::size_t>(65536 * (run % 3)), firmware.size(), firmware);
    EXPECT_TRUE(SameBytes(displays.Flash(CommOf(run)), expected)) << "run " << run;
    EXPECT_THAT(displays.Counters(CommOf(run)), ElementsAre(std::to_string(run % 3) + ": 1 1"))
        << "run " << run;
  }

  Installation m_tool;
};

TEST_F(SimulatedCrowd, AThousandRunsAtOnceOnDisplaysOfTheirOwnMixNothingUp) {
  std::vector<StartedRun> runs;
  for (int run = 0; run < kRuns; ++run) {
    GivenFile(PathOf(run), FirmwareOf(run));
    // Each run stays for a while, so that they meet.
    DisplaysOf(run).GivenFaults(CommOf(run), "slow ms=1000\n");
  }
  for (int run = 0; run < kRuns; ++run)
    runs.emplace_back(LineOf(run));
  for (int run = 0; run < kRuns; ++run) {
    const RunResult result = runs[static_cast<std::size_t>(run)].Wait();
    const std::string number = std::to_string(CommOf(run));
    EXPECT_EQ(result.out, kBanner + "Display "s + (number.size() < 2 ? "0" : "") + number +
                              " (simulated): 1 bank programmed and verified\n" + kSuccess)
        << "run " << run;
    EXPECT_EQ(result.err, "") << "run " << run;
    EXPECT_EQ(result.status, 0) << "run " << run;
    ExpectOwnFirmware(run);
  }
}

TEST_F(SimulatedCrowd, WhileOneRunProgramsADisplayAllOthersAreToldThatItIsInUse) {
  const Displays displays(m_tool.Elsewhere("displays"));
  GivenFirmware(m_tool / "a.bin", 3 * 65536, 1);
  GivenFirmware(m_tool / "b.bin", 65536, 2);
  displays.GivenFaults(3, "hang bank=5 at=write\n");
  StartedRun programming(
      displays.Line(m_tool, {"--isp", "--fw", "a.bin", "--bank", "4", "--comm", "3"}));
  ASSERT_TRUE(displays.WaitForJournal(3, "erase bank=5"));

  std::vector<StartedRun> others;
  for (int i = 1; i < kRivals; ++i)
    others.emplace_back(displays.Line(m_tool, {"--isp", "--fw", "b.bin", "--comm", "3"}));
  for (StartedRun& other : others) {
    const RunResult run = other.Wait();
    EXPECT_EQ(run.out, kBanner + "Display 03: in use by another run\n"s + FailLine("0x5A26"));
    EXPECT_EQ(run.status, 0x26);
  }
  programming.Kill(SIGKILL);
  EXPECT_EQ(programming.Wait().signal, SIGKILL);
  EXPECT_THAT(displays.Counters(3), ElementsAre("4: 1 1", "5: 1 0"));
}

TEST_F(SimulatedCrowd, OfManyRunsOnOneDisplayEachProgramsAloneOrIsToldThatItIsInUse) {
  const Displays displays(m_tool.Elsewhere("displays"));
  displays.GivenFaults(3, "slow ms=200\n");
  std::vector<StartedRun> runs;
  for (int run = 0; run < kRivals; ++run) {
    GivenFile(PathOf(run), Pattern(2 * 65536, static_cast<unsigned>(run)));
    runs.emplace_back(displays.Line(m_tool, {"--isp", "--fw", PathOf(run), "--comm", "3"}));
  }
  int programmed = 0;
  for (StartedRun& run : runs) {
    const RunResult result = run.Wait();
    const bool success = result.status == 0;
    programmed += success ? 1 : 0;
    EXPECT_EQ(
        result.out,
        success ? kBanner + "Display 03 (simulated): 2 banks programmed and verified\n"s + kSuccess
                : kBanner + "Display 03: in use by another run\n"s + FailLine("0x5A26"));
  }
  ASSERT_GE(programmed, 1);
  const std::string times = std::to_string(programmed);
  EXPECT_THAT(displays.Counters(3),
              ElementsAre("0: " + times + " " + times, "1: " + times + " " + times));
  // The flash holds one run's firmware, whole.
  int holders = 0;
  for (int run = 0; run < kRivals; ++run)
    holders += displays.Flash(3) == ReadWholeFile(PathOf(run)) ? 1 : 0;
  EXPECT_EQ(holders, 1);
}

}  // namespace
