// SPDX-License-Identifier: MIT
#include "line/journal/interface_lock.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace line {

namespace {

constexpr const char* kDirectory = "/var/tmp/zvisp-line.locks";
constexpr std::uint32_t kInterfaces = 17;

// The variable is for tests: they must not meet each other's locks, nor an operator's.
std::string Directory() {
  const char* const other = std::getenv("ZVISP_LINE_LOCK_DIR");
  return other == nullptr || *other == '\0' ? kDirectory : other;
}

// Every user of the host works with the directory, and nobody can take another's file away.
bool MakeDirectory(const std::string& directory) {
  if (mkdir(directory.c_str(), 01777) != 0) return errno == EEXIST;
  return chmod(directory.c_str(), 01777) == 0;
}

std::string FileOf(std::uint32_t comm) {
  return Directory() + "/comm-" + std::to_string(comm);
}

// A link that somebody else has made leads to files that are none of ours: they would be made,
// opened to everybody, or emptied.
int WithoutLinks(int file) {
  struct stat status = {};
  if (file < 0 || (fstat(file, &status) == 0 && S_ISREG(status.st_mode) && status.st_nlink == 1)) {
    return file;
  }
  close(file);
  errno = EMLINK;
  return -1;
}

// An existing file is opened without O_CREAT: the system refuses that flag for other users' files
// in a directory like this.
int OpenIn(int directory, const std::string& name) {
  constexpr int kFlags = O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK;
  for (int i = 0; i < 2; ++i) {
    int file = openat(directory, name.c_str(), O_RDWR | kFlags);
    if (file < 0 && errno == ENOENT) {
      file = openat(directory, name.c_str(), O_RDWR | O_CREAT | O_EXCL | kFlags, 0666);
      // Whatever the creator's umask is.
      if (file >= 0) static_cast<void>(fchmod(file, 0666));
    }
    if (file >= 0 || errno != EEXIST) return WithoutLinks(file);
  }
  return -1;
}

// -1 with errno when the lock, or its directory, is not what this program has made.
int OpenLockFile(const std::string& path) {
  const std::size_t slash = path.rfind('/');
  const int directory =
      open(path.substr(0, slash).c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
  if (directory < 0) return -1;
  const int file = OpenIn(directory, path.substr(slash + 1));
  const int reason = errno;
  close(directory);
  errno = reason;
  return file;
}

bool IsLocked(const std::string& path) {
  const int file = open(path.c_str(), O_RDONLY | O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK);
  if (file < 0) return false;
  // A shared lock, so that two who ask do not disturb each other.
  const bool locked = flock(file, LOCK_SH | LOCK_NB) != 0 && errno == EWOULDBLOCK;
  close(file);
  return locked;
}

void WriteHolder(int file, const std::string& holder) {
  // For people only. A failure changes nothing about the lock. The file is cut only when it is too
  // long: to give its block back and to get a new one costs more than the lock.
  struct stat facts = {};
  const auto length = static_cast<off_t>(holder.size());
  const bool is_longer = fstat(file, &facts) == 0 && facts.st_size > length;
  if (is_longer && ftruncate(file, length) != 0) return;
  static_cast<void>(!pwrite(file, holder.data(), holder.size(), 0));
}

std::string HolderIn(const std::string& path) {
  char text[256] = {};
  const int file = open(path.c_str(), O_RDONLY | O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK);
  if (file < 0) return "";
  const ssize_t bytes = read(file, text, sizeof text - 1);
  close(file);
  return bytes > 0 ? std::string(text, static_cast<std::size_t>(bytes)) : "";
}

// The number in "process 123 (unit A)"; 0 for none.
pid_t ProcessIn(const std::string& holder) {
  int number = 0;
  return std::sscanf(holder.c_str(), "process %d ", &number) == 1 ? number : 0;
}

// A lock outlives the process that took it: workers have it, too, and what their plug-ins leave.
std::string InUseBy(const std::string& path, const std::string& what) {
  const std::string holder = HolderIn(path);
  if (holder.empty()) return what + " is in use";
  const pid_t process = ProcessIn(holder);
  const bool is_gone = process > 0 && kill(process, 0) != 0 && errno == ESRCH;
  return what + " is in use by " + holder +
         (is_gone
              ? ", which has ended and left a process that may still write to a display; fuser " +
                    path + " names it"
              : "");
}

std::string AnyInterfaceInUse() {
  for (std::uint32_t comm = 0; comm < kInterfaces; ++comm) {
    if (IsLocked(FileOf(comm))) {
      return InUseBy(FileOf(comm),
                     "This run needs the host alone, but interface " + std::to_string(comm));
    }
  }
  return "This run needs the host alone, but an interface is in use";
}

std::string NotAvailable(const std::string& path) {
  return "The lock " + path + " cannot be opened: " + std::strerror(errno) +
         "; make its directory a real one that every user can write (mode 1777).";
}

}  // namespace

InterfaceLock::Answer InterfaceLock::TakeOnce(const InterfaceUse& use, const std::string& holder,
                                              std::string& reason) {
  const std::string host = Directory() + "/comm-all";
  const std::string own = FileOf(use.comm);
  m_host = MakeDirectory(Directory()) ? OpenLockFile(host) : -1;
  m_interface = m_host < 0 ? -1 : OpenLockFile(own);
  if (m_interface < 0) {
    reason = NotAvailable(m_host < 0 ? host : own);
    return Answer::kNotAvailable;
  }
  const bool alone = use.alone || use.comm == 0;
  // This lock decides between a run that must be alone and all others; the next one between two
  // runs at one interface.
  if (flock(m_host, (alone ? LOCK_EX : LOCK_SH) | LOCK_NB) != 0) {
    reason = alone ? AnyInterfaceInUse() : InUseBy(host, "The whole host");
    return Answer::kInUse;
  }
  if (flock(m_interface, LOCK_EX | LOCK_NB) != 0) {
    reason = InUseBy(own, "Interface " + std::to_string(use.comm));
    return Answer::kInUse;
  }
  WriteHolder(m_interface, holder);
  if (alone) WriteHolder(m_host, holder);
  return Answer::kTaken;
}

InterfaceLock::Answer InterfaceLock::Take(const InterfaceUse& use, const std::string& holder,
                                          std::string& reason) {
  Release();
  const Answer answer = TakeOnce(use, holder, reason);
  if (answer != Answer::kTaken) Release();
  return answer;
}

void InterfaceLock::Release() {
  for (int* const file : {&m_interface, &m_host}) {
    if (*file >= 0) close(*file);
    *file = -1;
  }
}

std::vector<int> InterfaceLock::Files() const {
  if (m_interface < 0) return {};
  return {m_host, m_interface};
}

bool IsInterfaceFree(std::uint32_t comm) {
  return !IsLocked(FileOf(comm));
}

}  // namespace line
