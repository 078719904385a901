// SPDX-License-Identifier: MIT
//
// The firmware files that a bank map names.
#ifndef ZVISP_SIMULATOR_DISPLAY_FIRMWARE_FILE_H_
#define ZVISP_SIMULATOR_DISPLAY_FIRMWARE_FILE_H_

#include <cstdint>
#include <string>

#include "display/flash.h"
#include "display/outcome.h"
#include "files/file_look.h"

namespace simulator {

// A firmware file, opened once for all banks that are read of it.
class FirmwareFile {
 public:
  // Refuses a file that is missing, unreadable or not an ordinary file.
  Outcome Open(const std::string& path);
  // Reads the bank with the given index of the file, the rest of a last, shorter bank as 0xFF.
  // Refuses when the file ends before the bank begins.
  Outcome ReadBank(std::uint32_t file_bank, BankBytes& out) const;
  // Refuses when the file is not any more what it was when it was opened: the banks that were read
  // may then be of two versions.
  Outcome CheckUnchanged() const;

 private:
  Outcome Unreadable(const char* why) const;

  std::string m_path;
  FileHandle m_file;
  struct stat m_look = {};
};

}  // namespace simulator

#endif  // ZVISP_SIMULATOR_DISPLAY_FIRMWARE_FILE_H_
