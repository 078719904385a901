// SPDX-License-Identifier: MIT
#include "line/supervise/private_copies.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <system_error>
#include <vector>

#include "line/journal/descriptor.h"

namespace line {

namespace {

namespace fs = std::filesystem;

constexpr const char* kParent = "/tmp";
constexpr const char* kPrefix = "zvisp-line-copies-";
// Of a directory whose lock is not yet taken: nobody may find it stale.
constexpr const char* kNewPrefix = "zvisp-line-new-";
constexpr const char* kLockName = "in-use";
// A bank entry's path has 256 units. The directories of a copy need at most 40 of them.
constexpr std::size_t kLongestName = 200;
constexpr std::size_t kChunk = std::size_t{256} * 1024;

int LockOf(const std::string& directory, int flags) {
  const std::string path = directory + "/" + kLockName;
  return open(path.c_str(), O_RDWR | O_NOFOLLOW | O_CLOEXEC | flags, 0600);
}

// The lock belongs to the open file, which the workers share: it is free when the last of them has
// ended. A directory without the file is being removed by somebody else.
bool IsInUse(const std::string& directory) {
  const Descriptor lock(LockOf(directory, 0));
  return !lock.IsOpen() || flock(lock.Number(), LOCK_EX | LOCK_NB) != 0;
}

// What a command left that was killed before it had taken its lock.
bool IsOld(const std::string& directory) {
  constexpr time_t kOldAfter = 3600;
  struct stat facts = {};
  return stat(directory.c_str(), &facts) == 0 && facts.st_mtime + kOldAfter < time(nullptr);
}

bool IsOurDirectory(const std::string& path) {
  struct stat facts = {};
  return lstat(path.c_str(), &facts) == 0 && S_ISDIR(facts.st_mode) && facts.st_uid == geteuid();
}

void RemoveStale() {
  std::error_code ignored;
  const fs::directory_iterator end;
  for (fs::directory_iterator entry(kParent, ignored); entry != end; entry.increment(ignored)) {
    const std::string path = entry->path().string();
    const std::string name = entry->path().filename().string();
    const bool stale = (name.starts_with(kPrefix) && IsOurDirectory(path) && !IsInUse(path)) ||
                       (name.starts_with(kNewPrefix) && IsOurDirectory(path) && IsOld(path));
    if (stale) fs::remove_all(path, ignored);
  }
}

std::string Because(const std::string& what, const std::string& path, const char* todo) {
  return what + " " + path + ": " + std::strerror(errno) + "; " + todo;
}

bool SameVersion(const struct stat& left, const struct stat& right) {
#ifdef __APPLE__
  const auto same_time = [](const timespec& a, const timespec& b) {
    return a.tv_sec == b.tv_sec && a.tv_nsec == b.tv_nsec;
  };
  const bool times = same_time(left.st_mtimespec, right.st_mtimespec);
#else
  const bool times =
      left.st_mtim.tv_sec == right.st_mtim.tv_sec && left.st_mtim.tv_nsec == right.st_mtim.tv_nsec;
#endif
  return times && left.st_size == right.st_size;
}

// Reads until the buffer is full or the file ends; -1 on failure.
ssize_t ReadFull(int file, char* buffer, std::size_t count, off_t offset) {
  std::size_t done = 0;
  while (done < count) {
    const ssize_t got = pread(file, buffer + done, count - done, offset + static_cast<off_t>(done));
    if (got < 0 && errno == EINTR) continue;
    if (got < 0) return -1;
    if (got == 0) break;
    done += static_cast<std::size_t>(got);
  }
  return static_cast<ssize_t>(done);
}

bool CopyBytesOf(int source, int target) {
  std::vector<char> chunk(kChunk);
  for (off_t offset = 0;;) {
    const ssize_t got = ReadFull(source, chunk.data(), chunk.size(), offset);
    if (got < 0) return false;
    if (got == 0) return true;
    if (!WriteAll(target, {chunk.data(), static_cast<std::size_t>(got)})) return false;
    offset += got;
  }
}

// The times of a file are too coarse to show every change, so its bytes are read a second time.
bool HaveSameBytes(int left, int right) {
  std::vector<char> of_left(kChunk);
  std::vector<char> of_right(kChunk);
  for (off_t offset = 0;;) {
    const ssize_t got = ReadFull(left, of_left.data(), kChunk, offset);
    if (got < 0 || got != ReadFull(right, of_right.data(), kChunk, offset)) return false;
    if (got == 0) return true;
    if (std::memcmp(of_left.data(), of_right.data(), static_cast<std::size_t>(got)) != 0) {
      return false;
    }
    offset += got;
  }
}

// A sentence about the failure; empty when the copy is made and equals the file.
std::string CopyFile(const std::string& source, const std::string& target) {
  // Without waiting for the other end of a FIFO.
  const Descriptor from(open(source.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
  struct stat before = {};
  if (!from.IsOpen() || fstat(from.Number(), &before) != 0) {
    return Because("Cannot open", source, "check the name and its permissions.");
  }
  if (!S_ISREG(before.st_mode)) {
    return source + " is not an ordinary file; give a file with the bytes in it.";
  }
  const Descriptor to(open(target.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0600));
  if (!to.IsOpen() || !CopyBytesOf(from.Number(), to.Number())) {
    return Because("Cannot copy", source, "make room in /tmp.");
  }
  struct stat after = {};
  if (!HaveSameBytes(from.Number(), to.Number()) || fstat(from.Number(), &after) != 0 ||
      !SameVersion(before, after)) {
    return source + " changed while it was read; try again when nobody writes it.";
  }
  // A plug-in that opens the copy for writing by mistake fails, unless it runs as root.
  static_cast<void>(fchmod(to.Number(), 0400));
  return "";
}

}  // namespace

std::unique_ptr<PrivateCopies> PrivateCopies::Make(std::string& error) {
  RemoveStale();
  const std::string start = std::string(kParent) + "/" + kNewPrefix;
  std::string directory = start + "XXXXXX";
  if (mkdtemp(directory.data()) == nullptr) {
    error = Because("Cannot make a directory like", directory, "make /tmp writable.");
    return nullptr;
  }
  // The lock is taken before the directory gets its final name. So nobody finds a directory of that
  // name that looks unused.
  const int file = LockOf(directory, O_CREAT | O_EXCL);
  const int lock = file < 0 ? -1 : fcntl(file, F_DUPFD_CLOEXEC, 16);
  if (file >= 0) close(file);
  const std::string name = std::string(kParent) + "/" + kPrefix + directory.substr(start.size());
  if (lock < 0 || flock(lock, LOCK_EX | LOCK_NB) != 0 ||
      std::rename(directory.c_str(), name.c_str()) != 0) {
    error = Because("Cannot make a file in", directory, "make room in /tmp.");
    if (lock >= 0) close(lock);
    return nullptr;
  }
  return std::unique_ptr<PrivateCopies>(new PrivateCopies(name, lock));
}

PrivateCopies::~PrivateCopies() {
  close(m_lock);
  std::error_code ignored;
  if (!IsInUse(m_directory)) fs::remove_all(m_directory, ignored);
}

std::string PrivateCopies::CopyOf(const std::string& source, std::string& error) {
  const auto known = m_copies.find(source);
  if (known != m_copies.end()) return known->second;
  const std::string name = fs::path(source).filename().string();
  if (name.size() > kLongestName) {
    error = "The name of " + source + " is too long; rename the file to at most " +
            std::to_string(kLongestName) + " bytes.";
    return "";
  }
  const std::string directory = PathFor(std::to_string(m_next_directory++));
  if (mkdir(directory.c_str(), 0700) != 0) {
    error = Because("Cannot make", directory, "make room in /tmp.");
    return "";
  }
  std::string target = directory + "/" + name;
  error = CopyFile(source, target);
  if (!error.empty()) return "";
  m_copies[source] = target;
  return target;
}

}  // namespace line
