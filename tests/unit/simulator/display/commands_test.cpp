// SPDX-License-Identifier: MIT
#include "display/commands.h"
#include "display/dump.h"

#include <unistd.h>

#include <algorithm>
#include <vector>

#include "display/plugin_call.h"
#include "display_fixture.h"

namespace {

std::vector<int> g_progress;
std::vector<std::wstring> g_messages;

class CommandsTest : public DisplayTest {
 protected:
  CommandsTest() {
    g_progress.clear();
    g_messages.clear();
    m_host.progress = [](int percent) { g_progress.push_back(percent); };
    m_host.message = [](wchar_t* text) { g_messages.emplace_back(text); };
  }
  // Makes a call as the plug-in does; returns its code. What it prints is in m_output.
  std::uint32_t Call(simulator::Command command) {
    testing::internal::CaptureStdout();
    const int code = simulator::CallDisplay("Test", m_setting.get(), m_host, command);
    m_output = testing::internal::GetCapturedStdout();
    return static_cast<std::uint32_t>(code);
  }
  std::uint32_t Program(std::uint32_t action = 4) {
    m_setting->enumActionType = action;
    return Call(simulator::ProgramFlash);
  }
  std::uint32_t Dump(std::uint32_t address, std::uint32_t length, const std::string& file) {
    m_setting->stDumpFlash.ulDumpAddr = address;
    m_setting->stDumpFlash.ulDumpLen = length;
    CopyText(m_setting->stDumpFlash.wszDumpFile, file);
    return Call(simulator::DumpToFile);
  }
  std::string RecordedVersion(std::uint32_t location) {
    m_setting->enumVersionLocationType = location;
    EXPECT_EQ(Call(simulator::RecordVersion), 0u);
    const std::string state = Content("state");
    return state.substr(state.find("recorded_version = ") + 19);
  }
  bool StateHas(const std::string& line) const {
    return Content("state").find(line + "\n") != std::string::npos;
  }

