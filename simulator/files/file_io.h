// SPDX-License-Identifier: MIT
//
// Plain POSIX file access with the retries done: what both plug-ins read and write their files
// with. Nothing here is forced to the disk: a file survives a killed run, not a power cut.
#ifndef ZVISP_SIMULATOR_FILES_FILE_IO_H_
#define ZVISP_SIMULATOR_FILES_FILE_IO_H_

#include <sys/types.h>

#include <cstddef>
#include <string>
#include <string_view>
#include <utility>

namespace simulator {

// Owns a file descriptor and closes it.
class FileHandle {
 public:
  FileHandle() = default;
  explicit FileHandle(int descriptor) : m_descriptor(descriptor) {}
  FileHandle(FileHandle&& other) noexcept : m_descriptor(std::exchange(other.m_descriptor, -1)) {}
  FileHandle& operator=(FileHandle&& other) noexcept {
    std::swap(m_descriptor, other.m_descriptor);
    return *this;
  }
  ~FileHandle() { Close(); }

  bool IsOpen() const { return m_descriptor >= 0; }
  int Get() const { return m_descriptor; }
  // True when the file was open and everything written has reached it.
  bool Close();

 private:
  int m_descriptor = -1;
};

// Opens a file; the handle is not open on failure (errno says why). Never waits for a pipe's other
// end, never takes a terminal, never passes the file to a child process.
FileHandle OpenFile(const std::string& path, int flags);
// The same for a file that the plug-in itself writes: a symbolic link fails (errno is ELOOP), so
// that nobody can lead the writing to another file.
FileHandle OpenWithoutLink(const std::string& path, int flags);

// Reads up to `length` bytes at `offset`: fewer only at the end of the file, -1 on failure.
ssize_t ReadAt(int descriptor, void* buffer, std::size_t length, off_t offset);
// Writes all of `length` bytes at `offset`; false on failure.
bool WriteAt(int descriptor, const void* buffer, std::size_t length, off_t offset);
// Writes all of `text` at the position of the descriptor, in one piece where the system allows.
bool WriteText(int descriptor, std::string_view text);

enum class ReadResult { kRead, kMissing, kFailed };
// Reads a whole file of at most `limit` bytes. A longer file, a directory and an unreadable file
// are kFailed.
ReadResult ReadSmallFile(const std::string& path, std::size_t limit, std::string& content);

// Puts a new content in the place of a file at once: a reader, or the next run after a killed one,
// finds the old content or the new one. The content is first written to the file `fresh`, which
// is made anew: what was there under that name, a link too, is removed and not written to. The
// permissions of an old file stay. False on failure (errno says why); the old content then stays.
// REQUIRES: nobody else uses the name `fresh`, which is in the same directory.
bool ReplaceFile(const std::string& path, const std::string& fresh, std::string_view content);

// Makes a directory and the ones above it; true when it exists afterwards.
bool MakeDirectories(const std::string& path);

}  // namespace simulator

#endif  // ZVISP_SIMULATOR_FILES_FILE_IO_H_
