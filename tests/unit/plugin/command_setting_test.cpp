// SPDX-License-Identifier: MIT
#include "plugin/command_setting.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <memory>
#include <new>

#include "plugin/zeroed.h"

#include <gtest/gtest.h>

namespace {

using Setting = STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING;

constexpr std::size_t kRecordBytes = 275328;

// A record constructed over memory that was filled with one byte.
class RecordOver {
 public:
  explicit RecordOver(unsigned char fill) : m_memory(new std::uint64_t[kRecordBytes / 8]) {
    std::memset(m_memory.get(), fill, kRecordBytes);
    m_record = ::new (static_cast<void*>(m_memory.get())) Setting;
  }
  Setting* operator->() { return m_record; }
  std::uint32_t Word(std::size_t offset) const {
    std::uint32_t word = 0;
    std::memcpy(&word, Bytes() + offset, sizeof word);
    return word;
  }
  unsigned char Byte(std::size_t offset) const { return Bytes()[offset]; }

 private:
  const unsigned char* Bytes() const {
    return reinterpret_cast<const unsigned char*>(m_memory.get());
  }
  std::unique_ptr<std::uint64_t[]> m_memory;
  Setting* m_record;
};

TEST(CommandSetting, ConstructionSetsTheStatedDefaults) {
  RecordOver record(0xEE);
  for (const std::size_t zero_at : {0, 4, 12, 16, 24, 28, 40, 44, 48, 52, 56, 60, 64, 72}) {
    EXPECT_EQ(record.Word(zero_at), 0u) << "offset " << zero_at;
  }
  EXPECT_EQ(record.Word(32), 0xFFFFFFFFu);
  EXPECT_EQ(record.Byte(36), 0x94);
}

TEST(CommandSetting, ConstructionLeavesTheModesAndThePaddingAsTheMemoryWas) {
  RecordOver record(0xEE);
  for (const std::size_t untouched_at : {8, 20, 68}) {
    EXPECT_EQ(record.Word(untouched_at), 0xEEEEEEEEu) << "offset " << untouched_at;
  }
  EXPECT_EQ(record.Byte(37), 0xEE);
}

TEST(CommandSetting, ConstructionClearsOnlyTheFirst64TargetBanks) {
  RecordOver record(0xEE);
  for (std::size_t i = 0; i < 256; ++i) {
    EXPECT_EQ(record.Word(76 + 4 * i), i < 64 ? 0u : 0xEEEEEEEEu) << "entry " << i;
  }
}

TEST(CommandSetting, ConstructionZeroesEveryBankEntry) {
  RecordOver record(0xEE);
  for (std::size_t entry = 0; entry < 256; ++entry) {
    const std::size_t start = 72 + 1032 + entry * 1056;
    for (std::size_t i = 0; i < 1052; ++i) {
      ASSERT_EQ(record.Byte(start + i), 0) << "entry " << entry << " byte " << i;
    }
    EXPECT_EQ(record.Word(start + 1052), 0xEEEEEEEEu) << "the padding of entry " << entry;
  }
}

TEST(CommandSetting, ConstructionFillsTheUserFlagWithOnes) {
  RecordOver record(0x11);
  EXPECT_EQ(record.Word(271440), 0u);
  for (std::size_t i = 0; i < 1220; ++i)
    ASSERT_EQ(record.Byte(271444 + i), 0xFF) << i;
  EXPECT_EQ(record.Word(271440 + 1224), 0u);
  EXPECT_EQ(record.Word(271440 + 1228), 0u);
}

TEST(CommandSetting, ConstructionSetsTheI2cBytesToOnesAndTheLengthToOne) {
  RecordOver record(0x11);
  EXPECT_EQ(record.Byte(273744), 0xFF);
  EXPECT_EQ(record.Byte(273745), 0xFF);
  EXPECT_EQ(record.Byte(273746), 1);
  for (std::size_t i = 0; i < 256; ++i)
    ASSERT_EQ(record.Byte(273747 + i), 0xFF) << i;
  EXPECT_EQ(record.Word(274004), 0u);
}

TEST(CommandSetting, ConstructionZeroesTheRemainingSubRecordsAndTexts) {
  RecordOver record(0x11);
  for (std::size_t at = 272672; at < 273744; ++at)
    ASSERT_EQ(record.Byte(at), 0) << at;
  for (std::size_t at = 274008; at < 275328; ++at)
    ASSERT_EQ(record.Byte(at), 0) << at;
}

TEST(CommandSetting, ClearMapFwClearsAllTargetBanksAndEveryReservedWord) {
  RecordOver record(0);
  record->stMapFw.ulCount = 256;
  for (std::uint32_t i = 0; i < 256; ++i) {
    record->stMapFw.ulTargetBank[i] = i + 1;
    record->stMapFw.stBank[i].ulReserved = 7;
  }
  record->ClearMapFW();
  EXPECT_EQ(record->stMapFw.ulCount, 0u);
  for (std::size_t i = 0; i < 256; ++i) {
    EXPECT_EQ(record.Word(76 + 4 * i), 0u) << i;
    EXPECT_EQ(record->stMapFw.stBank[i].ulReserved, 0u) << i;
  }
}

TEST(CommandSetting, ClearMapFwTakesTheFileFromTheFirstEntryOnly) {
  RecordOver record(0);
  for (auto& bank : record->stMapFw.stBank) {
    bank.ulFileBank = 9;
    std::fill(std::begin(bank.wszPath), std::end(bank.wszPath), L'p');
  }
  record->ClearMapFW();
  EXPECT_EQ(record->stMapFw.stBank[0].ulFileBank, 0u);
  for (const wchar_t unit : record->stMapFw.stBank[0].wszPath)
    ASSERT_EQ(unit, L'\0');
  for (std::size_t i = 1; i < 256; ++i) {
    EXPECT_EQ(record->stMapFw.stBank[i].ulFileBank, 9u) << i;
    EXPECT_EQ(record->stMapFw.stBank[i].wszPath[259], L'p') << i;
  }
}

TEST(CommandSetting, AZeroedRecordHasTheSameBytesEveryTime) {
  const auto first = MakeZeroed<Setting>();
  const auto second = std::make_unique<Zeroed<Setting>>();
  ASSERT_NE(first, nullptr);
  EXPECT_EQ(std::memcmp(first.get(), &**second, kRecordBytes), 0);
  EXPECT_EQ(first->enumSWDigitalSignatureMode, 0u);
  EXPECT_EQ(first->enumMergeFwInfoType, 0u);
  EXPECT_EQ(first->stMapFw.ulTargetBank[255], 0u);
}

}  // namespace
