// SPDX-License-Identifier: MIT
#include "support/fuzzing.h"

#include <fcntl.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>

namespace {

class OwnDirectory {
 public:
  OwnDirectory() {
    m_path = std::filesystem::canonical(std::filesystem::temp_directory_path()).string();
    m_path += "/zvisp-fuzz-XXXXXX";
    if (mkdtemp(m_path.data()) == nullptr) std::abort();
    m_path += "/";
  }
  ~OwnDirectory() {
    std::error_code ignored;
    std::filesystem::remove_all(m_path, ignored);
  }
  OwnDirectory(const OwnDirectory&) = delete;
  OwnDirectory& operator=(const OwnDirectory&) = delete;

  const std::string& Path() const { return m_path; }

 private:
  std::string m_path;
};

}  // namespace

// Not through the stream: standard error goes nowhere while a target runs.
void BrokenPromise(const char* promise, const char* file, int line) {
  dprintf(STDERR_FILENO, "%s:%d: broken promise: %s\n", file, line, promise);
  std::abort();
}

std::string_view InputLines::Next() {
  const std::size_t end = std::min(m_rest.find('\n'), m_rest.size());
  const std::string_view line = m_rest.substr(0, end);
  m_rest.remove_prefix(std::min(end + 1, m_rest.size()));
  return line;
}

std::string_view InputLines::Rest() {
  const std::string_view rest = m_rest;
  m_rest = {};
  return rest;
}

std::wstring Widen(std::string_view bytes) {
  std::wstring wide(bytes.size(), L'\0');
  std::transform(bytes.begin(), bytes.end(), wide.begin(),
                 [](char byte) { return static_cast<wchar_t>(static_cast<unsigned char>(byte)); });
  return wide;
}

bool IsPlain(std::string_view text, std::string_view others) {
  return std::all_of(text.begin(), text.end(), [others](char byte) {
    return (byte >= ' ' && byte <= '~') || others.find(byte) != std::string_view::npos;
  });
}

const std::string& FuzzDirectory() {
  static const OwnDirectory directory;
  return directory.Path();
}

// Plain calls: a stream of the library would cost more than all that is tried on the file.
void WriteFile(const std::string& path, std::string_view content) {
  const int file = open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
  PROMISE(file >= 0);
  PROMISE(write(file, content.data(), content.size()) == static_cast<ssize_t>(content.size()));
  PROMISE(close(file) == 0);
}

std::string ReadFile(const std::string& path) {
  const int file = open(path.c_str(), O_RDONLY | O_CLOEXEC);
  if (file < 0) return {};
  struct stat look = {};
  PROMISE(fstat(file, &look) == 0);
  std::string content(static_cast<std::size_t>(look.st_size), '\0');
  PROMISE(read(file, content.data(), content.size()) == look.st_size);
  PROMISE(close(file) == 0);
  return content;
}
