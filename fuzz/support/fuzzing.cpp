// SPDX-License-Identifier: MIT
#include "support/fuzzing.h"

#include <stdlib.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>

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

void BrokenPromise(const char* promise, const char* file, int line) {
  std::fprintf(stderr, "%s:%d: broken promise: %s\n", file, line, promise);
  std::abort();
}

InputLines::InputLines(const std::uint8_t* data, std::size_t size)
    : m_rest(reinterpret_cast<const char*>(data), size) {}

std::string InputLines::Next() {
  const std::size_t end = std::min(m_rest.find('\n'), m_rest.size());
  const std::string line(m_rest.substr(0, end));
  m_rest.remove_prefix(std::min(end + 1, m_rest.size()));
  return line;
}

std::string InputLines::Rest() {
  const std::string rest(m_rest);
  m_rest = {};
  return rest;
}

std::vector<std::string> InputLines::AllWords() {
  std::vector<std::string> words;
  while (!m_rest.empty()) {
    words.emplace_back(Next().c_str());
  }
  return words;
}

std::wstring Widen(std::string_view bytes) {
  std::wstring wide;
  for (const char byte : bytes) {
    wide += static_cast<wchar_t>(static_cast<unsigned char>(byte));
  }
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

void WriteFile(const std::string& path, std::string_view content) {
  std::ofstream file(path, std::ios::binary | std::ios::trunc);
  file.write(content.data(), static_cast<std::streamsize>(content.size()));
  PROMISE(file.good());
}

std::string ReadFile(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(file), {});
}
