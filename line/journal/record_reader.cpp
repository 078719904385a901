// SPDX-License-Identifier: MIT
#include "line/journal/record_reader.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "line/journal/record_file.h"

namespace line {

namespace {

// How ToJsonLine begins every line.
constexpr std::string_view kLineStart = "{\"v\":1,\"type\":\"";
constexpr std::string_view kFileEnd = ".jsonl";

bool IsRecordFile(std::string_view name) {
  return name.size() > kFileEnd.size() && name.substr(name.size() - kFileEnd.size()) == kFileEnd;
}

std::string CannotRead(const std::string& path, int reason) {
  return "The record " + path + " cannot be read: " + std::strerror(reason) +
         "; read it as an account that may, or name another directory with --data.";
}

// Empty also for a directory that is not there: nothing was recorded then.
std::string WhyNoNames(const std::string& directory) {
  DIR* const opened = opendir(directory.c_str());
  if (opened == nullptr) return errno == ENOENT ? "" : CannotRead(directory, errno);
  closedir(opened);
  return "";
}

}  // namespace

std::vector<std::string> RecordFileNames(const std::string& data_directory) {
  std::vector<std::string> names;
  DIR* const directory = opendir(RecordDirectory(data_directory).c_str());
  if (directory == nullptr) return names;
  while (const dirent* const entry = readdir(directory)) {
    if (IsRecordFile(entry->d_name)) names.emplace_back(entry->d_name);
  }
  closedir(directory);
  // The names are dates, the year first, so this is the order of the days.
  std::sort(names.begin(), names.end());
  return names;
}

MappedFile::MappedFile(const std::string& path) : m_failure(Map(path)) {}

int MappedFile::Map(const std::string& path) {
  const Descriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
  struct stat status = {};
  if (!file.IsOpen() || fstat(file.Number(), &status) != 0) return errno;
  if (!S_ISREG(status.st_mode)) return EINVAL;
  // mmap refuses an empty range.
  if (status.st_size == 0) return 0;
  const auto size = static_cast<std::size_t>(status.st_size);
  void* const bytes = mmap(nullptr, size, PROT_READ, MAP_PRIVATE, file.Number(), 0);
  if (bytes == MAP_FAILED) return errno;
  m_bytes = {static_cast<const char*>(bytes), size};
  return 0;
}

MappedFile::~MappedFile() {
  if (!m_bytes.empty()) munmap(const_cast<char*>(m_bytes.data()), m_bytes.size());
}

std::string ForEachRecordLine(const std::string& data_directory,
                              const std::function<void(const RecordLine&)>& use) {
  if (data_directory.empty()) return kNoDataDirectory;
  std::string failure = WhyNoNames(RecordDirectory(data_directory));
  for (const std::string& name : RecordFileNames(data_directory)) {
    const std::string path = RecordDirectory(data_directory) + "/" + name;
    const MappedFile file(path);
    if (file.Failure() != 0 && failure.empty()) failure = CannotRead(path, file.Failure());
    std::string_view rest = file.Bytes();
    for (std::uint64_t number = 1; !rest.empty(); ++number) {
      const std::size_t end = std::min(rest.find('\n'), rest.size());
      use({name, number, rest.substr(0, end), end < rest.size()});
      rest.remove_prefix(std::min(end + 1, rest.size()));
    }
  }
  return failure;
}

std::string WhyRecordIsUnreadable(const std::string& data_directory) {
  if (data_directory.empty()) return kNoDataDirectory;
  const std::string directory = RecordDirectory(data_directory);
  for (const std::string& name : RecordFileNames(data_directory)) {
    std::string path = directory;
    path.append("/").append(name);
    const MappedFile file(path);
    if (file.Failure() != 0) return CannotRead(path, file.Failure());
  }
  return WhyNoNames(directory);
}

std::string_view TypeOfLine(std::string_view text) {
  if (text.substr(0, kLineStart.size()) != kLineStart || text.back() != '}') return {};
  const std::string_view type = text.substr(kLineStart.size());
  const std::size_t end = type.find('"');
  return end == std::string_view::npos ? std::string_view() : type.substr(0, end);
}

}  // namespace line
