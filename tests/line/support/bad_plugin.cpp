// SPDX-License-Identifier: MIT
//
// A plug-in that does wrong on purpose: IspFlash misbehaves as the environment variable
// ZVISP_BAD_PLUGIN names it, or at interface N the variable ZVISP_BAD_PLUGIN_N. Every other call
// succeeds.
#include <fcntl.h>
#include <pthread.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

#include <clocale>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <stdexcept>
#include <string>

#include "plugin/zvisp_plugin.h"

namespace {

using Setting = STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING;

constexpr int kSocketOfTheWorker = 3;

ZvReturnProgress g_progress = nullptr;
ZvShowMessage g_message = nullptr;

int Crash(Setting*) {
  volatile int* nowhere = nullptr;
  return *nowhere;
}

int Abort(Setting*) {
  std::abort();
}

int Kill(Setting*) {
  return raise(SIGKILL);
}

int Throw(Setting*) {
  throw std::runtime_error("out of a plug-in");
}

int Hang(Setting*) {
  for (;;) {
    pause();
  }
}

int HangWithoutSignals(Setting* setting) {
  sigset_t all;
  sigfillset(&all);
  pthread_sigmask(SIG_BLOCK, &all, nullptr);
  return Hang(setting);
}

int Exit(Setting*) {
  std::exit(0);
}

int ExitAtOnce(Setting*) {
  _exit(0);
}

int CloseOutput(Setting*) {
  std::printf("before it was closed\n");
  std::fclose(stdout);
  close(STDOUT_FILENO);
  return 0;
}

int CloseAll(Setting*) {
  for (int descriptor = 0; descriptor < 256; ++descriptor) {
    close(descriptor);
  }
  return 0;
}

int FloodOutput(Setting*) {
  const std::string line(1023, 'x');
  for (int i = 0; i < 64 * 1024; ++i) {
    std::printf("%s\n", line.c_str());
  }
  return 0;
}

int FloodProgress(Setting*) {
  for (int i = 0; i < 1000000; ++i) {
    g_progress(i % 101);
  }
  return 0;
}

int FloodMessages(Setting*) {
  wchar_t text[] = L"once more";
  for (int i = 0; i < 200000; ++i) {
    g_message(text);
  }
  return 0;
}

int ChangeDirectory(Setting*) {
  return chdir("/");
}

int ChangeLocale(Setting*) {
  std::setlocale(LC_ALL, "C");
  return 0;
}

int ChangeSignals(Setting*) {
  sigset_t all;
  sigfillset(&all);
  pthread_sigmask(SIG_BLOCK, &all, nullptr);
  std::signal(SIGPIPE, SIG_DFL);
  return 0;
}

int Overrun(Setting* setting) {
  std::memset(reinterpret_cast<char*>(setting) + sizeof *setting, 0x5A, 4096);
  return 0;
}

// The second process is first to return in both.
int ForkThatSucceeds(Setting*) {
  if (fork() == 0) return 0;
  usleep(200000);
  return 7;
}

int ForkThatSurvives(Setting*) {
  if (fork() == 0) return 0;
  usleep(200000);
  _exit(0);
}

int ChildThatStays(Setting*) {
  if (fork() == 0) {
    for (;;) {
      pause();
    }
  }
  return 0;
}

int GarbageToTheParent(Setting*) {
  const std::string garbage(100000, '\xFF');
  send(kSocketOfTheWorker, garbage.data(), garbage.size(), MSG_NOSIGNAL);
  return 0;
}

// As one that fills the last bank of its input would do.
int ChangeFile(Setting* setting) {
  std::string path;
  for (const wchar_t character : std::wstring(setting->stMapFw.stBank[0].wszPath)) {
    path += static_cast<char>(character);
  }
  if (chmod(path.c_str(), 0600) != 0) return 97;
  std::FILE* const file = std::fopen(path.c_str(), "ab");
  if (file == nullptr) return 98;
  std::fputc(0xFF, file);
  return std::fclose(file);
}

// The library is unloaded after each call, so its own variables would not last.
constexpr const char* kKillAtNextLoad = "ZVISP_BAD_PLUGIN_KILLS";

int KillParentAtNextLoad(Setting*) {
  return setenv(kKillAtNextLoad, "1", 1);
}

int Code256(Setting*) {
  return 256;
}

int CodeMinus256(Setting*) {
  return -256;
}

int Lie(Setting*) {
  std::printf("\033[32mSuccess\n\033[m");
  return 5;
}

int Succeed(Setting*) {
  for (int percent = 0; percent <= 100; percent += 10) {
    g_progress(percent);
  }
  return 0;
}

struct Row {
  const char* name;
  int (*call)(Setting*);
};

// clang-format off
constexpr Row kRows[] = {
  {"crash",                Crash},
  {"abort",                Abort},
  {"kill",                 Kill},
  {"throw",                Throw},
  {"hang",                 Hang},
  {"hang-without-signals", HangWithoutSignals},
  {"exit",                 Exit},
  {"exit-at-once",         ExitAtOnce},
  {"close-output",         CloseOutput},
  {"close-all",            CloseAll},
  {"flood-output",         FloodOutput},
  {"flood-progress",       FloodProgress},
  {"flood-messages",       FloodMessages},
  {"change-directory",     ChangeDirectory},
  {"change-locale",        ChangeLocale},
  {"change-signals",       ChangeSignals},
  {"overrun",              Overrun},
  {"fork-that-succeeds",   ForkThatSucceeds},
  {"fork-that-survives",   ForkThatSurvives},
  {"child-that-stays",     ChildThatStays},
  {"garbage",              GarbageToTheParent},
  {"change-file",          ChangeFile},
  {"kill-parent-later",    KillParentAtNextLoad},
  {"code-256",             Code256},
  {"code-minus-256",       CodeMinus256},
  {"lie",                  Lie},
  {"succeed",              Succeed},
};
// clang-format on

const char* WishFor(const Setting& setting) {
  const std::string variable = "ZVISP_BAD_PLUGIN_" + std::to_string(setting.enumCommID);
  const char* const wish = std::getenv(variable.c_str());
  return wish != nullptr ? wish : std::getenv("ZVISP_BAD_PLUGIN");
}

}  // namespace

