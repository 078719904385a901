// SPDX-License-Identifier: MIT
//
// Job files and batches as an operator has them, with simulated displays.
#ifndef ZVISP_TESTS_LINE_SUPPORT_BATCH_TOOL_H_
#define ZVISP_TESTS_LINE_SUPPORT_BATCH_TOOL_H_

#include <string>
#include <vector>

#include "line/support/line_tool.h"

class BatchTool : public LineTool {
 public:
  // Writes a job into a directory of its own, which is not the working directory. Returns its path.
  std::string GivenJob(const std::string& text) const;
  // A file next to the job.
  std::string NextToJob(const std::string& name) const { return Tool().Elsewhere("job/" + name); }

  // `zvisp-line batch --json --data DATA OPTIONS JOB`.
  Command BatchOf(const Words& options) const;
  RunResult Batch(const Words& options) const { return RunCommand(BatchOf(options)); }
  RunResult Check(Words options = {}) const;
  // `zvisp-line job init OPTIONS -- WORDS`.
  RunResult Init(Words options, const Words& words) const;
};

// "LINE:COLUMN: sentence" of each error event; the sentence alone where it has no line.
std::vector<std::string> ErrorsIn(const std::string& json_lines);

#endif  // ZVISP_TESTS_LINE_SUPPORT_BATCH_TOOL_H_
