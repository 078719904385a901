// SPDX-License-Identifier: MIT
#include "plugin/dynamic_library.h"

#include <dlfcn.h>

#include "base/transform.h"

namespace zvisp {

OpenedLibrary OpenLibrary(const wchar_t* path) {
  OpenedLibrary library;
  library.path = CCpTransform().ConvertWCHARToANSIString(path);
  if (library.path.empty()) {
    library.reason = "the plug-in's path cannot be told in the locale's encoding";
    return library;
  }
  // All symbols at once: a plug-in with a missing one fails here, and not in the middle of
  // programming.
  library.handle = dlopen(library.path.c_str(), RTLD_NOW);
  if (library.handle == nullptr) library.reason = LastLoaderError();
  return library;
}

bool CloseLibrary(void*& handle) {
  if (handle == nullptr) return false;
  dlclose(handle);
  handle = nullptr;
  return true;
}

const char* LastLoaderError() {
  // The loader gives its text once, and null when asked again.
  const char* const reason = dlerror();
  return reason == nullptr ? "" : reason;
}

}  // namespace zvisp
