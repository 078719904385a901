// SPDX-License-Identifier: MIT
//
// The reading half of settings/profile.h, for either family.
#ifndef ZVISP_SETTINGS_PROFILE_READER_H_
#define ZVISP_SETTINGS_PROFILE_READER_H_

#include <fstream>
#include <string>

#include "settings/profile.h"

// A line or a part of one, in the units of the family.
template <typename Family>
using ProfileText = std::basic_string<typename Family::Char>;

// The line that opens a section.
template <typename Family>
ProfileText<Family> ProfileHeader(const typename Family::Char* section) {
  return typename Family::Char('[') + ProfileText<Family>(section) + typename Family::Char(']');
}

// A file's lines, one after another, as they stand in the file.
template <typename Family>
class ProfileLines {
 public:
  // Opens the file. The encoding has to be set first: some runtimes ignore a change later on.
  explicit ProfileLines(const typename Family::Char* file_name) {
    Family::Prepare(m_stream);
    m_stream.open(Family::FileName(file_name), std::ios::in);
  }

  bool IsOpen() const { return m_stream.is_open(); }

  // False at the end of the file, at a line that is too long and at text that cannot be decoded.
  bool Next(ProfileText<Family>& line) {
    typename Family::Char buffer[kProfileValueCapacity];
    if (!m_stream.getline(buffer, kProfileValueCapacity)) return false;
    const bool is_last = m_stream.eof();
    if (is_last && Family::EndedInBadText(m_stream)) return false;
    // The count includes a line end; kept by count, a zero inside the line is only a character.
    const auto count = static_cast<std::size_t>(m_stream.gcount());
    line.assign(buffer, is_last ? count : count - 1);
    return true;
  }

 private:
  std::basic_ifstream<typename Family::Char> m_stream;
};

// How a search ended. The two ways of not finding differ for the caller: only at the end of the
// file does the default reach the output.
enum class ProfileSearch { kFound, kSectionEnded, kFileEnded };

// Goes through the lines of a section for the key and stores its value.
template <typename Family>
ProfileSearch FindInSection(ProfileLines<Family>& lines, const ProfileText<Family>& key,
                            ProfileText<Family>& value) {
  constexpr typename Family::Char kEquals = '=';
  for (ProfileText<Family> line; lines.Next(line);) {
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
ProfileSearch FindInFile(ProfileLines<Family>& lines, const ProfileText<Family>& header,
                         const ProfileText<Family>& key, ProfileText<Family>& value) {
  for (ProfileText<Family> line; lines.Next(line);) {
    Family::TrimLine(line);
    if (line == header) return FindInSection<Family>(lines, key, value);
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
  ProfileLines<Family> lines(file_name);
  if (!lines.IsOpen()) {
    Family::ReportUnreadableFile();
    return 0;
  }
  ProfileText<Family> text;
  const ProfileSearch search = FindInFile<Family>(lines, ProfileHeader<Family>(section), key, text);
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

#endif  // ZVISP_SETTINGS_PROFILE_READER_H_
