// SPDX-License-Identifier: MIT
//
// The file that takes what a worker prints. A file never makes a plug-in wait in a printf, whatever
// becomes of the reader; of a flood, the first 1 MiB is kept.
#ifndef ZVISP_LINE_SUPERVISE_OUTPUT_FOLLOWER_H_
#define ZVISP_LINE_SUPERVISE_OUTPUT_FOLLOWER_H_

#include <cstdint>
#include <string>
#include <vector>

namespace line {

class OutputFollower {
 public:
  // Kept of one worker's output: bytes, and lines.
  static constexpr std::uint64_t kKeptBytes = 1024 * 1024;
  static constexpr std::uint64_t kKeptLines = 10000;

  OutputFollower() = default;
  ~OutputFollower();
  OutputFollower(const OutputFollower&) = delete;
  OutputFollower& operator=(const OutputFollower&) = delete;

  // Makes a file that has no name; false, with a sentence in `error`, when it cannot.
  bool Open(std::string& error);
  int Descriptor() const { return m_file; }

  // Everything that was printed so far, at most kKeptBytes; later calls begin after it.
  std::string TakeText();
  // The whole lines since the last call; with `is_end`, also an unfinished last one.
  std::vector<std::string> TakeLines(bool is_end);

  // Bytes that were not kept.
  std::uint64_t DroppedBytes() const { return m_dropped; }

 private:
  void ReadNew();

  int m_file = -1;
  std::uint64_t m_offset = 0;  // in the file
  std::uint64_t m_kept = 0;
  std::uint64_t m_lines = 0;
  std::uint64_t m_dropped = 0;
  std::string m_unread;
};

}  // namespace line

#endif  // ZVISP_LINE_SUPERVISE_OUTPUT_FOLLOWER_H_
