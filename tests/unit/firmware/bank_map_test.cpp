// SPDX-License-Identifier: MIT
#include "firmware/bank_map.h"

#include <cwchar>
#include <string>

#include "plugin/zeroed.h"

#include <gtest/gtest.h>

using namespace zvisp;

namespace {

STRUCT_FW_BANK_SETTING Entry(std::uint32_t bank, const wchar_t* path) {
  STRUCT_FW_BANK_SETTING entry;
  entry.ulBank = bank;
  entry.strFwPath = path;
  return entry;
}

TEST(BankMap, OrdersKeysByStrictLessThanOnUnsignedNumbers) {
  const sortAscending<unsigned int> less;
  EXPECT_TRUE(less(1u, 2u));
  EXPECT_FALSE(less(2u, 2u));
  EXPECT_FALSE(less(0xFFFFFFFFu, 0u));
}

TEST(BankMap, AnEntryStartsWithZerosAndAnEmptyPath) {
  const STRUCT_FW_BANK_SETTING entry;
  EXPECT_EQ(entry.ulReserved, 0u);
  EXPECT_EQ(entry.ulBank, 0u);
  EXPECT_TRUE(entry.strFwPath.IsEmpty());
}

TEST(BankMap, CopyingAnEntryCopiesAllThreeFields) {
  STRUCT_FW_BANK_SETTING entry = Entry(3, L"/a.bin");
  entry.ulReserved = 7;
  const STRUCT_FW_BANK_SETTING copy = entry;
  const STRUCT_FW_BANK_SETTING moved = std::move(entry);
  for (const STRUCT_FW_BANK_SETTING& each : {copy, moved}) {
    EXPECT_EQ(each.ulReserved, 7u);
    EXPECT_EQ(each.ulBank, 3u);
    EXPECT_TRUE(each.strFwPath == L"/a.bin");
  }
}

TEST(BankMap, GoesIntoTheRecordInAscendingOrderOfTheTargetBank) {
  Zeroed<STRUCT_C_STYLE_MAP_FW> record;
  CopyMapFwToCStyleStruct(*record, {{9, Entry(1, L"/b")}, {2, Entry(0, L"/a")}});
  EXPECT_EQ(record->ulCount, 2u);
  EXPECT_EQ(record->ulTargetBank[0], 2u);
  EXPECT_EQ(record->stBank[0].ulFileBank, 0u);
  EXPECT_STREQ(record->stBank[0].wszPath, L"/a");
  EXPECT_EQ(record->ulTargetBank[1], 9u);
  EXPECT_EQ(record->stBank[1].ulFileBank, 1u);
  EXPECT_STREQ(record->stBank[1].wszPath, L"/b");
}

TEST(BankMap, CarriesTheReservedWordThrough) {
  Zeroed<STRUCT_C_STYLE_MAP_FW> record;
  STRUCT_FW_BANK_SETTING entry = Entry(0, L"/a");
  entry.ulReserved = 0x123456789AULL;
  CopyMapFwToCStyleStruct(*record, {{0, entry}});
  EXPECT_EQ(record->stBank[0].ulReserved, 0x123456789AULL);
}

TEST(BankMap, CutsAPathAt256UnitsAndEndsItWithZeros) {
  Zeroed<STRUCT_C_STYLE_MAP_FW> record;
  const std::wstring path(300, L'p');
  CopyMapFwToCStyleStruct(*record, {{0, Entry(0, path.c_str())}});
  EXPECT_EQ(std::wcslen(record->stBank[0].wszPath), 256u);
  for (int i = 256; i < 260; ++i)
    EXPECT_EQ(record->stBank[0].wszPath[i], L'\0') << i;
}

TEST(BankMap, AShorterPathLeavesNoTailOfALongerOne) {
  Zeroed<STRUCT_C_STYLE_MAP_FW> record;
  CopyMapFwToCStyleStruct(*record, {{0, Entry(0, L"/a/long/path")}});
  CopyMapFwToCStyleStruct(*record, {{0, Entry(0, L"/b")}});
  for (int i = 2; i < 260; ++i)
    EXPECT_EQ(record->stBank[0].wszPath[i], L'\0') << i;
}

TEST(BankMap, FillsTheRecordToItsCapacityAndNotBeyond) {
  Zeroed<STRUCT_C_STYLE_MAP_FW> record;
  FwBankMap map;
  for (unsigned int bank = 0; bank < 300; ++bank)
    map[bank] = Entry(bank, L"/a");
  CopyMapFwToCStyleStruct(*record, map);
  EXPECT_EQ(record->ulCount, 256u);
  EXPECT_EQ(record->ulTargetBank[255], 255u);
  EXPECT_EQ(record->stBank[255].ulFileBank, 255u);
}

TEST(BankMap, ComesBackFromTheRecordWithTheValidEntriesOnly) {
  Zeroed<STRUCT_C_STYLE_MAP_FW> record;
  CopyMapFwToCStyleStruct(*record, {{2, Entry(0, L"/a")}, {9, Entry(1, L"/b")}});
  record->ulTargetBank[2] = 77;
  FwBankMap map = {{50, Entry(5, L"/old")}};
  CopyCStyleStructToMapFw(map, *record);
  ASSERT_EQ(map.size(), 2u);
  EXPECT_EQ(map.at(2).ulBank, 0u);
  EXPECT_EQ(map.at(9).ulBank, 1u);
  EXPECT_TRUE(map.at(9).strFwPath == L"/b");
}

TEST(BankMap, ACountBeyondTheRecordIsNotFollowed) {
  Zeroed<STRUCT_C_STYLE_MAP_FW> record;
  record->ulCount = 0xFFFFFFFF;
  FwBankMap map;
  CopyCStyleStructToMapFw(map, *record);
  EXPECT_EQ(map.size(), 1u) << "256 entries, all with target bank 0";
}

}  // namespace
