// SPDX-License-Identifier: MIT
//
// Reads the record, the oldest line first.
#ifndef ZVISP_LINE_JOURNAL_RECORD_READER_H_
#define ZVISP_LINE_JOURNAL_RECORD_READER_H_

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace line {

// Names of the record's files ("2026-11-21.jsonl"), ascending. Empty for a directory that is not
// there.
std::vector<std::string> RecordFileNames(const std::string& data_directory);

// A file's bytes in memory; empty for one that cannot be read. They stay as long as the object.
class MappedFile {
 public:
  explicit MappedFile(const std::string& path);
  ~MappedFile();
  MappedFile(const MappedFile&) = delete;
  MappedFile& operator=(const MappedFile&) = delete;

  std::string_view Bytes() const { return m_bytes; }
  // errno of a file that cannot be read; 0 for one that can, an empty one too.
  int Failure() const { return m_failure; }

 private:
  int Map(const std::string& path);

  std::string_view m_bytes;
  int m_failure;
};

// The failure that ForEachRecordLine would return, without reading a line.
std::string WhyRecordIsUnreadable(const std::string& data_directory);

// One line, without its newline. The views are valid during the call alone.
struct RecordLine {
  std::string_view file;  // the name of the file
  std::uint64_t number = 1;
  std::string_view text;
  bool is_ended = true;  // false for an unfinished last line
};

// One sentence about the first part of the record that cannot be read; empty when there is none.
// The lines of the other parts are used all the same. A directory that is not there is an empty
// record.
std::string ForEachRecordLine(const std::string& data_directory,
                              const std::function<void(const RecordLine&)>& use);

// The type of a line's event, without parsing the line: empty when it does not look like one that
// this program has written whole.
std::string_view TypeOfLine(std::string_view text);

// A line that is not an event.
struct SkippedLine {
  std::string file;
  std::uint64_t number = 0;
};

}  // namespace line

#endif  // ZVISP_LINE_JOURNAL_RECORD_READER_H_
