// SPDX-License-Identifier: MIT
#include "display/program_plan.h"

#include "display_fixture.h"

namespace {

class ProgramPlanTest : public DisplayTest {
 protected:
  simulator::Outcome Plan(std::uint32_t action = 4) {
    m_setting->enumActionType = action;
    m_plan.clear();
    std::unique_ptr<simulator::Display> display;
    EXPECT_TRUE(simulator::Display::Open(1, display).Ok());
    return simulator::PlanProgramming(*display, *m_setting, m_plan);
  }
  std::string BytesOf(std::size_t job) const {
    return {m_plan[job].bytes.begin(), m_plan[job].bytes.end()};
  }
  // The planned banks, each with "?" when it is skipped if it holds its bytes already.
  std::string Banks() const {
    std::string banks;
    for (const simulator::BankJob& job : m_plan)
      banks += std::to_string(job.bank) + (job.only_if_different ? "? " : " ");
    return banks;
  }
  void GivenFlag(std::uint32_t address, const std::string& bytes) {
    m_setting->stFlagSetting.ulFlagAddr = address;
    m_setting->stFlagSetting.ulFlagLength = static_cast<std::uint32_t>(bytes.size());
    std::copy(bytes.begin(), bytes.end(), m_setting->stFlagSetting.ucFlagData);
  }

