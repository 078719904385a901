// SPDX-License-Identifier: MIT
#include "base/environment_locale.h"

#include <clocale>

namespace {

// In the order in which they are tried; the last one always exists.
constexpr const char* kLocaleNames[] = {"", "C.UTF-8", "en_US.UTF-8", "C"};

void SwitchToFirstKnownLocale() {
  for (const char* const name : kLocaleNames) {
    const char* const accepted = std::setlocale(LC_ALL, name);
    if (accepted == nullptr) continue;
    std::setlocale(LC_CTYPE, accepted);
    return;
  }
}

}  // namespace

ScopedEnvironmentLocale::ScopedEnvironmentLocale()
    : m_saved_ctype(std::setlocale(LC_CTYPE, nullptr)) {
  SwitchToFirstKnownLocale();
}

ScopedEnvironmentLocale::~ScopedEnvironmentLocale() {
  if (m_restore) std::setlocale(LC_CTYPE, m_saved_ctype.c_str());
}
