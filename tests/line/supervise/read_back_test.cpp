// SPDX-License-Identifier: MIT
#include "line/supervise/read_back.h"

#include "plugin/fresh_setting.h"
#include "support/files.h"
#include "support/scratch_dir.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace zvisp;

namespace line {
namespace {

using testing::HasSubstr;

TEST(AddressRangeText, IsTwoNumbersWithADash) {
  const struct {
    const char* text;
    bool good;
  } kCases[] = {
      {"0-0", true},     {"0x1F0000-0x1FFFFF", true},
      {"1-0x10", true},  {"2-1", false},
      {"", false},       {"5", false},
      {"5-", false},     {"-5", false},
      {"0x-0x5", false}, {"1-2x", false},
      {"1 -2", false},   {"0-0x100000000", false},
      {"a-b", false},    {"0-0xFFFFFFFF", true},
  };
  for (const auto& test : kCases) {
    EXPECT_EQ(ParseAddressRange(test.text).has_value(), test.good) << test.text;
  }
  EXPECT_EQ(ParseAddressRange("0x10-32")->first, 16u);
  EXPECT_EQ(ParseAddressRange("0x10-32")->last, 32u);
}

class ReadBackPlan : public testing::Test {
 protected:
  ReadBackPlan() : m_setting(MakeFreshSetting()) { m_setting->enumActionType = 4; }

  void GivenBank(std::uint32_t target, std::uint32_t file_bank) {
    const std::string path = m_scratch / "fw.bin";
    STRUCT_C_STYLE_MAP_FW& map = m_setting->stMapFw;
    map.ulTargetBank[map.ulCount] = target;
    map.stBank[map.ulCount].ulFileBank = file_bank;
    std::copy(path.begin(), path.end(), map.stBank[map.ulCount].wszPath);
    ++map.ulCount;
  }
  bool Plan(const std::vector<AddressRange>& ignored = {}) {
    return m_read_back.Plan(*m_setting, ignored, m_error);
  }
  // "address+length" of each range.
  std::string Ranges() const {
    std::string text;
    for (const ReadBack::Range& range : m_read_back.Ranges()) {
      text += std::to_string(range.address) + "+" + std::to_string(range.length) + " ";
    }
    return text;
  }

  ScratchDir m_scratch;
  ZeroedPtr<STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING> m_setting;
  ReadBack m_read_back;
  std::string m_error;
};

TEST_F(ReadBackPlan, BanksThatFollowEachOtherAreOneRange) {
  GivenFirmware(m_scratch / "fw.bin", 2 * 65536 + 5);
  GivenBank(1, 0);
  GivenBank(2, 1);
  GivenBank(9, 2);
  ASSERT_TRUE(Plan());
  EXPECT_EQ(Ranges(), "65536+131072 589824+5 ");
}

TEST_F(ReadBackPlan, AnIgnoredRangeSplitsARange) {
  GivenFirmware(m_scratch / "fw.bin", 65536);
  GivenBank(0, 0);
  ASSERT_TRUE(Plan({{10, 19}, {65535, 0xFFFFFFFF}}));
  EXPECT_EQ(Ranges(), "0+10 20+65515 ");
}

TEST_F(ReadBackPlan, NothingLeftToCompareIsRefused) {
  GivenFirmware(m_scratch / "fw.bin", 10);
  GivenBank(0, 0);
  EXPECT_FALSE(Plan({{0, 9}}));
  EXPECT_THAT(m_error, HasSubstr("to be ignored"));
}

TEST_F(ReadBackPlan, AFileThatIsMissingIsRefused) {
  GivenBank(0, 0);
  EXPECT_FALSE(Plan());
  EXPECT_THAT(m_error, HasSubstr("fw.bin cannot be read"));
}

TEST_F(ReadBackPlan, ADumpIsComparedWithTheFileAndTheFlag) {
  GivenFile(m_scratch / "fw.bin", std::string(100, 'f'));
  GivenBank(0, 0);
  m_setting->enumActionType = 5;
  m_setting->stFlagSetting.ulFlagAddr = 98;
  m_setting->stFlagSetting.ulFlagLength = 4;
  for (int i = 0; i < 4; ++i) {
    m_setting->stFlagSetting.ucFlagData[i] = 'g';
  }
  ASSERT_TRUE(Plan());
  EXPECT_EQ(Ranges(), "0+102 ");
  const ReadBack::Range range = m_read_back.Ranges()[0];
  const std::string same = std::string(98, 'f') + "gggg";
  const auto equal = m_read_back.Compare(range, GivenFile(m_scratch / "dump", same));
  EXPECT_EQ(equal.compared_bytes, 102u);
  EXPECT_FALSE(equal.difference);
  const auto differs =
      m_read_back.Compare(range, GivenFile(m_scratch / "dump", std::string(98, 'f') + "gfgg"));
  ASSERT_TRUE(differs.difference);
  EXPECT_EQ(differs.difference->address, 99u);
  EXPECT_EQ(differs.difference->bank, 0u);
  EXPECT_EQ(differs.difference->expected, 'g');
  EXPECT_EQ(differs.difference->actual, 'f');
  const auto truncated = m_read_back.Compare(range, GivenFile(m_scratch / "dump", "fff"));
  EXPECT_THAT(truncated.failure, HasSubstr("fewer bytes"));
}

}  // namespace
}  // namespace line
