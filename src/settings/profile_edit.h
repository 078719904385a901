// SPDX-License-Identifier: MIT
//
// Sets keys of one section in the lines of a file, in memory, for either family of
// settings/profile.h, which also says where a key goes.
#ifndef ZVISP_SETTINGS_PROFILE_EDIT_H_
#define ZVISP_SETTINGS_PROFILE_EDIT_H_

#include <cstddef>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "settings/profile_reader.h"

namespace zvisp {

template <typename Family>
using ProfileChanges = std::vector<ProfileChange<ProfileText<Family>>>;

// One walk over the lines for all changes at once. The result is what as many walks with one change
// each give, as long as IsLikeOneByOne holds. Use an object once.
template <typename Family>
class ProfileEdit {
 public:
  using Text = ProfileText<Family>;
  using View = std::basic_string_view<typename Family::Char>;

  // The changes must outlive the object.
  ProfileEdit(const Text& section, const ProfileChanges<Family>& changes)
      : m_header(ProfileHeader<Family>(section.c_str())) {
    for (const ProfileChange<Text>& change : changes) {
      m_by_key.emplace(change.key, m_changes.size());
      m_changes.push_back({&change});
    }
  }

  // The lines of a file, blanks at both ends removed, with the changes.
  ProfileLines<Family> Apply(ProfileLines<Family> lines) {
    bool header_found = false;
    for (Text& line : lines) {
      Family::TrimLine(line);
      header_found = header_found || line == m_header;
      Walk(std::move(line));
    }
    if (!header_found) m_result.push_back(m_header);
    for (Change& change : m_changes) {
      if (!change.written) WriteKey(change);
    }
    return std::move(m_result);
  }

  // Ask after Apply. False when a change might have met something else in a file that an earlier
  // change had written: a key comes twice, or a line would not be read again as it was written.
  bool IsLikeOneByOne() const { return m_by_key.size() == m_changes.size() && m_reads_back; }

 private:
  static constexpr typename Family::Char kEquals = '=';

  struct Change {
    const ProfileChange<Text>* wanted;
    bool inside = false;  // the walk is in a section where this key has not been found yet
    bool written = false;
  };

  // Only a header and a line that ends a section concern every change.
  void Walk(Text line) {
    const bool is_header = line == m_header;
    const std::size_t first_equals = line.find(kEquals);
    if (is_header || (m_in_section && first_equals == line.npos)) {
      m_in_section = is_header;
      for (Change& change : m_changes) {
        Meet(change, is_header, first_equals, line);
      }
    } else if (m_in_section) {
      const auto found = m_by_key.find(View(line).substr(0, first_equals));
      if (found != m_by_key.end()) Meet(m_changes[found->second], false, first_equals, line);
    }
    m_result.push_back(std::move(line));
  }

  // What one change does with a line. The line that ends a section opens none, even if it is a
  // header; a header below the line of the key does open one.
  void Meet(Change& change, bool is_header, std::size_t first_equals, Text& line) {
    if (!change.inside) {
      change.inside = is_header;
    } else if (first_equals == line.npos) {
      change.inside = false;
      if (!change.written) WriteKey(change);
    } else if (line.compare(0, first_equals, change.wanted->key) == 0) {
      change.inside = false;
      change.written = true;
      line.resize(line.rfind(kEquals) + 1);
      line += change.wanted->value;
      Check(change, line);
    }
  }

  void WriteKey(Change& change) {
    change.written = true;
    m_result.push_back(change.wanted->key + kEquals + change.wanted->value);
    Check(change, m_result.back());
  }

  // Takes note when a reader would not take the line for this key's.
  void Check(const Change& change, const Text& line) {
    const Text& key = change.wanted->key;
    if (line.size() >= kProfileValueCapacity || !Family::ReadsBack(line) || line == m_header ||
        key.find(kEquals) != key.npos) {
      m_reads_back = false;
    }
  }

  Text m_header;
  std::vector<Change> m_changes;
  std::unordered_map<View, std::size_t> m_by_key;
  ProfileLines<Family> m_result;
  bool m_in_section = false;
  bool m_reads_back = true;
};

}  // namespace zvisp

#endif  // ZVISP_SETTINGS_PROFILE_EDIT_H_
