// SPDX-License-Identifier: MIT
#include "display/wide_text.h"

#include <cstring>

#include "plugin/zvisp_plugin.h"

namespace simulator {
namespace {

constexpr char32_t kReplacement = 0xFFFD;
constexpr std::size_t kBytesOfACharacter = 4;

// The shapes of a UTF-8 sequence, shortest first.
struct Shape {
  char32_t last;         // highest character that has this shape
  unsigned lead_bits;    // fixed high bits of the first byte
  unsigned lead_mask;    // which bits of the first byte are fixed
  std::size_t trailing;  // bytes after the first
};

// clang-format off
constexpr Shape kShapes[] = {
  // last     lead  mask  trailing
  {0x7F,     0x00, 0x80, 0},
  {0x7FF,    0xC0, 0xE0, 1},
  {0xFFFF,   0xE0, 0xF0, 2},
  {0x10FFFF, 0xF0, 0xF8, 3},
};
// clang-format on

bool IsCharacter(char32_t unit) {
  return unit <= 0x10FFFF && (unit < 0xD800 || unit > 0xDFFF);
}

// The lowest character that may be written in this shape: a longer form than needed is invalid.
char32_t FirstOf(const Shape& shape) {
  return &shape == std::begin(kShapes) ? 0 : (&shape)[-1].last + 1;
}

// Takes one character off the front; one byte, as the replacement, when it is not valid.
char32_t TakeCharacter(std::string_view& utf8) {
  const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(utf8[i]); };
  for (const Shape& shape : kShapes) {
    if ((byte(0) & shape.lead_mask) != shape.lead_bits || utf8.size() <= shape.trailing) continue;
    char32_t unit = byte(0) & ~shape.lead_mask & 0xFFU;
    bool valid = true;
    for (std::size_t i = 1; i <= shape.trailing; ++i) {
      valid = valid && (byte(i) & 0xC0U) == 0x80U;
      unit = (unit << 6) | (byte(i) & 0x3FU);
    }
    if (!valid || unit < FirstOf(shape) || !IsCharacter(unit)) break;
    utf8.remove_prefix(1 + shape.trailing);
    return unit;
  }
  utf8.remove_prefix(1);
  return kReplacement;
}

}  // namespace

std::optional<std::string> ToUtf8(const wchar_t* buffer, std::size_t capacity) {
  std::string text(kBytesOfACharacter * capacity, '\0');
  if (!ZvWideToUtf8(buffer, capacity, text.data(), text.size())) return std::nullopt;
  text.resize(std::strlen(text.c_str()));
  return text;
}

std::wstring ToWide(std::string_view utf8) {
  std::wstring text;
  while (!utf8.empty()) {
    text += static_cast<wchar_t>(TakeCharacter(utf8));
  }
  return text;
}

}  // namespace simulator
