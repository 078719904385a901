// SPDX-License-Identifier: MIT
#include "line/supervise/output_drain.h"

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <system_error>
#include <utility>

#include "line/supervise/child_process.h"

namespace line {

namespace {

constexpr std::size_t kReadAtOnce = 65536;
// 1 MiB: more does not fit into a pipe, so what comes after it was printed by somebody who outlived
// the child.
constexpr int kReadsAtEnd = 16;

bool MakePipe(int& read_end, int& write_end) {
  int ends[2] = {-1, -1};
  if (pipe(ends) != 0) return false;
  read_end = MovedUp(ends[0]);
  write_end = MovedUp(ends[1]);
  return read_end >= 0 && write_end >= 0;
}

void Close(int& descriptor) {
  if (descriptor >= 0) close(descriptor);
  descriptor = -1;
}

}  // namespace

bool OutputDrain::Open(std::string& error) {
  if (!MakePipe(m_read, m_write) || !MakePipe(m_stop_read, m_stop_write)) {
    error = std::string("No pipe can be made: ") + std::strerror(errno) +
            "; allow more open files (ulimit -n).";
    return false;
  }
  fcntl(m_read, F_SETFL, O_NONBLOCK);
  try {
    m_thread = std::thread([this] { Read(); });
  } catch (const std::system_error& failure) {
    error = std::string("No thread can be started: ") + failure.what() +
            "; free memory or processes and try again.";
    return false;
  }
  return true;
}

void OutputDrain::CloseDescriptor() {
  Close(m_write);
}

// False when there is nothing to be read now, or everybody who prints is gone.
bool OutputDrain::ReadSome() {
  char buffer[kReadAtOnce];
  const ssize_t got = read(m_read, buffer, sizeof buffer);
  if (got <= 0) return got < 0 && errno == EINTR;
  const auto bytes = static_cast<std::size_t>(got);
  m_kept.append(buffer, std::min(bytes, kKeptBytes - m_kept.size()));
  return true;
}

void OutputDrain::Read() {
  for (;;) {
    pollfd entries[] = {{m_read, POLLIN, 0}, {m_stop_read, POLLIN, 0}};
    if (poll(entries, 2, -1) < 0) {
      if (errno == EINTR) continue;
      return;
    }
    if (entries[1].revents != 0) break;
    if (!ReadSome() && (entries[0].revents & POLLHUP) != 0) return;
  }
  for (int i = 0; i < kReadsAtEnd && ReadSome(); ++i) {
  }
}

std::string OutputDrain::Finish() {
  Close(m_stop_write);
  if (m_thread.joinable()) m_thread.join();
  Close(m_read);
  Close(m_write);
  Close(m_stop_read);
  return std::exchange(m_kept, "");
}

}  // namespace line
