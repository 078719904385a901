// SPDX-License-Identifier: MIT
#include "line/supervise/worker_process.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "base/process_path.h"
#include "line/worker/passed_files.h"

using namespace zvisp;

namespace line {

namespace {

// Both ends are closed in every process that is started but the worker, which gets its own.
bool MakeSocketPair(int (&ends)[2]) {
  if (socketpair(AF_UNIX, SOCK_STREAM, 0, ends) != 0) return false;
  for (int& end : ends) {
    end = MovedUp(end);
  }
  // Before anything else can fail for another reason.
  if (ends[0] < 0 || ends[1] < 0) return false;
  fcntl(ends[0], F_SETFL, O_NONBLOCK);
  return true;
}

int Spawn(const char* command, int output, int copies_lock, int socket, ChildProcess& process) {
  char program[4096] = {};
  ReadProcessPath(program, sizeof program);
  // The last one begins the messages of zvisp's scanner.
  ChildOrder order = {program, {"zvisp-line", command, "zvisp"}, "", {}, {STDIN_FILENO}};
  order.puts = {{output, STDOUT_FILENO}, {output, STDERR_FILENO}, {socket, kWorkerSocket}};
  if (copies_lock >= 0) {
    order.puts.push_back({copies_lock, kWorkerCopiesLock});
  } else {
    order.nulls.push_back(kWorkerCopiesLock);
  }
  return process.Start(order);
}

#ifdef MSG_NOSIGNAL
constexpr int kNoSignal = MSG_NOSIGNAL;
#else
constexpr int kNoSignal = 0;  // main ignores SIGPIPE
#endif

}  // namespace

WorkerProcess::~WorkerProcess() {
  CloseSocket();
}

bool WorkerProcess::Start(int output, int copies_lock, std::string& error, const char* command) {
  int ends[2] = {-1, -1};
  int failure = MakeSocketPair(ends) ? 0 : errno;
  if (failure == 0) failure = Spawn(command, output, copies_lock, ends[1], m_process);
  if (ends[1] >= 0) close(ends[1]);
  m_socket = ends[0];
  if (failure == 0) return true;
  error = std::string("A worker cannot be started: ") + std::strerror(failure) + "; " +
          RemedyFor(failure) + ".";
  return false;
}

void WorkerProcess::CloseSocket() {
  if (m_socket >= 0) close(m_socket);
  m_socket = -1;
  m_to_send.clear();
  m_files.clear();
}

void WorkerProcess::SendWith(const std::vector<int>& files, const std::string& frame) {
  m_files = files;
  m_files_at = m_to_send.size();
  Send(frame);
}

void WorkerProcess::Send(const std::string& frame) {
  if (m_socket < 0) return;
  m_to_send += frame;
  SendQueued();
}

// Files go with the first byte of their frame.
ssize_t WorkerProcess::SendSome() {
  constexpr int kFlags = MSG_DONTWAIT | kNoSignal;
  const bool later = !m_files.empty() && m_files_at > 0;
  const std::size_t count = later ? m_files_at : m_to_send.size();
  const ssize_t sent = later ? send(m_socket, m_to_send.data(), count, kFlags)
                             : SendWithFiles(m_socket, m_to_send.data(), count, m_files, kFlags);
  if (sent <= 0) return sent;
  if (later) {
    m_files_at -= static_cast<std::size_t>(sent);
  } else {
    m_files.clear();
  }
  return sent;
}

void WorkerProcess::SendQueued() {
  while (!m_to_send.empty()) {
    const ssize_t sent = SendSome();
    if (sent < 0 && errno == EINTR) continue;
    if (sent < 0) {
      // A worker that is gone is noticed by its end.
      if (errno != EAGAIN && errno != EWOULDBLOCK) m_to_send.clear();
      return;
    }
    m_to_send.erase(0, static_cast<std::size_t>(sent));
  }
}

// False when there was nothing to be read, or the socket has ended.
bool WorkerProcess::ReceiveSome() {
  if (m_socket < 0) return false;
  char buffer[65536];
  const ssize_t got = recv(m_socket, buffer, sizeof buffer, MSG_DONTWAIT);
  if (got > 0) m_received.append(buffer, static_cast<std::size_t>(got));
  const bool nothing_yet = got < 0 && (errno == EAGAIN || errno == EWOULDBLOCK || errno == EINTR);
  if (got <= 0 && !nothing_yet) CloseSocket();
  return got > 0;
}

std::vector<Frame> WorkerProcess::TakeFrames() {
  std::vector<Frame> frames;
  bool broken = false;
  while (std::optional<Frame> frame = TakeFrame(m_received, broken)) {
    frames.push_back(std::move(*frame));
  }
  // Perhaps a plug-in has written to the socket. What follows cannot be trusted.
  if (broken) CloseSocket();
  return frames;
}

std::vector<Frame> WorkerProcess::Receive() {
  // Once a call: a worker that never stops talking must not keep the others waiting.
  ReceiveSome();
  return TakeFrames();
}

std::vector<Frame> WorkerProcess::ReceiveRest() {
  while (ReceiveSome()) {
  }
  return TakeFrames();
}

std::optional<Frame> WorkerProcess::WaitForFrame() {
  bool broken = false;
  for (;;) {
    std::optional<Frame> frame = TakeFrame(m_received, broken);
    if (frame || broken || m_socket < 0) return frame;
    pollfd entry = {m_socket, POLLIN, 0};
    if (poll(&entry, 1, -1) < 0 && errno != EINTR) return std::nullopt;
    ReceiveSome();
  }
}

}  // namespace line
