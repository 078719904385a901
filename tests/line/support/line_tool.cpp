// SPDX-License-Identifier: MIT
#include "line/support/line_tool.h"

#include <chrono>
#include <filesystem>
#include <sstream>
#include <thread>

#include "line/support/kept_events.h"
#include "support/files.h"

namespace fs = std::filesystem;

LineTool::LineTool() : m_displays(m_tool.Elsewhere("displays")) {
  m_tool.WithIspPlugin(ZVISP_SIMULATOR);
  std::error_code failure;
  fs::create_hard_link(ZVISP_LINE_EXECUTABLE, Executable(), failure);
  if (failure) fs::copy_file(ZVISP_LINE_EXECUTABLE, Executable());
  GivenDirectory(DisplaysDirectory());
}

Command LineTool::LineOf(const Words& arguments) const {
  Command command = m_displays.Line(m_tool, arguments);
  command.program = Executable();
  command.name = "zvisp-line";
  command.environment["ZVISP_LINE_LOCK_DIR"] = m_tool.Elsewhere("locks");
  return command;
}

Command LineTool::Line(const std::string& command, const Words& options, const Words& words) const {
  Words arguments = {command, "--json", "--data", DataDirectory(), "--unit", "ZP1"};
  arguments.insert(arguments.end(), options.begin(), options.end());
  arguments.emplace_back("--");
  arguments.insert(arguments.end(), words.begin(), words.end());
  return LineOf(arguments);
}

RunResult LineTool::Run(const Words& words, const Words& options) const {
  return RunCommand(Line("run", options, words));
}

RunResult LineTool::ReadBack(const Words& words, const Words& options) const {
  return RunCommand(Line("readback", options, words));
}

RunResult LineTool::Doctor() const {
  return Journal({"doctor"});
}

RunResult LineTool::Journal(Words arguments) const {
  arguments.insert(arguments.begin(), "journal");
  arguments.insert(arguments.end(), {"--json", "--data", DataDirectory()});
  return RunCommand(LineOf(arguments));
}

std::string LineTool::Record() const {
  std::string all;
  if (!FileExists(DataDirectory() + "/journal")) return all;
  for (const auto& entry : fs::directory_iterator(DataDirectory() + "/journal")) {
    if (entry.path().extension() == ".jsonl") all += ReadWholeFile(entry.path().string());
  }
  return all;
}

bool LineTool::WaitForRecord(const std::string& text) const {
  return WaitUntil([&] { return Record().find(text) != std::string::npos; });
}

bool WaitUntil(const std::function<bool()>& is_so) {
  constexpr int kPolls = 3000;
  for (int i = 0; i < kPolls; ++i) {
    if (is_so()) return true;
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  }
  return false;
}

bool WaitForOutput(const StartedRun& run, const std::string& text) {
  return WaitUntil([&] { return run.OutputSoFar().find(text) != std::string::npos; });
}

std::vector<std::string> EventsOf(const std::string& json_lines, const std::string& type) {
  KeepForSchema(json_lines);
  std::vector<std::string> events;
  std::istringstream lines(json_lines);
  for (std::string line; std::getline(lines, line);) {
    if (FieldOf(line, "type") == type) events.push_back(line);
  }
  return events;
}

std::string EventOf(const std::string& json_lines, const std::string& type) {
  const std::vector<std::string> events = EventsOf(json_lines, type);
  return events.size() == 1 ? events.front() : "";
}

std::string FieldOf(const std::string& event, const std::string& name) {
  const std::string key = "\"" + name + "\":";
  const std::size_t found = event.find(key);
  if (found == std::string::npos) return "-";
  std::size_t begin = found + key.size();
  const bool quoted = event[begin] == '"';
  begin += quoted ? 1 : 0;
  const std::size_t end = quoted ? event.find('"', begin) : event.find_first_of(",}", begin);
  return event.substr(begin, end - begin);
}
