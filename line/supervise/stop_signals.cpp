// SPDX-License-Identifier: MIT
#include "line/supervise/stop_signals.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>

namespace line {

namespace {

int g_pipe[2] = {-1, -1};

extern "C" void NoteSignal(int signal) {
  const int kept = errno;
  const auto byte = static_cast<unsigned char>(signal);
  static_cast<void>(!write(g_pipe[1], &byte, 1));
  errno = kept;
}

}  // namespace

StopSignals::StopSignals() {
  if (pipe(g_pipe) == 0) {
    for (const int end : g_pipe) {
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
