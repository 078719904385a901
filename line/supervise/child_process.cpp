// SPDX-License-Identifier: MIT
#include "line/supervise/child_process.h"

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>

extern char** environ;

namespace line {

namespace {

// Numbers that a child's own descriptors do not use, so that none of them is moved onto itself.
constexpr int kFirstFree = 16;

class FileActions {
 public:
  explicit FileActions(const ChildOrder& order) {
    posix_spawn_file_actions_init(&m_actions);
    if (!order.directory.empty()) {
      posix_spawn_file_actions_addchdir_np(&m_actions, order.directory.c_str());
    }
    for (const ChildOrder::Put& put : order.puts) {
      posix_spawn_file_actions_adddup2(&m_actions, put.descriptor, put.number);
    }
    for (const int number : order.nulls) {
      posix_spawn_file_actions_addopen(&m_actions, number, "/dev/null", O_RDONLY, 0);
    }
  }
  ~FileActions() { posix_spawn_file_actions_destroy(&m_actions); }
  FileActions(const FileActions&) = delete;
  FileActions& operator=(const FileActions&) = delete;
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

ProcessEnd EndOf(int status) {
  ProcessEnd end;
  if (WIFEXITED(status)) end.exit_status = WEXITSTATUS(status);
  if (WIFSIGNALED(status)) end.signal = WTERMSIG(status);
  return end;
}

}  // namespace

int MovedUp(int descriptor) {
  const int moved = fcntl(descriptor, F_DUPFD_CLOEXEC, kFirstFree);
  // The system means that the limit of open files is below the number.
  const int failure = moved < 0 && errno == EINVAL ? EMFILE : errno;
  close(descriptor);
  errno = failure;
  return moved;
}

const char* RemedyFor(int failure) {
  return failure == EMFILE ? "allow more open files (ulimit -n)"
                           : "free memory or processes and try again";
}

ChildProcess::~ChildProcess() {
  if (m_pid < 0) return;
  Signal(SIGKILL);
  while (waitpid(m_pid, nullptr, 0) < 0 && errno == EINTR) {
  }
}

int ChildProcess::Start(const ChildOrder& order) {
  std::vector<std::string> texts = order.words;
  const std::vector<char*> words = Pointers(texts);
  const FileActions actions(order);
  const Attributes attributes;
  const int failure = posix_spawnp(&m_pid, order.program.c_str(), actions.Get(), attributes.Get(),
                                   words.data(), environ);
  if (failure != 0) m_pid = -1;
  return failure;
}

void ChildProcess::Signal(int signal) const {
  if (m_pid > 0) kill(-m_pid, signal);
}

std::optional<ProcessEnd> ChildProcess::TakeEnd() {
  siginfo_t info = {};
  if (m_pid < 0) return std::nullopt;
  if (waitid(P_PID, static_cast<id_t>(m_pid), &info, WEXITED | WNOHANG | WNOWAIT) != 0 ||
      info.si_pid != m_pid) {
    return std::nullopt;
  }
  // While the process has not been waited for, its number belongs to nobody else.
  Signal(SIGKILL);
  int status = 0;
  waitpid(m_pid, &status, 0);
  m_pid = -1;
  return EndOf(status);
}

}  // namespace line
