// SPDX-License-Identifier: MIT
#include "line/worker/parent_link.h"

#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>

#include "line/worker/passed_files.h"

namespace line {

namespace {

#ifdef MSG_NOSIGNAL
constexpr int kNoSignal = MSG_NOSIGNAL;
#else
constexpr int kNoSignal = 0;  // the constructor sets it for the whole socket
#endif

}  // namespace

ParentLink::ParentLink(int socket) : m_socket(socket), m_process(getpid()) {
#ifdef SO_NOSIGPIPE
  const int on = 1;
  setsockopt(socket, SOL_SOCKET, SO_NOSIGPIPE, &on, sizeof on);
#endif
}

bool ParentLink::SendRest(const char* bytes, std::size_t count, int flags) {
  while (count > 0) {
    const ssize_t sent = send(m_socket, bytes, count, flags | kNoSignal);
    if (sent < 0 && errno == EINTR) continue;
    if (sent < 0) return false;
    bytes += sent;
    count -= static_cast<std::size_t>(sent);
    // A frame that was begun is finished, or the next one would look like its rest.
    flags = 0;
  }
  return true;
}

bool ParentLink::Send(const std::string& frame) {
  return SendRest(frame.data(), frame.size(), 0);
}

void ParentLink::SendOrDrop(const std::string& frame) {
  SendRest(frame.data(), frame.size(), MSG_DONTWAIT);
}

std::optional<Frame> ParentLink::Receive() {
  bool broken = false;
  for (;;) {
    std::optional<Frame> frame = TakeFrame(m_received, broken);
    if (frame || broken) return frame;
    char buffer[16384];
    const ssize_t got = ReceiveWithFiles(m_socket, buffer, sizeof buffer, m_files);
    if (got < 0 && errno == EINTR) continue;
    if (got <= 0) return std::nullopt;
    m_received.append(buffer, static_cast<std::size_t>(got));
  }
}

bool ParentLink::IsParentsChild() const {
  return getpid() == m_process;
}

}  // namespace line
