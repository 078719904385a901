// SPDX-License-Identifier: MIT
#include <cstring>

#include "base/environment_locale.h"

namespace zvisp {

// Paths are UTF-8 here, and the "C" locale reads each of their bytes as a Latin-1 character. Jobs
// of launchd and cron, and some sessions over ssh, name no locale and so get that one.
bool ReadsPathsOfTheSystem(const char* locale_name) {
  return std::strcmp(locale_name, "C") != 0 && std::strcmp(locale_name, "POSIX") != 0;
}

}  // namespace zvisp
