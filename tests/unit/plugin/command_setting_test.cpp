// SPDX-License-Identifier: MIT
#include "plugin/command_setting.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <memory>
#include <new>

#include "plugin/zeroed.h"
#include "support/record_offsets.h"

#include <gtest/gtest.h>

using namespace zvisp;

namespace {

using Setting = STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING;

// A record constructed over memory that was filled with one byte.
class RecordOver {
 public:
  explicit RecordOver(unsigned char fill)
      : m_memory(new std::uint64_t[setting_at::kRecordBytes / 8]) {
    std::memset(m_memory.get(), fill, setting_at::kRecordBytes);
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
  for (const std::size_t zero_at :
       {setting_at::enumActionType, setting_at::enumDigitalSignatureType,
        setting_at::enumVersionLocationType, setting_at::enumUserDefinedVersionType,
        setting_at::enumCommID, setting_at::enumEdpIspMode, setting_at::bSearchFw,
        setting_at::bCompareVer, setting_at::bIspChannel, setting_at::enumBootCodeType,
        setting_at::enumIspMode, setting_at::ulReserved, setting_at::ulProgStartBank,
        setting_at::ulCount}) {
    EXPECT_EQ(record.Word(zero_at), 0u) << "offset " << zero_at;
  }
  EXPECT_EQ(record.Word(setting_at::bAutoSlaveAddr), 0xFFFFFFFFu);
  EXPECT_EQ(record.Byte(setting_at::ucSlaveAddr), 0x94);
}

TEST(CommandSetting, ConstructionLeavesTheModesAndThePaddingAsTheMemoryWas) {
  RecordOver record(0xEE);
  for (const std::size_t untouched_at : {setting_at::enumSWDigitalSignatureMode,
                                         setting_at::enumMergeFwInfoType, setting_at::padding}) {
    EXPECT_EQ(record.Word(untouched_at), 0xEEEEEEEEu) << "offset " << untouched_at;
  }
  EXPECT_EQ(record.Byte(setting_at::ucSlaveAddr + 1), 0xEE);
}

TEST(CommandSetting, ConstructionClearsOnlyTheFirst64TargetBanks) {
  RecordOver record(0xEE);
  for (std::size_t i = 0; i < 256; ++i) {
    EXPECT_EQ(record.Word(setting_at::ulTargetBank + 4 * i), i < 64 ? 0u : 0xEEEEEEEEu)
        << "entry " << i;
  }
}

TEST(CommandSetting, ConstructionZeroesEveryBankEntry) {
  RecordOver record(0xEE);
  for (std::size_t entry = 0; entry < 256; ++entry) {
    const std::size_t start = setting_at::stBank + entry * setting_at::kEntryBytes;
    for (std::size_t i = 0; i < 1052; ++i) {
      ASSERT_EQ(record.Byte(start + i), 0) << "entry " << entry << " byte " << i;
    }
    EXPECT_EQ(record.Word(start + 1052), 0xEEEEEEEEu) << "the padding of entry " << entry;
  }
}

TEST(CommandSetting, ConstructionFillsTheUserFlagWithOnes) {
  RecordOver record(0x11);
  EXPECT_EQ(record.Word(setting_at::ulFlagLength), 0u);
  for (std::size_t i = 0; i < 1220; ++i)
    ASSERT_EQ(record.Byte(setting_at::ucFlagData + i), 0xFF) << i;
  EXPECT_EQ(record.Word(setting_at::ulFlagAddr), 0u);
  EXPECT_EQ(record.Word(setting_at::ulFlagReserved), 0u);
}

TEST(CommandSetting, ConstructionSetsTheI2cBytesToOnesAndTheLengthToOne) {
  RecordOver record(0x11);
  EXPECT_EQ(record.Byte(setting_at::ucSlave), 0xFF);
  EXPECT_EQ(record.Byte(setting_at::ucSubAddr), 0xFF);
  EXPECT_EQ(record.Byte(setting_at::ucDataLen), 1);
  for (std::size_t i = 0; i < 256; ++i)
    ASSERT_EQ(record.Byte(setting_at::ucData + i), 0xFF) << i;
  EXPECT_EQ(record.Word(setting_at::bDdcciCmd), 0u);
}

TEST(CommandSetting, ConstructionZeroesTheRemainingSubRecordsAndTexts) {
  RecordOver record(0x11);
  for (std::size_t at = setting_at::enumRecordVerMode; at < setting_at::ucSlave; ++at)
    ASSERT_EQ(record.Byte(at), 0) << at;
  for (std::size_t at = setting_at::wszSettingFilePath; at < setting_at::kRecordBytes; ++at)
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
    EXPECT_EQ(record.Word(setting_at::ulTargetBank + 4 * i), 0u) << i;
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
  EXPECT_EQ(std::memcmp(first.get(), &**second, setting_at::kRecordBytes), 0);
  EXPECT_EQ(first->enumSWDigitalSignatureMode, 0u);
  EXPECT_EQ(first->enumMergeFwInfoType, 0u);
  EXPECT_EQ(first->stMapFw.ulTargetBank[255], 0u);
}

}  // namespace
