// SPDX-License-Identifier: MIT
#include "support/memory_files.h"

#include <algorithm>
#include <cstdio>
#include <map>

#include "base/ordinary_file.h"

namespace {

std::map<std::string, std::string>& Files() {
  static std::map<std::string, std::string> files;
  return files;
}

int open_streams = 0;

struct Stream {
  std::string& content;
  std::size_t position;
};

ssize_t Read(void* cookie, char* bytes, std::size_t count) {
  Stream& stream = *static_cast<Stream*>(cookie);
  const std::size_t copied = stream.content.copy(bytes, count, stream.position);
  stream.position += copied;
  return static_cast<ssize_t>(copied);
}

ssize_t Write(void* cookie, const char* bytes, std::size_t count) {
  static_cast<Stream*>(cookie)->content.append(bytes, count);
  return static_cast<ssize_t>(count);
}

int Close(void* cookie) {
  delete static_cast<Stream*>(cookie);
  --open_streams;
  return 0;
}

}  // namespace

std::FILE* zvisp::OpenOrdinaryFile(const char* path, const char* mode) {
  const bool reads = mode[0] == 'r';
  if (*path == '\0' || (reads && Files().count(path) == 0)) return nullptr;
  std::string& content = Files()[path];
  if (!reads) content.clear();
  cookie_io_functions_t calls = {};
  calls.read = Read;
  calls.write = Write;
  calls.close = Close;
  ++open_streams;
  return fopencookie(new Stream{content, 0}, mode, calls);
}

void GivenMemoryFile(const std::string& path, std::string_view content) {
  Files()[path] = content;
}

const std::string& MemoryFile(const std::string& path) {
  return Files()[path];
}

int OpenMemoryStreams() {
  return open_streams;
}
