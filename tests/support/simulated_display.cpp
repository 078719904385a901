// SPDX-License-Identifier: MIT
#include "support/simulated_display.h"

#include <algorithm>
#include <chrono>
#include <sstream>
#include <thread>

#include "support/files.h"

namespace {

constexpr auto kPollInterval = std::chrono::milliseconds(10);
constexpr int kPolls = 6000;

std::vector<std::string> Lines(const std::string& path) {
  std::vector<std::string> lines;
  if (!FileExists(path)) return lines;
  std::istringstream text(ReadWholeFile(path));
  for (std::string line; std::getline(text, line);)
    lines.push_back(line);
  return lines;
}

}  // namespace

std::string Displays::File(unsigned comm_id, const std::string& kind) const {
  const std::string number = std::to_string(comm_id);
  return m_directory + "/display-" + (comm_id < 10 ? "0" : "") + number + "." + kind;
}

std::string Displays::Flash(unsigned comm_id) const {
  return ReadWholeFile(File(comm_id, "flash"));
}

std::vector<std::string> Displays::Journal(unsigned comm_id) const {
  return Lines(File(comm_id, "journal"));
}

std::vector<std::string> Displays::Counters(unsigned comm_id) const {
  std::vector<std::string> touched;
  for (const std::string& line : Lines(File(comm_id, "counters"))) {
    std::istringstream columns(line);
    std::string bank;
    std::string erases;
    std::string writes;
    columns >> bank >> erases >> writes;
    if (erases != "0" || writes != "0") touched.push_back(bank + ": " + erases + " " + writes);
  }
  return touched;
}

void Displays::GivenFaults(unsigned comm_id, const std::string& faults) const {
  GivenFile(File(comm_id, "faults"), faults);
}

bool Displays::WaitForJournal(unsigned comm_id, const std::string& start) const {
  for (int poll = 0; poll < kPolls; ++poll) {
    const std::vector<std::string> journal = Journal(comm_id);
    const auto found = std::find_if(journal.begin(), journal.end(), [&](const std::string& line) {
      return line.rfind(start, 0) == 0;
    });
    if (found != journal.end()) return true;
    std::this_thread::sleep_for(kPollInterval);
  }
  return false;
}

Command Displays::Line(const Installation& tool, const std::vector<std::string>& arguments) const {
  Command command = tool.Line(arguments);
  command.environment["ZVISP_SIM_DIR"] = m_directory;
  return command;
}
