// SPDX-License-Identifier: MIT
//
// Reading the files that a request names. Anything but a regular file of a sensible size is refused
// before a byte of it is read, so that neither a pipe nor a disk image can hold the run up.
#ifndef ZVISP_SIMULATOR_SIGNER_INPUT_FILE_H_
#define ZVISP_SIMULATOR_SIGNER_INPUT_FILE_H_

#include <sys/stat.h>

#include <cstddef>
#include <string>

#include "files/file_look.h"
#include "signer/wiped_bytes.h"

namespace signer {

// Largest key, certificate or signature file in bytes; real ones have a few hundred.
inline constexpr std::size_t kSmallFileLimit = std::size_t{64} * 1024;
// Largest firmware file in bytes, four times the 256 banks that a display can have. The firmware
// is held in memory, for Ed25519 has to go over it twice.
inline constexpr std::size_t kFirmwareLimit = std::size_t{64} * 1024 * 1024;

// A file that is open for reading.
class InputFile {
 public:
  // `role` names the file in refusals ("sign key") and has to outlive the object.
  InputFile(const char* role, const std::string& path) : m_role(role), m_path(path) {}

  // Opens a regular file of 1 to `limit` bytes; prints why otherwise.
  bool Open(std::size_t limit);

  // The size when it was opened.
  std::size_t Size() const { return static_cast<std::size_t>(m_look.st_size); }
  // Permission bits.
  mode_t Mode() const { return m_look.st_mode & 07777; }
  const std::string& Path() const { return m_path; }

  // Reads the whole file into Size() bytes; prints why when it cannot, or when it has changed.
  bool ReadInto(unsigned char* bytes) const;

 private:
  bool RefuseReading() const;

  const char* m_role;
  std::string m_path;
  simulator::FileHandle m_file;
  struct stat m_look = {};
};

// Opens and reads a file of at most kSmallFileLimit bytes.
bool ReadSmallFile(const char* role, const std::string& path, WipedBytes& content);

}  // namespace signer

#endif  // ZVISP_SIMULATOR_SIGNER_INPUT_FILE_H_
