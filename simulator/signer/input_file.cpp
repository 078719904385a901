// SPDX-License-Identifier: MIT
#include "signer/input_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <cstring>

#include "signer/report.h"

namespace signer {

InputFile::~InputFile() {
  if (m_descriptor >= 0) close(m_descriptor);
}

bool InputFile::Open(std::size_t limit) {
  if (m_path.empty()) return Refuse("no %s file was given", m_role);
  // Non-blocking, because opening a pipe would wait for its other end.
  m_descriptor = open(m_path.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
  struct stat status = {};
  if (m_descriptor < 0 || fstat(m_descriptor, &status) != 0) {
    return Refuse("the %s file cannot be read: %s: %s", m_role, m_path.c_str(),
                  std::strerror(errno));
  }
  if (!S_ISREG(status.st_mode)) {
    return Refuse("the %s file is not a regular file: %s", m_role, m_path.c_str());
  }
  const auto size = static_cast<std::uint64_t>(status.st_size);
  if (size == 0) return Refuse("the %s file is empty: %s", m_role, m_path.c_str());
  if (size > limit) {
    return Refuse("the %s file is larger than %zu bytes: %s", m_role, limit, m_path.c_str());
  }
  m_size = static_cast<std::size_t>(size);
  m_mode = status.st_mode & 07777;
  return true;
}

bool InputFile::ReadInto(unsigned char* bytes) const {
  std::size_t done = 0;
  while (done < m_size) {
    const ssize_t count = read(m_descriptor, bytes + done, m_size - done);
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) {
      return Refuse("the %s file cannot be read: %s: %s", m_role, m_path.c_str(),
                    std::strerror(errno));
    }
    if (count == 0) break;
    done += static_cast<std::size_t>(count);
  }
  unsigned char beyond = 0;
  if (done == m_size && read(m_descriptor, &beyond, 1) == 0) return true;
  return Refuse("the %s file changed while it was read: %s", m_role, m_path.c_str());
}

bool ReadSmallFile(const char* role, const std::string& path, WipedBytes& content) {
  InputFile file(role, path);
  if (!file.Open(kSmallFileLimit)) return false;
  content = WipedBytes(file.Size());
  return file.ReadInto(content.Data());
}

}  // namespace signer
