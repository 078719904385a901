// SPDX-License-Identifier: MIT
#include "line/job/job_words.h"

#include <algorithm>
#include <string_view>

namespace line {

namespace {

constexpr std::string_view kUnit = "{unit}";
constexpr std::string_view kPlace = "{place}";

}  // namespace

std::string Expanded(const std::string& text, const std::string& unit, const std::string& place) {
  std::string expanded;
  for (std::string_view rest = text; !rest.empty();) {
    if (rest.starts_with(kUnit)) {
      expanded += unit;
      rest.remove_prefix(kUnit.size());
    } else if (rest.starts_with(kPlace)) {
      expanded += place;
      rest.remove_prefix(kPlace.size());
    } else {
      expanded += rest.front();
      rest.remove_prefix(1);
    }
  }
  return expanded;
}

std::vector<std::string> Expanded(std::vector<std::string> words, const std::string& unit,
                                  const std::string& place) {
  for (std::string& word : words) {
    word = Expanded(word, unit, place);
  }
  return words;
}

std::vector<std::string> WordsOf(const JobStep& step, const JobPlace& place,
                                 const std::string& unit) {
  // In front, because an option without its value would take the next word for it.
  std::vector<std::string> words = {"--comm", std::to_string(place.comm)};
  if (place.slave) words.insert(words.end(), {"--slave", std::to_string(*place.slave)});
  const std::vector<std::string> own = Expanded(step.words, unit, place.name);
  words.insert(words.end(), own.begin(), own.end());
  return words;
}

std::string WhyNotInWords(const JobStep& step, const std::string& unit) {
  const bool has_unit =
      std::any_of(step.words.begin(), step.words.end(),
                  [](const std::string& word) { return word.find(kUnit) != std::string::npos; });
  const bool leads_away =
      unit.find('/') != std::string::npos || unit.find("..") != std::string::npos;
  if (!has_unit || !leads_away) return "";
  return "The serial " + unit + " has \"/\" or \"..\" in it, and the words of step \"" + step.name +
         "\" name a file by {unit}; take {place} instead.";
}

}  // namespace line
