// SPDX-License-Identifier: MIT
#include "base/path.h"

#include <dlfcn.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <string_view>

#include "base/process_path.h"
#include "base/transform.h"

using namespace zvisp;

namespace {

constexpr std::size_t kProcessPathCapacity = 4096;
constexpr std::size_t kImagePathLimit = 260;  // bytes taken of a loaded image's file name
constexpr std::size_t kResolvedPathCapacity = 40960;

// Keeps the text up to and including its last separator; "./" when it has none.
void CutAfterLastSeparator(char* path) {
  // Kept quirk: without a "/", a "\" counts, although it can be part of a name here.
  char* separator = std::strrchr(path, '/');
  if (separator == nullptr) separator = std::strrchr(path, '\\');
  if (separator == nullptr) {
    std::memcpy(path, "./", sizeof "./");
  } else {
    separator[1] = '\0';
  }
}

void ReadImageDirectory(const void* address, char* buffer) {
  Dl_info image = {};
  if (dladdr(address, &image) == 0) return;
  // The buffer is zeroed and longer than the limit, so the text has its terminating zero.
  std::strncpy(buffer, image.dli_fname, kImagePathLimit);
  CutAfterLastSeparator(buffer);
}

// A file that is open for reading; opening never waits for the other end of a pipe.
class ReadableFile {
 public:
  explicit ReadableFile(const std::string& path)
      : m_descriptor(open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC)) {
    if (m_descriptor >= 0 && fstat(m_descriptor, &m_status) != 0) Close();
  }
  ~ReadableFile() { Close(); }
  ReadableFile(const ReadableFile&) = delete;
  ReadableFile& operator=(const ReadableFile&) = delete;

  bool IsOpen() const { return m_descriptor >= 0; }
  bool IsDirectory() const { return S_ISDIR(m_status.st_mode); }
  bool IsRegular() const { return S_ISREG(m_status.st_mode); }
  std::uint64_t Size() const { return static_cast<std::uint64_t>(m_status.st_size); }

 private:
  void Close() {
    if (m_descriptor >= 0) close(m_descriptor);
    m_descriptor = -1;
  }

  int m_descriptor;
  struct stat m_status = {};
};

}  // namespace

CCpZvString GetCurrentProcessDir(void* address) {
  char buffer[kProcessPathCapacity] = {};
  if (address == nullptr) {
    ReadProcessPath(buffer, sizeof buffer);
  } else {
    ReadImageDirectory(address, buffer);
  }
  std::wstring path = CCpTransform().ConvertCHARToUnicodeString(buffer);
  if (!path.empty()) {
    // Without the name of the executable. Without any "/" all of the path stays.
    path.erase(std::min(path.rfind(L'/'), path.size()));
    path += L'/';
  }
  CCpZvString directory;
  directory = path;
  return directory;
}

std::string GetAbsolutePath(const std::string& path) {
  char buffer[kResolvedPathCapacity] = {};
  // A failure is ignored: what was resolved until then names the file in our messages.
  static_cast<void>(realpath(path.c_str(), buffer) == nullptr);
  return buffer;
}

bool IsAbsolutePath(const std::string& path) {
  return path.find(":\\") == 1 || path.find("://") == 1 || path.find('/') == 0;
}

std::string GetFileFullPath(const std::string& path, const std::string& base) {
  return IsAbsolutePath(path) ? path : GetAbsolutePath(base + path);
}

bool PathFileExist(const std::string& path) {
  const ReadableFile file(path);
  return file.IsOpen() && !file.IsDirectory();
}

bool zvisp::GetRegularFileSize(const std::string& path, std::uint64_t& bytes) {
  const ReadableFile file(path);
  if (!file.IsOpen() || !file.IsRegular()) return false;
  bytes = file.Size();
  return true;
}

bool PopupDlgToGetOpenFilePath(const CCpZvString& /*title*/, CCpZvString& /*path*/) {
  return true;
}
