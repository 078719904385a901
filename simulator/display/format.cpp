// SPDX-License-Identifier: MIT
#include "display/format.h"

#include <cstdarg>
#include <cstdio>

namespace simulator {

std::string Format(const char* format, ...) {
  va_list args;
  va_start(args, format);
  // The first pass only measures, and uses its arguments up.
  va_list again;
  va_copy(again, args);
  const int length = std::vsnprintf(nullptr, 0, format, args);
  va_end(args);
  std::string text(length < 0 ? 0 : static_cast<std::size_t>(length), '\0');
  std::vsnprintf(text.data(), text.size() + 1, format, again);
  va_end(again);
  return text;
}

}  // namespace simulator
