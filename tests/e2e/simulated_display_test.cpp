// SPDX-License-Identifier: MIT
//
// The tool's main job, whole: firmware files into a display, and the flash holds them byte for
// byte.
#include "support/simulated_display.h"

#include <fcntl.h>
#include <unistd.h>

#include <atomic>
#include <csignal>
#include <thread>

#include "support/end_to_end.h"

namespace {

using namespace std::string_literals;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::size_t kBank = 65536;

// A real ROM image, four banks long, of Debian's package "seabios".
constexpr const char* kRomImage = "/usr/share/seabios/bios-256k.bin";

std::string Erased(std::size_t bytes) {
  return std::string(bytes, '\xFF');
}

class SimulatedDisplay : public testing::Test {
 protected:
  SimulatedDisplay() : m_displays(m_tool.Elsewhere("displays")) {
    m_tool.WithIspPlugin(ZVISP_SIMULATOR);
  }

  // Expects a run that succeeds after this line of the display.
  void ExpectSuccess(const Words& words, const std::string& line) {
    const RunResult run = RunCommand(m_displays.Line(m_tool, words));
    EXPECT_EQ(run.out, kBanner + line + "\n" + kSuccess) << Shown(words);
    EXPECT_EQ(run.err, "");
    EXPECT_EQ(run.status, 0);
  }

  void ExpectFailure(const Words& words, const std::string& line, const std::string& code,
                     int status) {
    const RunResult run = RunCommand(m_displays.Line(m_tool, words));
    EXPECT_EQ(run.out, kBanner + line + FailLine(code)) << Shown(words);
    EXPECT_EQ(run.status, status);
  }

