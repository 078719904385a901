// SPDX-License-Identifier: MIT
//
// The reading half of settings/profile.h, for either family.
#ifndef ZVISP_SETTINGS_PROFILE_READER_H_
#define ZVISP_SETTINGS_PROFILE_READER_H_

#include <string>

#include "settings/profile_stream.h"

namespace zvisp {

// The line that opens a section.
template <typename Family>
ProfileText<Family> ProfileHeader(const typename Family::Char* section) {
  return typename Family::Char('[') + ProfileText<Family>(section) + typename Family::Char(']');
}

// How a search ended. The two ways of not finding differ for the caller: only at the end of the
// file does the default reach the output.
enum class ProfileSearch { kFound, kSectionEnded, kFileEnded };

// Goes through the lines of a section for the key and stores its value.
template <typename Family>
ProfileSearch FindInSection(ProfileStream<Family>& file, const ProfileText<Family>& key,
                            ProfileText<Family>& value) {
  constexpr typename Family::Char kEquals = '=';
  for (ProfileText<Family> line; file.ReadLine(line);) {
    const std::size_t first_equals = line.find(kEquals);
    if (first_equals == line.npos) return ProfileSearch::kSectionEnded;
    ProfileText<Family> name = line.substr(0, first_equals);
    Family::TrimKeyPart(name);
    if (name != key) continue;
    value = line.substr(line.rfind(kEquals) + 1);
    Family::TrimKeyPart(value);
    return ProfileSearch::kFound;
  }
  return ProfileSearch::kFileEnded;
}

// Only the first section of the name counts, however it ends.
template <typename Family>
ProfileSearch FindInFile(ProfileStream<Family>& file, const ProfileText<Family>& header,
                         const ProfileText<Family>& key, ProfileText<Family>& value) {
  for (ProfileText<Family> line; file.ReadLine(line);) {
    Family::TrimLine(line);
    if (line == header) return FindInSection<Family>(file, key, value);
  }
  return ProfileSearch::kFileEnded;
}

// CpZvGetPrivateProfileString of either family; the output holds kProfileValueCapacity units.
template <typename Family>
unsigned int ReadProfileString(const typename Family::Char* section,
                               const typename Family::Char* key,
                               const typename Family::Char* default_value,
                               typename Family::Char* output,
                               const typename Family::Char* file_name) {
  ProfileStream<Family> file(file_name, "r");
  if (!file.IsOpen()) {
    Family::ReportUnreadableFile();
    return 0;
  }
  ProfileText<Family> text;
  const ProfileSearch search = FindInFile<Family>(file, ProfileHeader<Family>(section), key, text);
  if (search == ProfileSearch::kSectionEnded) return 0;
  if (search == ProfileSearch::kFileEnded) text = default_value;
  std::char_traits<typename Family::Char>::copy(output, text.c_str(), text.size() + 1);
  return search == ProfileSearch::kFound ? static_cast<unsigned int>(text.size()) : 0;
}

// CpZvGetPrivateProfileInt of either family.
template <typename Family>
int ReadProfileInt(const typename Family::Char* section, const typename Family::Char* key,
                   int default_value, const typename Family::Char* file_name) {
  constexpr typename Family::Char kNoText[] = {0};
  typename Family::Char value[kProfileValueCapacity] = {};
  const unsigned int length = ReadProfileString<Family>(section, key, kNoText, value, file_name);
  return length == 0 ? default_value : static_cast<int>(Family::ParseInt(value));
}

}  // namespace zvisp

#endif  // ZVISP_SETTINGS_PROFILE_READER_H_
