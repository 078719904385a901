// SPDX-License-Identifier: MIT
//
// What a plug-in shares with its host, and has to leave as it was.
#ifndef ZVISP_LINE_PLUGIN_CHECK_SURROUNDINGS_H_
#define ZVISP_LINE_PLUGIN_CHECK_SURROUNDINGS_H_

#include <signal.h>
#include <sys/stat.h>
#include <sys/types.h>

#include <map>
#include <string>
#include <utility>
#include <vector>

namespace line {

// As it is when the object is made. For a process with one thread of its own.
class Surroundings {
 public:
  Surroundings();

  // What is different now, each as a part of a sentence, "the umask is 077 instead of 022"; none
  // when nothing is.
  std::vector<std::string> Differences() const;

 private:
  std::map<int, std::pair<dev_t, ino_t>> m_descriptors;
  std::string m_directory;
  std::vector<std::string> m_locale;  // by category
  mode_t m_umask;
  std::vector<bool> m_blocked;                    // by the signal's number
  std::vector<std::pair<void*, int>> m_handlers;  // by the signal's number: address and flags
};

}  // namespace line

#endif  // ZVISP_LINE_PLUGIN_CHECK_SURROUNDINGS_H_
