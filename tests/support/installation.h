// SPDX-License-Identifier: MIT
//
// The tool as an operator has it: the executable in a directory of its own with the plug-ins that
// a test puts next to it. Every test has its own installation, so what one breaks is its own.
#ifndef ZVISP_TESTS_SUPPORT_INSTALLATION_H_
#define ZVISP_TESTS_SUPPORT_INSTALLATION_H_

#include <cstddef>
#include <string>
#include <vector>

#include "support/record_bytes.h"
#include "support/run_tool.h"
#include "support/scratch_dir.h"

// A library among those that the build makes for tests: "recording_isp", "recording_isp_lacks_..".
std::string TestPlugin(const std::string& name);

// A call that a recording plug-in wrote down.
struct Call {
  std::string line;    // the call's name and what its other arguments were
  std::string record;  // the bytes of the record, empty when the call has none
  std::string key;     // the bytes of the key, empty when it was null or the call has none
};

class Installation {
 public:
  // The executable alone. With a name, its directory is called so.
  explicit Installation(const std::string& directory_name = "bin");

  // Puts a library next to the executable under the name that the tool asks for; replaces the one
  // that was there. The path is a library's, or a file's that only claims to be one.
  Installation& WithIspPlugin(const std::string& library);
  Installation& WithSignPlugin(const std::string& library);

  // A run in the working directory whose calls are recorded. A run that leaks a descriptor aborts
  // in the next call of a recording plug-in, or when that is unloaded.
  Command Line(const std::vector<std::string>& arguments) const;
  RunResult Run(const std::vector<std::string>& arguments) const;

  // The calls since the last time that they were taken, in their order.
  std::vector<Call> TakeCalls() const;
  // Their lines alone.
  std::vector<std::string> TakeCallLines() const;

  // The only call that received a record since the last time; throws std::runtime_error when there
  // was none or more than one.
  RecordBytes TakeRecord() const;

  // Directory of the executable, ending in "/"; the executable; a name in the working directory.
  std::string ToolDir() const { return m_tool_dir + "/"; }
  std::string Executable() const { return m_tool_dir + "/zvisp"; }
  std::string IspPluginPath() const { return m_tool_dir + "/PlugIn/libIsp.dylib"; }
  std::string SignPluginPath() const { return m_tool_dir + "/libSignVerify.dylib"; }
  std::string WorkDir() const { return m_scratch / "work"; }
  std::string operator/(const std::string& name) const { return WorkDir() + "/" + name; }
  // A place that is neither the tool's nor the working directory.
  std::string Elsewhere(const std::string& name) const { return m_scratch / name; }

 private:
  ScratchDir m_scratch;
  std::string m_tool_dir;
};

#endif  // ZVISP_TESTS_SUPPORT_INSTALLATION_H_
