// SPDX-License-Identifier: MIT
#include "line/supervise/hook_process.h"

#include <signal.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <utility>

#include "line/event/screen_text.h"
#include "line/event/session.h"
#include "line/supervise/unnamed_file.h"

namespace line {

namespace {

constexpr std::uint64_t kGraceMs = 2000;
constexpr std::size_t kComplaintColumns = 200;

bool WriteAll(int file, const std::string& text) {
  for (std::size_t done = 0; done < text.size();) {
    const ssize_t written = write(file, text.data() + done, text.size() - done);
    if (written < 0 && errno != EINTR) return false;
    if (written > 0) done += static_cast<std::size_t>(written);
  }
  return lseek(file, 0, SEEK_SET) == 0;
}

// A file, because a pipe would make this process wait for a hook that does not read.
int InputFile(const std::string& input, std::string& error) {
  const int file = OpenUnnamedFile(error);
  if (file < 0 || WriteAll(file, input)) return file;
  error = std::string("The input of a hook cannot be written to /tmp: ") + std::strerror(errno) +
          "; make room there.";
  close(file);
  return -1;
}

std::string ProgramOf(const std::string& word, const std::string& directory) {
  const bool is_relative = word.find('/') != std::string::npos && word.front() != '/';
  return is_relative && !directory.empty() ? directory + "/" + word : word;
}

const char* WhatToDo(int failure) {
  switch (failure) {
    case ENOENT:
      return "write ./NAME for a file next to the job, and check the interpreter in its first "
             "line";
    case EACCES:
      return "it must be a file that may be executed (chmod +x)";
    case ENOEXEC:
      return "begin a script with a line such as #!/bin/sh";
    default:
      return RemedyFor(failure);
  }
}

std::string FirstLine(const std::string& output) {
  for (const std::string& line : CleanLines(output)) {
    if (line.find_first_not_of(' ') != std::string::npos) {
      return CutToColumns(line, kComplaintColumns);
    }
  }
  return "";
}

std::string TimeOutText(std::uint64_t ms) {
  return ms % 1000 == 0 ? std::to_string(ms / 1000) + " s" : std::to_string(ms) + " ms";
}

// Empty for an end without fault.
std::string Fault(const ProcessEnd& end) {
  if (end.signal) {
    return "was ended by signal " + std::to_string(*end.signal) + " (" + strsignal(*end.signal) +
           ")";
  }
  const int status = end.exit_status.value_or(0);
  return status == 0 ? "" : "ended with exit status " + std::to_string(status);
}

}  // namespace

bool HookProcess::Start(const std::vector<std::string>& words, const std::string& directory,
                        const std::string& input, std::uint64_t timeout_ms, std::string& error) {
  m_name = CleanText(words.front());
  const int input_file = InputFile(input, error);
  if (input_file < 0) return false;
  const bool has_output = m_output.Open(error);
  int failure = 0;
  if (has_output) {
    ChildOrder order = {ProgramOf(words.front(), directory), words, directory, {}, {}};
    order.puts = {{input_file, STDIN_FILENO},
                  {m_output.Descriptor(), STDOUT_FILENO},
                  {m_output.Descriptor(), STDERR_FILENO}};
    failure = m_process.Start(order);
  }
  close(input_file);
  m_output.CloseDescriptor();
  m_timeout_ms = timeout_ms;
  m_started_ms = MonotonicMs();
  if (failure != 0) {
    error = "The hook " + m_name + " cannot be started: " + std::strerror(failure) + "; " +
            WhatToDo(failure) + ".";
  }
  return has_output && failure == 0;
}

void HookProcess::End(std::uint64_t now_ms, std::string reason) {
  if (m_kill_at_ms != 0 || !IsRunning()) return;
  m_ended_by_us = std::move(reason);
  m_kill_at_ms = now_ms + kGraceMs;
  m_process.Signal(SIGTERM);
  // One that is stopped would not notice.
  m_process.Signal(SIGCONT);
}

void HookProcess::OnTick(std::uint64_t now_ms) {
  // A tick may be older than a start that it has caused, so nothing is subtracted.
  if (m_timeout_ms != 0 && now_ms >= m_started_ms + m_timeout_ms) {
    End(now_ms, "did not end within " + TimeOutText(m_timeout_ms));
  }
  if (m_kill_at_ms != 0 && now_ms >= m_kill_at_ms) m_process.Signal(SIGKILL);
}

void HookProcess::Interrupt(std::uint64_t now_ms) {
  End(now_ms, "was interrupted");
}

void HookProcess::OnProcessEnded() {
  const std::optional<ProcessEnd> end = m_process.TakeEnd();
  if (!end) return;
  const std::string line = FirstLine(m_output.Finish());
  const std::string fault = m_ended_by_us.empty() ? Fault(*end) : m_ended_by_us;
  if (fault.empty()) return;
  m_complaint = m_name + " " + fault + (line.empty() ? "" : ": " + line);
}

}  // namespace line
