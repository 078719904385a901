// SPDX-License-Identifier: MIT
//
// How often each bank of a display was erased and written, over the display's whole life.
//
// The file has one line for each bank, in order: "bank erases writes", blank-padded to a fixed
// width, so that one count is updated in place and a killed run loses none.
#ifndef ZVISP_SIMULATOR_DISPLAY_COUNTERS_H_
#define ZVISP_SIMULATOR_DISPLAY_COUNTERS_H_

#include <array>
#include <cstdint>
#include <string>

#include "display/flash.h"
#include "files/file_io.h"

namespace simulator {

struct BankCount {
  std::uint32_t erases = 0;
  std::uint32_t writes = 0;
};

class Counters {
 public:
  // Opens the file or makes it, never through a symbolic link. A line that cannot be read counts
  // from 0. False when the file fails.
  [[nodiscard]] bool Open(const std::string& path);

  // Count one more erase or write of a bank; false when the file fails.
  [[nodiscard]] bool CountErase(std::uint32_t bank);
  [[nodiscard]] bool CountWrite(std::uint32_t bank);

 private:
  [[nodiscard]] bool Store(std::uint32_t bank);

  FileHandle m_file;
  std::array<BankCount, kBankCount> m_counts = {};
};

}  // namespace simulator

#endif  // ZVISP_SIMULATOR_DISPLAY_COUNTERS_H_
