// SPDX-License-Identifier: MIT
#include "signer/output_file.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "files/file_look.h"
#include "signer/input_file.h"
#include "signer/report.h"
#include "signer/signature_file.h"

namespace signer {
namespace {

bool RefuseWriting(const std::string& path) {
  if (errno == ELOOP) {
    return Refuse("the signature file is a symbolic link, name the file itself: %s", path.c_str());
  }
  return Refuse("the signature file cannot be written: %s: %s", path.c_str(), std::strerror(errno));
}

bool IsEmptyOrSignature(const simulator::FileHandle& file, const struct stat& look) {
  if (look.st_size == 0) return true;
  std::string text(kSmallFileLimit, '\0');
  const ssize_t count = simulator::ReadAt(file.Get(), text.data(), text.size(), 0);
  return count > 0 && look.st_size == count && IsSignatureText(text);
}

// Whether what has the signature's name now, if anything, may be replaced.
bool MayBeReplaced(const std::string& path, const std::vector<std::string>& inputs) {
  // For writing, so that a file which its owner protects is not replaced.
  const simulator::FileHandle file = simulator::OpenWithoutLink(path, O_RDWR);
  struct stat look = {};
  if (!file.IsOpen() && errno == ENOENT) return true;
  if (!file.IsOpen() || !simulator::LookAt(file, look)) return RefuseWriting(path);
  if (!simulator::IsOrdinaryFile(look)) {
    return Refuse("the signature file is not a regular file: %s", path.c_str());
  }
  const auto is_it = [&](const std::string& input) { return simulator::IsFileAt(input, look); };
  if (std::any_of(inputs.begin(), inputs.end(), is_it)) {
    return Refuse("the signature would overwrite a file that it is made from: %s", path.c_str());
  }
  return IsEmptyOrSignature(file, look) ||
         Refuse("the signature would overwrite a file that is not a signature: %s", path.c_str());
}

// In the same directory, because a file is only renamed within one file system, and as short as it
// can be, because the signature's own name may have the greatest length already.
std::string FreshNameFor(const std::string& path) {
  const std::size_t slash = path.find_last_of('/');
  return path.substr(0, slash == std::string::npos ? 0 : slash + 1) + ".signature-" +
         std::to_string(getpid()) + ".new";
}

}  // namespace

bool WriteSignatureFile(const std::string& path, std::string_view text,
                        const std::vector<std::string>& inputs) {
  if (path.empty()) return Refuse("no signature file was given");
  if (!MayBeReplaced(path, inputs)) return false;
  return simulator::ReplaceFile(path, FreshNameFor(path), text) || RefuseWriting(path);
}

}  // namespace signer
