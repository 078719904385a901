// SPDX-License-Identifier: MIT
//
// What the faulty plug-ins do wrong: the one fault that the environment variable ZVISP_FAULT names.
// Without it they do nothing wrong.
#ifndef ZVISP_TESTS_LINE_SUPPORT_FAULT_H_
#define ZVISP_TESTS_LINE_SUPPORT_FAULT_H_

#include <dlfcn.h>
#include <fcntl.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <stdexcept>
#include <string>

inline bool Has(const std::string& fault) {
  const char* const wish = std::getenv("ZVISP_FAULT");
  return wish != nullptr && fault == wish;
}

// Never comes back.
inline void EndBadly(const std::string& phase) {
  if (Has(phase + "-crash")) raise(SIGSEGV);
  if (Has(phase + "-abort")) std::abort();
  if (Has(phase + "-exit")) std::exit(0);
  if (Has(phase + "-exit-at-once")) _exit(0);
  if (Has(phase + "-throw")) throw std::runtime_error("out of a plug-in");
  while (Has(phase + "-hang")) {
    pause();
  }
}

inline void BlockSignal() {
  sigset_t set;
  sigemptyset(&set);
  sigaddset(&set, SIGUSR1);
  pthread_sigmask(SIG_BLOCK, &set, nullptr);
}

// Leaves the process as it was not before.
inline void ChangeProcess(const std::string& phase) {
  if (Has(phase + "-descriptor")) static_cast<void>(!open("/dev/null", O_RDONLY));
  if (Has(phase + "-closes")) close(STDIN_FILENO);
  if (Has(phase + "-directory")) static_cast<void>(!chdir("/"));
  if (Has(phase + "-umask")) umask(0777);
  if (Has(phase + "-locale")) std::setlocale(LC_TIME, "POSIX");
  if (Has(phase + "-mask")) BlockSignal();
  if (Has(phase + "-handler")) signal(SIGUSR2, SIG_IGN);
}

__attribute__((constructor, used)) static void AtLoad() {
  EndBadly("load");
  Dl_info info = {};
  // Loaded once more, so that one dlclose is not enough.
  if (Has("stays") && dladdr(reinterpret_cast<void*>(&AtLoad), &info) != 0) {
    dlopen(info.dli_fname, RTLD_NOW | RTLD_NOLOAD);
  }
  ChangeProcess("load");
  if (Has("load-prints")) std::puts("vendor library 1.0");
}

__attribute__((destructor, used)) static void AtUnload() {
  EndBadly("unload");
  if (Has("unload-prints")) std::puts("good bye");
}

#endif  // ZVISP_TESTS_LINE_SUPPORT_FAULT_H_
