// SPDX-License-Identifier: MIT
//
// The writing half of settings/profile.h, for either family.
#ifndef ZVISP_SETTINGS_PROFILE_WRITER_H_
#define ZVISP_SETTINGS_PROFILE_WRITER_H_

#include <cstdio>
#include <string>
#include <utility>
#include <vector>

#include "settings/profile_reader.h"

// Writes a file's lines back with one value set. The lines are held whole, so the file may be
// truncated once one of these stands.
template <typename Family>
class ProfileRewrite {
 public:
  using Text = ProfileText<Family>;
  using Stream = ProfileStream<Family>;

  ProfileRewrite(const typename Family::Char* section, const typename Family::Char* key,
                 const typename Family::Char* value, const typename Family::Char* file_name)
      : m_header(ProfileHeader<Family>(section)), m_key(key), m_value(value) {
    Stream file(file_name, "r");
    if (!file.IsOpen()) return;
    for (Text line; file.ReadLine(line);) {
      m_lines.push_back(std::move(line));
    }
  }

  // Writes every line, and the key exactly where settings/profile.h says. Call it once: the lines
  // are used up.
  void WriteTo(Stream& file) {
    bool section_found = false;
    while (m_next < m_lines.size()) {
      const Text line = TakeLine();
      file.WriteLine(line);
      if (line != m_header) continue;
      section_found = true;
      WriteSection(file);
    }
    if (!section_found) file.WriteLine(m_header);
    if (!m_key_written) WriteKey(file);
  }

 private:
  static constexpr typename Family::Char kEquals = '=';

  // Goes on behind a header: to the key's line, or to the line that ends the section. That line is
  // not looked at again, so a header that directly follows opens no section here.
  void WriteSection(Stream& file) {
    while (m_next < m_lines.size()) {
      const Text line = TakeLine();
      const std::size_t first_equals = line.find(kEquals);
      if (first_equals == line.npos) {
        if (!m_key_written) WriteKey(file);
        return file.WriteLine(line);
      }
      if (line.substr(0, first_equals) == m_key) {
        m_key_written = true;
        return file.WriteLine(line.substr(0, line.rfind(kEquals) + 1) + m_value);
      }
      file.WriteLine(line);
    }
  }

  // The next line, trimmed: what is written back is what was compared.
  Text TakeLine() {
    Text line = std::move(m_lines[m_next++]);
    Family::TrimLine(line);
    return line;
  }

  void WriteKey(Stream& file) {
    m_key_written = true;
    file.WriteLine(m_key + kEquals + m_value);
  }

  Text m_header;
  Text m_key;
  Text m_value;
  std::vector<Text> m_lines;
  std::size_t m_next = 0;
  bool m_key_written = false;
};

// CpZvWritePrivateProfileString of either family.
template <typename Family>
int WriteProfileString(const typename Family::Char* section, const typename Family::Char* key,
                       const typename Family::Char* value, const typename Family::Char* file_name) {
  for (const typename Family::Char* const text : {section, key, value}) {
    if (!Family::CanBeWritten(text)) return 0;
  }
  ProfileRewrite<Family> rewrite(section, key, value, file_name);
  ProfileStream<Family> file(file_name, "w");
  if (!file.IsOpen()) {
    std::printf("Open file error \n");
    return 0;
  }
  rewrite.WriteTo(file);
  return 1;
}

#endif  // ZVISP_SETTINGS_PROFILE_WRITER_H_
