// SPDX-License-Identifier: MIT
#include "signer/report.h"

#include <cstdarg>
#include <cstdio>

namespace signer {
namespace {

// One line with the name of the signer in front, because zvisp prints its own lines around it.
[[gnu::format(printf, 1, 0)]] void PrintLine(const char* format, va_list arguments) {
  std::printf("Reference signer: ");
  std::vprintf(format, arguments);
  std::printf("\n");
}

}  // namespace

bool Refuse(const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  PrintLine(format, arguments);
  va_end(arguments);
  return false;
}

void Note(const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  PrintLine(format, arguments);
  va_end(arguments);
}

}  // namespace signer
