// SPDX-License-Identifier: MIT
//
// A process that this one starts, in a process group of its own.
#ifndef ZVISP_LINE_SUPERVISE_CHILD_PROCESS_H_
#define ZVISP_LINE_SUPERVISE_CHILD_PROCESS_H_

#include <sys/types.h>

#include <optional>
#include <string>
#include <vector>

namespace line {

// How a process ended.
struct ProcessEnd {
  std::optional<int> exit_status;
  std::optional<int> signal;
};

// The descriptor, moved to a number that a child's own descriptors do not use, and closed in every
// child that is started; -1 with errno when there is none free.
int MovedUp(int descriptor);

// What to do about this error of the system, when something cannot be started: "free memory or
// processes and try again".
const char* RemedyFor(int failure);

// What is started, and what it gets.
struct ChildOrder {
  // An open file of this process, from MovedUp, and its number in the child.
  struct Put {
    int descriptor, number;
  };
  std::string program;             // one without "/" is found in PATH
  std::vector<std::string> words;  // the name that it sees as its own, then its arguments
  std::string directory;           // its working directory; empty: that of this process
  std::vector<Put> puts;
  std::vector<int> nulls;  // numbers that are /dev/null in the child
};

class ChildProcess {
 public:
  ChildProcess() = default;
  // Ends the whole process group at once, and waits for the process.
  ~ChildProcess();
  ChildProcess(const ChildProcess&) = delete;
  ChildProcess& operator=(const ChildProcess&) = delete;

  // Starts it with default signals, none of them blocked; 0, or the number of the system's error.
  int Start(const ChildOrder& order);

  bool IsRunning() const { return m_pid > 0; }

  // To the process and what it has started; nothing after its end.
  void Signal(int signal) const;

  // Its end, once: its process group is then ended as well. Nothing while it runs.
  std::optional<ProcessEnd> TakeEnd();

 private:
  pid_t m_pid = -1;
};

}  // namespace line

#endif  // ZVISP_LINE_SUPERVISE_CHILD_PROCESS_H_