  simulator::ProgramPlan m_plan;
};

TEST_F(ProgramPlanTest, EachEntryBecomesABankInOrder) {
  const std::string content = GivenFirmwareAt(10, 2 * 65536 + 1);
  ASSERT_TRUE(Plan().Ok());
  EXPECT_EQ(Banks(), "10 11 12 ");
  EXPECT_EQ(BytesOf(1), content.substr(65536, 65536));
  EXPECT_EQ(BytesOf(2), content.substr(131072) + std::string(65535, '\xFF'));
}

TEST_F(ProgramPlanTest, AFullFlashCanBePlanned) {
  GivenFirmwareAt(0, 16777216);
  ASSERT_TRUE(Plan().Ok());
  EXPECT_EQ(m_plan.size(), 256u);
}

TEST_F(ProgramPlanTest, AnEmptyMapIsRefused) {
  const auto outcome = Plan();
  EXPECT_EQ(outcome.code, 0x5A2Cu);
  EXPECT_EQ(outcome.why, "the firmware map is empty, nothing to program");
}

TEST_F(ProgramPlanTest, ACountBeyondTheMapIsRefusedBeforeAnyEntryIsRead) {
  for (const std::uint32_t count : {257u, 0xFFFFFFFFu}) {
    m_setting->stMapFw.ulCount = count;
    const auto outcome = Plan();
    EXPECT_EQ(outcome.code, 0x5A22u);
    EXPECT_EQ(outcome.why, "the firmware map claims " + std::to_string(count) + " banks");
  }
}

TEST_F(ProgramPlanTest, ATargetOutsideTheFlashIsRefused) {
  GivenFirmwareAt(255, 2 * 65536);
  const auto outcome = Plan();
  EXPECT_EQ(outcome.code, 0x5A23u);
  EXPECT_EQ(outcome.why, "bank 256 is outside its 256 banks");
}

TEST_F(ProgramPlanTest, TargetsThatDoNotAscendAreRefused) {
  for (const std::uint32_t second : {4u, 5u}) {
    m_setting->stMapFw.ulCount = 0;
    GivenFirmwareAt(5, 1);
    GivenFirmwareAt(second, 1);
    const auto outcome = Plan();
    EXPECT_EQ(outcome.code, 0x5A22u);
    EXPECT_EQ(outcome.why, "the firmware map does not ascend");
  }
}

TEST_F(ProgramPlanTest, APathThatIsNotEndedIsRefused) {
  GivenFirmwareAt(0, 65537);
  auto& path = m_setting->stMapFw.stBank[1].wszPath;
  std::fill(std::begin(path), std::end(path), L'p');
  const auto outcome = Plan();
  EXPECT_EQ(outcome.code, 0x5A22u);
  EXPECT_EQ(outcome.why, "the path of entry 1 is not a text");
}

TEST_F(ProgramPlanTest, AFileThatIsNotThereOrTooShortIsRefused) {
  GivenEntry(0, 0, m_scratch / "none");
  EXPECT_EQ(Plan().code, 0x5A24u);
  m_setting->stMapFw.ulCount = 0;
  GivenEntry(0, 1, GivenFile(m_scratch / "short", "x"));
  EXPECT_EQ(Plan().code, 0x5A25u);
}

TEST_F(ProgramPlanTest, APathOutsideAsciiNamesItsUtf8File) {
  GivenFile(m_scratch / "\xC3\xBC\xF0\x9F\x93\xBA.bin", "tv");
  GivenEntry(0, 0, "");
  std::swprintf(m_setting->stMapFw.stBank[0].wszPath, 260, L"%s/\x00FC\x0001F4FA.bin",
                m_scratch.Path().c_str());
  ASSERT_TRUE(Plan().Ok());
  EXPECT_EQ(BytesOf(0).substr(0, 3), "tv\xFF");
}

TEST_F(ProgramPlanTest, ADifferentialRunMaySkipEveryBank) {
  GivenFirmwareAt(3, 65537);
  ASSERT_TRUE(Plan(6).Ok());
  EXPECT_EQ(Banks(), "3? 4? ");
}

TEST_F(ProgramPlanTest, ACopyLies128BanksAbove) {
  const std::string content = GivenFirmwareAt(126, 2 * 65536);
  ASSERT_TRUE(Plan(7).Ok());
  EXPECT_EQ(Banks(), "126 127 254 255 ");
  EXPECT_EQ(BytesOf(3), content.substr(65536));
}

TEST_F(ProgramPlanTest, ACopyWithoutRoomIsRefused) {
  GivenFirmwareAt(127, 2 * 65536);
  const auto outcome = Plan(7);
  EXPECT_EQ(outcome.code, 0x5A23u);
  EXPECT_EQ(outcome.why, "bank 128 leaves no room for its copy");
}

TEST_F(ProgramPlanTest, TheUserFlagLiesOverTheFirmware) {
  const std::string content = GivenFirmwareAt(0, 65536);
  GivenFlag(0x10, "FLAG");
  ASSERT_TRUE(Plan(5).Ok());
  EXPECT_EQ(Banks(), "0 ");
  EXPECT_EQ(BytesOf(0), content.substr(0, 16) + "FLAG" + content.substr(20));
}

TEST_F(ProgramPlanTest, TheUserFlagElsewhereKeepsWhatTheDisplayHolds) {
  GivenFile(FileOf("flash"), "abcdefgh");
  GivenFirmwareAt(2, 1);
  GivenFlag(2, "XY");
  ASSERT_TRUE(Plan(5).Ok());
  EXPECT_EQ(Banks(), "0? 2 ");
  EXPECT_EQ(BytesOf(0).substr(0, 9), "abXYefgh\xFF");
}

TEST_F(ProgramPlanTest, TheUserFlagMayCrossABankBoundary) {
  GivenFirmwareAt(0, 1);
  GivenFlag(2 * 65536 - 1, "XY");
  ASSERT_TRUE(Plan(5).Ok());
  EXPECT_EQ(Banks(), "0 1? 2? ");
  EXPECT_EQ(BytesOf(1).back(), 'X');
  EXPECT_EQ(BytesOf(2).front(), 'Y');
}

TEST_F(ProgramPlanTest, TheUserFlagMayEndWithTheFlashButNotBeyond) {
  GivenFirmwareAt(0, 1);
  GivenFlag(16777214, "XY");
  EXPECT_TRUE(Plan(5).Ok());
  for (const std::uint32_t address : {16777215u, 16777217u, 0xFFFFFFFFu}) {
    GivenFlag(address, "XY");
    EXPECT_EQ(Plan(5).code, 0x5A23u) << address;
  }
}

TEST_F(ProgramPlanTest, AUserFlagLongerThanItsFieldIsRefused) {
  GivenFirmwareAt(0, 1);
  m_setting->stFlagSetting.ulFlagLength = 1221;
  const auto outcome = Plan(5);
  EXPECT_EQ(outcome.code, 0x5A22u);
  EXPECT_EQ(outcome.why, "the user flag claims 1221 bytes");
}

TEST_F(ProgramPlanTest, OtherActionsLeaveTheUserFlagAlone) {
  GivenFirmwareAt(0, 1);
  GivenFlag(5 * 65536, "XY");
  ASSERT_TRUE(Plan(4).Ok());
  EXPECT_EQ(Banks(), "0 ");
}

}  // namespace
