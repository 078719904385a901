// SPDX-License-Identifier: MIT
#include "cmdline/option_scanner.h"

#include <initializer_list>
#include <string>
#include <type_traits>

#include "support/option_scanner_fixture.h"

#include <gtest/gtest.h>

using namespace zvisp;

namespace {

using Unit = STRUCT_CP_LONG_CMD_UNIT;
using OptionScanner = OptionScannerTest;

static_assert(std::has_virtual_destructor_v<CpZvCmdLindParse>);

TEST_F(OptionScanner, StartsAtTheFirstWordWithoutAnError) {
  ExpectStartState();
}

TEST_F(OptionScanner, EndsAtOnceWithoutWords) {
  char* none[] = {nullptr};
  EXPECT_EQ(m_scanner.ParseCmdLine(0, none), -1);
  EXPECT_EQ(m_scanner.ParseCmdLine(-1, none), -1);
  EXPECT_EQ(m_scanner.ParseCmdLine(1, nullptr), -1);
  Words words({});
  EXPECT_EQ(Scan(words), "@1: ");
}

TEST_F(OptionScanner, KeepsTheLastArgumentWhenThereAreNoWords) {
  GivenLong({{"fw", kRequiredArgument, nullptr, 2}});
  Words words({"--fw=a.bin"});
  EXPECT_EQ(Step(words), 2);
  EXPECT_EQ(m_scanner.ParseCmdLine(0, words.Vector()), -1);
  EXPECT_STREQ(m_scanner.GetCmdArg(), "a.bin");
  EXPECT_EQ(m_scanner.ParseCmdLine(words.Count(), words.Vector()), -1);
  EXPECT_EQ(m_scanner.GetCmdArg(), nullptr);
}

TEST_F(OptionScanner, MovesNonOptionsAfterTheOptions) {
  GivenLong({{"verify", kNoArgument, nullptr, 7}});
  Words words({"a", "--verify", "b"});
  EXPECT_EQ(Step(words), 7);
  EXPECT_EQ(Step(words), -1);
  EXPECT_EQ(m_scanner.GetCmdIndex(), 2);
  EXPECT_EQ(words.Order(), "--verify a b");
}

TEST_F(OptionScanner, ReportsEndCodesArgumentsAndOrder) {
  int flag = 0;
  const struct {
    std::initializer_list<const char*> words;
    const char* dump;
  } kCases[] = {
      {{"--isp", "--fw", "a.bin"}, "0 2{a.bin} @4: --isp --fw a.bin"},
      {{"--fw=a=b"}, "2{a=b} @2: --fw=a=b"},
      {{"--fw="}, "2{} @2: --fw="},
      {{"--fw", "--isp"}, "2{--isp} @3: --fw --isp"},
      {{"--fw", "--", "x"}, "2{--} @3: --fw -- x"},
      {{"--log", "x"}, "3 @2: --log x"},
      {{"--log=x"}, "3{x} @2: --log=x"},
      {{"--l"}, "3 @2: --l"},
      {{"--f=x"}, "2{x} @2: --f=x"},
      {{"a", "--fw", "x", "b", "c", "--log", "d"}, "2{x} 3 @4: --fw x --log a b c d"},
      {{"a", "b", "c", "-v", "d", "-f", "x"}, "v f{x} @4: -v -f x a b c d"},
      {{"a", "-vvv", "--fw", "x"}, "v v v 2{x} @4: -vvv --fw x a"},
      {{"-", "-v", ""}, "v @2: -v - "},
      {{"-vfx"}, "v f{x} @2: -vfx"},
      {{"-f", "-v"}, "f{-v} @3: -f -v"},
      {{"-vo", "x"}, "v o @2: -vo x"},
      {{"-ox"}, "o{x} @2: -ox"},
      {{"--"}, "@2: --"},
      {{"-v", "--", "-v"}, "v @3: -v -- -v"},
      {{"a", "-v", "--", "-v", "b"}, "v @3: -v -- a -v b"},
      {{"a", "--", "-v"}, "@2: -- a -v"},
      {{"a", "b"}, "@1: a b"},
  };
  for (const auto& [words, dump] : kCases) {
    m_scanner.Reset();
    GivenLong({{"isp", kNoArgument, &flag, 8},
               {"fw", kRequiredArgument, nullptr, 2},
               {"log", kOptionalArgument, nullptr, 3}});
    m_scanner.AddShortCmds("vf:o::");
    EXPECT_EQ(Scan(words), dump);
  }
}

TEST_F(OptionScanner, StoresTheValueThroughTheFlagPointer) {
  int action = 0;
  GivenLong({{"isp", kNoArgument, &action, 8}, {"verify", kNoArgument, &action, 1}});
  EXPECT_EQ(Scan({"--isp", "--verify"}), "0 0 @3: --isp --verify");
  EXPECT_EQ(action, 1);
}

TEST_F(OptionScanner, LeavesFlagAndIndexAloneOnAnError) {
  int flag = 5;
  GivenLong({{"fw", kRequiredArgument, &flag, 2}});
  Words words({"--fw"});
  EXPECT_EQ(Printed(words), "prog: option '--fw' requires an argument\n");
  EXPECT_EQ(m_code, '?');
  EXPECT_EQ(flag, 5);
  EXPECT_EQ(m_index, -7);
}

TEST_F(OptionScanner, ReportsTheIndexOfALongOptionOnly) {
  GivenLong({{"isp", kNoArgument, nullptr, 8}, {"fw", kNoArgument, nullptr, 2}});
  m_scanner.AddShortCmds("v");
  Words words({"--f", "-v", "--isp"});
  EXPECT_EQ(Step(words), 2);
  EXPECT_EQ(m_index, 1);
  EXPECT_EQ(Step(words), 'v');
  EXPECT_EQ(m_index, 1);
  EXPECT_EQ(Step(words), 8);
  EXPECT_EQ(m_index, 0);
}

TEST_F(OptionScanner, DoesWithoutAnIndexPointer) {
  GivenLong({{"isp", kNoArgument, nullptr, 8}});
  Words words({"--isp", "--isp", "-isp"});
  EXPECT_EQ(m_scanner.ParseCmdLine(words.Count(), words.Vector()), 8);
  EXPECT_EQ(m_scanner.ParseCmdLineEx(words.Count(), words.Vector(), nullptr), 8);
  EXPECT_EQ(m_scanner.ParseCmdLineLong(words.Count(), words.Vector(), nullptr), 8);
}

TEST_F(OptionScanner, PrefersAnExactNameAndOfTwoTheFirst) {
  GivenLong({{"banks", kNoArgument, nullptr, 2},
             {"bank12", kNoArgument, nullptr, 3},
             {"bank", kNoArgument, nullptr, 4},
             {"bank", kRequiredArgument, nullptr, 5}});
  EXPECT_EQ(Scan({"--bank"}), "4 @2: --bank");
}

TEST_F(OptionScanner, AcceptsInterchangeableCandidates) {
  int flag = 0;
  int other = 0;
  const Unit first = {"verify", kNoArgument, &flag, 7};
  const struct {
    Unit second;
    int code;
  } kCases[] = {
      {{"version", kNoArgument, &flag, 7}, 0},
      {{"version", kNoArgument, &flag, 6}, '?'},
      {{"version", kNoArgument, &other, 7}, '?'},
      {{"version", kOptionalArgument, &flag, 7}, '?'},
  };
  for (const auto& [second, code] : kCases) {
    m_scanner.Reset();
    GivenLong({first, second});
    Words words({"--ver"});
    EXPECT_EQ(Printed(words).empty(), code == 0);
    EXPECT_EQ(m_code, code);
  }
  EXPECT_EQ(flag, 7);
  EXPECT_EQ(m_index, 0);
}

TEST_F(OptionScanner, FindsInterchangeableCandidatesAmbiguousInLongOnlyMode) {
  GivenLong({{"verify", kNoArgument, nullptr, 7}, {"version", kNoArgument, nullptr, 7}});
  Words words({"--ver"});
  EXPECT_EQ(Printed(words, kLongOnly),
            "prog: command '--ver' is ambiguous; possibilities: '--verify' '--version'\n");
  EXPECT_EQ(m_code, '?');
}

TEST_F(OptionScanner, AddsATableUpToItsNullName) {
  const Unit table[] = {{"isp", kNoArgument, nullptr, 8},
                        {nullptr, 0, nullptr, 0},
                        {"late", kNoArgument, nullptr, 9}};
  EXPECT_EQ(m_scanner.AddLongCmds(table), 0);
  EXPECT_EQ(m_scanner.AddLongCmds(nullptr), 0);
  EXPECT_EQ(m_scanner.AddLongCmd("own", kNoArgument, nullptr, 10), 0);
  EXPECT_EQ(m_scanner.AddShortCmds("v"), 0);
  Words words({"--isp", "--own", "--late"});
  EXPECT_EQ(Step(words), 8);
  EXPECT_EQ(Step(words), 10);
  EXPECT_EQ(Printed(words), "prog: unrecognized command '--late'\n");
}

TEST_F(OptionScanner, CopiesTheUnitsOfATable) {
  Unit table[] = {{"isp", kNoArgument, nullptr, 8}, {nullptr, 0, nullptr, 0}};
  m_scanner.AddLongCmds(table);
  table[0] = {"gone", kRequiredArgument, nullptr, 1};
  EXPECT_EQ(Scan({"--isp"}), "8 @2: --isp");
}

TEST_F(OptionScanner, CountsALeadingSignAsALetterInTheFirstStepOnly) {
  m_scanner.AddShortCmds("+v");
  Words words({"-++"});
  EXPECT_EQ(Step(words), '+');
  EXPECT_EQ(Printed(words), "prog: invalid option -- '+'\n");
  EXPECT_EQ(m_code, '?');
}

TEST_F(OptionScanner, DropsOneLeadingSignAtEachLaterStep) {
  m_scanner.AddShortCmds("+-v");
  Words words({"-v", "-v-", "-v"});
  EXPECT_EQ(Step(words), 'v');
  EXPECT_EQ(Step(words), 'v');
  EXPECT_EQ(Printed(words), "prog: invalid option -- '-'\n");
}

TEST_F(OptionScanner, SeesAColonAfterASignFromTheSecondStepOn) {
  m_scanner.AddShortCmds("-:a:");
  Words words({"-x", "-x", "-a"});
  EXPECT_EQ(Printed(words), "prog: invalid option -- 'x'\n");
  EXPECT_EQ(Printed(words), "");
  EXPECT_EQ(Printed(words), "");
  EXPECT_EQ(m_code, ':');
}

TEST_F(OptionScanner, PermutesWhateverTheLeadingSign) {
  for (const char* short_cmds : {"+v", "-v"}) {
    m_scanner.Reset();
    m_scanner.AddShortCmds(short_cmds);
    EXPECT_EQ(Scan({"a", "-v"}), "v @2: -v a");
  }
}

TEST_F(OptionScanner, RemembersThroughResetThatItHasStarted) {
  m_scanner.AddShortCmds("+v");
  Words words({"-+"});
  EXPECT_EQ(Step(words), '+');
  m_scanner.Reset();
  m_scanner.AddShortCmds("+v");
  EXPECT_EQ(Printed(words), "prog: invalid option -- '+'\n");
}

TEST_F(OptionScanner, ReadsADoubleDashWordAsLettersWithoutLongOptions) {
  Words words({"--x"});
  EXPECT_EQ(Printed(words), "prog: invalid option -- '-'\n");
  EXPECT_EQ(Printed(words), "prog: invalid option -- 'x'\n");
  EXPECT_EQ(m_scanner.GetUnknownChar(), 'x');
  EXPECT_EQ(Step(words), -1);
}

TEST_F(OptionScanner, FindsADashAmongTheLettersWithoutLongOptions) {
  m_scanner.AddShortCmds("x-");
  EXPECT_EQ(Scan({"--x", "--", "-x"}), "- x @3: --x -- -x");
}

TEST_F(OptionScanner, AcceptsAnyCharacterAsALetter) {
  m_scanner.AddShortCmds("#1=");
  EXPECT_EQ(Scan({"-#1", "-="}), "# 1 = @3: -#1 -=");
}

TEST_F(OptionScanner, ReadsOneDashAsLettersOutsideLongOnlyMode) {
  GivenLong({{"vx", kNoArgument, nullptr, 7}});
  m_scanner.AddShortCmds("vx");
  EXPECT_EQ(Scan({"-vx"}), "v x @2: -vx");
}

TEST_F(OptionScanner, ChoosesBetweenLongAndShortInLongOnlyMode) {
  // clang-format off
  const Unit table[] = {
      {"verify", kNoArgument,       nullptr, 7},
      {"fw",     kRequiredArgument, nullptr, 8},
      {nullptr,  0,                 nullptr, 0},
  };
  const struct {
    const char* word;
    const char* dump;
  } kCases[] = {
      {"-verify",  "7 @2: -verify"},
      {"--verify", "7 @2: --verify"},
      {"-ve",      "7 @2: -ve"},
      {"-v",       "v @2: -v"},
      {"-va",      "v a @2: -va"},
      {"-f=x=y",   "8{x=y} @2: -f=x=y"},
      {"-av",      "a v @2: -av"},
      {"-v=1",     "? @2: -v=1"},
      {"--a",      "? @2: --a"},
      {"-zv",      "? @2: -zv"},
  };
  // clang-format on
  const std::string printed = PrintedErrors([&] {
    for (const auto& [word, dump] : kCases) {
      m_scanner.Reset();
      m_scanner.AddLongCmds(table);
      m_scanner.AddShortCmds("va");
      EXPECT_EQ(Scan({word}, kLongOnly), dump);
    }
  });
  EXPECT_EQ(printed,
            "prog: option '-verify' doesn't allow an argument\n"
            "prog: unrecognized command '--a'\n"
            "prog: unrecognized command '-zv'\n");
}

TEST_F(OptionScanner, PrintsANameWhenTheProgramHasNone) {
  std::string word = "-x";
  char* argv[] = {nullptr, word.data(), nullptr};
  EXPECT_EQ(PrintedErrors([&] { m_code = m_scanner.ParseCmdLine(2, argv); }),
            "zvisp: invalid option -- 'x'\n");
  EXPECT_EQ(m_code, '?');
}

TEST_F(OptionScanner, ReadsANullWordAsANonOptionAndNeverAsAnArgument) {
  GivenLong({{"fw", kRequiredArgument, nullptr, 2}});
  std::string program = "prog";
  std::string option = "--fw";
  char* argv[] = {program.data(), nullptr, option.data(), nullptr};
  EXPECT_EQ(PrintedErrors([&] { m_code = m_scanner.ParseCmdLine(4, argv); }),
            "prog: option '--fw' requires an argument\n");
  EXPECT_EQ(m_code, '?');
  EXPECT_EQ(m_scanner.ParseCmdLine(4, argv), -1);
  EXPECT_EQ(argv[1], option.data());
  EXPECT_EQ(m_scanner.GetCmdIndex(), 2);
}

TEST_F(OptionScanner, StaysInsideAVectorThatHasShrunk) {
  m_scanner.AddShortCmds("vf:");
  Words words({"a", "-v", "b", "-v", "-v", "c", "-v", "-v"});
  for (int i = 0; i < 5; ++i) {
    EXPECT_EQ(Step(words), 'v');
  }
  std::string program = "prog";
  char* shorter[] = {program.data(), nullptr};
  EXPECT_EQ(m_scanner.ParseCmdLine(1, shorter), -1);
  EXPECT_EQ(m_scanner.GetCmdIndex(), 1);
}

TEST_F(OptionScanner, StaysInsideAVectorThatEndsWithinACluster) {
  m_scanner.AddShortCmds("vf:");
  Words words({"a", "b", "-vf"});
  EXPECT_EQ(Step(words), 'v');
  EXPECT_EQ(PrintedErrors([&] { m_code = m_scanner.ParseCmdLine(1, words.Vector()); }),
            "prog: option requires an argument -- 'f'\n");
  EXPECT_EQ(m_code, '?');
  EXPECT_EQ(m_scanner.ParseCmdLine(1, words.Vector()), -1);
}

TEST_F(OptionScanner, IgnoresUnitsWithoutANameAndANullString) {
  GivenLong({{nullptr, kNoArgument, nullptr, 1}, {"fw", kNoArgument, nullptr, 2}});
  m_scanner.AddShortCmds(nullptr);
  EXPECT_EQ(Scan({"--fw", "--f"}), "2 2 @3: --fw --f");
}

TEST_F(OptionScanner, ReadsANullStringAsNoLetters) {
  m_scanner.AddShortCmds(nullptr);
  Words words({"-#"});
  EXPECT_EQ(Printed(words), "prog: invalid option -- '#'\n");
}

TEST_F(OptionScanner, DoesNothingWhenAPieceIsCalledTooEarly) {
  GivenLong({{"fw", kNoArgument, nullptr, 2}});
  m_scanner.AddShortCmds("v");
  Words words({"a", "--fw"});
  EXPECT_EQ(m_scanner.ParseLongCmd(words.Count(), words.Vector(), &m_index, 0, "--"), -1);
  EXPECT_STREQ(m_scanner.ParseCmdLineInital(), "v");
  m_scanner.ExchangeAdjacentSubsequence(words.Vector());
  EXPECT_EQ(words.Order(), "a --fw");
  EXPECT_EQ(m_scanner.GetCmdIndex(), 1);
}

TEST_F(OptionScanner, KeepsItsPlaceWhenItIsPreparedInTheMiddleOfAScan) {
  m_scanner.AddShortCmds("vx");
  Words words({"-v", "-x"});
  EXPECT_EQ(Step(words), 'v');
  m_scanner.ParseCmdLineInital();
  EXPECT_EQ(m_scanner.GetCmdIndex(), 2);
  EXPECT_EQ(Step(words), 'x');
}

TEST_F(OptionScanner, KeepsTheRunOfNonOptionsWhenItIsMovedByHand) {
  m_scanner.AddShortCmds("v");
  Words words({"a", "-v"});
  EXPECT_EQ(Step(words), 'v');
  m_scanner.ExchangeAdjacentSubsequence(words.Vector());
  EXPECT_EQ(words.Order(), "-v a");
  EXPECT_EQ(Step(words), -1);
  EXPECT_EQ(m_scanner.GetCmdIndex(), 2);
}

TEST_F(OptionScanner, StartsAFreshScanAfterReset) {
  GivenLong({{"fw", kRequiredArgument, nullptr, 2}});
  EXPECT_EQ(PrintedErrors([&] {
              EXPECT_EQ(Scan({"a", "--fw=x", "--no"}), "2{x} ? @3: --fw=x --no a");
            }),
            "prog: unrecognized command '--no'\n");
  m_scanner.Reset();
  ExpectStartState();
  GivenLong({{"isp", kNoArgument, nullptr, 3}});
  EXPECT_EQ(PrintedErrors([&] {
              EXPECT_EQ(Scan({"b", "--isp", "--fw"}), "3 ? @3: --isp --fw b");
            }),
            "prog: unrecognized command '--fw'\n");
}

TEST_F(OptionScanner, KeepsTwoScannersApart) {
  CpZvCmdLindParse other;
  other.AddShortCmds("b");
  m_scanner.AddShortCmds("a");
  Words words({"-aa"});
  Words others({"-bb", "x"});
  EXPECT_EQ(Step(words), 'a');
  EXPECT_EQ(other.ParseCmdLine(others.Count(), others.Vector()), 'b');
  EXPECT_EQ(Step(words), 'a');
  EXPECT_EQ(other.ParseCmdLine(others.Count(), others.Vector()), 'b');
  EXPECT_EQ(other.GetCmdIndex(), 2);
}

}  // namespace