  Installation m_tool;
  Displays m_displays;
};

TEST_F(SimulatedDisplay, ARealRomImageIsProgrammedAcrossItsBanksAndReadBack) {
  if (!FileExists(kRomImage)) {
    GTEST_SKIP() << kRomImage << " is missing: install the package \"seabios\"";
  }
  const std::string rom = ReadWholeFile(kRomImage);
  ASSERT_EQ(rom.size(), 4 * kBank);
  ExpectSuccess({"--isp", "--fw1", kRomImage, "--bank1", "8", "--comm", "3"},
                "Display 03 (simulated): 4 banks programmed and verified");
  EXPECT_TRUE(SameBytes(m_displays.Flash(3), Erased(8 * kBank) + rom));
  EXPECT_THAT(m_displays.Counters(3), ElementsAre("8: 1 1", "9: 1 1", "10: 1 1", "11: 1 1"));
  ExpectSuccess({"--dumpflash", "--dumpaddr", "0x80000", "--dumplen", "0x40000", "--dumpname",
                 "rom.bin", "--comm", "3"},
                "Display 03 (simulated): 262144 bytes at 0x080000 read into rom.bin");
  EXPECT_TRUE(SameBytes(ReadWholeFile(m_tool / "rom.bin"), rom));
}

TEST_F(SimulatedDisplay, SeveralFilesGoToTheirBanksAndNoOtherBankIsTouched) {
  const std::string a = Pattern(2 * kBank + 1, 1);
  const std::string b = Pattern(1, 2);
  const std::string c = Pattern(kBank, 3);
  GivenFile(m_tool / "a.bin", a);
  GivenFile(m_tool / "b.bin", b);
  GivenFile(m_tool / "c.bin", c);
  ExpectSuccess({"--isp", "--fw", "a.bin", "--bank", "2", "--fw1", "b.bin", "--bank1", "0", "--fw2",
                 "c.bin", "--bank2", "6", "--comm", "16"},
                "Display 16 (simulated): 5 banks programmed and verified");
  const std::string expected =
      b + Erased(2 * kBank - 1) + a + Erased(kBank - 1) + Erased(kBank) + c;
  EXPECT_TRUE(SameBytes(m_displays.Flash(16), expected));
  EXPECT_THAT(m_displays.Counters(16),
              ElementsAre("0: 1 1", "2: 1 1", "3: 1 1", "4: 1 1", "6: 1 1"));
}

TEST_F(SimulatedDisplay, TheLastBanksOfTheFlashAreProgrammed) {
  const std::string firmware = Pattern(3 * kBank);
  GivenFile(m_tool / "a.bin", firmware);
  ExpectSuccess({"--isp", "--fw", "a.bin", "--bank", "253"},
                "Display 00 (simulated): 3 banks programmed and verified");
  EXPECT_TRUE(SameBytes(m_displays.Flash(0), Erased(253 * kBank) + firmware));
}

TEST_F(SimulatedDisplay, BanksBeyondTheFlashAreRefusedBeforeAnythingIsErased) {
  GivenFirmware(m_tool / "a.bin", 10 * kBank);
  ExpectFailure({"--isp", "--fw1", "a.bin", "--bank1", "250", "--comm", "1"},
                "Display 01: bank 256 is outside its 256 banks\n", "0x5A23", 0x23);
  EXPECT_THAT(m_displays.Counters(1), IsEmpty());
  EXPECT_EQ(m_displays.Flash(1), "");
}

TEST_F(SimulatedDisplay, ProgrammingDifferencesRewritesOnlyTheBanksThatDiffer) {
  std::string firmware = Pattern(4 * kBank);
  GivenFile(m_tool / "a.bin", firmware);
  const Words diff = {"--ispdiff", "--fw", "a.bin", "--comm", "2"};
  ExpectSuccess(diff, "Display 02 (simulated): 4 of 4 banks rewritten");
  ExpectSuccess(diff, "Display 02 (simulated): 0 of 4 banks rewritten");
  firmware[2 * kBank + 77] = static_cast<char>(firmware[2 * kBank + 77] ^ 1);
  GivenFile(m_tool / "a.bin", firmware);
  ExpectSuccess(diff, "Display 02 (simulated): 1 of 4 banks rewritten");
  EXPECT_TRUE(SameBytes(m_displays.Flash(2), firmware));
  EXPECT_THAT(m_displays.Counters(2), ElementsAre("0: 1 1", "1: 1 1", "2: 2 2", "3: 1 1"));
}

TEST_F(SimulatedDisplay, AUserFlagIsWrittenWithTheFirmware) {
  std::string firmware = Pattern(kBank);
  GivenFile(m_tool / "a.bin", firmware);
  ExpectSuccess({"--ispuser", "--fw", "a.bin", "--flagaddr", "0x10", "--flagdata", "0xA5,0x5A"},
                "Display 00 (simulated): 1 bank programmed and verified");
  firmware[0x10] = '\xA5';
  firmware[0x11] = '\x5A';
  EXPECT_TRUE(SameBytes(m_displays.Flash(0), firmware));
  EXPECT_THAT(m_displays.Counters(0), ElementsAre("0: 1 1"));
}

TEST_F(SimulatedDisplay, ARunThatIsKilledLeavesADisplayThatTheNextRunPrograms) {
  const std::string firmware = Pattern(4 * kBank);
  GivenFile(m_tool / "a.bin", firmware);
  m_displays.GivenFaults(5, "hang bank=2 at=write\n");
  const Words isp = {"--isp", "--fw", "a.bin", "--comm", "5"};
  StartedRun hanging(m_displays.Line(m_tool, isp));
  ASSERT_TRUE(m_displays.WaitForJournal(5, "erase bank=2"));
  hanging.Kill(SIGKILL);
  EXPECT_EQ(hanging.Wait().signal, SIGKILL);
  EXPECT_TRUE(SameBytes(m_displays.Flash(5).substr(0, 2 * kBank), firmware.substr(0, 2 * kBank)));
  m_displays.GivenFaults(5, "");
  ExpectSuccess(isp, "Display 05 (simulated): 4 banks programmed and verified");
  EXPECT_TRUE(SameBytes(m_displays.Flash(5), firmware));
  EXPECT_THAT(m_displays.Counters(5), ElementsAre("0: 2 2", "1: 2 2", "2: 2 1", "3: 1 1"));
}

TEST_F(SimulatedDisplay, WhatIsPrintedBeforeAHangIsSeenAtOnce) {
  m_displays.GivenFaults(5, "hang\n");
  StartedRun hanging(m_displays.Line(m_tool, {"--resetmcu", "--comm", "5"}));
  ASSERT_TRUE(m_displays.WaitForJournal(5, "call n=1 name=ResetMCUExport "));
  hanging.Kill(SIGTERM);
  const RunResult run = hanging.Wait();
  EXPECT_EQ(run.out, kBanner);
  EXPECT_EQ(run.signal, SIGTERM);
}

TEST_F(SimulatedDisplay, InjectedFailuresReachTheOperatorWithTheirCode) {
  GivenFirmware(m_tool / "a.bin", 3 * kBank);
  m_displays.GivenFaults(4, "verify bank=1\n");
  ExpectFailure({"--isp", "--fw", "a.bin", "--comm", "4"},
                "Display 04: bank 1 differs from what was written\n", "0x5A28", 0x28);
  EXPECT_THAT(m_displays.Counters(4), ElementsAre("0: 1 1", "1: 1 1"));
}

TEST_F(SimulatedDisplay, EachCallThatWorksSaysThatTheDisplayIsSimulated) {
  const std::string name = "Display 06 (simulated): ";
  const std::pair<Words, const char*> kCalls[] = {
      {{"--enterispmode"}, "in ISP mode"},
      {{"--resetmcu"}, "MCU reset"},
      {{"--userdefinedinfo"}, "User-defined information: simulated display"},
      {{"--edpisp", "--edpmode", "isp"}, "e-DP EEPROM programmed, version 1"},
      {{"--edpisp", "--edpmode", "readver"}, "e-DP EEPROM version: 1"},
      {{"--recordver"}, "version recorded: display 1.0"},
  };
  for (const auto& [action, line] : kCalls) {
    Words words = action;
    words.insert(words.end(), {"--comm", "6"});
    ExpectSuccess(words, name + line);
  }
  const RunResult run = RunCommand(m_displays.Line(m_tool, {"--getscalertype", "--comm", "6"}));
  EXPECT_EQ(run.out, kBanner + name + "scaler type 1\n" + ScalerTypeLine("1"));
}

TEST_F(SimulatedDisplay, AnAnswerThatFailsToComeInABankHasACodeOfItsOwn) {
  GivenFirmware(m_tool / "a.bin", 2 * kBank);
  const Words isp = {"--isp", "--fw", "a.bin", "--comm", "4"};
  m_displays.GivenFaults(4, "no-answer\n");
  ExpectFailure(isp, "Display 04: no answer\n", "0x5A29", 0x29);
  EXPECT_THAT(m_displays.Counters(4), IsEmpty());
  m_displays.GivenFaults(4, "no-answer bank=1 at=write\n");
  ExpectFailure(isp, "Display 04: no answer any more at bank 1\n", "0x5A30", 0x30);
  EXPECT_THAT(m_displays.Counters(4), ElementsAre("0: 1 1", "1: 1 0"));
}

TEST_F(SimulatedDisplay, ALieIsFoundByReadingBack) {
  std::string firmware = Pattern(2 * kBank);
  GivenFile(m_tool / "a.bin", firmware);
  m_displays.GivenFaults(4, "lie bank=1 bit=3\n");
  ExpectSuccess({"--isp", "--fw", "a.bin", "--comm", "4"},
                "Display 04 (simulated): 2 banks programmed and verified");
  ExpectSuccess({"--dumpflash", "--dumpaddr", "0", "--dumplen", "0x20000", "--dumpname", "back.bin",
                 "--comm", "4"},
                "Display 04 (simulated): 131072 bytes at 0x000000 read into back.bin");
  firmware[kBank] = static_cast<char>(firmware[kBank] ^ 8);
  EXPECT_TRUE(SameBytes(ReadWholeFile(m_tool / "back.bin"), firmware));
  EXPECT_THAT(m_displays.Journal(4), Contains("verify bank=1 lie"));
}

// A file that is written to all the time. A run that the writer leaves alone may succeed.
TEST_F(SimulatedDisplay, FirmwareThatChangesWhileItIsReadIsRefusedBeforeAnythingIsErased) {
  const std::string path = GivenFirmware(m_tool / "a.bin", 256 * kBank);
  std::atomic<bool> stop = false;
  std::thread writer([&] {
    const int file = open(path.c_str(), O_WRONLY);
    while (!stop && pwrite(file, "x", 1, 0) == 1) {
    }
    close(file);
  });
  int refused = 0;
  for (unsigned comm_id = 1; comm_id <= 6; ++comm_id) {
    const RunResult run = RunCommand(
        m_displays.Line(m_tool, {"--isp", "--fw", path, "--comm", std::to_string(comm_id)}));
    if (run.status == 0) continue;
    ++refused;
    EXPECT_EQ(run.out, kBanner + ("Display 0" + std::to_string(comm_id) + ": ") + path +
                           " changed while it was read, nothing was programmed\n" +
                           FailLine("0x5A31"));
    EXPECT_EQ(run.status, 0x31);
    EXPECT_THAT(m_displays.Counters(comm_id), IsEmpty());
  }
  stop = true;
  writer.join();
  EXPECT_GT(refused, 0);
}

TEST_F(SimulatedDisplay, ADumpOntoItsOwnFlashIsRefused) {
  const std::string firmware = Pattern(2 * kBank);
  GivenFile(m_tool / "a.bin", firmware);
  ExpectSuccess({"--isp", "--fw", "a.bin", "--comm", "4"},
                "Display 04 (simulated): 2 banks programmed and verified");
  ASSERT_EQ(symlink(m_displays.File(4, "flash").c_str(), (m_tool / "soft.bin").c_str()), 0);
  ASSERT_EQ(link(m_displays.File(4, "flash").c_str(), (m_tool / "hard.bin").c_str()), 0);
  for (const std::string name : {"soft.bin", "hard.bin"}) {
    ExpectFailure(
        {"--dumpflash", "--dumpaddr", "0", "--dumplen", "16", "--dumpname", name, "--comm", "4"},
        "Display 04: cannot write " + name + ": it is a file of a simulated display\n", "0x5A2B",
        0x2B);
  }
  EXPECT_TRUE(SameBytes(m_displays.Flash(4), firmware));
}

TEST_F(SimulatedDisplay, AStateThatCannotBeReadDoesNotLockTheDisplayOut) {
  GivenFile(m_displays.File(4, "state"), "recorded_version = " + std::string(65600, 'v') + "\n");
  ExpectSuccess({"--resetmcu", "--comm", "4"}, "Display 04: " + m_displays.File(4, "state") +
                                                   " cannot be read, the display counts as new\n"
                                                   "Display 04 (simulated): MCU reset");
  ExpectSuccess({"--resetmcu", "--comm", "4"}, "Display 04 (simulated): MCU reset");
  GivenFile(m_displays.File(4, "identity"), "version = " + std::string(65500, 'v') + "\n");
  ExpectFailure({"--recordver", "--comm", "4"},
                "Display 04: a version of 65508 characters is too long to record, at most 1024 "
                "fit\n",
                "0x5A22", 0x22);
  ExpectSuccess({"--resetmcu", "--comm", "4"}, "Display 04 (simulated): MCU reset");
}

TEST_F(SimulatedDisplay, ItsFilesAreNotWrittenThroughLinks) {
  const std::string victim = GivenFile(m_tool / "victim", "victim");
  GivenDirectory(m_tool.Elsewhere("displays"));
  ASSERT_EQ(symlink(victim.c_str(), m_displays.File(4, "state.new").c_str()), 0);
  ExpectSuccess({"--resetmcu", "--comm", "4"}, "Display 04 (simulated): MCU reset");
  ASSERT_EQ(symlink(victim.c_str(), m_displays.File(5, "counters").c_str()), 0);
  ExpectFailure({"--resetmcu", "--comm", "5"},
                "Display 05: " + m_displays.File(5, "counters") +
                    " is a symbolic link, which a display does not follow\n",
                "0x5A27", 0x27);
  EXPECT_EQ(ReadWholeFile(victim), "victim");
}

TEST_F(SimulatedDisplay, ActionsThatAreNeverBoundDoNotReachTheDisplay) {
  for (const char* action : {"--erase", "--getstatus", "--senduserdefinedinfo"}) {
    ExpectFailure({action, "--comm", "7"}, "", "0x6", 6);
  }
  EXPECT_THAT(m_displays.Journal(7), IsEmpty());
}

TEST_F(SimulatedDisplay, OutputThatIsClosedDoesNotEndUpInTheFlash) {
  const std::string firmware = Pattern(kBank);
  GivenFile(m_tool / "a.bin", firmware);
  Command command = m_displays.Line(m_tool, {"--ispdiff", "--fw", "a.bin", "--comm", "9"});
  command.output = OutputTo::kClosed;
  EXPECT_EQ(RunCommand(command).status, 0);
  EXPECT_TRUE(SameBytes(m_displays.Flash(9), firmware));
  EXPECT_THAT(m_displays.Journal(9), Contains("end n=1 code=0x0"));
}

}  // namespace
