// SPDX-License-Identifier: MIT
//
// The user's locale. Scripts and remote shells often carry a locale name that the machine lacks;
// such a run must continue, and names that are not ASCII must still work, so this is the one place
// that decides which locale counts.
#ifndef ZVISP_BASE_ENVIRONMENT_LOCALE_H_
#define ZVISP_BASE_ENVIRONMENT_LOCALE_H_

#include <string>

namespace zvisp {

// Switches to the environment's locale for as long as it lives.
//
// The character type is decided by itself: the locale that the environment names for it, or when
// the machine lacks that one "C.UTF-8", "en_US.UTF-8" or at last "C". On macOS the environment's
// "C" and "POSIX", which no variable at all means, too, are passed over in the same way. The other
// categories follow the environment as far as the machine has their locales.
//
// Only the character type goes back at the end. The other categories stay with the environment's
// locale from the first switch on, and a plug-in that formats numbers sees them so.
class ScopedEnvironmentLocale {
 public:
  ScopedEnvironmentLocale();
  ~ScopedEnvironmentLocale();
  ScopedEnvironmentLocale(const ScopedEnvironmentLocale&) = delete;
  ScopedEnvironmentLocale& operator=(const ScopedEnvironmentLocale&) = delete;

  // Leaves the character type switched at the end, too.
  void Keep() { m_restore = false; }

 private:
  std::string m_saved_ctype;
  bool m_restore = true;
};

// Whether the character type of that name reads the paths that the system gives as they are meant.
bool ReadsPathsOfTheSystem(const char* locale_name);

}  // namespace zvisp

#endif  // ZVISP_BASE_ENVIRONMENT_LOCALE_H_
