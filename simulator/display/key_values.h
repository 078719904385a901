// SPDX-License-Identifier: MIT
//
// The "key = value" files of a display: one pair a line, blanks around both ignored, lines that are
// empty or begin with "#" skipped.
#ifndef ZVISP_SIMULATOR_DISPLAY_KEY_VALUES_H_
#define ZVISP_SIMULATOR_DISPLAY_KEY_VALUES_H_

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace simulator {

// A line that says something: its number, counted from 1, and its text without the blanks around.
struct TextLine {
  unsigned number;
  std::string_view text;
};
// The lines point into `text`.
std::vector<TextLine> SplitLines(std::string_view text);

std::string_view Trim(std::string_view text);

struct KeyValue {
  std::string_view key;
  std::string_view value;
};
// Splits at the first "="; nothing when there is none or the key is empty.
std::optional<KeyValue> SplitKeyValue(std::string_view text);

// A whole decimal or "0x" hexadecimal number of 32 bits.
std::optional<std::uint32_t> ParseNumber(std::string_view text);

}  // namespace simulator

#endif  // ZVISP_SIMULATOR_DISPLAY_KEY_VALUES_H_
