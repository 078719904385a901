// SPDX-License-Identifier: MIT
#include "support/unprivileged.h"

#include <grp.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <system_error>

namespace {

constexpr uid_t kNobody = 65534;
constexpr int kNoExit = 256;
constexpr int kSignalled = 1000;

bool GiveUpRoot() {
  if (geteuid() != 0) return true;
  return setgroups(0, nullptr) == 0 && setgid(kNobody) == 0 && setuid(kNobody) == 0;
}

int StatusOf(pid_t child) {
  int status = 0;
  if (child < 0 || waitpid(child, &status, 0) != child) return kNoExit;
  if (WIFSIGNALED(status)) return kSignalled + WTERMSIG(status);
  return WEXITSTATUS(status);
}

}  // namespace

int AsOrdinaryUser(const std::function<int()>& work) {
  int usable[2] = {-1, -1};
  if (pipe(usable) != 0) return kNoExit;
  const int status = InChild([&] {
    if (!GiveUpRoot()) return 0;
    if (write(usable[1], "u", 1) != 1) return 0;
    return work();
  });
  close(usable[1]);
  char told = 0;
  const bool was_usable = read(usable[0], &told, 1) == 1;
  close(usable[0]);
  return was_usable ? status : kNoExit;
}

int InChild(const std::function<int()>& work) {
  std::fflush(nullptr);
  const pid_t child = fork();
  if (child != 0) return StatusOf(child);
  const int result = work();
  std::fflush(nullptr);
  _exit(result);
}

void SetMode(const std::string& path, mode_t mode) {
  if (chmod(path.c_str(), mode) != 0) throw std::system_error(errno, std::generic_category(), path);
}