  std::string m_output;
};

TEST_F(CommandsTest, AProgrammedDisplayHoldsTheFirmwareByteForByte) {
  const std::string content = GivenFirmwareAt(0, 5 * 65536);
  EXPECT_EQ(Program(), 0u);
  EXPECT_EQ(Flash(), content);
  EXPECT_EQ(m_output, "");
  EXPECT_EQ(g_messages.back(), L"Display 01 (simulated): 5 banks programmed and verified");
  EXPECT_EQ(g_progress,
            (std::vector<int>{0, 6, 13, 20, 26, 33, 40, 46, 53, 60, 66, 73, 80, 86, 93, 100}));
}

TEST_F(CommandsTest, EachBankIsErasedAndWrittenOnceAndNoOtherIsTouched) {
  GivenFirmwareAt(3, 2 * 65536);
  EXPECT_EQ(Program(), 0u);
  EXPECT_EQ(Counts(3), "3 1 1");
  EXPECT_EQ(Counts(4), "4 1 1");
  for (const std::uint32_t bank : {0u, 2u, 5u, 255u})
    EXPECT_EQ(Counts(bank), std::to_string(bank) + " 0 0");
}

TEST_F(CommandsTest, ProgrammingOverOtherFirmwareLeavesOnlyTheNew) {
  GivenFirmwareAt(0, 3 * 65536, 1);
  EXPECT_EQ(Program(), 0u);
  m_setting->stMapFw.ulCount = 0;
  const std::string second = GivenFirmwareAt(0, 2 * 65536 + 100, 2);
  EXPECT_EQ(Program(17), 0u);
  EXPECT_EQ(Flash(), second + std::string(65536 - 100, '\xFF'));
}

TEST_F(CommandsTest, ADifferentialRunRewritesOnlyWhatDiffersAndSaysHowMuch) {
  std::string content = GivenFirmwareAt(0, 5 * 65536);
  EXPECT_EQ(Program(), 0u);
  content[2 * 65536 + 7] = static_cast<char>(~content[2 * 65536 + 7]);
  GivenFile(m_scratch / "fw1", content);
  EXPECT_EQ(Program(6), 0u);
  EXPECT_EQ(m_output, "");
  EXPECT_EQ(g_messages.back(), L"Display 01 (simulated): 1 of 5 banks rewritten");
  EXPECT_EQ(Flash(), content);
  for (const std::uint32_t bank : {0u, 1u, 3u, 4u})
    EXPECT_EQ(Counts(bank), std::to_string(bank) + " 1 1");
  EXPECT_EQ(Counts(2), "2 2 2");
}

TEST_F(CommandsTest, ADifferentialRunOfTheSameFirmwareTouchesNothing) {
  m_host.message = nullptr;
  GivenFirmwareAt(0, 2 * 65536);
  EXPECT_EQ(Program(6), 0u);
  EXPECT_EQ(m_output, "Display 01 (simulated): 2 of 2 banks rewritten\n");
  EXPECT_EQ(Program(6), 0u);
  EXPECT_EQ(m_output, "Display 01 (simulated): 0 of 2 banks rewritten\n");
  EXPECT_EQ(Counts(0), "0 1 1");
  EXPECT_NE(Content("journal").find("skip bank=0\nskip bank=1\nend "), std::string::npos);
}

TEST_F(CommandsTest, TheUserFlagIsWrittenWithTheFirmware) {
  std::string content = GivenFirmwareAt(0, 65536);
  m_setting->stFlagSetting.ulFlagAddr = 0x20000;
  m_setting->stFlagSetting.ulFlagLength = 3;
  std::copy_n("abc", 3, m_setting->stFlagSetting.ucFlagData);
  EXPECT_EQ(Program(5), 0u);
  EXPECT_EQ(Flash(), content + std::string(65536, '\xFF') + "abc" + std::string(65533, '\xFF'));
  EXPECT_EQ(Counts(0), "0 1 1");
  EXPECT_EQ(Counts(1), "1 0 0");
  EXPECT_EQ(Counts(2), "2 1 1");
  EXPECT_NE(Content("journal").find(" flag_addr=0x20000 flag_len=3\n"), std::string::npos);
}

TEST_F(CommandsTest, ACopyIsProgrammedBesideTheOriginal) {
  const std::string content = GivenFirmwareAt(1, 65536);
  EXPECT_EQ(Program(7), 0u);
  EXPECT_EQ(Flash().substr(65536, 65536), content);
  EXPECT_EQ(Flash().substr(129 * 65536, 65536), content);
  EXPECT_EQ(Counts(129), "129 1 1");
}

TEST_F(CommandsTest, OtherActionsProgramNothing) {
  m_host.message = nullptr;
  GivenFirmwareAt(0, 1);
  for (const std::uint32_t action : {0u, 3u, 8u, 16u, 18u, 25u, 99u}) {
    EXPECT_EQ(Program(action), 0x5A21u);
    EXPECT_EQ(m_output, "Display 01: action " + std::to_string(action) + " programs no flash\n");
  }
  EXPECT_EQ(Flash(), "");
}

TEST_F(CommandsTest, ARefusedRequestTouchesNoBank) {
  m_host.message = nullptr;
  GivenFirmwareAt(254, 2 * 65536);
  GivenEntry(256, 0, m_scratch / "fw1");
  EXPECT_EQ(Program(), 0x5A23u);
  EXPECT_EQ(m_output, "Display 01: bank 256 is outside its 256 banks\n");
  m_setting->stMapFw.ulCount = 1;
  GivenEntry(255, 0, m_scratch / "none");
  EXPECT_EQ(Program(), 0x5A24u);
  EXPECT_EQ(Flash(), "");
  EXPECT_EQ(Counts(254), "254 0 0");
  EXPECT_TRUE(g_progress.empty());
}

TEST_F(CommandsTest, ADumpIsTheRangeOfTheFlash) {
  const std::string content = GivenFirmwareAt(0, 3 * 65536);
  EXPECT_EQ(Program(), 0u);
  EXPECT_EQ(Dump(65530, 65536 + 12, m_scratch / "dump.bin"), 0u);
  EXPECT_EQ(ReadWholeFile(m_scratch / "dump.bin"), content.substr(65530, 65536 + 12));
  EXPECT_EQ(g_progress.back(), 100);
}

TEST_F(CommandsTest, ADumpReachesTheWholeFlashAndErasedBanks) {
  GivenFile(m_scratch / "dump.bin", "an older, longer dump");
  EXPECT_EQ(Dump(0xFFFFFF, 1, m_scratch / "dump.bin"), 0u);
  EXPECT_EQ(ReadWholeFile(m_scratch / "dump.bin"), "\xFF");
  EXPECT_EQ(Dump(0, 0x1000000, m_scratch / "dump.bin"), 0u);
  EXPECT_EQ(ReadWholeFile(m_scratch / "dump.bin"), std::string(16777216, '\xFF'));
}

TEST_F(CommandsTest, ADumpOutsideTheFlashMakesNoFile) {
  const std::uint32_t kOutside[][2] = {
      {0x1000000, 1}, {0xFFFFFF, 2}, {0, 0x1000001}, {0xFFFFFFFF, 0xFFFFFFFF}};
  for (const auto& [address, length] : kOutside)
    EXPECT_EQ(Dump(address, length, m_scratch / "dump.bin"), 0x5A23u);
  EXPECT_EQ(Dump(0, 0, m_scratch / "dump.bin"), 0x5A22u);
  EXPECT_FALSE(FileExists(m_scratch / "dump.bin"));
}

TEST_F(CommandsTest, ADumpFileThatCannotBeWrittenIsRefused) {
  m_host.message = nullptr;
  EXPECT_EQ(Dump(0, 1, m_scratch.Path()), 0x5A2Bu);
  EXPECT_EQ(m_output, "Display 01: cannot write " + m_scratch.Path() + ": Is a directory\n");
  EXPECT_EQ(Dump(0, 1, ""), 0x5A2Bu);
  auto& name = m_setting->stDumpFlash.wszDumpFile;
  std::fill(std::begin(name), std::end(name), L'd');
  EXPECT_EQ(Call(simulator::DumpToFile), 0x5A22u);
}

TEST_F(CommandsTest, ADumpReportsEachQuarterOfABank) {
  EXPECT_EQ(Dump(0, 65536, m_scratch / "dump.bin"), 0u);
  EXPECT_EQ(g_progress, (std::vector<int>{0, 25, 50, 75, 100}));
}

TEST_F(CommandsTest, NoPercentageIsReportedTwice) {
  GivenFirmwareAt(0, 64 * 65536);
  EXPECT_EQ(Program(), 0u);
  ASSERT_EQ(g_progress.size(), 101u);
  for (int percent = 0; percent <= 100; ++percent)
    EXPECT_EQ(g_progress[static_cast<std::size_t>(percent)], percent);
}

TEST_F(CommandsTest, ADumpOntoAFileOfADisplayIsRefused) {
  const std::string content = GivenFirmwareAt(0, 2 * 65536);
  EXPECT_EQ(Program(), 0u);
  GivenFile(m_scratch / "display-16.key", "a key");
  ASSERT_EQ(symlink(FileOf("flash").c_str(), (m_scratch / "soft.bin").c_str()), 0);
  ASSERT_EQ(link(FileOf("flash").c_str(), (m_scratch / "hard.bin").c_str()), 0);
  ASSERT_EQ(symlink("display-16.key", (m_scratch / "other.bin").c_str()), 0);
  for (const char* const name : {"display-01.flash", "soft.bin", "hard.bin", "other.bin"}) {
    EXPECT_EQ(Dump(0, 16, m_scratch / name), 0x5A2Bu) << name;
    const std::string path = m_scratch / name;
    EXPECT_EQ(g_messages.back(), L"Display 01: cannot write " +
                                     std::wstring(path.begin(), path.end()) +
                                     L": it is a file of a simulated display");
  }
  EXPECT_EQ(Flash(), content);
  EXPECT_EQ(ReadWholeFile(m_scratch / "display-16.key"), "a key");
}

TEST_F(CommandsTest, AFaultEndsADumpAtItsBank) {
  GivenFaults("fail bank=1 at=read code=0x777");
  EXPECT_EQ(Dump(0, 3 * 65536, m_scratch / "dump.bin"), 0x777u);
  EXPECT_EQ(ReadWholeFile(m_scratch / "dump.bin").size(), 65536u);
}

TEST_F(CommandsTest, TheRecordedVersionComesFromWhereTheRecordSays) {
  GivenFile(FileOf("flash"), "....V1.25");
  m_setting->stReadVersionFromFlash.ulVerAddr = 4;
  m_setting->stReadVersionFromFlash.ulTotalVerLen = 5;
  EXPECT_EQ(RecordedVersion(3), "flash 0x000004 56 31 2E 32 35\n");
  EXPECT_EQ(RecordedVersion(2), "display 1.0\n");
  GivenFile(FileOf("identity"), "version = 3.7");
  EXPECT_EQ(RecordedVersion(0), "display 3.7\n");
}

TEST_F(CommandsTest, TheVersionOfAFirmwareFileIsItsChecksum) {
  GivenEntry(0, 0, GivenFile(m_scratch / "fw", std::string(65536, 'a')));
  EXPECT_EQ(RecordedVersion(4), "firmware crc32 C32091FF\n");
  GivenEntry(1, 0, GivenFile(m_scratch / "fw2", std::string(65536, 'b')));
  EXPECT_EQ(RecordedVersion(6), "firmware crc32 C16ABCCE\n");
}

TEST_F(CommandsTest, AVersionThatCannotBeReadIsNotRecorded) {
  m_setting->enumVersionLocationType = 3;
  m_setting->stReadVersionFromFlash.ulVerAddr = 0xFFFFFF;
  m_setting->stReadVersionFromFlash.ulTotalVerLen = 2;
  EXPECT_EQ(Call(simulator::RecordVersion), 0x5A23u);
  m_setting->stReadVersionFromFlash.ulTotalVerLen = 0xFFFFFFFF;
  EXPECT_EQ(Call(simulator::RecordVersion), 0x5A23u);
  m_setting->enumVersionLocationType = 4;
  EXPECT_EQ(Call(simulator::RecordVersion), 0x5A2Cu);
  EXPECT_TRUE(StateHas("recorded_version = "));
}

TEST_F(CommandsTest, AVersionThatIsTooLongIsNotRecorded) {
  m_setting->enumVersionLocationType = 3;
  m_setting->stReadVersionFromFlash.ulTotalVerLen = 336;
  EXPECT_EQ(Call(simulator::RecordVersion), 0u);
  for (const std::uint32_t length : {337u, 1024u, 1025u, 65536u}) {
    m_setting->stReadVersionFromFlash.ulTotalVerLen = length;
    EXPECT_EQ(Call(simulator::RecordVersion), 0x5A22u) << length;
  }
  GivenFile(FileOf("identity"), "version = " + std::string(65500, 'v'));
  m_setting->enumVersionLocationType = 2;
  EXPECT_EQ(Call(simulator::RecordVersion), 0x5A22u);
  EXPECT_LT(Content("state").size(), 1200u);
  EXPECT_EQ(Call(simulator::ResetMcu), 0u);
}

TEST_F(CommandsTest, WhatChangesTheStateIsNotedBeforeIt) {
  EXPECT_EQ(Call(simulator::RecordVersion), 0u);
  m_setting->enumEdpIspMode = 1;
  EXPECT_EQ(Call(simulator::ProgramEeprom), 0u);
  const std::string journal = Content("journal");
  EXPECT_NE(journal.find("\nwrite version\nend n=1 code=0x0\n"), std::string::npos) << journal;
  EXPECT_NE(journal.find("\nwrite eeprom\nend n=2 code=0x0\n"), std::string::npos) << journal;
}

TEST_F(CommandsTest, IspModeLastsUntilTheReset) {
  EXPECT_EQ(Call(simulator::EnterIspMode), 0u);
  EXPECT_TRUE(StateHas("mode = isp"));
  EXPECT_EQ(Call(simulator::ReadScalerType), 1u);
  EXPECT_TRUE(StateHas("mode = isp"));
  EXPECT_EQ(Call(simulator::ResetMcu), 0u);
  EXPECT_TRUE(StateHas("mode = normal"));
  EXPECT_TRUE(StateHas("resets = 1"));
}

TEST_F(CommandsTest, TheEepromCountsItsProgrammings) {
  m_setting->enumEdpIspMode = 1;
  EXPECT_EQ(Call(simulator::ProgramEeprom), 0u);
  EXPECT_EQ(Call(simulator::ProgramEeprom), 0u);
  m_setting->enumEdpIspMode = 2;
  EXPECT_EQ(Call(simulator::ProgramEeprom), 0u);
  EXPECT_EQ(g_messages.back(), L"Display 01 (simulated): e-DP EEPROM version: 2");
  m_setting->enumEdpIspMode = 0;
  EXPECT_EQ(Call(simulator::ProgramEeprom), 0x5A21u);
}

TEST_F(CommandsTest, TheDisplayAnswersWhatItsIdentitySays) {
  EXPECT_EQ(Call(simulator::SayUserInfo), 0u);
  EXPECT_EQ(g_messages.back(),
            L"Display 01 (simulated): User-defined information: simulated display");
  GivenFile(FileOf("identity"), "user_info = line 4\nscaler_type = 77\n");
  EXPECT_EQ(Call(simulator::SayUserInfo), 0u);
  EXPECT_EQ(g_messages.back(), L"Display 01 (simulated): User-defined information: line 4");
  EXPECT_EQ(Call(simulator::ReadScalerType), 77u);
  EXPECT_EQ(m_output, "");
}

}  // namespace
