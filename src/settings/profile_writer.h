// SPDX-License-Identifier: MIT
//
// The writing half of settings/profile.h, for either family.
#ifndef ZVISP_SETTINGS_PROFILE_WRITER_H_
#define ZVISP_SETTINGS_PROFILE_WRITER_H_

#include <algorithm>
#include <cstdio>
#include <iterator>
#include <utility>

#include "settings/profile_edit.h"

namespace zvisp {

// A whole file in memory, so that the file may be truncated afterwards. A file that cannot be
// opened has no lines.
template <typename Family>
struct ProfileContent {
  explicit ProfileContent(const typename Family::Char* file_name) {
    ProfileStream<Family> file(file_name, "r");
    can_be_read = file.IsOpen();
    if (!can_be_read) return;
    for (ProfileText<Family> line; file.ReadLine(line);) {
      lines.push_back(std::move(line));
    }
  }

  bool can_be_read = false;
  ProfileLines<Family> lines;
};

// Writes the lines with one change. Returns 1, or 0 after a message.
template <typename Family>
int WriteOneChange(const ProfileText<Family>& section,
                   const ProfileChange<ProfileText<Family>>& change,
                   const ProfileLines<Family>& lines, const typename Family::Char* file_name) {
  ProfileStream<Family> file(file_name, "w");
  if (!file.IsOpen()) {
    std::printf("Open file error \n");
    return 0;
  }
  const ProfileChanges<Family> changes = {change};
  file.WriteLines(ProfileEdit<Family>(section, changes).Apply(lines));
  return 1;
}

template <typename Family>
bool CanBeWritten(const ProfileText<Family>& section,
                  const ProfileChange<ProfileText<Family>>& change) {
  return Family::CanBeWritten(section.c_str()) && Family::CanBeWritten(change.key.c_str()) &&
         Family::CanBeWritten(change.value.c_str());
}

// CpZvWritePrivateProfileString of either family.
template <typename Family>
int WriteProfileString(const ProfileText<Family>& section,
                       const ProfileChange<ProfileText<Family>>& change,
                       const typename Family::Char* file_name) {
  if (!CanBeWritten<Family>(section, change)) return 0;
  return WriteOneChange<Family>(section, change, ProfileContent<Family>(file_name).lines,
                                file_name);
}

// Writes all changes at once. Returns false when the file does not hold what it would hold after as
// many writes of one change, each with a reading before it.
template <typename Family>
bool WriteAtOnce(const ProfileText<Family>& section, const ProfileChanges<Family>& changes,
                 const ProfileContent<Family>& before, const typename Family::Char* file_name) {
  ProfileEdit<Family> edit(section, changes);
  const ProfileLines<Family> lines = edit.Apply(before.lines);
  if (!edit.IsLikeOneByOne()) return false;
  ProfileStream<Family> file(file_name, "w");
  if (!file.IsOpen()) return false;
  file.WriteLines(lines);
  if (file.HasFailed()) return false;
  // A file that may be written but not read loses its lines at every change.
  return before.can_be_read || ProfileStream<Family>(file_name, "r").IsOpen();
}

// WriteProfileChanges of settings/profile.h, for either family.
template <typename Family>
void WriteProfileStrings(const ProfileText<Family>& section,
                         const ProfileChanges<Family>& all_changes,
                         const typename Family::Char* file_name) {
  ProfileChanges<Family> changes;
  std::copy_if(all_changes.begin(), all_changes.end(), std::back_inserter(changes),
               [&](const auto& change) { return CanBeWritten<Family>(section, change); });
  if (changes.empty()) return;
  const ProfileContent<Family> before(file_name);
  if (WriteAtOnce<Family>(section, changes, before, file_name)) return;
  ProfileLines<Family> lines = before.lines;
  for (const ProfileChange<ProfileText<Family>>& change : changes) {
    WriteOneChange<Family>(section, change, lines, file_name);
    lines = ProfileContent<Family>(file_name).lines;
  }
}

}  // namespace zvisp

#endif  // ZVISP_SETTINGS_PROFILE_WRITER_H_
