// SPDX-License-Identifier: MIT
//
// The files of the record, and how lines get into them so that they stay.
#ifndef ZVISP_LINE_JOURNAL_RECORD_FILE_H_
#define ZVISP_LINE_JOURNAL_RECORD_FILE_H_

#include <cstdint>
#include <string>

#include "line/journal/descriptor.h"

namespace line {

// Free space in bytes below which nothing starts.
inline constexpr std::uint64_t kNeededFreeBytes = 16 * 1024 * 1024;

// The directory of the record's files in a data directory.
std::string RecordDirectory(const std::string& data_directory);

// The sentence about a data directory that nothing names.
inline constexpr const char* kNoDataDirectory =
    "The record has no directory: HOME is not set; name one with --data.";

// The directory of the record's files, kept open with its lock file.
class RecordFiles {
 public:
  // Makes what is missing of the directories, the data directory with mode 0700 and what is in it
  // with the same rights. False, with one sentence in `error`, when the record cannot be written
  // or its disk has too little space.
  bool Open(const std::string& data_directory, std::string& error);

  // Appends whole lines to the file of a day ("2026-11-21") under the record's lock, after ending
  // a line that another writer left unfinished; with `flush`, waits for the disk. A day before the
  // record's newest one counts as that one. False, with one sentence in `error`, when that fails:
  // the lines are then taken out of the file again, unless only the flush has failed.
  bool Append(const std::string& day, const std::string& lines, bool flush, std::string& error);

 private:
  std::string DayToWrite(const std::string& day);
  bool TakeLock(std::string& error);
  Descriptor OpenDay(const std::string& day, std::string& error);

  std::string m_directory;
  std::string m_newest_day;
  Descriptor m_directory_descriptor;
  Descriptor m_lock;
};

// Everything that was written to it is on the disk when this returns true; errno otherwise.
bool FlushToDisk(int descriptor);

}  // namespace line

#endif  // ZVISP_LINE_JOURNAL_RECORD_FILE_H_
