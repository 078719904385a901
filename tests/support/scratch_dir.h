// SPDX-License-Identifier: MIT
//
// A directory of a test's own: unique, so that tests run side by side, and gone at the end.
#ifndef ZVISP_TESTS_SUPPORT_SCRATCH_DIR_H_
#define ZVISP_TESTS_SUPPORT_SCRATCH_DIR_H_

#include <string>

class ScratchDir {
 public:
  // Makes it under the system's directory for temporary files. Throws std::system_error when it
  // cannot. With a name, the directory is called so, inside one of its own.
  explicit ScratchDir(const std::string& name = "");

  // Removes it with everything in it, also what was made unreadable.
  ~ScratchDir();

  ScratchDir(const ScratchDir&) = delete;
  ScratchDir& operator=(const ScratchDir&) = delete;

  // Full path with links resolved and no "/" at the end.
  const std::string& Path() const { return m_path; }

  // Full path of a name in the directory.
  std::string operator/(const std::string& name) const { return m_path + "/" + name; }

 private:
  std::string m_root;
  std::string m_path;
};

// Lets the scratch directories that this process makes from now on be in memory, where the system
// offers that and lets us write there; a test of very many files takes a tenth of the time there.
void PreferScratchInMemory();

#endif  // ZVISP_TESTS_SUPPORT_SCRATCH_DIR_H_
