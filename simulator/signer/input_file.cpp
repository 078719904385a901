// SPDX-License-Identifier: MIT
#include "signer/input_file.h"

#include <fcntl.h>

#include <cerrno>
#include <cstdint>
#include <cstring>

#include "signer/report.h"

namespace signer {

bool InputFile::Open(std::size_t limit) {
  if (m_path.empty()) return Refuse("no %s file was given", m_role);
  m_file = simulator::OpenFile(m_path, O_RDONLY);
  if (!m_file.IsOpen() || !simulator::LookAt(m_file, m_look)) return RefuseReading();
  if (!simulator::IsOrdinaryFile(m_look)) {
    return Refuse("the %s file is not a regular file: %s", m_role, m_path.c_str());
  }
  if (m_look.st_size == 0) return Refuse("the %s file is empty: %s", m_role, m_path.c_str());
  if (static_cast<std::uint64_t>(m_look.st_size) > limit) {
    return Refuse("the %s file is larger than %zu bytes: %s", m_role, limit, m_path.c_str());
  }
  return true;
}

bool InputFile::ReadInto(unsigned char* bytes) const {
  // A file that somebody writes at this moment would be read half old and half new.
  struct stat after = {};
  const ssize_t count = simulator::ReadAt(m_file.Get(), bytes, Size(), 0);
  if (count < 0 || !simulator::LookAt(m_file, after)) return RefuseReading();
  if (static_cast<std::size_t>(count) == Size() && simulator::IsUnchanged(m_look, after)) {
    return true;
  }
  return Refuse("the %s file changed while it was read: %s", m_role, m_path.c_str());
}

bool InputFile::RefuseReading() const {
  return Refuse("the %s file cannot be read: %s: %s", m_role, m_path.c_str(), std::strerror(errno));
}

bool ReadSmallFile(const char* role, const std::string& path, WipedBytes& content) {
  InputFile file(role, path);
  if (!file.Open(kSmallFileLimit)) return false;
  content = WipedBytes(file.Size());
  return file.ReadInto(content.Data());
}

}  // namespace signer
