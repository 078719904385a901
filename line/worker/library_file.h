// SPDX-License-Identifier: MIT
//
// What the first bytes of a plug-in's file say: whether it is a library, and for which machine.
// Nothing of the file is run.
#ifndef ZVISP_LINE_WORKER_LIBRARY_FILE_H_
#define ZVISP_LINE_WORKER_LIBRARY_FILE_H_

#include <optional>
#include <string>

namespace line {

// Why a library cannot be used.
struct LoadProblem {
  std::string what;    // continues a sentence that begins with the file's path
  std::string advice;  // what to do, without a full stop
};

// Nothing when the file is a library for this machine. Of a file that is missing, cannot be read or
// is a directory, says so.
std::optional<LoadProblem> LookAtLibraryFile(const std::string& path);

// "A", "A and B", "A, B and C".
template <typename Texts>
std::string Listed(const Texts& texts) {
  std::string list;
  std::size_t left = texts.size();
  for (const auto& text : texts) {
    --left;
    list += text;
    if (left > 0) list += left == 1 ? " and " : ", ";
  }
  return list;
}

}  // namespace line

#endif  // ZVISP_LINE_WORKER_LIBRARY_FILE_H_
