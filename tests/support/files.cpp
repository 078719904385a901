// SPDX-License-Identifier: MIT
#include "support/files.h"

#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>

namespace fs = std::filesystem;

std::string Pattern(std::size_t bytes, unsigned seed) {
  std::string pattern(bytes, '\0');
  std::uint32_t state = seed * 2654435761u + 1;
  for (char& byte : pattern) {
    state = state * 1664525u + 1013904223u;
    byte = static_cast<char>(state >> 24);
  }
  return pattern;
}

std::string GivenFile(const std::string& path, std::string_view content) {
  fs::create_directories(fs::path(path).parent_path());
  fs::remove(path);  // it may be a link to a file of the build
  std::ofstream file(path, std::ios::binary);
  file.write(content.data(), static_cast<std::streamsize>(content.size()));
  file.close();
  if (!file) throw std::runtime_error("cannot write " + path);
  return path;
}

std::string GivenFirmware(const std::string& path, std::size_t bytes, unsigned seed) {
  return GivenFile(path, Pattern(bytes, seed));
}

std::string GivenSparseFile(const std::string& path, std::uint64_t bytes) {
  GivenFile(path, "");
  fs::resize_file(path, bytes);
  return path;
}

std::string GivenDirectory(const std::string& path) {
  fs::create_directories(path);
  return path;
}

std::string ReadWholeFile(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  if (!file) throw std::runtime_error("cannot read " + path);
  std::ostringstream content;
  // Streaming nothing into it would count as a failure.
  if (file.peek() != std::ifstream::traits_type::eof()) content << file.rdbuf();
  return content.str();
}

bool FileExists(const std::string& path) {
  return fs::exists(path);
}
