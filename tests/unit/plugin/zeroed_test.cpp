// SPDX-License-Identifier: MIT
#include "plugin/zeroed.h"

#include <cstring>

#include "plugin/command_setting.h"
#include "plugin/digital_sign_args.h"

#include <gtest/gtest.h>

namespace {

using Setting = STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING;
using SignArgs = STRUCT_C_STYLE_CP_DIGITAL_SIGN_ARGS;

constexpr std::size_t kSettingBytes = 275328;

// Where the bank entries stand.
constexpr std::size_t kFirstBank = 72 + 1032;
constexpr std::size_t kBankBytes = 1056;
constexpr std::size_t kBehindBanks = 271440;

ZeroedPtr<Setting> SettingFullOf(int byte, std::uint32_t entries) {
  auto setting = MakeZeroed<Setting>();
  std::memset(static_cast<void*>(setting.get()), byte, kSettingBytes);
  setting->stMapFw.ulCount = entries;
  return setting;
}

unsigned char ByteOf(const Setting& setting, std::size_t at) {
  return reinterpret_cast<const unsigned char*>(&setting)[at];
}

TEST(Zeroed, ASettingHasTheBytesThatItsConstructorGivesOverZeros) {
  void* const memory = std::calloc(1, sizeof(Setting));
  ASSERT_NE(memory, nullptr);
  const ZeroedPtr<Setting> constructed(::new (memory) Setting);
  EXPECT_EQ(std::memcmp(MakeZeroed<Setting>().get(), constructed.get(), kSettingBytes), 0);
}

TEST(Zeroed, CopyBytesCopiesEveryByte) {
  const auto from = SettingFullOf(0x5A, 0x5A5A5A5A);
  const auto to = MakeZeroed<Setting>();
  CopyBytes(*to, *from);
  EXPECT_EQ(std::memcmp(to.get(), from.get(), kSettingBytes), 0);
}

TEST(Zeroed, CopyOntoFreshCopiesEveryByteOfAFullMapWhateverItsCount) {
  for (const std::uint32_t entries : {256u, 257u, 0xFFFFFFFFu}) {
    const auto from = SettingFullOf(0x5A, entries);
    const auto to = MakeZeroed<Setting>();
    CopyOntoFresh(*to, *from);
    EXPECT_EQ(std::memcmp(to.get(), from.get(), kSettingBytes), 0) << entries;
  }
}

TEST(Zeroed, CopyOntoFreshLeavesTheUnusedBankEntriesOut) {
  for (const std::uint32_t entries : {0u, 1u, 2u, 255u}) {
    const auto from = SettingFullOf(0x5A, entries);
    const auto to = MakeZeroed<Setting>();
    CopyOntoFresh(*to, *from);
    const std::size_t unused = kFirstBank + entries * kBankBytes;
    EXPECT_EQ(std::memcmp(to.get(), from.get(), unused), 0) << entries;
    for (std::size_t at = unused; at < kBehindBanks; ++at)
      ASSERT_EQ(ByteOf(*to, at), 0) << entries << " entries, byte " << at;
    for (std::size_t at = kBehindBanks; at < kSettingBytes; ++at)
      ASSERT_EQ(ByteOf(*to, at), 0x5A) << entries << " entries, byte " << at;
  }
}

TEST(Zeroed, AHolderConstructsASignatureRecordWithoutAStaleByte) {
  const Zeroed<SignArgs> args;
  const auto* const bytes = reinterpret_cast<const unsigned char*>(&*args);
  for (std::size_t at = 0; at < 1840; ++at)
    ASSERT_EQ(bytes[at], 0) << at;
}

}  // namespace
