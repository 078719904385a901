// SPDX-License-Identifier: MIT
#include "support/profile_model.h"

#include <algorithm>
#include <vector>

namespace {

constexpr std::size_t kLongestLine = 1023;

std::string_view Trimmed(std::string_view text) {
  const std::size_t first = text.find_first_not_of(' ');
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(' ') - first + 1);
}

// A line that is too long ends the file.
std::vector<std::string_view> LinesOf(std::string_view content) {
  std::vector<std::string_view> lines;
  while (!content.empty()) {
    const std::size_t end = std::min(content.find('\n'), content.size());
    if (end > kLongestLine) break;
    lines.push_back(content.substr(0, end));
    content.remove_prefix(std::min(end + 1, content.size()));
  }
  return lines;
}

}  // namespace

std::string ModelProfileValue(std::string_view section, std::string_view key,
                              std::string_view content) {
  const std::string header = "[" + std::string(section) + "]";
  const std::vector<std::string_view> lines = LinesOf(content);
  auto line = std::find_if(lines.begin(), lines.end(),
                           [&](std::string_view text) { return Trimmed(text) == header; });
  if (line == lines.end()) return "";
  for (++line; line != lines.end(); ++line) {
    const std::size_t equals = line->find('=');
    if (equals == std::string_view::npos) return "";
    if (Trimmed(line->substr(0, equals)) == key) {
      return std::string(Trimmed(line->substr(line->rfind('=') + 1)));
    }
  }
  return "";
}

bool IsSevenBit(std::string_view text) {
  return std::all_of(text.begin(), text.end(),
                     [](char byte) { return static_cast<unsigned char>(byte) < 0x80; });
}
