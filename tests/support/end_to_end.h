// SPDX-License-Identifier: MIT
//
// What the end-to-end tests have in common: a tool installed next to a recording plug-in, and the
// three ways a run can be expected to end.
#ifndef ZVISP_TESTS_SUPPORT_END_TO_END_H_
#define ZVISP_TESTS_SUPPORT_END_TO_END_H_

#include <string>
#include <vector>

#include "support/console.h"
#include "support/files.h"
#include "support/installation.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using Words = std::vector<std::string>;

// A command line as a shell would show it, for a failing test's trace.
inline std::string Shown(const Words& words) {
  std::string line = "zvisp";
  for (const std::string& word : words)
    line += " " + word;
  return line;
}

class EndToEnd : public testing::Test {
 protected:
  EndToEnd() { m_tool.WithIspPlugin(TestPlugin("recording_isp")); }

  // Runs, and expects exactly this on standard output, nothing on standard error, and this status.
  void ExpectRun(const Words& words, const std::string& out, int status) {
    SCOPED_TRACE(Shown(words));
    const RunResult run = m_tool.Run(words);
    EXPECT_EQ(run.out, out);
    EXPECT_EQ(run.err, "");
    EXPECT_EQ(run.status, status);
  }

  // Expects a run that is accepted and succeeds, after these messages.
  void ExpectSuccess(const Words& words, const std::string& messages = "") {
    ExpectRun(words, messages + kBanner + kSuccess, 0);
  }

  // Expects a command line that is refused with these messages before any plug-in is called.
  void ExpectRejected(const Words& words, const std::string& messages) {
    ExpectRun(words, messages + kRejected, 0);
    EXPECT_THAT(m_tool.TakeCallLines(), testing::IsEmpty()) << Shown(words);
  }

  // Expects a run that succeeds and hands exactly these bytes to the plug-in.
  void ExpectRecord(const Words& words, const RecordBytes& record) {
    ExpectSuccess(words);
    SCOPED_TRACE(Shown(words));
    EXPECT_TRUE(SameBytes(m_tool.TakeRecord(), record));
  }

  Installation m_tool;
};

#endif  // ZVISP_TESTS_SUPPORT_END_TO_END_H_
