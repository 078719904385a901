// SPDX-License-Identifier: MIT
//
// The two families of profile functions by their public names. Both are one template, so they
// cannot drift apart. `output_size` is part of the signatures that hosts know, and is not used:
// every output holds kProfileValueCapacity units.
#include "settings/profile.h"

#include <algorithm>

#include "settings/profile_family.h"
#include "settings/profile_reader.h"
#include "settings/profile_writer.h"

using namespace zvisp;

unsigned int CpZvGetPrivateProfileStringW(const wchar_t* section, const wchar_t* key,
                                          const wchar_t* default_value, wchar_t* output,
                                          unsigned int /*output_size*/, const wchar_t* file_name) {
  return ReadProfileString<WideFamily>(section, key, default_value, output, file_name);
}

int CpZvGetPrivateProfileIntW(const wchar_t* section, const wchar_t* key, int default_value,
                              const wchar_t* file_name) {
  return ReadProfileInt<WideFamily>(section, key, default_value, file_name);
}

int CpZvWritePrivateProfileStringW(const wchar_t* section, const wchar_t* key, const wchar_t* value,
                                   const wchar_t* file_name) {
  return WriteProfileString<WideFamily>(section, {key, value}, file_name);
}

void zvisp::WriteProfileChanges(const wchar_t* section,
                                const std::vector<ProfileChange<std::wstring>>& changes,
                                const wchar_t* file_name) {
  WriteProfileStrings<WideFamily>(section, changes, file_name);
}

std::wstring zvisp::ReadProfileText(const wchar_t* section, const wchar_t* key,
                                    const wchar_t* file_name, std::size_t capacity) {
  wchar_t value[kProfileValueCapacity] = {};
  CpZvGetPrivateProfileStringW(section, key, L"", value, kProfileValueCapacity, file_name);
  // Cut, so that the value fits a buffer of `capacity` units with its terminating zero.
  return std::wstring(value).substr(0, capacity - 1);
}

unsigned int CpZvGetPrivateProfileStringA(const char* section, const char* key,
                                          const char* default_value, char* output,
                                          unsigned int /*output_size*/, const char* file_name) {
  return ReadProfileString<NarrowFamily>(section, key, default_value, output, file_name);
}

int CpZvGetPrivateProfileIntA(const char* section, const char* key, int default_value,
                              const char* file_name) {
  return ReadProfileInt<NarrowFamily>(section, key, default_value, file_name);
}

int CpZvWritePrivateProfileStringA(const char* section, const char* key, const char* value,
                                   const char* file_name) {
  return WriteProfileString<NarrowFamily>(section, {key, value}, file_name);
}
