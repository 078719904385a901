// SPDX-License-Identifier: MIT
#include "line/event/check_text.h"

#include <algorithm>
#include <string_view>

#include "line/event/screen_text.h"

namespace line {

namespace {

constexpr std::size_t kColumns = 80;
constexpr std::size_t kIndent = 9;
// Where a short text begins after its title.
constexpr std::size_t kShortText = 48;

struct Verdict {
  const char* word;
  Tone tone;
};

// In the order of CheckOutcome.
constexpr Verdict kVerdicts[] = {{"PASS", Tone::kGood},
                                 {"WARN", Tone::kWarning},
                                 {"FAIL", Tone::kBad},
                                 {"not run", Tone::kPlain}};

// Breaks a text between words.
std::vector<std::string> Wrapped(std::string_view text, std::size_t columns) {
  std::vector<std::string> lines;
  while (!text.empty()) {
    const std::size_t end = std::min(text.find(' '), text.size());
    const std::string word(text.substr(0, end));
    text.remove_prefix(std::min(end + 1, text.size()));
    if (!lines.empty() && Columns(lines.back()) + 1 + Columns(word) <= columns) {
      lines.back() += " " + word;
    } else {
      lines.push_back(word);
    }
  }
  return lines;
}

}  // namespace

std::vector<TextLine> LinesOfCheck(const CheckEvent& check) {
  const Verdict verdict = kVerdicts[static_cast<std::size_t>(check.outcome)];
  std::string head = verdict.word;
  head.resize(kIndent, ' ');
  head += check.title;
  const std::string whole = CleanText(check.text);
  if (!whole.empty() && head.size() < kShortText && Columns(whole) <= kColumns - kShortText) {
    head.resize(kShortText, ' ');
    return {{true, verdict.tone, head + whole}};
  }
  std::vector<TextLine> lines = {{true, verdict.tone, head}};
  for (const std::string& text : Wrapped(whole, kColumns - kIndent)) {
    lines.push_back({true, verdict.tone, std::string(kIndent, ' ') + text});
  }
  return lines;
}

std::string CountsOfChecks(const SummaryEvent& summary) {
  std::string text;
  for (const auto& [outcome, count] : summary.checks) {
    const std::string name =
        outcome == CheckOutcome::kNotRun ? "not run" : std::string(NameOf(outcome));
    text += (text.empty() ? "" : ", ") + std::to_string(count) + " " + name;
  }
  return text;
}

}  // namespace line
