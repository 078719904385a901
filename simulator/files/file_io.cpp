// SPDX-License-Identifier: MIT
#include "files/file_io.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>

namespace simulator {
namespace {

constexpr mode_t kFileMode = 0666;
constexpr mode_t kDirectoryMode = 0777;

bool IsDirectory(const std::string& path) {
  struct stat status = {};
  return stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

// Gives a new file the permissions of the one that it is to replace, if there is one.
bool KeepPermissions(const std::string& path, int descriptor) {
  struct stat old = {};
  return stat(path.c_str(), &old) != 0 || fchmod(descriptor, old.st_mode & 0777) == 0;
}

}  // namespace

bool FileHandle::Close() {
  const int closing = std::exchange(m_descriptor, -1);
  return closing >= 0 && close(closing) == 0;
}

FileHandle OpenFile(const std::string& path, int flags) {
  return FileHandle(open(path.c_str(), flags | O_CLOEXEC | O_NONBLOCK | O_NOCTTY, kFileMode));
}

FileHandle OpenWithoutLink(const std::string& path, int flags) {
  return OpenFile(path, flags | O_NOFOLLOW);
}

ssize_t ReadAt(int descriptor, void* buffer, std::size_t length, off_t offset) {
  std::size_t done = 0;
  while (done < length) {
    const ssize_t got = pread(descriptor, static_cast<char*>(buffer) + done, length - done,
                              offset + static_cast<off_t>(done));
    // The end of the file. Less than the length is a result here, not a failure.
    if (got == 0) break;
    if (got < 0 && errno != EINTR) return -1;
    if (got > 0) done += static_cast<std::size_t>(got);
  }
  return static_cast<ssize_t>(done);
}

bool WriteAt(int descriptor, const void* buffer, std::size_t length, off_t offset) {
  std::size_t done = 0;
  while (done < length) {
    const ssize_t put = pwrite(descriptor, static_cast<const char*>(buffer) + done, length - done,
                               offset + static_cast<off_t>(done));
    if (put < 0 && errno != EINTR) return false;
    if (put > 0) done += static_cast<std::size_t>(put);
  }
  return true;
}

bool WriteText(int descriptor, std::string_view text) {
  while (!text.empty()) {
    const ssize_t put = write(descriptor, text.data(), text.size());
    if (put < 0 && errno != EINTR) return false;
    if (put > 0) text.remove_prefix(static_cast<std::size_t>(put));
  }
  return true;
}

ReadResult ReadSmallFile(const std::string& path, std::size_t limit, std::string& content) {
  const FileHandle file = OpenFile(path, O_RDONLY);
  if (!file.IsOpen()) return errno == ENOENT ? ReadResult::kMissing : ReadResult::kFailed;
  // One byte more than allowed, which shows that a file is too long without asking for its size.
  content.resize(limit + 1);
  const ssize_t got = ReadAt(file.Get(), content.data(), content.size(), 0);
  if (got < 0 || static_cast<std::size_t>(got) > limit) return ReadResult::kFailed;
  content.resize(static_cast<std::size_t>(got));
  return ReadResult::kRead;
}

bool ReplaceFile(const std::string& path, const std::string& fresh, std::string_view content) {
  // What a killed run left.
  if (unlink(fresh.c_str()) != 0 && errno != ENOENT) return false;
  FileHandle file = OpenWithoutLink(fresh, O_WRONLY | O_CREAT | O_EXCL);
  if (!file.IsOpen()) return false;
  if (KeepPermissions(path, file.Get()) && WriteText(file.Get(), content) && file.Close() &&
      std::rename(fresh.c_str(), path.c_str()) == 0) {
    return true;
  }
  // The caller reports the reason of the failure, not that of the clean-up.
  const int reason = errno;
  unlink(fresh.c_str());
  errno = reason;
  return false;
}

bool MakeDirectories(const std::string& path) {
  if (IsDirectory(path)) return true;
  const std::size_t slash = path.find_last_of('/');
  if (slash != std::string::npos && slash > 0 && !MakeDirectories(path.substr(0, slash))) {
    return false;
  }
  // Another run may have made it in the meantime.
  return mkdir(path.c_str(), kDirectoryMode) == 0 || IsDirectory(path);
}

}  // namespace simulator
