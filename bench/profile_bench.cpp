// SPDX-License-Identifier: MIT
//
// Reading the last key of a settings file next to inih on the same file. Both open and read the
// file for each key, which is the life of a profile: another program may have changed it in
// between. No line has a blank, at which the narrow family stops for good.
#include "settings/profile.h"

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <cwchar>
#include <string>

#include <benchmark/benchmark.h>
#include <ini.h>

using namespace zvisp;

namespace {

constexpr int kSections = 10;
constexpr int kKeysOfASection = 10;

// A settings file of 100 keys that is gone with its owner.
class SettingsFile {
 public:
  SettingsFile() {
    const int descriptor = mkstemp(m_path);
    std::FILE* const file = descriptor < 0 ? nullptr : fdopen(descriptor, "w");
    if (file == nullptr) std::abort();
    for (int section = 0; section < kSections; ++section) {
      std::fprintf(file, "[Section%d]\n", section);
      for (int key = 0; key < kKeysOfASection; ++key) {
        std::fprintf(file, "strKey%d=value_%d_of_section_%d\n", key, key, section);
      }
    }
    std::fclose(file);
  }
  ~SettingsFile() { std::remove(m_path); }
  SettingsFile(const SettingsFile&) = delete;
  SettingsFile& operator=(const SettingsFile&) = delete;

  const char* Path() const { return m_path; }
  std::wstring WidePath() const { return std::wstring(m_path, m_path + std::strlen(m_path)); }

 private:
  char m_path[24] = "/tmp/zvisp-bench-XXXXXX";
};

void ProfileReadNarrow(benchmark::State& state) {
  const SettingsFile file;
  char value[kProfileValueCapacity];
  for (auto _ : state) {
    CpZvGetPrivateProfileStringA("Section9", "strKey9", "", value, sizeof value, file.Path());
  }
  if (std::strcmp(value, "value_9_of_section_9") != 0) std::abort();
}
BENCHMARK(ProfileReadNarrow);

void ProfileReadWide(benchmark::State& state) {
  const SettingsFile file;
  const std::wstring path = file.WidePath();
  wchar_t value[kProfileValueCapacity];
  for (auto _ : state) {
    CpZvGetPrivateProfileStringW(L"Section9", L"strKey9", L"", value, kProfileValueCapacity,
                                 path.c_str());
  }
  if (std::wcscmp(value, L"value_9_of_section_9") != 0) std::abort();
}
BENCHMARK(ProfileReadWide);

int TakeLastKey(void* user, const char* section, const char* name, const char* value) {
  if (std::strcmp(section, "Section9") == 0 && std::strcmp(name, "strKey9") == 0) {
    *static_cast<std::string*>(user) = value;
  }
  return 1;
}

void InihRead(benchmark::State& state) {
  const SettingsFile file;
  std::string value;
  for (auto _ : state) {
    if (ini_parse(file.Path(), TakeLastKey, &value) != 0) std::abort();
  }
  if (value != "value_9_of_section_9") std::abort();
}
BENCHMARK(InihRead);

}  // namespace
