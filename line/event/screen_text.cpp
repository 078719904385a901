// SPDX-License-Identifier: MIT
#include "line/event/screen_text.h"

#include <algorithm>
#include <cstdint>
#include <iterator>

namespace line {

namespace {

constexpr char32_t kReplacement = 0xFFFD;
constexpr char kEscape = '\x1b';

// Takes the next character off the text; U+FFFD for a byte that starts none.
char32_t TakeCharacter(std::string_view& text) {
  const auto first = static_cast<std::uint8_t>(text[0]);
  const std::size_t length = first < 0x80             ? 1
                             : (first & 0xE0) == 0xC0 ? 2
                             : (first & 0xF0) == 0xE0 ? 3
                             : (first & 0xF8) == 0xF0 ? 4
                                                      : 0;
  char32_t character = length < 2 ? first : first & (0x7Fu >> length);
  std::size_t taken = 1;
  while (taken < length && taken < text.size() && (text[taken] & 0xC0) == 0x80) {
    character = (character << 6) | (static_cast<std::uint8_t>(text[taken]) & 0x3F);
    ++taken;
  }
  // By length: the lowest character that needs so many bytes. A longer form than needed is not
  // valid, and neither is a surrogate.
  constexpr char32_t kLowest[] = {0, 0, 0x80, 0x800, 0x10000};
  const bool is_whole = length != 0 && taken == length && character >= kLowest[length] &&
                        character <= 0x10FFFF && (character < 0xD800 || character > 0xDFFF);
  text.remove_prefix(is_whole ? taken : 1);
  return is_whole ? character : kReplacement;
}

void AppendCharacter(std::string& out, char32_t character) {
  if (character < 0x80) {
    out += static_cast<char>(character);
    return;
  }
  const int more = character < 0x800 ? 1 : character < 0x10000 ? 2 : 3;
  constexpr std::uint8_t kFirst[] = {0, 0xC0, 0xE0, 0xF0};
  out += static_cast<char>(kFirst[more] | (character >> (6 * more)));
  for (int i = more - 1; i >= 0; --i) {
    out += static_cast<char>(0x80 | ((character >> (6 * i)) & 0x3F));
  }
}

// Leaves out "ESC [ ... letter"; of any other sequence, the escape and the next byte.
void SkipEscapeSequence(std::string_view& text) {
  text.remove_prefix(1);
  if (text.empty()) return;
  const bool is_long = text[0] == '[';
  text.remove_prefix(1);
  while (is_long && !text.empty()) {
    const char byte = text[0];
    text.remove_prefix(1);
    if (byte >= '@' && byte <= '~') return;
  }
}

bool IsControl(char32_t character) {
  return character < 0x20 || (character >= 0x7F && character < 0xA0);
}

struct Range {
  char32_t first, last;
};

// Characters that take two columns, and none: what serials and names of files can be expected to
// hold, not the whole of Unicode.
constexpr Range kWide[] = {{0x1100, 0x115F}, {0x2E80, 0xA4CF},   {0xAC00, 0xD7A3},
                           {0xF900, 0xFAFF}, {0xFE30, 0xFE6F},   {0xFF00, 0xFF60},
                           {0xFFE0, 0xFFE6}, {0x1F300, 0x1FAFF}, {0x20000, 0x3FFFD}};
constexpr Range kNarrow[] = {{0x0300, 0x036F}, {0x200B, 0x200F}, {0xFE00, 0xFE0F}};

template <std::size_t kCount>
bool IsIn(const Range (&ranges)[kCount], char32_t character) {
  return std::any_of(std::begin(ranges), std::end(ranges), [character](const Range& range) {
    return range.first <= character && character <= range.last;
  });
}

std::size_t ColumnsOf(char32_t character) {
  if (IsIn(kNarrow, character)) return 0;
  return IsIn(kWide, character) ? 2 : 1;
}

}  // namespace

std::string CleanText(std::string_view text) {
  std::string clean;
  while (!text.empty()) {
    if (text[0] == kEscape) {
      SkipEscapeSequence(text);
      continue;
    }
    const char32_t character = TakeCharacter(text);
    if (character == '\t' || character == '\n') {
      clean += ' ';
    } else if (!IsControl(character)) {
      AppendCharacter(clean, character);
    }
  }
  return clean;
}

std::vector<std::string> CleanLines(std::string_view text) {
  std::vector<std::string> lines;
  while (!text.empty()) {
    const std::size_t end = std::min(text.find('\n'), text.size());
    lines.push_back(CleanText(text.substr(0, end)));
    text.remove_prefix(std::min(end + 1, text.size()));
  }
  return lines;
}

std::size_t Columns(std::string_view text) {
  std::size_t columns = 0;
  while (!text.empty()) {
    columns += ColumnsOf(TakeCharacter(text));
  }
  return columns;
}

std::string Padded(std::string text, std::size_t columns) {
  const std::size_t taken = Columns(text);
  if (taken < columns) text.append(columns - taken, ' ');
  return text;
}

std::string CutToColumns(std::string_view text, std::size_t columns) {
  std::string cut;
  std::size_t taken = 0;
  while (!text.empty()) {
    const char32_t character = TakeCharacter(text);
    taken += ColumnsOf(character);
    if (taken > columns) break;
    AppendCharacter(cut, character);
  }
  return cut;
}

}  // namespace line
