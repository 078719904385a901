// SPDX-License-Identifier: MIT
#include "line/support/batch_tool.h"

#include "support/files.h"

std::string BatchTool::GivenJob(const std::string& text) const {
  return GivenFile(NextToJob("job.toml"), text);
}

Command BatchTool::BatchOf(const Words& options) const {
  Words arguments = {"batch", "--json", "--data", DataDirectory()};
  arguments.insert(arguments.end(), options.begin(), options.end());
  arguments.push_back(NextToJob("job.toml"));
  return LineOf(arguments);
}

RunResult BatchTool::Check(Words options) const {
  options.emplace_back("--check");
  return Batch(options);
}

RunResult BatchTool::Init(Words options, const Words& words) const {
  options.insert(options.begin(), {"job", "init"});
  options.emplace_back("--");
  options.insert(options.end(), words.begin(), words.end());
  return RunCommand(LineOf(options));
}

std::vector<std::string> ErrorsIn(const std::string& json_lines) {
  std::vector<std::string> errors;
  for (const std::string& event : EventsOf(json_lines, "error")) {
    const std::size_t begin = event.find("\"text\":\"") + 8;
    std::size_t end = begin;
    std::string text;
    for (; event[end] != '"'; ++end) {
      if (event[end] == '\\') ++end;
      text += event[end];
    }
    const std::string line = FieldOf(event, "line");
    errors.push_back(line == "-" ? text : line + ":" + FieldOf(event, "column") + ": " + text);
  }
  return errors;
}
