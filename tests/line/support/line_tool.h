// SPDX-License-Identifier: MIT
//
// zvisp-line as an operator has it: next to zvisp and its plug-ins, with a record, locks and
// simulated displays of the test's own.
#ifndef ZVISP_TESTS_LINE_SUPPORT_LINE_TOOL_H_
#define ZVISP_TESTS_LINE_SUPPORT_LINE_TOOL_H_

#include <functional>
#include <string>
#include <vector>

#include "support/installation.h"
#include "support/simulated_display.h"

class LineTool {
 public:
  using Words = std::vector<std::string>;

  // With the simulated display as plug-in.
  LineTool();

  // `zvisp-line ARGUMENTS`.
  Command LineOf(const Words& arguments) const;
  // `zvisp-line COMMAND --json --data DATA --unit ZP1 OPTIONS -- WORDS`.
  Command Line(const std::string& command, const Words& options, const Words& words) const;
  RunResult Run(const Words& words, const Words& options = {}) const;
  RunResult ReadBack(const Words& words, const Words& options = {}) const;
  // `zvisp-line journal ARGUMENTS --json --data DATA`.
  RunResult Journal(Words arguments) const;
  RunResult Doctor() const;

  Installation& Tool() { return m_tool; }
  const Installation& Tool() const { return m_tool; }
  const Displays& AllDisplays() const { return m_displays; }
  std::string operator/(const std::string& name) const { return m_tool / name; }
  std::string DataDirectory() const { return m_tool.Elsewhere("data"); }
  std::string DisplaysDirectory() const { return m_tool.Elsewhere("displays"); }
  std::string Executable() const { return m_tool.ToolDir() + "zvisp-line"; }
  // All lines of the record.
  std::string Record() const;
  // Waits until a text is in the record; false when it is not within half a minute.
  bool WaitForRecord(const std::string& text) const;

 private:
  Installation m_tool;
  Displays m_displays;
};

// Asks again and again; false when it is not so within half a minute.
bool WaitUntil(const std::function<bool()>& is_so);

// Waits until a run has printed a text on standard output; false when it has not within half a
// minute.
bool WaitForOutput(const StartedRun& run, const std::string& text);

// The lines of JSON Lines that have this type.
std::vector<std::string> EventsOf(const std::string& json_lines, const std::string& type);
// The only one; empty when there is none, or more than one.
std::string EventOf(const std::string& json_lines, const std::string& type);
// A field's value as it is written, without quotes; "-" when the event has no such field.
std::string FieldOf(const std::string& event, const std::string& name);

#endif  // ZVISP_TESTS_LINE_SUPPORT_LINE_TOOL_H_
