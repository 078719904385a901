// SPDX-License-Identifier: MIT
//
// The firmware files that a bank map names.
#ifndef ZVISP_SIMULATOR_DISPLAY_FIRMWARE_FILE_H_
#define ZVISP_SIMULATOR_DISPLAY_FIRMWARE_FILE_H_

#include <cstdint>
#include <string>

#include "files/file_io.h"
#include "display/flash.h"
#include "display/outcome.h"

namespace simulator {

// Reads banks of firmware files, keeping the last file open because a map names the same file for
// many banks in a row.
class FirmwareFiles {
 public:
  // Reads the bank with the given index of the file, the rest of a last, shorter bank as 0xFF.
  // Refuses a file that is missing, unreadable or no ordinary file, and one that ends before the
  // bank begins.
  Outcome ReadBank(const std::string& path, std::uint32_t file_bank, BankBytes& out);

 private:
  Outcome OpenPath(const std::string& path);

  std::string m_path;
  FileHandle m_file;
};

}  // namespace simulator

#endif  // ZVISP_SIMULATOR_DISPLAY_FIRMWARE_FILE_H_
