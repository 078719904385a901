// SPDX-License-Identifier: MIT
//
// A pipe whose reader is a thread of its own. Whoever prints into it never waits for the loop, what
// is printed is never on a disk, and the first lines are kept.
#ifndef ZVISP_LINE_SUPERVISE_OUTPUT_DRAIN_H_
#define ZVISP_LINE_SUPERVISE_OUTPUT_DRAIN_H_

#include <cstddef>
#include <string>
#include <thread>

namespace line {

class OutputDrain {
 public:
  static constexpr std::size_t kKeptBytes = 4096;

  OutputDrain() = default;
  ~OutputDrain() { Finish(); }
  OutputDrain(const OutputDrain&) = delete;
  OutputDrain& operator=(const OutputDrain&) = delete;

  // Makes the pipe and starts to read; false, with a sentence in `error`, when it cannot.
  bool Open(std::string& error);
  // The end to print into, as MovedUp gives it, for the child that is started next.
  int Descriptor() const { return m_write; }
  // Closes this process's own copy of that end, when the child has been started.
  void CloseDescriptor();

  // To be called when the child has ended. Reads what it left, stops, and returns the first
  // kKeptBytes of all. A process that still holds the pipe then finds it closed.
  std::string Finish();

 private:
  void Read();
  bool ReadSome();

  int m_read = -1, m_write = -1;
  int m_stop_read = -1, m_stop_write = -1;  // closing the latter stops the thread
  std::string m_kept;                       // the thread's, while it runs
  std::thread m_thread;
};

}  // namespace line

#endif  // ZVISP_LINE_SUPERVISE_OUTPUT_DRAIN_H_
