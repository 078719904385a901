// SPDX-License-Identifier: MIT
#include "line/supervise/output_follower.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <utility>

#include "line/supervise/unnamed_file.h"

namespace line {

namespace {

// A file that grew so far beyond what is kept is emptied, so that a flood does not fill the disk.
constexpr std::uint64_t kEmptiedAt = 8 * OutputFollower::kKeptBytes;

}  // namespace

OutputFollower::~OutputFollower() {
  if (m_file >= 0) close(m_file);
}

bool OutputFollower::Open(std::string& error) {
  m_file = OpenUnnamedFile(error);
  // Appending, so that the worker continues at the new end when the file was emptied.
  if (m_file >= 0) fcntl(m_file, F_SETFL, O_APPEND);
  return m_file >= 0;
}

void OutputFollower::ReadNew() {
  struct stat facts = {};
  if (m_file < 0 || fstat(m_file, &facts) != 0) return;
  const auto size = static_cast<std::uint64_t>(facts.st_size);
  while (m_offset < size && m_kept < kKeptBytes) {
    char buffer[16384];
    const std::size_t wanted = std::min<std::uint64_t>(sizeof buffer, kKeptBytes - m_kept);
    const ssize_t got = pread(m_file, buffer, wanted, static_cast<off_t>(m_offset));
    if (got <= 0) return;
    m_unread.append(buffer, static_cast<std::size_t>(got));
    m_offset += static_cast<std::uint64_t>(got);
    m_kept += static_cast<std::uint64_t>(got);
  }
  m_dropped += size - std::min(size, m_offset);
  // What is not kept is not read either.
  m_offset = std::max(m_offset, size);
  if (size >= kEmptiedAt && ftruncate(m_file, 0) == 0) m_offset = 0;
}

std::string OutputFollower::TakeText() {
  ReadNew();
  return std::exchange(m_unread, "");
}

std::vector<std::string> OutputFollower::TakeLines(bool is_end) {
  ReadNew();
  std::vector<std::string> lines;
  std::size_t begin = 0;
  for (std::size_t end = 0; (end = m_unread.find('\n', begin)) != std::string::npos;
       begin = end + 1) {
    lines.push_back(m_unread.substr(begin, end - begin));
  }
  m_unread.erase(0, begin);
  if (is_end && !m_unread.empty()) lines.push_back(std::exchange(m_unread, ""));
  const std::size_t allowed = kKeptLines - m_lines;
  for (std::size_t i = allowed; i < lines.size(); ++i) {
    m_dropped += lines[i].size() + 1;
  }
  if (lines.size() > allowed) lines.resize(allowed);
  m_lines += lines.size();
  return lines;
}

}  // namespace line
