// SPDX-License-Identifier: MIT
//
// Opening and closing the file of a plug-in.
#ifndef ZVISP_PLUGIN_DYNAMIC_LIBRARY_H_
#define ZVISP_PLUGIN_DYNAMIC_LIBRARY_H_

#include <string>

namespace zvisp {

// An attempt to open a library: its handle, null on failure, with the path as it was given to the
// loader and the loader's reason.
struct OpenedLibrary {
  void* handle = nullptr;
  std::string path;
  std::string reason;
};

// Opens the library at a path, converted to the encoding of the user's locale, and resolves its
// symbols at once. A path that converts to an empty text is not handed to the loader: one platform
// takes it for the program itself. Prints nothing. The caller closes the handle with CloseLibrary.
OpenedLibrary OpenLibrary(const wchar_t* path);

// Closes the handle when it is not null, and makes it null. Returns whether there was one.
bool CloseLibrary(void*& handle);

// The loader's text on the last failure, never null.
const char* LastLoaderError();

}  // namespace zvisp

#endif  // ZVISP_PLUGIN_DYNAMIC_LIBRARY_H_