ZVISP_PLUGIN_EXPORT int IspFlash(Setting* setting) {
  const char* const wish = WishFor(*setting);
  for (const Row& row : kRows) {
    if (wish != nullptr && std::strcmp(row.name, wish) == 0) return row.call(setting);
  }
  return 99;
}

ZVISP_PLUGIN_EXPORT int RecordFWVersion(Setting*) {
  return 0;
}

// Nothing was ever programmed: the flash is erased.
ZVISP_PLUGIN_EXPORT int DumpFlash(Setting* setting) {
  const std::wstring wide = setting->stDumpFlash.wszDumpFile;
  std::string path;
  for (const wchar_t character : wide) {
    path += static_cast<char>(character);
  }
  std::FILE* const file = std::fopen(path.c_str(), "wb");
  if (file == nullptr) return 98;
  for (std::uint32_t i = 0; i < setting->stDumpFlash.ulDumpLen; ++i) {
    std::fputc(0xFF, file);
  }
  return std::fclose(file);
}

ZVISP_PLUGIN_EXPORT int GetKeyFromFlash(Setting*, unsigned char*) {
  return 0;
}

ZVISP_PLUGIN_EXPORT void SetCommInterface(CZvComm*) {}

ZVISP_PLUGIN_EXPORT void SetUIFunction(ZvReturnProgress progress, ZvShowMessage message,
                                       ZvGetHubDevice) {
  g_progress = progress;
  g_message = message;
  if (std::getenv(kKillAtNextLoad) == nullptr) return;
  const pid_t parent = getppid();
  kill(parent, SIGKILL);
  while (getppid() == parent) {
    usleep(1000);
  }
}
