// SPDX-License-Identifier: MIT
#include "line/plugin_check/surroundings.h"

#include <unistd.h>

#include <clocale>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <system_error>

namespace line {

namespace {

// More than a plug-in opens.
constexpr int kMostDescriptors = 1024;

std::map<int, std::pair<dev_t, ino_t>> OpenDescriptors() {
  std::map<int, std::pair<dev_t, ino_t>> open;
  for (int descriptor = 0; descriptor < kMostDescriptors; ++descriptor) {
    struct stat facts = {};
    if (fstat(descriptor, &facts) == 0) open[descriptor] = {facts.st_dev, facts.st_ino};
  }
  return open;
}

struct Category {
  int number;
  const char* name;
};

constexpr Category kCategories[] = {{LC_CTYPE, "LC_CTYPE"},       {LC_NUMERIC, "LC_NUMERIC"},
                                    {LC_TIME, "LC_TIME"},         {LC_COLLATE, "LC_COLLATE"},
                                    {LC_MONETARY, "LC_MONETARY"}, {LC_MESSAGES, "LC_MESSAGES"}};

std::vector<std::string> Locale() {
  std::vector<std::string> names;
  for (const Category& category : kCategories) {
    names.emplace_back(std::setlocale(category.number, nullptr));
  }
  return names;
}

mode_t Umask() {
  // The only way to read it is to set it.
  const mode_t mask = umask(0);
  umask(mask);
  return mask;
}

std::string Octal(mode_t mask) {
  char text[16];
  std::snprintf(text, sizeof text, "%03o", static_cast<unsigned>(mask));
  return text;
}

std::vector<bool> BlockedSignals() {
  sigset_t set;
  sigemptyset(&set);
  pthread_sigmask(SIG_BLOCK, nullptr, &set);
  std::vector<bool> blocked(NSIG);
  for (int signal = 1; signal < NSIG; ++signal) {
    blocked[static_cast<std::size_t>(signal)] = sigismember(&set, signal) == 1;
  }
  return blocked;
}

std::vector<std::pair<void*, int>> Handlers() {
  std::vector<std::pair<void*, int>> handlers;
  for (int signal = 0; signal < NSIG; ++signal) {
    struct sigaction action = {};
    if (signal > 0) sigaction(signal, nullptr, &action);
    void* address = nullptr;
    std::memcpy(&address, &action.sa_handler, sizeof address);
    handlers.emplace_back(address, action.sa_flags);
  }
  return handlers;
}

std::string Directory() {
  std::error_code failure;
  return std::filesystem::current_path(failure).string();
}

std::string NameOfSignal(std::size_t signal) {
  return "signal " + std::to_string(signal) + " (" + strsignal(static_cast<int>(signal)) + ")";
}

std::vector<std::string> DifferentDescriptors(const std::map<int, std::pair<dev_t, ino_t>>& before,
                                              const std::map<int, std::pair<dev_t, ino_t>>& after) {
  std::vector<std::string> differences;
  for (const auto& [number, file] : after) {
    const auto found = before.find(number);
    const std::string name = "descriptor " + std::to_string(number);
    if (found == before.end()) {
      differences.push_back(name + " is left open");
    } else if (found->second != file) {
      differences.push_back(name + " leads to another file");
    }
  }
  for (const auto& [number, file] : before) {
    if (after.count(number) == 0) {
      differences.push_back("descriptor " + std::to_string(number) + " of the host is closed");
    }
  }
  return differences;
}

template <typename Value>
void AddSignals(std::vector<std::string>& differences, const std::vector<Value>& before,
                const std::vector<Value>& after, const char* what) {
  for (std::size_t signal = 0; signal < before.size(); ++signal) {
    if (before[signal] == after[signal]) continue;
    differences.push_back(what + NameOfSignal(signal));
    // A plug-in that changes one often changes all.
    break;
  }
}

}  // namespace

Surroundings::Surroundings()
    : m_descriptors(OpenDescriptors()),
      m_directory(Directory()),
      m_locale(Locale()),
      m_umask(Umask()),
      m_blocked(BlockedSignals()),
      m_handlers(Handlers()) {}

std::vector<std::string> Surroundings::Differences() const {
  const Surroundings now;
  std::vector<std::string> differences = DifferentDescriptors(m_descriptors, now.m_descriptors);
  if (now.m_directory != m_directory) {
    differences.push_back("the working directory is " + now.m_directory);
  }
  if (now.m_umask != m_umask) {
    differences.push_back("the umask is " + Octal(now.m_umask) + " instead of " + Octal(m_umask));
  }
  for (std::size_t i = 0; i < m_locale.size(); ++i) {
    if (now.m_locale[i] == m_locale[i]) continue;
    differences.push_back(kCategories[i].name + (" is " + now.m_locale[i]) + " instead of " +
                          m_locale[i]);
  }
  AddSignals(differences, m_blocked, now.m_blocked, "the mask is changed for ");
  AddSignals(differences, m_handlers, now.m_handlers, "the handler is changed for ");
  return differences;
}

}  // namespace line
