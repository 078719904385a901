// SPDX-License-Identifier: MIT
#include "cmdline/option_scanner.h"

#include <initializer_list>
#include <string>

#include "support/option_scanner_fixture.h"

#include <gtest/gtest.h>

using namespace zvisp;

namespace {

using Unit = STRUCT_CP_LONG_CMD_UNIT;
using OptionScannerMessages = OptionScannerTest;

struct MessageCase {
  const char* short_cmds;
  const char* word;
  int code;
  int unknown;
  const char* printed;
};

constexpr Unit kMessageUnits[] = {
    {"verify", kNoArgument, nullptr, 70},
    {"version", kNoArgument, nullptr, 71},
    {"fw", kRequiredArgument, nullptr, 72},
    {nullptr, 0, nullptr, 0},
};

// clang-format off
constexpr MessageCase kMessageCases[] = {
    // short  word         code  unknown  standard error
    {"",     "--ver",      '?',  0,   "prog: command '--ver' is ambiguous; possibilities: '--verify' '--version'\n"},
    {"",     "--v=1",      '?',  0,   "prog: command '--v=1' is ambiguous; possibilities: '--verify' '--version'\n"},
    {":",    "--ver",      '?',  0,   " '--version'\n"},
    {"",     "--nothing",  '?',  0,   "prog: unrecognized command '--nothing'\n"},
    {"",     "--no=1",     '?',  0,   "prog: unrecognized command '--no=1'\n"},
    {":",    "--nothing",  '?',  0,   ""},
    {"",     "--verifyx",  '?',  0,   "prog: unrecognized command '--verifyx'\n"},
    {"",     "--verif=1",  '?',  70,  "prog: option '--verify' doesn't allow an argument\n"},
    {"",     "--verify=",  '?',  70,  "prog: option '--verify' doesn't allow an argument\n"},
    {":",    "--verify=1", '?',  70,  ""},
    {"",     "--f",        '?',  72,  "prog: option '--fw' requires an argument\n"},
    {":",    "--fw",       ':',  72,  ""},
    {"",     "-x",         '?',  'x', "prog: invalid option -- 'x'\n"},
    {"a:;",  "-:",         '?',  ':', "prog: invalid option -- ':'\n"},
    {"a;",   "-;",         '?',  ';', "prog: invalid option -- ';'\n"},
    {":a",   "-x",         '?',  'x', ""},
    {":a",   "-:",         '?',  ':', ""},
    {"a:",   "-a",         '?',  'a', "prog: option requires an argument -- 'a'\n"},
    {":a:",  "-a",         ':',  'a', ""},
    {"",     "-\xC3",      '?',  0xC3, "prog: invalid option -- '\xC3'\n"},
};
// clang-format on

TEST_F(OptionScannerMessages, PrintsAndReturnsEachError) {
  for (const MessageCase& row : kMessageCases) {
    SCOPED_TRACE(std::string(row.short_cmds) + " " + row.word);
    m_scanner.Reset();
    m_scanner.AddShortCmds(row.short_cmds);
    m_scanner.AddLongCmds(kMessageUnits);
    Words words({"before", row.word});
    EXPECT_EQ(Printed(words), row.printed);
    EXPECT_EQ(m_code, row.code);
    EXPECT_EQ(m_scanner.GetUnknownChar(), row.unknown);
    EXPECT_EQ(m_scanner.GetCmdArg(), nullptr);
    EXPECT_EQ(m_scanner.GetCmdIndex(), 3);
    EXPECT_EQ(Scan(words), std::string("@2: ") + row.word + " before");
  }
}

TEST_F(OptionScannerMessages, PrintsOneDashForAWordOfOneDash) {
  m_scanner.AddLongCmds(kMessageUnits);
  const struct {
    const char* word;
    const char* printed;
  } kCases[] = {
      {"-ver", "prog: command '-ver' is ambiguous; possibilities: '-verify' '-version'\n"},
      {"-no=1", "prog: unrecognized command '-no=1'\n"},
      {"-verify=1", "prog: option '-verify' doesn't allow an argument\n"},
      {"-fw", "prog: option '-fw' requires an argument\n"},
  };
  for (const auto& [word, printed] : kCases) {
    Words words({word});
    EXPECT_EQ(Printed(words, kLongOnly), printed);
    EXPECT_EQ(m_code, '?');
    m_scanner.Reset();
    m_scanner.AddLongCmds(kMessageUnits);
  }
}

TEST_F(OptionScannerMessages, GivesEachFurtherAmbiguousNameALineOfItsOwn) {
  GivenLong({{"verify", kNoArgument, nullptr, 1},
             {"fw", kNoArgument, nullptr, 2},
             {"version", kNoArgument, nullptr, 3},
             {"veraddr", kRequiredArgument, nullptr, 4}});
  Words words({"--ver"});
  EXPECT_EQ(Printed(words),
            "prog: command '--ver' is ambiguous; possibilities: '--verify' '--version'\n"
            " '--veraddr'\n");
  m_scanner.AddShortCmds(":");
  Words silent({"prog", "--ver"});
  EXPECT_EQ(Printed(silent), " '--version'\n '--veraddr'\n");
}

TEST_F(OptionScannerMessages, TreatsAnEmptyNameAsAnAbbreviationOfAll) {
  GivenLong({{"fw", kRequiredArgument, nullptr, 2}});
  EXPECT_EQ(Scan({"--=x"}), "2{x} @2: --=x");
  GivenLong({{"isp", kNoArgument, nullptr, 3}});
  Words words({"a", "b", "--=x"});
  EXPECT_EQ(Printed(words), "prog: command '--=x' is ambiguous; possibilities: '--fw' '--isp'\n");
}

TEST_F(OptionScannerMessages, ContinuesAfterAnError) {
  GivenLong({{"verify", kNoArgument, nullptr, 7}, {"version", kNoArgument, nullptr, 8}});
  m_scanner.AddShortCmds("v");
  std::string scan;
  EXPECT_EQ(PrintedErrors([&] {
              scan = Scan({"a", "--ver", "--no", "-xv", "--verify=1", "--verify"});
            }),
            "prog: command '--ver' is ambiguous; possibilities: '--verify' '--version'\n"
            "prog: unrecognized command '--no'\n"
            "prog: invalid option -- 'x'\n"
            "prog: option '--verify' doesn't allow an argument\n");
  EXPECT_EQ(scan, "? ? ? v ? 7 @6: --ver --no -xv --verify=1 --verify a");
}

TEST_F(OptionScannerMessages, StaysSilentOnceAColonHasBeenSeen) {
  m_scanner.AddShortCmds(":");
  Words words({"-x", "-y", "-z"});
  EXPECT_EQ(Printed(words), "");
  m_scanner.AddShortCmds("a");
  EXPECT_EQ(Printed(words), "");
  m_scanner.Reset();
  EXPECT_EQ(Printed(words), "prog: invalid option -- 'x'\n");
}

}  // namespace
