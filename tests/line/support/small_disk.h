// SPDX-License-Identifier: MIT
//
// A disk of a few megabytes, to be full when a test says so.
#ifndef ZVISP_TESTS_LINE_SUPPORT_SMALL_DISK_H_
#define ZVISP_TESTS_LINE_SUPPORT_SMALL_DISK_H_

#include <string>

class SmallDisk {
 public:
  // Makes the directory and mounts a disk in memory there, of so many KiB. The rights of root are
  // needed; see IsThere().
  SmallDisk(std::string directory, unsigned kib);
  ~SmallDisk();
  SmallDisk(const SmallDisk&) = delete;
  SmallDisk& operator=(const SmallDisk&) = delete;

  bool IsThere() const { return m_is_mounted; }

  // Leaves no byte free, also not at the end of this file, which must be on the disk.
  void Fill(const std::string& last_file) const;
  // Gives back what Fill took, but the spaces at the end of that file.
  void MakeRoom() const;

 private:
  std::string m_directory;
  bool m_is_mounted = false;
};

#endif  // ZVISP_TESTS_LINE_SUPPORT_SMALL_DISK_H_
