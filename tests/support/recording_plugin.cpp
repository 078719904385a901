// SPDX-License-Identifier: MIT
#include "support/recording_plugin.h"

#include <fcntl.h>

#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace {

// A wish of the test, or null.
const char* Wish(const std::string& name) {
  return std::getenv(("ZVISP_RECORD_" + name).c_str());
}

// Path of a file in the directory that receives the calls; empty when there is none.
std::string RecordPath(const std::string& name) {
  const char* const directory = Wish("DIR");
  return directory == nullptr ? "" : std::string(directory) + "/" + name;
}

void Write(const std::string& path, const char* mode, const void* bytes, std::size_t size) {
  if (path.empty()) return;
  std::FILE* const file = std::fopen(path.c_str(), mode);
  if (file == nullptr || std::fwrite(bytes, 1, size, file) != size) std::abort();
  std::fclose(file);
}

std::size_t CountLines(const std::string& path) {
  std::FILE* const file = path.empty() ? nullptr : std::fopen(path.c_str(), "rb");
  if (file == nullptr) return 0;
  std::size_t lines = 0;
  for (int byte = std::fgetc(file); byte != EOF; byte = std::fgetc(file))
    lines += byte == '\n' ? 1 : 0;
  std::fclose(file);
  return lines;
}

unsigned long Number(const char* text) {
  return std::strtoul(text, nullptr, 0);
}

// Looks at the low numbers, which a process that opens files takes first.
int CountOpenDescriptors() {
  constexpr int kNumbers = 256;
  int count = 0;
  for (int descriptor = 0; descriptor < kNumbers; ++descriptor)
    count += fcntl(descriptor, F_GETFD) != -1 ? 1 : 0;
  return count;
}

// A run that has leaked a descriptor ends here, so that no test passes over it.
void EndALeakingRun() {
  const char* const limit = Wish("DESCRIPTORS");
  if (limit == nullptr || CountOpenDescriptors() <= static_cast<int>(Number(limit))) return;
  std::fprintf(stderr, "%d descriptors are open\n", CountOpenDescriptors());
  std::abort();
}

// Runs when the library is closed or, if it never is, at the end of the process.
__attribute__((destructor)) void TellUnloading() {
  if (const char* text = Wish("UNLOAD")) std::fputs(text, stdout);
  EndALeakingRun();
}

}  // namespace

RecordedCall::RecordedCall(const char* name, const std::string& arguments) : m_name(name) {
  EndALeakingRun();
  const std::string log = RecordPath("calls.txt");
  m_number = CountLines(log);
  const std::string line = m_name + arguments + "\n";
  Write(log, "ab", line.data(), line.size());
}

RecordedCall& RecordedCall::Keep(const char* kind, const void* bytes, std::size_t size) {
  if (bytes == nullptr) return *this;
  Write(RecordPath(std::to_string(m_number) + "." + kind), "wb", bytes, size);
  return *this;
}

RecordedCall& RecordedCall::Overwrite(void* record, std::size_t size) {
  if (const char* fill = Wish("FILL")) std::memset(record, static_cast<int>(Number(fill)), size);
  if (const char* action = Wish("ACTION")) {
    const auto word = static_cast<std::uint32_t>(Number(action));
    std::memcpy(record, &word, sizeof word);
  }
  return *this;
}

int RecordedCall::Answer(int success) {
  if (const char* text = Wish("PRINT")) std::fputs(text, stdout);
  if (const char* signal = Wish("CRASH")) {
    // What the call printed reaches the reader before the crash, as with a plug-in that flushes.
    std::fflush(stdout);
    std::raise(static_cast<int>(Number(signal)));
  }
  if (const char* path = Wish("REPLACE_" + m_name)) {
    if (std::rename((std::string(path) + ".new").c_str(), path) != 0) std::abort();
  }
  const char* const result = Wish("RESULT_" + m_name);
  return result == nullptr ? success : static_cast<int>(Number(result));
}
