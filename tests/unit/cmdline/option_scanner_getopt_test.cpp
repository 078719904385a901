// SPDX-License-Identifier: MIT
//
// The scanner and the C library's getopt_long on the same random argument vectors: code, argument,
// index, flag, table index, character at fault and the final order of the words must be the same,
// step by step.
//
// Known differences. They are not generated or not compared here; the scanner's other tests have
// them:
//  - the text of messages, and the names of an ambiguous option, which are printed in any case;
//  - a leading "-" or "+" of the letters, which asks getopt_long for another order, and "W;";
//  - "-" inside a cluster, which for some C libraries ends the options;
//  - two long options of the same kind, flag and value (values are unique here), or of the same
//    name: C libraries differ in when these are ambiguous;
//  - an empty table, with which this scanner reads "--x" as letters;
//  - characters above 0x7F, whose sign differs between platforms;
//  - words after the end: neither is called again after -1;
//  - the value of a wrong option with a flag, which some C libraries report as 0.
#include "cmdline/option_scanner.h"

#include <fcntl.h>
#include <getopt.h>
#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <ostream>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace {

// 10,010 vectors every day, and 330,000 in the slow tests, where ZVISP_THOROUGH is set.
const int kTables = std::getenv("ZVISP_THOROUGH") == nullptr ? 182 : 6000;
constexpr int kVectorsPerTable = 55;
constexpr std::uint32_t kSeed = 20240229;
constexpr int kUntouched = -77;

constexpr const char* kNames[] = {"isp",  "ispuser", "ispdiff", "verify", "version", "ver",
                                  "fw",   "fw1",     "fw12",    "bank",   "bank1",   "boot",
                                  "read", "readsr",  "reg",     "a",      "ab",      "x-y"};
constexpr const char* kPlainWords[] = {"a.bin", "", "-", "0x94", "x=y", "isp", "b", "--", "16"};
constexpr const char* kValues[] = {"", "1", "a=b", "=", "-x", "--isp"};
constexpr char kLetters[] = "abfirvx";
constexpr char kStrangers[] = "qz:;=";

// getopt_long keeps its position in globals, and each C library restarts in its own way.
void RestartGetopt() {
#ifdef __GLIBC__
  optind = 0;
#else
  optind = 1;
  optreset = 1;
#endif
  opterr = 0;
  optopt = '?';
}

// Discards standard error during its lifetime: a third of the vectors have an error.
class QuietStderr {
 public:
  QuietStderr() : m_saved(dup(STDERR_FILENO)) {
    const int nowhere = open("/dev/null", O_WRONLY);
    dup2(nowhere, STDERR_FILENO);
    close(nowhere);
  }
  ~QuietStderr() {
    std::fflush(stderr);
    dup2(m_saved, STDERR_FILENO);
    close(m_saved);
  }
  QuietStderr(const QuietStderr&) = delete;
  QuietStderr& operator=(const QuietStderr&) = delete;

 private:
  int m_saved;
};

class Dice {
 public:
  // 0 to sides - 1. Not a standard distribution: these differ between libraries.
  std::size_t Roll(std::size_t sides) { return m_engine() % sides; }
  bool Once(std::size_t in) { return Roll(in) == 0; }
  template <std::size_t Size>
  const char* Pick(const char* const (&texts)[Size]) {
    return texts[Roll(Size)];
  }
  template <std::size_t Size>
  char PickLetter(const char (&letters)[Size]) {
    return letters[Roll(Size - 1)];
  }

 private:
  std::mt19937 m_engine{kSeed};
};

// The same options for both scanners, each with a flag cell of its own.
struct Options {
  explicit Options(Dice& dice) : has_flags(dice.Once(2)) {
    if (dice.Once(2)) letters = ":";
    for (const char* letter = kLetters; *letter != '\0'; ++letter) {
      if (dice.Once(2)) letters.append(1, *letter).append(dice.Roll(3), ':');
    }
    for (const char* name : kNames) {
      if (dice.Once(2)) AddLong(dice, name);
    }
    if (units.empty()) AddLong(dice, "isp");
    units.push_back({nullptr, 0, nullptr, 0});
    longopts.push_back({nullptr, 0, nullptr, 0});
  }
  Options(const Options&) = delete;
  Options& operator=(const Options&) = delete;

