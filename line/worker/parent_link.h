// SPDX-License-Identifier: MIT
//
// The worker's end of the pair of sockets.
#ifndef ZVISP_LINE_WORKER_PARENT_LINK_H_
#define ZVISP_LINE_WORKER_PARENT_LINK_H_

#include <sys/types.h>

#include <optional>
#include <string>

#include "line/worker/messages.h"

namespace line {

class ParentLink {
 public:
  explicit ParentLink(int socket);

  // Waits until the frame is sent. False when the parent is gone.
  bool Send(const std::string& frame);
  // Never waits: without room for it, the frame is dropped.
  void SendOrDrop(const std::string& frame);

  // Waits for the next frame; nothing when the parent is gone.
  std::optional<Frame> Receive();
  // Waits for so long, or until the parent is gone, which is the answer.
  bool IsGoneWithin(int milliseconds) const;

  // True in the process that the parent started. A plug-in's fork returns twice, and the second
  // process has nothing to say here.
  bool IsParentsChild() const;

 private:
  bool SendRest(const char* bytes, std::size_t count, int flags);

  int m_socket;
  pid_t m_process;
  std::string m_received;
};

}  // namespace line

#endif  // ZVISP_LINE_WORKER_PARENT_LINK_H_
