// SPDX-License-Identifier: MIT
#include "cmdline/option_table.h"

#include <iterator>

#include <gtest/gtest.h>

using namespace zvisp;

namespace {

// The scanner's messages show all three: the names, in their order, where an abbreviation is
// ambiguous, the argument where it is missing or too many, and then the value as a character.
TEST(OptionTable, HoldsTheOptionsThatTheScannersMessagesShow) {
  // clang-format off
  constexpr struct {
    const char* name;
    int argument;
    int value;
  } kExpected[] = {
      {"verify",               kNoArgument,       0x1},
      {"sign",                 kNoArgument,       0x2},
      {"erase",                kNoArgument,       0x4},
      {"isp",                  kNoArgument,       0x8},
      {"ispuser",              kNoArgument,       0x10},
      {"ispdiff",              kNoArgument,       0x20},
      {"ispcopy",              kNoArgument,       0x40},
      {"factoryisp",           kNoArgument,       0x10000},
      {"recordver",            kNoArgument,       0x80},
      {"srstatus",             kNoArgument,       0x100},
      {"flashtype",            kNoArgument,       0x200},
      {"readsr",               kNoArgument,       0x400},
      {"writesr",              kNoArgument,       0x800},
      {"readsafeguard",        kNoArgument,       0x1000},
      {"writesafeguard",       kNoArgument,       0x2000},
      {"resetmcu",             kNoArgument,       0x4000},
      {"dumpflash",            kNoArgument,       0x8000},
      {"getstatus",            kNoArgument,       0x20000},
      {"userdefinedinfo",      kNoArgument,       0x40000},
      {"edpisp",               kNoArgument,       0x80000},
      {"enterispmode",         kNoArgument,       0x100000},
      {"mergefwinfo",          kNoArgument,       0x200000},
      {"senduserdefinedinfo",  kNoArgument,       0x400000},
      {"i2cwrite",             kNoArgument,       0x800000},
      {"getscalertype",        kNoArgument,       0x1000000},
      {"boot",                 kRequiredArgument, 42},
      {"newboot",              kNoArgument,       40},
      {"ispchannel",           kNoArgument,       49},
      {"factory",              kNoArgument,       41},
      {"sw",                   kNoArgument,       0x1},
      {"hw",                   kNoArgument,       0x2},
      {"dsmode",               kRequiredArgument, 8},
      {"reg",                  kNoArgument,       0x1},
      {"ddcci",                kNoArgument,       0x2},
      {"flash",                kNoArgument,       0x4},
      {"fwbin",                kNoArgument,       0x8},
      {"cmd",                  kNoArgument,       0x10},
      {"fwbincmd",             kNoArgument,       0x20},
      {"copydiffer",           kNoArgument,       0x40},
      {"userdefined",          kRequiredArgument, 0x80},
      {"veraddr",              kRequiredArgument, 44},
      {"totalverlen",          kRequiredArgument, 45},
      {"majorverlen",          kRequiredArgument, 46},
      {"subverlen",            kRequiredArgument, 47},
      {"recordvermode",        kRequiredArgument, 48},
      {"dumpaddr",             kRequiredArgument, 50},
      {"dumplen",              kRequiredArgument, 51},
      {"dumpname",             kRequiredArgument, 52},
      {"comm",                 kRequiredArgument, 15},
      {"fw",                   kRequiredArgument, 1},
      {"signfile",             kRequiredArgument, 2},
      {"keypair",              kRequiredArgument, 3},
      {"vkfile",               kRequiredArgument, 4},
      {"skfile",               kRequiredArgument, 5},
      {"subcert",              kRequiredArgument, 6},
      {"nextvkfile",           kRequiredArgument, 7},
      {"bank",                 kRequiredArgument, 16},
      {"settingfile",          kRequiredArgument, 53},
      {"fw1",                  kRequiredArgument, 17},
      {"bank1",                kRequiredArgument, 18},
      {"fw2",                  kRequiredArgument, 19},
      {"bank2",                kRequiredArgument, 20},
      {"fw3",                  kRequiredArgument, 21},
      {"bank3",                kRequiredArgument, 22},
      {"fw4",                  kRequiredArgument, 23},
      {"bank4",                kRequiredArgument, 24},
      {"fw5",                  kRequiredArgument, 25},
      {"bank5",                kRequiredArgument, 26},
      {"fw6",                  kRequiredArgument, 27},
      {"bank6",                kRequiredArgument, 28},
      {"fw7",                  kRequiredArgument, 29},
      {"bank7",                kRequiredArgument, 30},
      {"fw8",                  kRequiredArgument, 31},
      {"bank8",                kRequiredArgument, 32},
      {"fw9",                  kRequiredArgument, 33},
      {"bank9",                kRequiredArgument, 34},
      {"comparever",           kNoArgument,       38},
      {"flagaddr",             kRequiredArgument, 36},
      {"flagdata",             kRequiredArgument, 37},
      {"slave",                kRequiredArgument, 35},
      {"searchfw",             kRequiredArgument, 39},
      {"edpmode",              kRequiredArgument, 54},
      {"read",                 kNoArgument,       0x1},
      {"write",                kRequiredArgument, 0x2},
      {"writedata",            kRequiredArgument, 55},
      {"ddccicmd",             kNoArgument,       56},
  };
  // clang-format on
  ASSERT_EQ(std::size(kOptions), std::size(kExpected));
  for (std::size_t i = 0; i < std::size(kExpected); ++i) {
    EXPECT_STREQ(kOptions[i].name, kExpected[i].name);
    EXPECT_EQ(kOptions[i].argument, kExpected[i].argument) << kExpected[i].name;
    EXPECT_EQ(kOptions[i].value, kExpected[i].value) << kExpected[i].name;
  }
}

}  // namespace
