// SPDX-License-Identifier: MIT
//
// Runs a program the way a shell or a production script does, and reports all that came of it.
#ifndef ZVISP_TESTS_SUPPORT_RUN_TOOL_H_
#define ZVISP_TESTS_SUPPORT_RUN_TOOL_H_

#include <sys/types.h>

#include <map>
#include <optional>
#include <string>
#include <vector>

// How a run ended and what it said, standard output and standard error apart.
struct RunResult {
  std::string out;
  std::string err;
  int status = -1;  // exit status; -1 when a signal ended the run
  int signal = 0;   // the signal that ended it, or 0
};

// Where standard output goes: to the result, nowhere, to a disk without room, or into a pipe whose
// reader has left.
enum class OutputTo { kCapture, kClosed, kFullDisk, kNoReader };

// What to start, and in which surroundings.
struct Command {
  std::string program;                 // path given to the system, as it is
  std::string name;                    // argv[0]; empty: the program's path
  std::vector<std::string> arguments;  // argv[1] and up
  std::string directory;               // working directory
  bool directory_vanishes = false;     // removed, once the run is in it
  OutputTo output = OutputTo::kCapture;
  bool without_privileges = false;  // as an ordinary user, when the test runs as root
  // Set, or unset when without a value, on top of the test's own environment, from which the
  // locale and this project's variables are taken away. The locale is "C.UTF-8" unless it is here.
  std::map<std::string, std::optional<std::string>> environment;
};

// A run that is under way. Its output is kept in files, so that any number can be under way.
class StartedRun {
 public:
  explicit StartedRun(const Command& command);
  ~StartedRun();
  StartedRun(StartedRun&& other) noexcept;
  StartedRun& operator=(StartedRun&&) = delete;

  // Waits for the end. Call it once.
  RunResult Wait();

  // What it has printed on standard output so far. REQUIRES: before Wait.
  std::string OutputSoFar() const;

  // Ends it with a signal; Wait() then reports how it ended.
  void Kill(int signal) const;

 private:
  pid_t m_pid = -1;
  std::string m_out_path;
  std::string m_err_path;
};

// Starts it and waits for its end.
RunResult RunCommand(const Command& command);

#endif  // ZVISP_TESTS_SUPPORT_RUN_TOOL_H_
