// SPDX-License-Identifier: MIT
#include "line/worker/passed_files.h"

#include <fcntl.h>
#include <sys/socket.h>

#include <cstring>

namespace line {

namespace {

constexpr std::size_t kControlBytes = CMSG_SPACE(kMostPassedFiles * sizeof(int));

// A process that is started between the arrival and fcntl would keep the file; Linux has a flag
// against that.
#ifdef MSG_CMSG_CLOEXEC
constexpr int kCloseOnExec = MSG_CMSG_CLOEXEC;
#else
constexpr int kCloseOnExec = 0;
#endif

void TakeFiles(msghdr& message, std::vector<int>& files) {
  for (cmsghdr* part = CMSG_FIRSTHDR(&message); part != nullptr;
       part = CMSG_NXTHDR(&message, part)) {
    if (part->cmsg_level != SOL_SOCKET || part->cmsg_type != SCM_RIGHTS) continue;
    const std::size_t bytes = part->cmsg_len - CMSG_LEN(0);
    for (std::size_t at = 0; at + sizeof(int) <= bytes; at += sizeof(int)) {
      int file = -1;
      std::memcpy(&file, CMSG_DATA(part) + at, sizeof file);
      fcntl(file, F_SETFD, FD_CLOEXEC);
      files.push_back(file);
    }
  }
}

}  // namespace

ssize_t SendWithFiles(int socket, const char* bytes, std::size_t count,
                      const std::vector<int>& files, int flags) {
  if (files.empty()) return send(socket, bytes, count, flags);
  iovec data = {const_cast<char*>(bytes), count};
  alignas(cmsghdr) char control[kControlBytes] = {};
  msghdr message = {};
  message.msg_iov = &data;
  message.msg_iovlen = 1;
  message.msg_control = control;
  // These lengths have a type of their own on each system.
  message.msg_controllen =
      static_cast<decltype(message.msg_controllen)>(CMSG_SPACE(files.size() * sizeof(int)));
  cmsghdr* const part = CMSG_FIRSTHDR(&message);
  part->cmsg_level = SOL_SOCKET;
  part->cmsg_type = SCM_RIGHTS;
  part->cmsg_len = static_cast<decltype(part->cmsg_len)>(CMSG_LEN(files.size() * sizeof(int)));
  std::memcpy(CMSG_DATA(part), files.data(), files.size() * sizeof(int));
  return sendmsg(socket, &message, flags);
}

ssize_t ReceiveWithFiles(int socket, char* bytes, std::size_t count, std::vector<int>& files) {
  iovec data = {bytes, count};
  alignas(cmsghdr) char control[kControlBytes] = {};
  msghdr message = {};
  message.msg_iov = &data;
  message.msg_iovlen = 1;
  message.msg_control = control;
  message.msg_controllen = sizeof control;
  const ssize_t got = recvmsg(socket, &message, kCloseOnExec);
  if (got >= 0) TakeFiles(message, files);
  return got;
}

}  // namespace line
