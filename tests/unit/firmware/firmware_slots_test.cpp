// SPDX-License-Identifier: MIT
#include "firmware/firmware_slots.h"

#include <sys/stat.h>

#include <cstdint>
#include <string>
#include <utility>

#include "plugin/zeroed.h"
#include "support/files.h"
#include "support/printed.h"
#include "support/scratch_dir.h"

#include <gtest/gtest.h>

using namespace zvisp;

namespace {

// The slots of a command line and the files that they name, in a directory of their own.
class FirmwareSlots : public testing::Test {
 protected:
  FirmwareSlots() { m_setting->enumActionType = CP_ISPTOOL_ACTION_ISP; }

  std::string Directory() const { return m_scratch.Path() + "/"; }
  int Fw(unsigned int slot, const std::wstring& name) {
    return Capturing([&] { return InsertCommandFwFile(m_slots, slot, name); });
  }
  int Bank(unsigned int slot, const std::string& text) {
    return Capturing([&] { return InsertCommandStartBank(m_slots, slot, text); });
  }
  int Count(const std::string& directory, std::string& path, unsigned int& banks) {
    return Capturing([&] { return GetFwBankCount(directory, path, banks); });
  }
  int Judge() {
    return Capturing([&] { return JudgeFwMap(m_slots, Directory(), *m_setting, m_map); });
  }
  // What was printed since the last call.
  std::string TakePrinted() { return std::exchange(m_printed, ""); }

  ScratchDir m_scratch;
  FwBankMap m_slots;
  FwBankMap m_map;
  Zeroed<STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING> m_setting;

 private:
  template <typename Code>
  int Capturing(Code&& code) {
    int result = -1;
    m_printed += Printed([&] { result = code(); });
    return result;
  }