  void AddLong(Dice& dice, const char* name) {
    const int has_arg = static_cast<int>(dice.Roll(3));
    const int value = 1000 + static_cast<int>(units.size());
    const bool has_flag = has_flags && dice.Once(2);
    units.push_back({name, has_arg, has_flag ? &our_flag : nullptr, value});
    longopts.push_back({name, has_arg, has_flag ? &their_flag : nullptr, value});
  }

  bool has_flags;
  int our_flag = 0;
  int their_flag = 0;
  std::string letters;
  std::vector<STRUCT_CP_LONG_CMD_UNIT> units;
  std::vector<option> longopts;
};

std::string RandomLong(Dice& dice, const std::string& dashes) {
  std::string word = dice.Pick(kNames);
  if (dice.Once(3)) word.resize(dice.Roll(word.size() + 1));
  if (dice.Once(12)) word += "q";
  const bool would_be_bare = word.empty();
  if (would_be_bare || dice.Once(4)) word.append("=").append(dice.Pick(kValues));
  return dashes + word;
}

std::string RandomCluster(Dice& dice) {
  std::string word = "-";
  for (std::size_t left = 1 + dice.Roll(3); left > 0; --left) {
    word += dice.Once(6) ? dice.PickLetter(kStrangers) : dice.PickLetter(kLetters);
  }
  return word;
}

std::vector<std::string> RandomWords(Dice& dice, bool long_only) {
  std::vector<std::string> words = {"prog"};
  for (std::size_t left = dice.Roll(9); left > 0; --left) {
    switch (dice.Roll(5)) {
      case 0:
        words.push_back(RandomCluster(dice));
        break;
      case 1:
      case 2:
        words.push_back(RandomLong(dice, long_only && dice.Once(2) ? "-" : "--"));
        break;
      default:
        words.emplace_back(dice.Pick(kPlainWords));
    }
  }
  return words;
}

std::vector<char*> PointersTo(std::vector<std::string>& words) {
  std::vector<char*> pointers;
  for (std::string& word : words) {
    pointers.push_back(word.data());
  }
  pointers.push_back(nullptr);
  return pointers;
}

// What one step returned.
struct Answer {
  int code;
  const char* argument;
  int index;
  int flag;
  int long_index;
  int unknown;
  bool operator==(const Answer&) const = default;
};

void PrintTo(const Answer& answer, std::ostream* out) {
  *out << "code " << answer.code << " argument "
       << (answer.argument != nullptr ? answer.argument : "(none)") << " index " << answer.index
       << " flag " << answer.flag << " long index " << answer.long_index << " unknown "
       << answer.unknown;
}

// One vector in two copies of its pointers, scanned by both, step by step.
class Race {
 public:
  Race(Options& options, std::vector<std::string>& words, bool long_only)
      : m_options(options),
        m_long_only(long_only),
        m_count(static_cast<int>(words.size())),
        m_ours(PointersTo(words)),
        m_theirs(m_ours) {
    m_options.our_flag = 0;
    m_options.their_flag = 0;
    m_scanner.AddShortCmds(m_options.letters.c_str());
    m_scanner.AddLongCmds(m_options.units.data());
    RestartGetopt();
  }

  Answer Ours() {
    int at = kUntouched;
    const int code = m_long_only ? m_scanner.ParseCmdLineLong(m_count, m_ours.data(), &at)
                                 : m_scanner.ParseCmdLineEx(m_count, m_ours.data(), &at);
    const int unknown = ComparesUnknown(code) ? m_scanner.GetUnknownChar() : 0;
    return {code,
            m_scanner.GetCmdArg(),
            m_scanner.GetCmdIndex(),
            m_options.our_flag,
            IsError(code) ? kUntouched : at,
            unknown};
  }

