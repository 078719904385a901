// SPDX-License-Identifier: MIT
#include "base/environment_locale.h"

namespace zvisp {

// Paths are whatever bytes they were made of, so every locale is the user's choice. The "C" locale
// refuses bytes above 0x7F, which shows; it never takes them for other characters.
bool ReadsPathsOfTheSystem(const char* /*locale_name*/) {
  return true;
}

}  // namespace zvisp
