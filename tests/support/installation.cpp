// SPDX-License-Identifier: MIT
#include "support/installation.h"

#include <filesystem>
#include <sstream>
#include <stdexcept>
#include <system_error>

#include "support/files.h"

namespace fs = std::filesystem;

namespace {

// A link where the file system allows one: a run must not wait for megabytes to be copied. Not a
// symbolic one, which the system would resolve to the directory of the build.
void LinkOrCopy(const std::string& from, const std::string& to) {
  fs::create_directories(fs::path(to).parent_path());
  fs::remove(to);
  std::error_code failure;
  fs::create_hard_link(from, to, failure);
  if (failure) fs::copy_file(from, to);
}

std::string ReadIfThere(const std::string& path) {
  return FileExists(path) ? ReadWholeFile(path) : "";
}

}  // namespace

std::string TestPlugin(const std::string& name) {
  return std::string(ZVISP_TEST_PLUGIN_DIR) + "/" + name + ".dylib";
}

Installation::Installation(const std::string& directory_name)
    : m_tool_dir(m_scratch / directory_name) {
  LinkOrCopy(ZVISP_EXECUTABLE, Executable());
  GivenDirectory(WorkDir());
  GivenDirectory(m_scratch / "calls");
}

Installation& Installation::WithIspPlugin(const std::string& library) {
  LinkOrCopy(library, IspPluginPath());
  return *this;
}

Installation& Installation::WithSignPlugin(const std::string& library) {
  LinkOrCopy(library, SignPluginPath());
  return *this;
}

Command Installation::Line(const std::vector<std::string>& arguments) const {
  Command command;
  command.program = Executable();
  command.name = "zvisp";
  command.arguments = arguments;
  command.directory = WorkDir();
  command.environment["ZVISP_RECORD_DIR"] = m_scratch / "calls";
  command.environment["ZVISP_RECORD_DESCRIPTORS"] = "3";
  return command;
}

RunResult Installation::Run(const std::vector<std::string>& arguments) const {
  return RunCommand(Line(arguments));
}

std::vector<Call> Installation::TakeCalls() const {
  const std::string directory = m_scratch / "calls";
  std::vector<Call> calls;
  std::istringstream lines(ReadIfThere(directory + "/calls.txt"));
  for (std::string line; std::getline(lines, line);) {
    const std::string number = directory + "/" + std::to_string(calls.size());
    calls.push_back({line, ReadIfThere(number + ".record"), ReadIfThere(number + ".key")});
  }
  fs::remove_all(directory);
  GivenDirectory(directory);
  return calls;
}

std::vector<std::string> Installation::TakeCallLines() const {
  std::vector<std::string> lines;
  for (const Call& call : TakeCalls())
    lines.push_back(call.line);
  return lines;
}

RecordBytes Installation::TakeRecord() const {
  std::vector<std::string> records;
  for (const Call& call : TakeCalls()) {
    if (!call.record.empty()) records.push_back(call.record);
  }
  if (records.size() != 1) {
    throw std::runtime_error(std::to_string(records.size()) + " calls received a record, not 1");
  }
  return RecordBytes(records.front());
}
