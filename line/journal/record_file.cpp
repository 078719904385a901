// SPDX-License-Identifier: MIT
#include "line/journal/record_file.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <string_view>

#include "line/journal/record_reader.h"

namespace line {

namespace {

constexpr mode_t kFileRights = 0666;
constexpr int kLockTries = 1000;  // of 10 ms each: a writer holds the lock for one write

std::string Reason() {
  return std::strerror(errno);
}

std::string Parent(const std::string& path) {
  const std::size_t slash = path.find_last_not_of('/', path.rfind('/'));
  return slash == std::string::npos ? "" : path.substr(0, slash + 1);
}

// Like mkdir -p: true when it is there.
bool MakeDirectories(const std::string& path, mode_t mode) {
  if (mkdir(path.c_str(), mode) == 0 || errno == EEXIST) return true;
  if (errno != ENOENT) return false;
  const std::string parent = Parent(path);
  if (parent.empty() || !MakeDirectories(parent, mode)) return false;
  return mkdir(path.c_str(), mode) == 0 || errno == EEXIST;
}

mode_t ModeOf(int descriptor) {
  struct stat status = {};
  return fstat(descriptor, &status) == 0 ? status.st_mode & 07777 : 0700;
}

// Whoever may write into the directory may write the file: several accounts can share a record.
// A link is not followed: one of the others may have made it.
Descriptor OpenShared(int directory, const std::string& name, bool& created) {
  constexpr int kFlags = O_RDWR | O_APPEND | O_CLOEXEC | O_NOFOLLOW;
  const int made = openat(directory, name.c_str(), kFlags | O_CREAT | O_EXCL, 0600);
  created = made >= 0;
  if (!created) return Descriptor(openat(directory, name.c_str(), kFlags));
  // Where rights cannot be set, the account that made the file keeps it for itself.
  static_cast<void>(fchmod(made, ModeOf(directory) & kFileRights));
  return Descriptor(made);
}

bool EndsInsideALine(int descriptor, off_t size) {
  char last = '\n';
  return size > 0 && pread(descriptor, &last, 1, size - 1) == 1 && last != '\n';
}

std::string CannotWrite(const std::string& path, const std::string& reason) {
  return "The record " + path + " cannot be written: " + reason +
         "; let this account write there, or name another directory with --data.";
}

bool HasSpace(const std::string& directory, int descriptor, std::string& error) {
  struct statvfs space = {};
  if (fstatvfs(descriptor, &space) != 0) {
    error = CannotWrite(directory, Reason());
    return false;
  }
  const std::uint64_t free = std::uint64_t{space.f_bavail} * space.f_frsize;
  if (free >= kNeededFreeBytes) return true;
  error = "The disk of the record " + directory + " has " + std::to_string(free / 1024) +
          " KiB free, less than the 16384 KiB that a run needs; make room, or name another "
          "directory with --data.";
  return false;
}

// Whether a name looks like "2026-11-21.jsonl".
bool IsDayFile(const std::string& name) {
  constexpr std::string_view kShape = "dddd-dd-dd.jsonl";
  return name.size() == kShape.size() &&
         std::equal(name.begin(), name.end(), kShape.begin(), [](char character, char wanted) {
           return wanted == 'd' ? character >= '0' && character <= '9' : character == wanted;
         });
}

// Such as "2026-11-21"; empty when there is no file yet.
std::string NewestDayIn(const std::string& data_directory) {
  std::string newest;
  for (const std::string& name : RecordFileNames(data_directory)) {
    if (IsDayFile(name)) newest = name.substr(0, name.find('.'));
  }
  return newest;
}

}  // namespace

std::string RecordDirectory(const std::string& data_directory) {
  return data_directory + "/journal";
}

bool FlushToDisk(int descriptor) {
#if defined(__APPLE__)
  // fsync alone leaves the lines in the disk's own memory there.
  if (fcntl(descriptor, F_FULLFSYNC) == 0) return true;
  return fsync(descriptor) == 0;
#else
  return fdatasync(descriptor) == 0;
#endif
}

bool RecordFiles::Open(const std::string& data_directory, std::string& error) {
  m_directory = RecordDirectory(data_directory);
  if (!MakeDirectories(data_directory, 0700)) {
    error = CannotWrite(data_directory, Reason());
    return false;
  }
  const Descriptor above(open(data_directory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  const mode_t mode = above.IsOpen() ? ModeOf(above.Number()) : 0700;
  if (mkdir(m_directory.c_str(), 0700) == 0) chmod(m_directory.c_str(), mode);
  m_directory_descriptor =
      Descriptor(open(m_directory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  bool created = false;
  if (m_directory_descriptor.IsOpen()) {
    m_lock = OpenShared(m_directory_descriptor.Number(), "lock", created);
  }
  // Rights are asked for here, because files are only made when the first line is written.
  if (!m_lock.IsOpen() || faccessat(m_directory_descriptor.Number(), ".", W_OK, 0) != 0) {
    error = CannotWrite(m_directory, Reason());
    return false;
  }
  m_newest_day = NewestDayIn(data_directory);
  return HasSpace(m_directory, m_directory_descriptor.Number(), error);
}

// The order of the lines is the truth: when the clock was set back to an earlier day, a newer line
// still has to come after the older ones.
std::string RecordFiles::DayToWrite(const std::string& day) {
  if (day > m_newest_day) m_newest_day = day;
  return m_newest_day;
}

bool RecordFiles::TakeLock(std::string& error) {
  for (int i = 0; i < kLockTries; ++i) {
    if (flock(m_lock.Number(), LOCK_EX | LOCK_NB) == 0) return true;
    if (errno != EWOULDBLOCK && errno != EINTR) break;
    usleep(10000);
  }
  error = CannotWrite(m_directory + "/lock", "another process keeps it locked");
  return false;
}

Descriptor RecordFiles::OpenDay(const std::string& day, std::string& error) {
  bool created = false;
  Descriptor file = OpenShared(m_directory_descriptor.Number(), day + ".jsonl", created);
  if (!file.IsOpen()) error = CannotWrite(m_directory + "/" + day + ".jsonl", Reason());
  // A power cut must not take the name of a new file away with its lines.
  if (created) FlushToDisk(m_directory_descriptor.Number());
  return file;
}

bool RecordFiles::Append(const std::string& wanted_day, const std::string& lines, bool flush,
                         std::string& error) {
  if (!TakeLock(error)) return false;
  const std::string day = DayToWrite(wanted_day);
  const Descriptor file = OpenDay(day, error);
  bool is_written = false;
  if (file.IsOpen()) {
    struct stat status = {};
    const bool has_size = fstat(file.Number(), &status) == 0;
    is_written =
        has_size && WriteAll(file.Number(),
                             EndsInsideALine(file.Number(), status.st_size) ? "\n" + lines : lines);
    if (!is_written) error = CannotWrite(m_directory + "/" + day + ".jsonl", Reason());
    // Under the lock nobody else has appended meanwhile.
    if (!is_written && has_size) static_cast<void>(ftruncate(file.Number(), status.st_size) == 0);
  }
  // Unlocked before the flush, which takes long: others may append meanwhile.
  flock(m_lock.Number(), LOCK_UN);
  if (!is_written) return false;
  if (!flush || FlushToDisk(file.Number())) return true;
  error = CannotWrite(m_directory + "/" + day + ".jsonl", Reason());
  return false;
}

}  // namespace line
