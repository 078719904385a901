// SPDX-License-Identifier: MIT
#include "support/run_tool.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <sstream>
#include <stdexcept>
#include <system_error>
#include <utility>

#include "support/files.h"

extern "C" char** environ;

namespace {

constexpr int kCannotStart = 126;
constexpr unsigned kNobody = 65534;

// A program to put in front of every run, such as "valgrind -q --error-exitcode=99".
constexpr const char* kLauncherVariable = "ZVISP_TEST_LAUNCHER";

// Pointers into texts that outlive it, ended by a null pointer as exec wants it.
std::vector<char*> Pointers(std::vector<std::string>& texts) {
  std::vector<char*> pointers;
  for (std::string& text : texts)
    pointers.push_back(text.data());
  pointers.push_back(nullptr);
  return pointers;
}

bool IsTakenAway(const std::string& variable) {
  return variable.rfind("LC_", 0) == 0 || variable == "LANG" || variable == "LANGUAGE" ||
         variable == "LOCPATH" || variable.rfind("ZVISP_", 0) == 0;
}

std::vector<std::string> EnvironmentOf(const Command& command) {
  std::map<std::string, std::optional<std::string>> variables;
  for (char** entry = environ; *entry != nullptr; ++entry) {
    const std::string text = *entry;
    const std::string name = text.substr(0, text.find('='));
    if (!IsTakenAway(name)) variables[name] = text.substr(name.size() + 1);
  }
  variables["LC_ALL"] = "C.UTF-8";
  for (const auto& [name, value] : command.environment)
    variables[name] = value;
  std::vector<std::string> texts;
  for (const auto& [name, value] : variables) {
    if (value) texts.push_back(name + "=" + *value);
  }
  return texts;
}

std::vector<std::string> WordsOf(const Command& command) {
  std::vector<std::string> words;
  if (const char* launcher = std::getenv(kLauncherVariable)) {
    std::istringstream text(launcher);
    for (std::string word; text >> word;)
      words.push_back(word);
  }
  // A launcher finds the program by its path, so the name has to be the path then.
  words.push_back(words.empty() && !command.name.empty() ? command.name : command.program);
  words.insert(words.end(), command.arguments.begin(), command.arguments.end());
  return words;
}

std::string NewCaptureFile() {
  std::string path = std::filesystem::temp_directory_path().string() + "/zvisp-output-XXXXXX";
  const int descriptor = mkstemp(path.data());
  if (descriptor < 0) throw std::system_error(errno, std::generic_category(), path);
  close(descriptor);
  return path;
}

std::string TakeCaptureFile(const std::string& path) {
  std::string content = ReadWholeFile(path);
  unlink(path.c_str());
  return content;
}

void Redirect(int descriptor, const char* path, int flags) {
  const int opened = open(path, flags);
  if (opened < 0 || dup2(opened, descriptor) < 0) _exit(kCannotStart);
  if (opened != descriptor) close(opened);
}

// What the test's own program has open is not the run's.
void CloseAllButTheStandardStreams() {
  constexpr int kNumbers = 256;
  for (int descriptor = STDERR_FILENO + 1; descriptor < kNumbers; ++descriptor)
    close(descriptor);
}

// The end of a pipe that nobody reads.
void LeaveThePipeWithoutAReader() {
  int ends[2] = {-1, -1};
  if (pipe(ends) != 0 || dup2(ends[1], STDOUT_FILENO) < 0) _exit(kCannotStart);
}

void EnterDirectory(const Command& command) {
  if (command.directory.empty()) return;
  if (chdir(command.directory.c_str()) != 0) _exit(kCannotStart);
  if (command.directory_vanishes && rmdir(command.directory.c_str()) != 0) _exit(kCannotStart);
}

void RedirectOutput(OutputTo output, const char* capture_path) {
  switch (output) {
    case OutputTo::kCapture:
      Redirect(STDOUT_FILENO, capture_path, O_WRONLY | O_APPEND);
      break;
    case OutputTo::kClosed:
      close(STDOUT_FILENO);
      break;
    case OutputTo::kFullDisk:
      Redirect(STDOUT_FILENO, "/dev/full", O_WRONLY);
      break;
    case OutputTo::kNoReader:
      LeaveThePipeWithoutAReader();
      break;
  }
}

void DropPrivileges() {
  if (geteuid() != 0) return;
  if (setgid(kNobody) != 0 || setuid(kNobody) != 0) _exit(kCannotStart);
}

}  // namespace

StartedRun::StartedRun(const Command& command)
    : m_out_path(NewCaptureFile()), m_err_path(NewCaptureFile()) {
  std::vector<std::string> words = WordsOf(command);
  std::vector<std::string> variables = EnvironmentOf(command);
  const std::vector<char*> arguments = Pointers(words);
  const std::vector<char*> environment = Pointers(variables);
  const bool launched = std::getenv(kLauncherVariable) != nullptr;

  m_pid = fork();
  if (m_pid < 0) throw std::system_error(errno, std::generic_category(), "fork");
  if (m_pid > 0) return;
  EnterDirectory(command);
  Redirect(STDIN_FILENO, "/dev/null", O_RDONLY);
  Redirect(STDERR_FILENO, m_err_path.c_str(), O_WRONLY | O_APPEND);
  RedirectOutput(command.output, m_out_path.c_str());
  CloseAllButTheStandardStreams();
  if (command.without_privileges) DropPrivileges();
  if (launched) {
    environ = const_cast<char**>(environment.data());
    execvp(arguments[0], arguments.data());
  } else {
    execve(command.program.c_str(), arguments.data(), environment.data());
  }
  _exit(kCannotStart);
}

StartedRun::StartedRun(StartedRun&& other) noexcept
    : m_pid(std::exchange(other.m_pid, -1)),
      m_out_path(std::exchange(other.m_out_path, "")),
      m_err_path(std::exchange(other.m_err_path, "")) {}

StartedRun::~StartedRun() {
  if (m_pid < 0) return;
  Kill(SIGKILL);
  Wait();
}

void StartedRun::Kill(int signal) const {
  kill(m_pid, signal);
}

std::string StartedRun::OutputSoFar() const {
  return ReadWholeFile(m_out_path);
}

RunResult StartedRun::Wait() {
  int state = 0;
  while (waitpid(m_pid, &state, 0) < 0) {
    if (errno != EINTR) throw std::system_error(errno, std::generic_category(), "waitpid");
  }
  m_pid = -1;
  RunResult result;
  result.out = TakeCaptureFile(m_out_path);
  result.err = TakeCaptureFile(m_err_path);
  if (WIFEXITED(state)) result.status = WEXITSTATUS(state);
  if (WIFSIGNALED(state)) result.signal = WTERMSIG(state);
  return result;
}

RunResult RunCommand(const Command& command) {
  return StartedRun(command).Wait();
}
