// SPDX-License-Identifier: MIT
//
// A worker as its parent sees it: the process, its process group, the parent's end of the sockets.
#ifndef ZVISP_LINE_SUPERVISE_WORKER_PROCESS_H_
#define ZVISP_LINE_SUPERVISE_WORKER_PROCESS_H_

#include <optional>
#include <string>
#include <vector>

#include "line/supervise/child_process.h"
#include "line/worker/messages.h"
#include "line/worker/worker.h"

namespace line {

class WorkerProcess {
 public:
  WorkerProcess() = default;
  // Ends the whole process group at once, and waits for the worker.
  ~WorkerProcess();
  WorkerProcess(const WorkerProcess&) = delete;
  WorkerProcess& operator=(const WorkerProcess&) = delete;

  // Starts this program as a worker, in a process group of its own, with /dev/null as standard
  // input and `output` as standard output and error. `copies_lock` is an open file that it keeps
  // open, or -1; `command` is the hidden one that it is started with. False, with a sentence in
  // `error`, when it cannot be started.
  bool Start(int output, int copies_lock, std::string& error, const char* command = kWorkerCommand);

  int Socket() const { return m_socket; }
  bool WantsToSend() const { return !m_to_send.empty(); }

  // Queues a frame and sends what can be sent without waiting; SendQueued continues when the
  // socket can take more.
  void Send(const std::string& frame);
  // The same for a frame with open files, once in a worker's life. They must stay open until the
  // frame is sent.
  void SendWith(const std::vector<int>& files, const std::string& frame);
  void SendQueued();

  // The frames that have come, without waiting. A socket that ends, or brings what is not a frame,
  // is closed.
  std::vector<Frame> Receive();
  // What a worker that has ended left to be read.
  std::vector<Frame> ReceiveRest();
  // Waits for the next frame; nothing when the worker closed its socket.
  std::optional<Frame> WaitForFrame();

  // To the worker and what its plug-in has started.
  void Signal(int signal) const { m_process.Signal(signal); }

  // The worker's end, once: its process group is then ended as well. Nothing while it runs.
  std::optional<ProcessEnd> TakeEnd() { return m_process.TakeEnd(); }

 private:
  void CloseSocket();
  ssize_t SendSome();
  bool ReceiveSome();
  std::vector<Frame> TakeFrames();

  ChildProcess m_process;
  int m_socket = -1;
  std::string m_to_send;
  std::vector<int> m_files;    // to go with the byte at m_files_at
  std::size_t m_files_at = 0;  // in m_to_send
  std::string m_received;
};

}  // namespace line

#endif  // ZVISP_LINE_SUPERVISE_WORKER_PROCESS_H_
