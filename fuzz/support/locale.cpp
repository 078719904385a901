// SPDX-License-Identifier: MIT
//
// setlocale for the fuzz targets, in place of the C library's: that one looks every category up
// anew at each switch, and a profile is read with dozens of switches. Here the two locales are
// loaded once. The environment's locale is always "C.UTF-8", and no other one but "C" exists.
#include <locale.h>

#include <string_view>

#include "support/fuzzing.h"

namespace {

constexpr const char* kPlain = "C";
constexpr const char* kEnvironment = "C.UTF-8";

// The name of the character type's locale; the other categories have no effect on a target.
const char* character_type = kPlain;

void Switch(const char* name) {
  static const locale_t plain = newlocale(LC_ALL_MASK, kPlain, nullptr);
  static const locale_t environment = newlocale(LC_ALL_MASK, kEnvironment, nullptr);
  PROMISE(environment != nullptr);
  uselocale(name == kPlain ? plain : environment);
  character_type = name;
}

}  // namespace

extern "C" char* setlocale(int category, const char* name) noexcept {
  if (name == nullptr) return const_cast<char*>(character_type);
  const std::string_view wanted = *name == '\0' ? kEnvironment : name;
  const bool is_plain = wanted == kPlain;
  if (!is_plain && wanted != kEnvironment) return nullptr;
  const char* const accepted = is_plain ? kPlain : kEnvironment;
  if (category == LC_CTYPE || category == LC_ALL) Switch(accepted);
  return const_cast<char*>(accepted);
}
