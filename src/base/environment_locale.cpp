// SPDX-License-Identifier: MIT
#include "base/environment_locale.h"

#include <clocale>

namespace zvisp {

namespace {

// In the order in which they are tried; the last one always exists.
constexpr const char* kLocaleNames[] = {"", "C.UTF-8", "en_US.UTF-8", "C"};

constexpr int kOtherCategories[] = {LC_COLLATE, LC_MESSAGES, LC_MONETARY, LC_NUMERIC, LC_TIME};

// The usual case, and much cheaper than the other one.
bool SwitchTogether() {
  return std::setlocale(LC_ALL, "") != nullptr &&
         ReadsPathsOfTheSystem(std::setlocale(LC_CTYPE, nullptr));
}

// A single unknown name makes the system refuse all categories together.
void SwitchOneByOne() {
  for (const int category : kOtherCategories) {
    std::setlocale(category, "");
  }
  for (const char* const name : kLocaleNames) {
    const char* const accepted = std::setlocale(LC_CTYPE, name);
    if (accepted != nullptr && ReadsPathsOfTheSystem(accepted)) return;
  }
}

}  // namespace

ScopedEnvironmentLocale::ScopedEnvironmentLocale()
    : m_saved_ctype(std::setlocale(LC_CTYPE, nullptr)) {
  if (!SwitchTogether()) SwitchOneByOne();
}

ScopedEnvironmentLocale::~ScopedEnvironmentLocale() {
  if (m_restore) std::setlocale(LC_CTYPE, m_saved_ctype.c_str());
}

}  // namespace zvisp
