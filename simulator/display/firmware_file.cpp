// SPDX-License-Identifier: MIT
#include "display/firmware_file.h"
#include "display/format.h"

#include <fcntl.h>

#include <cerrno>
#include <cstring>

namespace simulator {

Outcome FirmwareFile::Open(const std::string& path) {
  m_path = path;
  m_file = OpenFile(path, O_RDONLY);
  if (!m_file.IsOpen() || !LookAt(m_file, m_look)) return Unreadable(std::strerror(errno));
  return IsOrdinaryFile(m_look) ? Done() : Unreadable("not an ordinary file");
}

Outcome FirmwareFile::ReadBank(std::uint32_t file_bank, BankBytes& out) const {
  // A short last bank keeps 0xFF after its bytes: the cells that stay erased.
  out.assign(kBankBytes, kErased);
  const ssize_t got =
      ReadAt(m_file.Get(), out.data(), out.size(), static_cast<off_t>(file_bank) * kBankBytes);
  if (got < 0) return Unreadable(std::strerror(errno));
  if (got > 0) return Done();
  return Refuse(Code::kFileTooShort, m_path + Format(" ends before its bank %u", file_bank));
}

Outcome FirmwareFile::CheckUnchanged() const {
  struct stat now = {};
  if (!LookAt(m_file, now)) return Unreadable(std::strerror(errno));
  if (IsUnchanged(m_look, now)) return Done();
  return Refuse(Code::kFileChanged, m_path + " changed while it was read, nothing was programmed");
}

Outcome FirmwareFile::Unreadable(const char* why) const {
  return Refuse(Code::kFileUnreadable, "cannot read " + m_path + ": " + why);
}

}  // namespace simulator
