// SPDX-License-Identifier: MIT
//
// What a plan holds of a judged record.
#include "line/job/plan.h"

#include "base/transform.h"
#include "firmware/bank_map.h"
#include "plugin/zeroed.h"
#include "support/files.h"
#include "support/scratch_dir.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace line {
namespace {

constexpr const char* kOfFileA = "935bf57d7f52181f095c3a3484b68e542037e287f7cde4ffe8a32896d428a1b1";
constexpr const char* kOfBankOfA =
    "bf718b6f653bebc184e1479f1935b8da974d701b893afcf49e701f3e2f9f9c5a";
constexpr const char* kOfB = "3e23e8160039594a33894f6564e1b1348bbd7a0088d42c4acb73eeaed59c009d";

class PlanTest : public testing::Test {
 protected:
  PlanTest() { m_judged.setting = zvisp::MakeZeroed<STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING>(); }

  // As the command line and judgement leave it.
  void GivenSlot(unsigned int slot, const std::string& typed, unsigned int start_bank,
                 unsigned int banks, const std::string& read) {
    const CCpTransform transform;
    m_judged.slots[slot].strFwPath = transform.ConvertUTF8StringToUnicode(typed);
    m_judged.slots[slot].ulBank = start_bank;
    for (unsigned int i = 0; i < banks; ++i) {
      m_map[start_bank + i].ulBank = i;
      m_map[start_bank + i].strFwPath = transform.ConvertUTF8StringToUnicode(read);
    }
    CopyMapFwToCStyleStruct(m_judged.setting->stMapFw, m_map);
  }

  std::optional<PlanEvent> Plan() {
    return MakePlan(ScanOptions({"--isp", "--fw1", "a"}), m_judged, m_error);
  }

  ScratchDir m_directory;
  JudgedWords m_judged;
  zvisp::FwBankMap m_map;
  std::string m_error;
};

TEST_F(PlanTest, HashesFilesAndTheirBanks) {
  const std::string a = GivenFile(m_directory / "a", std::string(65536, 'a') + "b");
  const std::string b = GivenFile(m_directory / "b", "b");
  GivenSlot(1, a, 300, 2, a);
  GivenSlot(2, b, 7, 1, b);
  const auto plan = Plan();
  ASSERT_TRUE(plan.has_value()) << m_error;
  EXPECT_EQ(plan->action, "isp");
  ASSERT_EQ(plan->files.size(), 2u);
  EXPECT_EQ(plan->files[0].path, a);
  EXPECT_EQ(plan->files[0].bytes, 65537u);
  EXPECT_EQ(plan->files[0].start_bank, 300u);
  EXPECT_EQ(plan->files[0].sha256, kOfFileA);
  ASSERT_EQ(plan->banks.size(), 3u);
  EXPECT_EQ(plan->banks[0].target, 7u);
  EXPECT_EQ(plan->banks[0].slot, 2u);
  EXPECT_EQ(plan->banks[0].sha256, kOfB);
  EXPECT_EQ(plan->banks[1].target, 300u);
  EXPECT_EQ(plan->banks[1].bytes, 65536u);
  EXPECT_EQ(plan->banks[1].sha256, kOfBankOfA);
  EXPECT_EQ(plan->banks[2].file_bank, 1u);
  EXPECT_EQ(plan->banks[2].bytes, 1u);
  EXPECT_EQ(plan->banks[2].sha256, kOfB);
  ASSERT_EQ(plan->warnings.size(), 1u);
  EXPECT_EQ(plan->warnings[0].id, "high-bank");
}

TEST_F(PlanTest, ReadsThePrivateCopyAndShowsTheFile) {
  const std::string copy = GivenFile(m_directory / "copy", "b");
  GivenSlot(1, "/typed/a", 0, 1, copy);
  const auto plan = Plan();
  ASSERT_TRUE(plan.has_value()) << m_error;
  EXPECT_EQ(plan->files[0].path, "/typed/a");
  EXPECT_EQ(plan->files[0].sha256, kOfB);
  EXPECT_THAT(plan->warnings, testing::IsEmpty());
}

TEST_F(PlanTest, WarnsOfFilesWithTheSameContent) {
  const std::string b = GivenFile(m_directory / "b", "b");
  GivenSlot(1, b, 0, 1, b);
  GivenSlot(2, b, 1, 1, b);
  const auto plan = Plan();
  ASSERT_TRUE(plan.has_value());
  ASSERT_EQ(plan->warnings.size(), 1u);
  EXPECT_EQ(plan->warnings[0].text, "The files of slots 1 and 2 have the same content.");
}

TEST_F(PlanTest, AFileThatIsGoneIsASentence) {
  GivenSlot(1, "/typed/a", 0, 1, m_directory / "gone");
  EXPECT_FALSE(Plan().has_value());
  EXPECT_EQ(m_error, "The firmware file /typed/a cannot be read any more; check it and try again.");
}

}  // namespace
}  // namespace line
