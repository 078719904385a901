// SPDX-License-Identifier: MIT
#include "display/flash.h"

#include <sys/stat.h>

#include <algorithm>

namespace simulator {
namespace {

off_t OffsetOf(std::uint32_t bank) {
  return static_cast<off_t>(bank) * kBankBytes;
}

// -1 when the file fails.
off_t SizeOf(const FileHandle& file) {
  struct stat status = {};
  return fstat(file.Get(), &status) == 0 ? status.st_size : -1;
}

}  // namespace

bool Flash::Read(std::uint32_t address, std::uint32_t length, std::uint8_t* out) const {
  // The file ends with the last programmed bank. What comes after its end is erased.
  const ssize_t got = ReadAt(m_file.Get(), out, length, static_cast<off_t>(address));
  if (got < 0) return false;
  std::fill(out + got, out + length, kErased);
  return true;
}

bool Flash::ReadBank(std::uint32_t bank, BankBytes& out) const {
  out.resize(kBankBytes);
  return Read(bank * kBankBytes, kBankBytes, out.data());
}

bool Flash::EraseBank(std::uint32_t bank) {
  const off_t size = SizeOf(m_file);
  if (size < 0) return false;
  // After the end of the file every bank is erased already, and the file stays short.
  if (size <= OffsetOf(bank)) return true;
  const BankBytes erased(kBankBytes, kErased);
  return WriteAt(m_file.Get(), erased.data(), erased.size(), OffsetOf(bank));
}

bool Flash::ProgramBank(std::uint32_t bank, const BankBytes& bytes) {
  BankBytes cells;
  if (!FillUpTo(OffsetOf(bank)) || !ReadBank(bank, cells)) return false;
  // Programming a NOR flash clears bits and never sets one. A bank that was not erased first ends
  // up wrong, and the comparison finds it.
  std::transform(cells.begin(), cells.end(), bytes.begin(), cells.begin(),
                 [](std::uint8_t cell, std::uint8_t byte) -> std::uint8_t { return cell & byte; });
  return WriteAt(m_file.Get(), cells.data(), cells.size(), OffsetOf(bank));
}

bool Flash::FlipBit(std::uint32_t bank, std::uint32_t bit) {
  BankBytes cells;
  if (!FillUpTo(OffsetOf(bank)) || !ReadBank(bank, cells)) return false;
  std::uint8_t& cell = cells[(bit / 8) % kBankBytes];
  cell = static_cast<std::uint8_t>(cell ^ (1U << (bit % 8)));
  return WriteAt(m_file.Get(), cells.data(), cells.size(), OffsetOf(bank));
}

// A gap would read as zeros, which are programmed cells. Filled from the low end, so that a run
// that is killed leaves no gap either.
bool Flash::FillUpTo(off_t offset) {
  off_t size = SizeOf(m_file);
  if (size < 0) return false;
  const BankBytes erased(size < offset ? kBankBytes : 0, kErased);
  while (size < offset) {
    const auto piece = std::min<off_t>(offset - size, kBankBytes);
    if (!WriteAt(m_file.Get(), erased.data(), static_cast<std::size_t>(piece), size)) return false;
    size += piece;
  }
  return true;
}

}  // namespace simulator
