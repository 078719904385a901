// SPDX-License-Identifier: MIT
#include "plugin/fresh_setting.h"

#include <cstring>

#include "plugin/command_setting.h"
#include "support/record_offsets.h"

#include <gtest/gtest.h>

using namespace zvisp;

namespace {

using Setting = STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING;

constexpr std::size_t kAfterBanks = setting_at::ulFlagLength;

ZeroedPtr<Setting> SettingFullOf(int byte, std::uint32_t entries) {
  auto setting = MakeZeroed<Setting>();
  std::memset(static_cast<void*>(setting.get()), byte, setting_at::kRecordBytes);
  setting->stMapFw.ulCount = entries;
  return setting;
}

unsigned char ByteOf(const Setting& setting, std::size_t at) {
  return reinterpret_cast<const unsigned char*>(&setting)[at];
}

TEST(FreshSetting, HasTheBytesThatTheConstructorGivesOverZeros) {
  EXPECT_EQ(
      std::memcmp(MakeFreshSetting().get(), MakeZeroed<Setting>().get(), setting_at::kRecordBytes),
      0);
}

TEST(FreshSetting, ACopyHasEveryByteOfAFullMapWhateverItsCount) {
  for (const std::uint32_t entries : {256u, 257u, 0xFFFFFFFFu}) {
    const auto from = SettingFullOf(0x5A, entries);
    EXPECT_EQ(std::memcmp(MakeFreshCopy(*from).get(), from.get(), setting_at::kRecordBytes), 0)
        << entries;
  }
}

TEST(FreshSetting, ACopyHasZerosInTheUnusedBankEntries) {
  for (const std::uint32_t entries : {0u, 1u, 2u, 255u}) {
    const auto from = SettingFullOf(0x5A, entries);
    const auto copy = MakeFreshCopy(*from);
    const std::size_t unused = setting_at::stBank + entries * setting_at::kEntryBytes;
    EXPECT_EQ(std::memcmp(copy.get(), from.get(), unused), 0) << entries;
    for (std::size_t at = unused; at < kAfterBanks; ++at)
      ASSERT_EQ(ByteOf(*copy, at), 0) << entries << " entries, byte " << at;
    for (std::size_t at = kAfterBanks; at < setting_at::kRecordBytes; ++at)
      ASSERT_EQ(ByteOf(*copy, at), 0x5A) << entries << " entries, byte " << at;
  }
}

}  // namespace
