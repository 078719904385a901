// SPDX-License-Identifier: MIT
#include "display/home.h"

#include <dlfcn.h>

#include <cstdlib>

#include "display/format.h"
#include "display/outcome.h"

namespace simulator {
namespace {

// The loader finds the library by the address of any object in it.
const char kAnchor = 0;

std::string OwnDirectory() {
  Dl_info info = {};
  if (dladdr(&kAnchor, &info) == 0 || info.dli_fname == nullptr) return ".";
  const std::string file = info.dli_fname;
  const std::size_t slash = file.find_last_of('/');
  return slash == std::string::npos ? "." : file.substr(0, slash);
}

}  // namespace

std::string HomeDirectory() {
  const char* const chosen = std::getenv("ZVISP_SIM_DIR");
  if (chosen != nullptr && *chosen != '\0') return chosen;
  return OwnDirectory() + "/displays";
}

std::string DisplayFile(const std::string& directory, unsigned comm_id, const char* kind) {
  return Format("%s/display-%02u.%s", directory.c_str(), comm_id, kind);
}

}  // namespace simulator
