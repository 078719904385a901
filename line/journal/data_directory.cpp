// SPDX-License-Identifier: MIT
#include <cstdlib>
#include <string>

#include "line/journal/journal.h"

namespace line {

namespace {

std::string Environment(const char* name) {
  const char* const value = std::getenv(name);
  return value == nullptr ? "" : value;
}

}  // namespace

std::string DataDirectory(const std::string& given) {
  if (!given.empty()) return given;
  const std::string home = Environment("HOME");
#if defined(__APPLE__)
  return home.empty() ? "" : home + "/Library/Application Support/zvisp";
#else
  // By the rules of the base directories, a relative path there counts as not given.
  const std::string state = Environment("XDG_STATE_HOME");
  if (!state.empty() && state[0] == '/') return state + "/zvisp";
  return home.empty() ? "" : home + "/.local/state/zvisp";
#endif
}

}  // namespace line
