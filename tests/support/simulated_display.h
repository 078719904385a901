// SPDX-License-Identifier: MIT
//
// The files of simulated displays as an operator finds them, and runs of the tool on them.
#ifndef ZVISP_TESTS_SUPPORT_SIMULATED_DISPLAY_H_
#define ZVISP_TESTS_SUPPORT_SIMULATED_DISPLAY_H_

#include <string>
#include <vector>

#include "support/installation.h"

// A directory of displays, one for each communication number.
class Displays {
 public:
  explicit Displays(std::string directory) : m_directory(std::move(directory)) {}

  // Path of a display's file: "flash", "counters", "journal" or "faults".
  std::string File(unsigned comm_id, const std::string& kind) const;

  // What its flash holds, up to the end of the last bank that was ever programmed.
  std::string Flash(unsigned comm_id) const;
  // The lines of its journal; none when it was never used.
  std::vector<std::string> Journal(unsigned comm_id) const;
  // How often each bank that was ever touched was erased and written: "8: 1 1" for bank 8.
  std::vector<std::string> Counters(unsigned comm_id) const;

  // Lets it show faults from now on.
  void GivenFaults(unsigned comm_id, const std::string& faults) const;

  // Waits until its journal holds a line that starts so; false when it does not within a minute.
  bool WaitForJournal(unsigned comm_id, const std::string& start) const;

  // A run of the tool that finds its displays here.
  Command Line(const Installation& tool, const std::vector<std::string>& arguments) const;

 private:
  std::string m_directory;
};

#endif  // ZVISP_TESTS_SUPPORT_SIMULATED_DISPLAY_H_
