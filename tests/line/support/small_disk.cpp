// SPDX-License-Identifier: MIT
#include "line/support/small_disk.h"

#include <fcntl.h>
#include <unistd.h>

#include <utility>

#include "support/files.h"

#ifdef __linux__
#include <sys/mount.h>
#endif

namespace {

constexpr const char* kFiller = "/filler";

void AppendUntilFull(const std::string& path) {
  const int file = open(path.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0600);
  const std::string spaces(4096, ' ');
  while (write(file, spaces.data(), spaces.size()) > 0) {
  }
  close(file);
}

}  // namespace

SmallDisk::SmallDisk(std::string directory, unsigned kib) : m_directory(std::move(directory)) {
  GivenDirectory(m_directory);
#ifdef __linux__
  const std::string options = "size=" + std::to_string(kib) + "k";
  m_is_mounted = mount("tmpfs", m_directory.c_str(), "tmpfs", 0, options.c_str()) == 0;
#else
  static_cast<void>(kib);
#endif
}

SmallDisk::~SmallDisk() {
#ifdef __linux__
  if (m_is_mounted) umount2(m_directory.c_str(), MNT_DETACH);
#endif
}

void SmallDisk::Fill(const std::string& last_file) const {
  AppendUntilFull(m_directory + kFiller);
  AppendUntilFull(last_file);
}

void SmallDisk::MakeRoom() const {
  unlink((m_directory + kFiller).c_str());
}