  Answer Theirs() {
    int at = kUntouched;
    const auto scan = m_long_only ? getopt_long_only : getopt_long;
    const int code =
        scan(m_count, m_theirs.data(), m_options.letters.c_str(), m_options.longopts.data(), &at);
    const int unknown = ComparesUnknown(code) ? optopt : 0;
    const bool has_argument = code != -1 && !IsError(code);
    return {code,
            has_argument ? optarg : nullptr,
            optind,
            m_options.their_flag,
            IsError(code) ? kUntouched : at,
            unknown};
  }

  bool SameOrder() const { return m_ours == m_theirs; }

 private:
  static bool IsError(int code) { return code == '?' || code == ':'; }
  bool ComparesUnknown(int code) const { return IsError(code) && !m_options.has_flags; }

  Options& m_options;
  bool m_long_only;
  int m_count;
  std::vector<char*> m_ours;
  std::vector<char*> m_theirs;
  CpZvCmdLindParse m_scanner;
};

std::string Description(const Options& options, const std::vector<std::string>& words) {
  std::string text = "letters \"" + options.letters + "\" long";
  for (std::size_t i = 0; i + 1 < options.units.size(); ++i) {
    text.append(" ").append(options.units[i].szName);
    text.append(static_cast<std::size_t>(options.units[i].nHasArg), ':');
  }
  text += " words";
  for (const std::string& word : words) {
    text.append(" [").append(word).append("]");
  }
  return text;
}

// How often each kind of answer was seen: without one, the comparison proves nothing about it.
struct Tally {
  int vectors = 0;
  int errors = 0;
  int missing = 0;
  int stored = 0;
  int letters = 0;
  int long_values = 0;
  int arguments = 0;

  void Count(const Answer& answer) {
    errors += answer.code == '?';
    missing += answer.code == ':';
    stored += answer.code == 0;
    letters += answer.code >= 'a' && answer.code <= 'z';
    long_values += answer.code >= 1000;
    arguments += answer.argument != nullptr;
  }
};

testing::AssertionResult BothAgree(Options& options, std::vector<std::string>& words,
                                   bool long_only, Tally& tally) {
  Race race(options, words, long_only);
  ++tally.vectors;
  for (int step = 1;; ++step) {
    const Answer ours = race.Ours();
    const Answer theirs = race.Theirs();
    tally.Count(ours);
    if (ours == theirs && ours.code != -1) continue;
    if (ours == theirs && race.SameOrder()) return testing::AssertionSuccess();
    return testing::AssertionFailure()
           << Description(options, words) << "\nstep " << step << "\nours   "
           << testing::PrintToString(ours) << "\ntheirs " << testing::PrintToString(theirs)
           << (race.SameOrder() ? "" : "\nin different order");
  }
}

void CompareOnRandomVectors(int tables, bool long_only, Tally& tally) {
  unsetenv("POSIXLY_CORRECT");
  const QuietStderr quiet;
  Dice dice;
  for (int table = 0; table < tables; ++table) {
    Options options(dice);
    for (int i = 0; i < kVectorsPerTable; ++i) {
      std::vector<std::string> words = RandomWords(dice, long_only);
      const std::vector<std::string> given = words;
      ASSERT_TRUE(BothAgree(options, words, long_only, tally)) << "table " << table;
      ASSERT_EQ(words, given) << "a word itself was changed";
    }
  }
}

TEST(OptionScannerAndGetopt, AgreeOnRandomVectors) {
  Tally tally;
  CompareOnRandomVectors(kTables, false, tally);
  EXPECT_GE(tally.vectors, 10000);
  for (const int seen : {tally.errors, tally.missing, tally.stored, tally.letters,
                         tally.long_values, tally.arguments}) {
    EXPECT_GT(seen, tally.vectors / 66);
  }
}

#ifdef __GLIBC__
// The getopt_long_only of other C libraries has its own rules for abbreviations.
TEST(OptionScannerAndGetopt, AgreeInLongOnlyMode) {
  Tally tally;
  CompareOnRandomVectors(kTables / 4, true, tally);
  EXPECT_GE(tally.vectors, 2000);
  for (const int seen : {tally.errors, tally.missing, tally.stored, tally.letters,
                         tally.long_values, tally.arguments}) {
    EXPECT_GT(seen, tally.vectors / 82);
  }
}
#endif

}  // namespace
