// SPDX-License-Identifier: MIT
#include "signer/output_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "signer/report.h"

namespace signer {
namespace {

// Closes when it goes; Close tells whether everything has reached the file.
class Descriptor {
 public:
  explicit Descriptor(int descriptor) : m_descriptor(descriptor) {}
  ~Descriptor() { Close(); }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;

  int Get() const { return m_descriptor; }
  bool Close() {
    const int closing = m_descriptor;
    m_descriptor = -1;
    return closing >= 0 && close(closing) == 0;
  }

 private:
  int m_descriptor;
};

bool IsOneOf(const std::vector<std::string>& paths, const struct stat& file) {
  for (const std::string& path : paths) {
    struct stat other = {};
    if (stat(path.c_str(), &other) == 0 && other.st_dev == file.st_dev &&
        other.st_ino == file.st_ino) {
      return true;
    }
  }
  return false;
}

bool WriteAll(int descriptor, std::string_view text) {
  while (!text.empty()) {
    const ssize_t count = write(descriptor, text.data(), text.size());
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) return false;
    text.remove_prefix(static_cast<std::size_t>(count));
  }
  return true;
}

bool RefuseWriting(const std::string& path) {
  return Refuse("the signature file cannot be written: %s: %s", path.c_str(), std::strerror(errno));
}

}  // namespace

bool WriteSignatureFile(const std::string& path, std::string_view text,
                        const std::vector<std::string>& inputs) {
  if (path.empty()) return Refuse("no signature file was given");
  // Not truncated on opening: first it is asked what it is.
  Descriptor file(open(path.c_str(), O_WRONLY | O_CREAT | O_NONBLOCK | O_NOCTTY | O_CLOEXEC, 0666));
  struct stat status = {};
  if (file.Get() < 0 || fstat(file.Get(), &status) != 0) return RefuseWriting(path);
  if (!S_ISREG(status.st_mode)) {
    return Refuse("the signature file is not a regular file: %s", path.c_str());
  }
  if (IsOneOf(inputs, status)) {
    return Refuse("the signature would overwrite a file that it is made from: %s", path.c_str());
  }
  if (ftruncate(file.Get(), 0) == 0 && WriteAll(file.Get(), text) && file.Close()) return true;
  RefuseWriting(path);
  unlink(path.c_str());
  return false;
}

}  // namespace signer
