// SPDX-License-Identifier: MIT
#include "display/key_values.h"

#include <charconv>

namespace simulator {
namespace {

// With the carriage return, because an editor on another system may have written the file.
constexpr std::string_view kBlanks = " \t\r";

}  // namespace

std::vector<TextLine> SplitLines(std::string_view text) {
  std::vector<TextLine> lines;
  for (unsigned number = 1; !text.empty(); ++number) {
    const std::size_t end = text.find('\n');
    const std::string_view line = Trim(text.substr(0, end));
    if (!line.empty() && line.front() != '#') lines.push_back({number, line});
    text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
  }
  return lines;
}

std::string_view Trim(std::string_view text) {
  const std::size_t first = text.find_first_not_of(kBlanks);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

std::optional<KeyValue> SplitKeyValue(std::string_view text) {
  const std::size_t equals = text.find('=');
  if (equals == std::string_view::npos) return std::nullopt;
  const KeyValue pair = {Trim(text.substr(0, equals)), Trim(text.substr(equals + 1))};
  return pair.key.empty() ? std::nullopt : std::optional<KeyValue>(pair);
}

std::optional<std::uint32_t> ParseNumber(std::string_view text) {
  int base = 10;
  if (text.substr(0, 2) == "0x") {
    base = 16;
    text.remove_prefix(2);
  }
  std::uint32_t number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number, base);
  // A number with something after it is a slip, such as "10ms".
  const bool whole = error == std::errc() && end == text.data() + text.size();
  return whole ? std::optional<std::uint32_t>(number) : std::nullopt;
}

}  // namespace simulator
