// SPDX-License-Identifier: MIT
//
// The worker's end of the pair of sockets.
#ifndef ZVISP_LINE_WORKER_PARENT_LINK_H_
#define ZVISP_LINE_WORKER_PARENT_LINK_H_

#include <sys/types.h>

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "line/worker/messages.h"

namespace line {

class ParentLink {
 public:
  explicit ParentLink(int socket);

  // Waits until the frame is sent. False when the parent is gone.
  bool Send(const std::string& frame);
  // Never waits: without room for it, the frame is dropped.
  void SendOrDrop(const std::string& frame);

  // Waits for the next frame; nothing when the parent is gone. Open files that come with a frame
  // stay open until this process ends.
  std::optional<Frame> Receive();
  // How many open files have come.
  std::size_t KeptFiles() const { return m_files.size(); }

  // True in the process that the parent started. A plug-in's fork returns twice, and the second
  // process has nothing to say here.
  bool IsParentsChild() const;

 private:
  bool SendRest(const char* bytes, std::size_t count, int flags);

  int m_socket;
  pid_t m_process;
  std::string m_received;
  std::vector<int> m_files;
};

}  // namespace line

#endif  // ZVISP_LINE_WORKER_PARENT_LINK_H_
