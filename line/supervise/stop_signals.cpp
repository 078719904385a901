// SPDX-License-Identifier: MIT
#include "line/supervise/stop_signals.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>

namespace line {

namespace {

// A handler may do next to nothing. It writes the number into a pipe, and the loop polls the pipe.
int g_pipe[2] = {-1, -1};

extern "C" void NoteSignal(int signal) {
  // The code that was interrupted may be about to read errno.
  const int kept = errno;
  const auto byte = static_cast<unsigned char>(signal);
  static_cast<void>(!write(g_pipe[1], &byte, 1));
  errno = kept;
}

}  // namespace

StopSignals::StopSignals() {
  if (pipe(g_pipe) == 0) {
    for (const int end : g_pipe) {
      // A full pipe must not stop the handler: then there are signals enough to be read.
      fcntl(end, F_SETFL, O_NONBLOCK);
      fcntl(end, F_SETFD, FD_CLOEXEC);
    }
  }
  struct sigaction action = {};
  action.sa_handler = NoteSignal;
  action.sa_flags = SA_RESTART;
  sigemptyset(&action.sa_mask);
  sigset_t taken;
  sigemptyset(&taken);
  for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGCHLD}) {
    sigaddset(&taken, signal);
    Kept kept = {signal, {}};
    sigaction(signal, nullptr, &kept.action);
    // A signal that was ignored stays ignored: nohup and background jobs do that on purpose.
    if (signal != SIGCHLD && kept.action.sa_handler == SIG_IGN) continue;
    sigaction(signal, &action, nullptr);
    m_kept.push_back(kept);
  }
  pthread_sigmask(SIG_UNBLOCK, &taken, &m_blocked_before);
}

StopSignals::~StopSignals() {
  pthread_sigmask(SIG_SETMASK, &m_blocked_before, nullptr);
  for (const Kept& kept : m_kept) {
    sigaction(kept.signal, &kept.action, nullptr);
  }
  for (int& end : g_pipe) {
    close(end);
    end = -1;
  }
}

int StopSignals::Descriptor() const {
  return g_pipe[0];
}

std::vector<int> StopSignals::Take() {
  std::vector<int> signals;
  unsigned char bytes[64];
  ssize_t got = 0;
  while ((got = read(g_pipe[0], bytes, sizeof bytes)) > 0) {
    for (ssize_t i = 0; i < got; ++i) {
      if (bytes[i] != SIGCHLD) signals.push_back(bytes[i]);
    }
  }
  return signals;
}

}  // namespace line
