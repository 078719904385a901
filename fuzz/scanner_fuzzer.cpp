// SPDX-License-Identifier: MIT
//
// The option scanner. Input: a line with the short-option letters, then one word a line; a line
// that is one zero is a null word.
//
// Promises: a scan ends; it only reorders the words; arguments lie inside words; and where every
// word is a whole long option or no option at all, it agrees with the few rules of ModelScan.
#include <algorithm>
#include <numeric>
#include <string>

#include "cmdline/option_scanner.h"
#include "support/argument_vector.h"

using namespace zvisp;

namespace {

struct Row {
  const char* name;
  int argument;
  int code;
};

// clang-format off
constexpr Row kOptions[] = {
  // name       argument           code
  {"isp",       kNoArgument,       1},
  {"ispuser",   kNoArgument,       2},
  {"fw",        kRequiredArgument, 3},
  {"fw1",       kRequiredArgument, 4},
  {"bank",      kRequiredArgument, 5},
  {"read",      kNoArgument,       6},
  {"readsr",    kNoArgument,       7},
  {"colour",    kOptionalArgument, 8},
  {"a",         kNoArgument,       9},
};
// clang-format on

struct Step {
  int code;
  std::string_view argument;

  bool operator==(const Step&) const = default;
};

struct Scan {
  std::vector<Step> steps;
  Words order;
  int index = 1;
};

std::size_t Characters(const Words& words) {
  return std::accumulate(words.begin(), words.end(), words.size(),
                         [](std::size_t sum, std::string_view word) { return sum + word.size(); });
}

// An argument that the scanner gives; none for an error.
std::string_view ArgumentOf(int code, const CpZvCmdLindParse& scanner,
                            const ArgumentVector& arguments) {
  const char* const argument = scanner.GetCmdArg();
  PROMISE(argument == nullptr || arguments.Holds(argument));
  return argument == nullptr || code == kScanError ? std::string_view() : argument;
}

Scan RunScanner(ArgumentVector& arguments, const std::string& letters, int long_only) {
  CpZvCmdLindParse scanner;
  scanner.AddShortCmds(letters.c_str());
  for (const Row& row : kOptions) {
    scanner.AddLongCmd(row.name, row.argument, nullptr, row.code);
  }
  char* const* const argv = arguments.Fresh();
  const std::size_t most_steps = Characters(arguments.Input());
  Scan scan;
  for (;;) {
    int place = -1;
    const int code = scanner.ParseCmdLineHandler(arguments.Count(), argv, &place, long_only);
    PROMISE(scanner.GetCmdIndex() >= 1 && scanner.GetCmdIndex() <= std::max(1, arguments.Count()));
    if (code == kScanEnd) break;
    scan.steps.push_back({code, ArgumentOf(code, scanner, arguments)});
    PROMISE(scan.steps.size() <= most_steps);
  }
  PROMISE(arguments.IsReordered());
  scan.order = arguments.Order();
  scan.index = scanner.GetCmdIndex();
  return scan;
}

const Row* FindRow(std::string_view word) {
  if (word.rfind("--", 0) != 0) return nullptr;
  const std::string_view name = word.substr(2, word.find('=') - 2);
  for (const Row& row : kOptions) {
    if (name == row.name) return &row;
  }
  return nullptr;
}

bool IsSimple(std::string_view word) {
  if (word.data() == nullptr) return false;
  return word.empty() || word[0] != '-' || word == "-" || word == "--" || FindRow(word) != nullptr;
}

// The step of the option at words[i]; takes the argument after it, too.
Step ModelOption(const Words& words, std::size_t& i, Words& options) {
  const std::string_view word = words[i];
  const Row& row = *FindRow(word);
  const std::size_t equals = word.find('=');
  options.push_back(word);
  if (equals != std::string::npos) {
    if (row.argument == kNoArgument) return {kScanError, ""};
    return {row.code, word.substr(equals + 1)};
  }
  if (row.argument != kRequiredArgument) return {row.code, ""};
  if (i + 1 == words.size()) return {kScanError, ""};
  options.push_back(words[++i]);
  return {row.code, words[i]};
}

// Options with their arguments come first, then "--", then all other words in their order.
Scan ModelScan(const Words& words) {
  Scan scan;
  Words options = {words[0]};
  Words others;
  for (std::size_t i = 1; i < words.size(); ++i) {
    if (words[i] == "--") {
      options.push_back(words[i]);
      others.insert(others.end(), words.begin() + static_cast<std::ptrdiff_t>(i) + 1, words.end());
      break;
    }
    if (FindRow(words[i]) == nullptr) {
      others.push_back(words[i]);
    } else {
      scan.steps.push_back(ModelOption(words, i, options));
    }
  }
  scan.index = static_cast<int>(options.size());
  scan.order = options;
  scan.order.insert(scan.order.end(), others.begin(), others.end());
  return scan;
}

}  // namespace

void PrepareTarget() {}

void FuzzInput(const std::uint8_t* data, std::size_t size) {
  InputLines lines(data, size);
  const std::string letters(lines.Next());
  ArgumentVector arguments(lines);
  RunScanner(arguments, letters, 1);
  const Scan scan = RunScanner(arguments, letters, 0);
  const Words& words = arguments.Input();
  const bool simple = std::all_of(words.begin() + 1, words.end(), IsSimple);
  if (!simple || letters.find_first_of(":-+") == 0) return;
  const Scan model = ModelScan(words);
  PROMISE(scan.order == model.order);
  PROMISE(scan.index == model.index);
  PROMISE(scan.steps == model.steps);
}
