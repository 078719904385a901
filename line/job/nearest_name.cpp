// SPDX-License-Identifier: MIT
#include "line/job/nearest_name.h"

#include <algorithm>

namespace line {

namespace {

// Longer ones are not slips of the hand, and would cost time.
constexpr std::size_t kLongestName = 64;

std::size_t Distance(std::string_view left, std::string_view right) {
  using Row = std::vector<std::size_t>;
  Row before_last, last(right.size() + 1), current(right.size() + 1);
  for (std::size_t j = 0; j <= right.size(); ++j) {
    last[j] = j;
  }
  for (std::size_t i = 1; i <= left.size(); ++i) {
    current[0] = i;
    for (std::size_t j = 1; j <= right.size(); ++j) {
      const std::size_t changed = last[j - 1] + (left[i - 1] == right[j - 1] ? 0 : 1);
      current[j] = std::min({last[j] + 1, current[j - 1] + 1, changed});
      const bool swapped =
          i > 1 && j > 1 && left[i - 1] == right[j - 2] && left[i - 2] == right[j - 1];
      if (swapped) current[j] = std::min(current[j], before_last[j - 2] + 1);
    }
    before_last = last;
    last = current;
  }
  return last[right.size()];
}

}  // namespace

std::string NearestName(std::string_view name, const std::vector<std::string>& names) {
  std::string nearest;
  if (name.size() > kLongestName) return nearest;
  // One slip in three letters.
  std::size_t best = std::max<std::size_t>(1, name.size() / 3) + 1;
  for (const std::string& candidate : names) {
    const std::size_t distance = Distance(name, candidate);
    if (distance >= best) continue;
    best = distance;
    nearest = candidate;
  }
  return nearest;
}

}  // namespace line
