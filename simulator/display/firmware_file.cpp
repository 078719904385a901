// SPDX-License-Identifier: MIT
#include "display/firmware_file.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstring>

namespace simulator {
namespace {

Outcome Unreadable(const std::string& path, const char* why) {
  return Refuse(Code::kFileUnreadable, "cannot read " + path + ": " + why);
}

}  // namespace

Outcome FirmwareFiles::ReadBank(const std::string& path, std::uint32_t file_bank, BankBytes& out) {
  if (Outcome opened = OpenPath(path); !opened.Ok()) return opened;
  out.assign(kBankBytes, kErased);
  const ssize_t got =
      ReadAt(m_file.Get(), out.data(), out.size(), static_cast<off_t>(file_bank) * kBankBytes);
  if (got < 0) return Unreadable(path, std::strerror(errno));
  if (got > 0) return Done();
  return Refuse(Code::kFileTooShort, path + Format(" ends before its bank %u", file_bank));
}

Outcome FirmwareFiles::OpenPath(const std::string& path) {
  if (m_file.IsOpen() && m_path == path) return Done();
  FileHandle file = OpenFile(path, O_RDONLY);
  if (!file.IsOpen()) return Unreadable(path, std::strerror(errno));
  struct stat status = {};
  if (fstat(file.Get(), &status) != 0) return Unreadable(path, std::strerror(errno));
  if (!S_ISREG(status.st_mode)) return Unreadable(path, "not an ordinary file");
  m_file = std::move(file);
  m_path = path;
  return Done();
}

}  // namespace simulator
