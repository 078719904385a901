// SPDX-License-Identifier: MIT
//
// A NOR flash of 256 banks of 65536 bytes in a file.
//
// The file is a plain image: byte n of the file is byte n of the flash. It ends with the last bank
// that was ever programmed, and everything beyond its end is erased, that is, reads as 0xFF. A new
// display is thus an empty file, made at no cost, and a programmed one compares with its firmware
// byte for byte. A gap below a programmed bank is filled with 0xFF before the bank is written, so
// a run that is killed at any point leaves a file that reads rightly.
#ifndef ZVISP_SIMULATOR_DISPLAY_FLASH_H_
#define ZVISP_SIMULATOR_DISPLAY_FLASH_H_

#include <cstdint>
#include <vector>

#include "files/file_io.h"

namespace simulator {

inline constexpr std::uint32_t kBankCount = 256;
inline constexpr std::uint32_t kBankBytes = 65536;
inline constexpr std::uint32_t kFlashBytes = kBankCount * kBankBytes;
inline constexpr std::uint8_t kErased = 0xFF;

// The bytes of one bank; always kBankBytes long.
using BankBytes = std::vector<std::uint8_t>;

// Banks are 0..255 and addresses end at kFlashBytes: the caller has checked. Every operation
// returns false when the file fails.
class Flash {
 public:
  // Takes a file that is open for reading and writing.
  explicit Flash(FileHandle file) : m_file(std::move(file)) {}

  [[nodiscard]] bool Read(std::uint32_t address, std::uint32_t length, std::uint8_t* out) const;
  [[nodiscard]] bool ReadBank(std::uint32_t bank, BankBytes& out) const;
  // Sets every bit of the bank.
  [[nodiscard]] bool EraseBank(std::uint32_t bank);
  // Clears the bits of the bank that are clear in `bytes`; no bit is ever set by programming.
  [[nodiscard]] bool ProgramBank(std::uint32_t bank, const BankBytes& bytes);
  // Turns one bit of the bank over, as a bad cell does; bit 0 is the lowest of the bank's first
  // byte.
  [[nodiscard]] bool FlipBit(std::uint32_t bank, std::uint32_t bit);

 private:
  [[nodiscard]] bool FillUpTo(off_t offset);

  FileHandle m_file;
};

}  // namespace simulator

#endif  // ZVISP_SIMULATOR_DISPLAY_FLASH_H_
