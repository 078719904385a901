// SPDX-License-Identifier: MIT
#include "cmdline/option_table.h"

#include <map>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using testing::ElementsAreArray;

bool HasBits(const OptionRow& row) {
  return std::holds_alternative<AddBits>(row.effect);
}

std::vector<std::uint32_t> BitsOf(std::uint32_t STRUCT_CP_ISP_CMD_ARGS::*word) {
  std::vector<std::uint32_t> bits;
  for (const OptionRow& row : kOptions) {
    const AddBits* const effect = std::get_if<AddBits>(&row.effect);
    if (effect != nullptr && effect->bits == word) {
      bits.push_back(static_cast<std::uint32_t>(row.value));
    }
  }
  return bits;
}

const OptionRow& RowOf(const std::string& name) {
  for (const OptionRow& row : kOptions) {
    if (row.name == name) return row;
  }
  throw std::out_of_range(name);
}

TEST(OptionTable, HoldsTheOptionsInTheOrderOfTheScannersMessages) {
  // clang-format off
  constexpr const char* kNames[] = {
    "verify", "sign", "erase", "isp", "ispuser", "ispdiff", "ispcopy", "factoryisp", "recordver",
    "srstatus", "flashtype", "readsr", "writesr", "readsafeguard", "writesafeguard", "resetmcu",
    "dumpflash", "getstatus", "userdefinedinfo", "edpisp", "enterispmode", "mergefwinfo",
    "senduserdefinedinfo", "i2cwrite", "getscalertype", "boot", "newboot", "ispchannel",
    "factory", "sw", "hw", "dsmode", "reg", "ddcci", "flash", "fwbin", "cmd", "fwbincmd",
    "copydiffer", "userdefined", "veraddr", "totalverlen", "majorverlen", "subverlen",
    "recordvermode", "dumpaddr", "dumplen", "dumpname", "comm", "fw", "signfile", "keypair",
    "vkfile", "skfile", "subcert", "nextvkfile", "bank", "settingfile", "fw1", "bank1", "fw2",
    "bank2", "fw3", "bank3", "fw4", "bank4", "fw5", "bank5", "fw6", "bank6", "fw7", "bank7",
    "fw8", "bank8", "fw9", "bank9", "comparever", "flagaddr", "flagdata", "slave", "searchfw",
    "edpmode", "read", "write", "writedata", "ddccicmd",
  };
  // clang-format on
  std::vector<std::string> names;
  for (const OptionRow& row : kOptions) {
    names.emplace_back(row.name);
  }
  EXPECT_EQ(names.size(), 86u);
  EXPECT_THAT(names, ElementsAreArray(kNames));
}

TEST(OptionTable, NamesEachOptionOnce) {
  std::set<std::string> names;
  for (const OptionRow& row : kOptions) {
    EXPECT_TRUE(names.insert(row.name).second) << row.name;
  }
}

TEST(OptionTable, GivesEachCodeToOneOptionAndNoneTheCodesOfTheScanner) {
  std::set<int> codes;
  for (const OptionRow& row : kOptions) {
    if (HasBits(row)) continue;
    EXPECT_TRUE(codes.insert(row.value).second) << row.name;
    EXPECT_GT(row.value, 0) << row.name;
    EXPECT_LT(row.value, int{':'}) << row.name;
  }
  EXPECT_EQ(codes.size(), 49u);
}

TEST(OptionTable, LeavesTheCodesNineToFourteenAndFortyThreeFree) {
  constexpr int kFree[] = {9, 10, 11, 12, 13, 14, 43};
  for (const OptionRow& row : kOptions) {
    if (HasBits(row)) continue;
    EXPECT_THAT(kFree, testing::Not(testing::Contains(row.value))) << row.name;
  }
}

TEST(OptionTable, GivesEachBitOfAWordToOneOption) {
  EXPECT_THAT(
      BitsOf(&Args::ulActionBits),
      ElementsAreArray({0x1u,      0x2u,      0x4u,      0x8u,      0x10u,    0x20u,    0x40u,
                        0x10000u,  0x80u,     0x100u,    0x200u,    0x400u,   0x800u,   0x1000u,
                        0x2000u,   0x4000u,   0x8000u,   0x20000u,  0x40000u, 0x80000u, 0x100000u,
                        0x200000u, 0x400000u, 0x800000u, 0x1000000u}));
  EXPECT_THAT(BitsOf(&Args::ulSignatureTypeBits), ElementsAreArray({1u, 2u}));
  EXPECT_THAT(BitsOf(&Args::ulInformationBits),
              ElementsAreArray({1u, 2u, 4u, 8u, 0x10u, 0x20u, 0x40u, 0x80u}));
  EXPECT_THAT(BitsOf(&Args::ulReadWriteBits), ElementsAreArray({1u, 2u}));
}

TEST(OptionTable, NumbersTheFirmwareAndBankOptionsByTheirSlot) {
  for (unsigned int slot = 1; slot <= 9; ++slot) {
    const OptionRow& fw = RowOf("fw" + std::to_string(slot));
    const OptionRow& bank = RowOf("bank" + std::to_string(slot));
    EXPECT_EQ(std::get<InsertFwFile>(fw.effect).slot, slot);
    EXPECT_EQ(std::get<InsertStartBank>(bank.effect).slot, slot);
    EXPECT_EQ(fw.value, static_cast<int>(15 + 2 * slot));
    EXPECT_EQ(bank.value, static_cast<int>(16 + 2 * slot));
  }
  EXPECT_EQ(std::get<InsertStartBank>(RowOf("bank").effect).slot, 0u);
}

// Codes that the numbered options do not follow from.
TEST(OptionTable, KeepsTheCodesOfTheSingleOptions) {
  const std::map<std::string, int> codes = {
      {"fw", 1},           {"signfile", 2},    {"keypair", 3},        {"vkfile", 4},
      {"skfile", 5},       {"subcert", 6},     {"nextvkfile", 7},     {"dsmode", 8},
      {"comm", 15},        {"bank", 16},       {"slave", 35},         {"flagaddr", 36},
      {"flagdata", 37},    {"comparever", 38}, {"searchfw", 39},      {"newboot", 40},
      {"factory", 41},     {"boot", 42},       {"veraddr", 44},       {"totalverlen", 45},
      {"majorverlen", 46}, {"subverlen", 47},  {"recordvermode", 48}, {"ispchannel", 49},
      {"dumpaddr", 50},    {"dumplen", 51},    {"dumpname", 52},      {"settingfile", 53},
      {"edpmode", 54},     {"writedata", 55},  {"ddccicmd", 56}};
  for (const auto& [name, code] : codes) {
    EXPECT_EQ(RowOf(name).value, code) << name;
  }
  EXPECT_EQ(codes.size() + 18, 49u);
}

TEST(OptionTable, TakesAnArgumentWhereATextIsKeptAndNoneForSwitches) {
  for (const OptionRow& row : kOptions) {
    if (std::string(row.name) == "userdefined" || std::string(row.name) == "write") {
      EXPECT_EQ(row.argument, kRequiredArgument) << row.name;
    } else if (HasBits(row) || std::holds_alternative<SetSwitch>(row.effect)) {
      EXPECT_EQ(row.argument, kNoArgument) << row.name;
    } else {
      EXPECT_EQ(row.argument, kRequiredArgument) << row.name;
    }
  }
}

}  // namespace