  std::string m_printed;
};

TEST_F(FirmwareSlots, AStartBankAndAFileMakeOneSlotInEitherOrder) {
  EXPECT_EQ(Bank(1, "3"), 1);
  EXPECT_EQ(Fw(1, L"a.bin"), 1);
  EXPECT_EQ(Fw(2, L"b.bin"), 1);
  EXPECT_EQ(Bank(2, "0x10"), 1);
  ASSERT_EQ(m_slots.size(), 2u);
  EXPECT_EQ(m_slots[1].ulBank, 3u);
  EXPECT_TRUE(m_slots[1].strFwPath == L"a.bin");
  EXPECT_EQ(m_slots[2].ulBank, 16u);
  EXPECT_TRUE(m_slots[2].strFwPath == L"b.bin");
  EXPECT_EQ(TakePrinted(), "");
}

TEST_F(FirmwareSlots, ASecondFileForASlotIsRefusedAndTheFirstOneKept) {
  EXPECT_EQ(Fw(0, L"a.bin"), 1);
  EXPECT_EQ(Fw(0, L"b.bin"), 0);
  EXPECT_EQ(TakePrinted(), "Parameter has been detected two or more times! --fw0 \n");
  EXPECT_TRUE(m_slots[0].strFwPath == L"a.bin");
}

TEST_F(FirmwareSlots, ARepeatedStartBankReplacesTheFirst) {
  EXPECT_EQ(Bank(0, "5"), 1);
  EXPECT_EQ(Bank(0, "7"), 1);
  EXPECT_EQ(m_slots[0].ulBank, 7u);
}

TEST_F(FirmwareSlots, ARefusedStartBankSaysWhyAndLeavesTheSlotUntouched) {
  constexpr struct {
    const char* text;
    const char* message;
  } kCases[] = {
      {"x1", "Parameter illegal! --bank9 x1 \n"},
      {"1 ", "Parameter illegal! --bank9 1  \n"},
      {"-1", "Parameter illegal, start bank value is loss! --bank9 -1 \n"},
      {"-2", "Parameter out of range 0~255! --bank9 -2\n"},
      {"256", "Parameter out of range 0~255! --bank9 256\n"},
  };
  for (const auto& [text, message] : kCases) {
    EXPECT_EQ(Bank(9, text), 0) << text;
    EXPECT_EQ(TakePrinted(), message);
  }
  EXPECT_TRUE(m_slots.empty());
}

TEST_F(FirmwareSlots, StartBanksOfTheWholeRangeAreAccepted) {
  EXPECT_EQ(Bank(3, "0"), 1);
  EXPECT_EQ(m_slots[3].ulBank, 0u);
  EXPECT_EQ(Bank(3, "255"), 1);
  EXPECT_EQ(m_slots[3].ulBank, 255u);
}

TEST_F(FirmwareSlots, AFileCountsItsBanksRoundedUp) {
  constexpr struct {
    std::uint64_t bytes;
    unsigned int banks;
  } kCases[] = {
      // clang-format off
      {0, 0},
      {1, 1},
      {65535, 1},
      {65536, 1},
      {65537, 2},
      {196609, 4},
      {0x100000000, 0},
      {0x100000001, 1},  // only the low 32 bits of the size count
      // clang-format on
  };
  for (const auto& [bytes, expected] : kCases) {
    std::string path = GivenSparseFile(m_scratch / "fw.bin", bytes);
    unsigned int banks = 99;
    EXPECT_EQ(Count("", path, banks), 1) << bytes;
    EXPECT_EQ(banks, expected) << bytes;
  }
}

TEST_F(FirmwareSlots, CountingMakesThePathAFullOne) {
  GivenFirmware(m_scratch / "fw.bin", 10);
  std::string path = "./../" + m_scratch.Path().substr(m_scratch.Path().rfind('/') + 1) + "/fw.bin";
  unsigned int banks = 0;
  EXPECT_EQ(Count(Directory(), path, banks), 1);
  EXPECT_EQ(path, m_scratch / "fw.bin");
}

TEST_F(FirmwareSlots, WhatIsNotAReadableFileIsRefusedWithItsFullPath) {
  GivenDirectory(m_scratch / "dir.bin");
  ASSERT_EQ(mkfifo((m_scratch / "fifo.bin").c_str(), 0600), 0);
  for (const std::string name : {"missing.bin", "dir.bin", "fifo.bin"}) {
    std::string path = name;
    unsigned int banks = 99;
    EXPECT_EQ(Count(Directory(), path, banks), 0) << name;
    EXPECT_EQ(TakePrinted(), "File open fail! " + (m_scratch / name) + "\n");
    EXPECT_EQ(banks, 99u);
  }
}

TEST_F(FirmwareSlots, ActionsThatDoNotProgramOpenNoFile) {
  Fw(1, L"missing.bin");
  for (const std::uint32_t action : {1u, 3u, 8u, 9u, 16u, 18u, 25u}) {
    m_setting->enumActionType = action;
    EXPECT_EQ(Judge(), 1) << action;
    EXPECT_TRUE(m_map.empty());
  }
  EXPECT_EQ(TakePrinted(), "");
}

TEST_F(FirmwareSlots, ProgrammingActionsAndVersionsFromAFileNeedFirmware) {
  constexpr struct {
    std::uint32_t action;
    std::uint32_t location;
  } kCases[] = {
      // clang-format off
      {4, 0},
      {5, 0},
      {6, 0},
      {7, 0},
      {17, 0},
      {8, 4},
      {8, 6},
      // clang-format on
  };
  for (const auto& [action, location] : kCases) {
    m_setting->enumActionType = action;
    m_setting->enumVersionLocationType = location;
    EXPECT_EQ(Judge(), 0) << action;
    EXPECT_EQ(TakePrinted(), "Program fw bin path should not be empty!\n");
  }
}

TEST_F(FirmwareSlots, NoSlotIsNeededWhenASearchWasAskedFor) {
  m_setting->bSearchFw = 1;
  EXPECT_EQ(Judge(), 1);
  EXPECT_TRUE(m_map.empty());
  EXPECT_EQ(TakePrinted(), "");
}

TEST_F(FirmwareSlots, AFileTakesConsecutiveBanksFromItsStartBank) {
  GivenFirmware(m_scratch / "a.bin", 65536 * 3 + 1);
  Fw(1, L"a.bin");
  Bank(1, "10");
  ASSERT_EQ(Judge(), 1);
  ASSERT_EQ(m_map.size(), 4u);
  for (unsigned int i = 0; i < 4; ++i) {
    EXPECT_EQ(m_map.at(10 + i).ulBank, i);
    EXPECT_EQ(m_map.at(10 + i).ulReserved, 0u);
    EXPECT_EQ(m_map.at(10 + i).strFwPath.GetUtf8String(), m_scratch / "a.bin");
  }
}

TEST_F(FirmwareSlots, TheLastBankOfAFileHasNoLimit) {
  GivenFirmware(m_scratch / "a.bin", 65536 * 10);
  Fw(1, L"a.bin");
  Bank(1, "250");
  ASSERT_EQ(Judge(), 1);
  EXPECT_EQ(m_map.begin()->first, 250u);
  EXPECT_EQ(m_map.rbegin()->first, 259u);
}

TEST_F(FirmwareSlots, ABankClaimedTwiceIsRefusedBeforeTheSecondFileTakesAny) {
  GivenFirmware(m_scratch / "a.bin", 65536 * 2);
  GivenFirmware(m_scratch / "b.bin", 65536 * 2);
  Fw(0, L"a.bin");
  Fw(1, L"b.bin");
  for (const char* start : {"0", "1"}) {
    Bank(1, start);
    m_map.clear();
    EXPECT_EQ(Judge(), 0);
    EXPECT_EQ(TakePrinted(), "Program fw bank duplicate!\n");
    EXPECT_EQ(m_map.size(), 2u);
  }
}

TEST_F(FirmwareSlots, OneBankAtEitherEndOfALongerFileIsADuplicate) {
  GivenFirmware(m_scratch / "long.bin", 65536 * 4);
  GivenFirmware(m_scratch / "one.bin", 1);
  Fw(0, L"long.bin");
  Bank(0, "10");
  Fw(1, L"one.bin");
  const struct {
    const char* bank;
    bool is_free;
  } cases[] = {{"9", true}, {"10", false}, {"13", false}, {"14", true}};
  for (const auto& [bank, is_free] : cases) {
    Bank(1, bank);
    m_map.clear();
    EXPECT_EQ(Judge(), is_free ? 1 : 0) << bank;
    EXPECT_EQ(TakePrinted(), is_free ? "" : "Program fw bank duplicate!\n") << bank;
  }
}

// The long file comes second: its last bank is the one that is taken.
TEST_F(FirmwareSlots, TheLastBankOfALaterFileIsADuplicateToo) {
  GivenFirmware(m_scratch / "long.bin", 65536 * 4);
  GivenFirmware(m_scratch / "one.bin", 1);
  Fw(0, L"one.bin");
  Bank(0, "13");
  Fw(1, L"long.bin");
  for (const char* const bank : {"10", "13"}) {
    Bank(1, bank);
    m_map.clear();
    EXPECT_EQ(Judge(), 0) << bank;
    EXPECT_EQ(TakePrinted(), "Program fw bank duplicate!\n") << bank;
  }
  for (const char* const bank : {"9", "14"}) {
    Bank(1, bank);
    m_map.clear();
    EXPECT_EQ(Judge(), 1) << bank;
    EXPECT_EQ(TakePrinted(), "") << bank;
  }
}

TEST_F(FirmwareSlots, NeighboursAndFilesBelowOthersDoNotCollide) {
  GivenFirmware(m_scratch / "a.bin", 65536 * 2);
  Fw(1, L"a.bin");
  Bank(1, "4");
  Fw(2, L"a.bin");
  Bank(2, "2");
  Fw(3, L"a.bin");
  Bank(3, "6");
  EXPECT_EQ(Judge(), 1);
  EXPECT_EQ(m_map.size(), 6u);
  EXPECT_EQ(TakePrinted(), "");
}

TEST_F(FirmwareSlots, AnEmptyFileTakesNoBankAndNeverCollides) {
  GivenFirmware(m_scratch / "a.bin", 65536);
  GivenFile(m_scratch / "empty.bin", "");
  Fw(0, L"a.bin");
  Fw(1, L"empty.bin");
  EXPECT_EQ(Judge(), 1);
  EXPECT_EQ(m_map.size(), 1u);
}

TEST_F(FirmwareSlots, AStartBankWithoutAFileIsRefusedWithTheDirectory) {
  Bank(1, "3");
  EXPECT_EQ(Judge(), 0);
  EXPECT_EQ(TakePrinted(), "File open fail! " + m_scratch.Path() + "\n");
  EXPECT_TRUE(m_map.empty());
}

TEST_F(FirmwareSlots, TheFirstFileThatCannotBeOpenedEndsTheJudgement) {
  GivenFirmware(m_scratch / "a.bin", 65536);
  Fw(1, L"a.bin");
  Fw(2, L"missing.bin");
  Fw(3, L"also_missing.bin");
  EXPECT_EQ(Judge(), 0);
  EXPECT_EQ(TakePrinted(), "File open fail! " + (m_scratch / "missing.bin") + "\n");
}

TEST_F(FirmwareSlots, TwoHundredFiftySixBanksFit) {
  GivenSparseFile(m_scratch / "a.bin", 65536 * 256);
  Fw(1, L"a.bin");
  EXPECT_EQ(Judge(), 1);
  EXPECT_EQ(m_map.size(), 256u);
}

TEST_F(FirmwareSlots, MoreBanksThanTheRecordHoldsAreRefusedBeforeTheSlotTakesAny) {
  GivenSparseFile(m_scratch / "a.bin", 65536 * 255);
  GivenSparseFile(m_scratch / "b.bin", 65536 * 2);
  Fw(1, L"a.bin");
  Bank(1, "2");
  Fw(2, L"b.bin");
  EXPECT_EQ(Judge(), 0);
  EXPECT_EQ(TakePrinted(), "Program fw bank count out of range! 257 banks, at most 256\n");
  EXPECT_EQ(m_map.size(), 255u);
}

}  // namespace
