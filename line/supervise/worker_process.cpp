// SPDX-License-Identifier: MIT
#include "line/supervise/worker_process.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "base/process_path.h"
#include "line/worker/passed_files.h"
#include "line/worker/worker.h"

using namespace zvisp;

extern char** environ;

namespace line {

namespace {

// Numbers that the worker's own descriptors do not use, so that none of them is moved onto itself.
constexpr int kFirstFree = 16;

int MovedUp(int descriptor) {
  const int moved = fcntl(descriptor, F_DUPFD_CLOEXEC, kFirstFree);
  close(descriptor);
  return moved;
}

// Both ends are closed in every process that is started but the worker, which gets its own.
bool MakeSocketPair(int (&ends)[2]) {
  if (socketpair(AF_UNIX, SOCK_STREAM, 0, ends) != 0) return false;
  for (int& end : ends) {
    end = MovedUp(end);
  }
  fcntl(ends[0], F_SETFL, O_NONBLOCK);
  return ends[0] >= 0 && ends[1] >= 0;
}

class FileActions {
 public:
  FileActions() { posix_spawn_file_actions_init(&m_actions); }
  ~FileActions() { posix_spawn_file_actions_destroy(&m_actions); }
  FileActions(const FileActions&) = delete;
  FileActions& operator=(const FileActions&) = delete;

  void Open(int number, const char* path) {
    posix_spawn_file_actions_addopen(&m_actions, number, path, O_RDONLY, 0);
  }
  void Put(int descriptor, int number) {
    posix_spawn_file_actions_adddup2(&m_actions, descriptor, number);
  }
  const posix_spawn_file_actions_t* Get() const { return &m_actions; }

 private:
  posix_spawn_file_actions_t m_actions{};
};

// Default signals and none of them blocked, in a process group of its own: Ctrl-C on the terminal
// reaches the parent alone.
class Attributes {
 public:
  Attributes() {
    sigset_t all;
    sigset_t none;
    sigfillset(&all);
    sigemptyset(&none);
    posix_spawnattr_init(&m_attributes);
    posix_spawnattr_setsigdefault(&m_attributes, &all);
    posix_spawnattr_setsigmask(&m_attributes, &none);
    posix_spawnattr_setpgroup(&m_attributes, 0);
    posix_spawnattr_setflags(
        &m_attributes, POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETPGROUP);
  }
  ~Attributes() { posix_spawnattr_destroy(&m_attributes); }
  Attributes(const Attributes&) = delete;
  Attributes& operator=(const Attributes&) = delete;
  const posix_spawnattr_t* Get() const { return &m_attributes; }

 private:
  posix_spawnattr_t m_attributes{};
};

std::vector<char*> Pointers(std::vector<std::string>& texts) {
  std::vector<char*> pointers;
  pointers.reserve(texts.size() + 1);
  for (std::string& text : texts) {
    pointers.push_back(text.data());
  }
  pointers.push_back(nullptr);
  return pointers;
}

int Spawn(int output, int copies_lock, int socket, pid_t& pid) {
  char program[4096] = {};
  ReadProcessPath(program, sizeof program);
  // The last one begins the messages of zvisp's scanner.
  std::vector<std::string> texts = {"zvisp-line", kWorkerCommand, "zvisp"};
  const std::vector<char*> arguments = Pointers(texts);
  FileActions actions;
  actions.Put(output, STDOUT_FILENO);
  actions.Put(output, STDERR_FILENO);
  actions.Put(socket, kWorkerSocket);
  if (copies_lock >= 0) {
    actions.Put(copies_lock, kWorkerCopiesLock);
  } else {
    actions.Open(kWorkerCopiesLock, "/dev/null");
  }
  actions.Open(STDIN_FILENO, "/dev/null");
  const Attributes attributes;
  return posix_spawn(&pid, program, actions.Get(), attributes.Get(), arguments.data(), environ);
}

ProcessEnd EndOf(int status) {
  ProcessEnd end;
  if (WIFEXITED(status)) end.exit_status = WEXITSTATUS(status);
  if (WIFSIGNALED(status)) end.signal = WTERMSIG(status);
  return end;
}

#ifdef MSG_NOSIGNAL
constexpr int kNoSignal = MSG_NOSIGNAL;
#else
constexpr int kNoSignal = 0;  // main ignores SIGPIPE
#endif

}  // namespace

WorkerProcess::~WorkerProcess() {
  CloseSocket();
  if (m_pid < 0) return;
  Signal(SIGKILL);
  while (waitpid(m_pid, nullptr, 0) < 0 && errno == EINTR) {
  }
}

bool WorkerProcess::Start(int output, int copies_lock, std::string& error) {
  int ends[2] = {-1, -1};
  int failure = MakeSocketPair(ends) ? 0 : errno;
  if (failure == 0) failure = Spawn(output, copies_lock, ends[1], m_pid);
  if (ends[1] >= 0) close(ends[1]);
  m_socket = ends[0];
  if (failure == 0) return true;
  m_pid = -1;
  error = std::string("A worker cannot be started: ") + std::strerror(failure) +
          "; free memory or processes and try again.";
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

void WorkerProcess::Signal(int signal) const {
  if (m_pid > 0) kill(-m_pid, signal);
}

std::optional<ProcessEnd> WorkerProcess::TakeEnd() {
  siginfo_t info = {};
  if (m_pid < 0) return std::nullopt;
  if (waitid(P_PID, static_cast<id_t>(m_pid), &info, WEXITED | WNOHANG | WNOWAIT) != 0 ||
      info.si_pid != m_pid) {
    return std::nullopt;
  }
  // While the worker has not been waited for, its number belongs to nobody else.
  Signal(SIGKILL);
  int status = 0;
  waitpid(m_pid, &status, 0);
  m_pid = -1;
  return EndOf(status);
}

}  // namespace line
