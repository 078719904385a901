// SPDX-License-Identifier: MIT
//
// The option scanner. Input: a line with the short-option letters, then one word a line.
//
// Promises: a scan ends; it only reorders the words; arguments lie inside words; and where every
// word is a whole long option or no option at all, it agrees with the few rules of ModelScan.
#include <algorithm>
#include <cstring>
#include <memory>

#include "cmdline/option_scanner.h"
#include "support/fuzzing.h"

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
  std::string argument;
};

struct Scan {
  std::vector<Step> steps;
  std::vector<std::string> order;
  int index = 1;
};

using Words = std::vector<std::string>;

Words Concatenated(const Words& first, const Words& second) {
  Words all = first;
  all.insert(all.end(), second.begin(), second.end());
  return all;
}

// Every word in memory of its own, so that a sanitizer sees a step out of it.
class Arguments {
 public:
  explicit Arguments(const Words& words) : m_words(words) {
    for (const std::string& word : m_words) {
      m_copies.push_back(std::make_unique<char[]>(word.size() + 1));
      std::memcpy(m_copies.back().get(), word.c_str(), word.size() + 1);
      m_argv.push_back(m_copies.back().get());
    }
    m_argv.push_back(nullptr);
  }
  int Count() const { return static_cast<int>(m_words.size()); }
  char* const* Vector() { return m_argv.data(); }

  Words Order() const { return Words(m_argv.begin(), m_argv.end() - 1); }
  bool Holds(const char* text) const {
    return std::any_of(m_copies.begin(), m_copies.end(), [text](const auto& copy) {
      return text >= copy.get() && text <= copy.get() + std::strlen(copy.get());
    });
  }
  bool IsReordered() const {
    Words before = m_words;
    Words after = Order();
    std::sort(before.begin(), before.end());
    std::sort(after.begin(), after.end());
    return before == after;
  }

 private:
  Words m_words;
  std::vector<std::unique_ptr<char[]>> m_copies;
  std::vector<char*> m_argv;
};

std::size_t Characters(const Words& words) {
  std::size_t sum = words.size();
  for (const std::string& word : words) {
    sum += word.size();
  }
  return sum;
}

Scan RunScanner(const Words& words, const std::string& letters, int long_only) {
  CpZvCmdLindParse scanner;
  scanner.AddShortCmds(letters.c_str());
  for (const Row& row : kOptions) {
    scanner.AddLongCmd(row.name, row.argument, nullptr, row.code);
  }
  Arguments arguments(words);
  Scan scan;
  for (;;) {
    int place = -1;
    const int code =
        scanner.ParseCmdLineHandler(arguments.Count(), arguments.Vector(), &place, long_only);
    PROMISE(arguments.IsReordered());
    PROMISE(scanner.GetCmdIndex() >= 1 && scanner.GetCmdIndex() <= std::max(1, arguments.Count()));
    if (code == kScanEnd) break;
    const char* const argument = scanner.GetCmdArg();
    PROMISE(argument == nullptr || arguments.Holds(argument));
    scan.steps.push_back({code, argument == nullptr || code == kScanError ? "" : argument});
    PROMISE(scan.steps.size() <= Characters(words));
  }
  scan.order = arguments.Order();
  scan.index = scanner.GetCmdIndex();
  return scan;
}

const Row* FindRow(const std::string& word) {
  if (word.rfind("--", 0) != 0) return nullptr;
  const std::string name = word.substr(2, word.find('=') - 2);
  for (const Row& row : kOptions) {
    if (name == row.name) return &row;
  }
  return nullptr;
}

bool IsSimple(const std::string& word) {
  return word.empty() || word[0] != '-' || word == "-" || word == "--" || FindRow(word) != nullptr;
}

// The step of the option at words[i]; takes the argument behind it, too.
Step ModelOption(const Words& words, std::size_t& i, Words& options) {
  const std::string& word = words[i];
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
  scan.order = Concatenated(options, others);
  return scan;
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  InputLines lines(data, size);
  const std::string letters = lines.Next();
  const Words words = Concatenated({"zvisp"}, lines.AllWords());
  RunScanner(words, letters, 1);
  const Scan scan = RunScanner(words, letters, 0);
  const bool simple = std::all_of(words.begin() + 1, words.end(), IsSimple);
  if (!simple || letters.find_first_of(":-+") == 0) return 0;
  const Scan model = ModelScan(words);
  PROMISE(scan.order == model.order);
  PROMISE(scan.index == model.index);
  PROMISE(std::equal(scan.steps.begin(), scan.steps.end(), model.steps.begin(), model.steps.end(),
                     [](const Step& left, const Step& right) {
                       return left.code == right.code && left.argument == right.argument;
                     }));
  return 0;
}
