// SPDX-License-Identifier: MIT
//
// Copies of the files of a run that nobody else can change: what was checked is what is programmed.
// They are in a directory of mode 0700 under a short path, each in a directory of its own under its
// own base name.
#ifndef ZVISP_LINE_SUPERVISE_PRIVATE_COPIES_H_
#define ZVISP_LINE_SUPERVISE_PRIVATE_COPIES_H_

#include <map>
#include <memory>
#include <string>

#include "line/job/judged_words.h"

namespace line {

class PrivateCopies {
 public:
  // Removes what earlier commands of this user left, and makes the directory. Null, with a
  // sentence in `error`, when it cannot be made.
  static std::unique_ptr<PrivateCopies> Make(std::string& error);

  // Removes the directory with everything in it, unless a worker still uses it: the next command
  // does it then.
  ~PrivateCopies();
  PrivateCopies(const PrivateCopies&) = delete;
  PrivateCopies& operator=(const PrivateCopies&) = delete;

  // The path of the copy of a file; a file is copied once. Empty, with a sentence in `error`, when
  // it is not an ordinary file, cannot be read, or changes while it is copied.
  std::string CopyOf(const std::string& source, std::string& error);

  // The file whose lock says that the directory is in use, for the workers to keep open.
  int LockDescriptor() const { return m_lock; }

  // A path in the directory for a file of this command's own.
  std::string PathFor(const std::string& name) const { return m_directory + "/" + name; }

 private:
  PrivateCopies(std::string directory, int lock)
      : m_directory(std::move(directory)), m_lock(lock) {}

  std::string m_directory;
  int m_lock;
  unsigned m_next_directory = 0;
  std::map<std::string, std::string> m_copies;  // by source
};

// Copies every file that the judged records name and puts the copies' paths into the records:
// firmware, boot code, signature, keys to verify with and certificate. Paths of signature files
// that lead to no ordinary file stay: the check of the signature decides about them. False, with a
// sentence in `error`, when a file cannot be copied, or is not what was judged any more.
bool UseCopies(PrivateCopies& copies, JudgedWords& words, std::string& error);

}  // namespace line

#endif  // ZVISP_LINE_SUPERVISE_PRIVATE_COPIES_H_
