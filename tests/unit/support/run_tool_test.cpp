// SPDX-License-Identifier: MIT
#include "support/run_tool.h"

#include <sys/stat.h>

#include <csignal>
#include <cstdlib>

#include "support/files.h"
#include "support/scratch_dir.h"

#include <gtest/gtest.h>

namespace {

// A shell script to run in a directory.
Command Shell(const std::string& script, const std::string& directory) {
  Command command;
  command.program = "/bin/sh";
  command.arguments = {"-c", script};
  command.directory = directory;
  return command;
}

// The launcher is for the tool; a shell under it would tell of itself.
class RunTool : public testing::Test {
 protected:
  RunTool() { unsetenv("ZVISP_TEST_LAUNCHER"); }
  ScratchDir m_scratch;
};

TEST_F(RunTool, OutputsAreKeptApartAndTheStatusIsReported) {
  const RunResult run = RunCommand(Shell("echo out; echo err >&2; exit 7", m_scratch.Path()));
  EXPECT_EQ(run.out, "out\n");
  EXPECT_EQ(run.err, "err\n");
  EXPECT_EQ(run.status, 7);
  EXPECT_EQ(run.signal, 0);
}

TEST_F(RunTool, ASignalIsReportedInsteadOfAStatus) {
  const RunResult run = RunCommand(Shell("kill -TERM $$", m_scratch.Path()));
  EXPECT_EQ(run.status, -1);
  EXPECT_EQ(run.signal, SIGTERM);
}

TEST_F(RunTool, TheRunIsInItsDirectoryWithItsVariables) {
  Command command = Shell("pwd; echo \"$ZVISP_A-$LC_ALL-${HOME-unset}\"", m_scratch.Path());
  command.environment["ZVISP_A"] = "b";
  command.environment["HOME"] = std::nullopt;
  EXPECT_EQ(RunCommand(command).out, m_scratch.Path() + "\nb-C.UTF-8-unset\n");
}

TEST_F(RunTool, TheTestsOwnLocaleAndVariablesDoNotReachTheRun) {
  setenv("LC_NUMERIC", "C", 1);
  setenv("ZVISP_SIM_DIR", "/somewhere", 1);
  const std::string script = "echo ${LC_NUMERIC-unset} ${ZVISP_SIM_DIR-unset}";
  EXPECT_EQ(RunCommand(Shell(script, m_scratch.Path())).out, "unset unset\n");
}

TEST_F(RunTool, AFullDiskAndAClosedOutputFailTheRunsWrites) {
  for (const OutputTo output : {OutputTo::kFullDisk, OutputTo::kClosed}) {
    Command command = Shell("echo x || exit 3", m_scratch.Path());
    command.output = output;
    const RunResult run = RunCommand(command);
    EXPECT_EQ(run.status, 3);
    EXPECT_EQ(run.out, "");
  }
}

TEST_F(RunTool, AVanishingDirectoryIsGoneWhenTheRunStarts) {
  Command command = Shell("exit 0", GivenDirectory(m_scratch / "gone"));
  command.directory_vanishes = true;
  EXPECT_EQ(RunCommand(command).status, 0);
  EXPECT_FALSE(FileExists(m_scratch / "gone"));
}

TEST_F(RunTool, AProgramThatIsNotThereIsReported) {
  Command command;
  command.program = m_scratch / "nothing";
  EXPECT_EQ(RunCommand(command).status, 126);
}

TEST(ScratchDirTest, IsGoneAtTheEndWithWhatWasMadeUnreadable) {
  std::string path;
  {
    const ScratchDir scratch("f\u00FCr");
    path = scratch.Path();
    GivenFile(scratch / "a/b", "x");
    ASSERT_EQ(chmod((scratch / "a").c_str(), 0), 0);
  }
  EXPECT_EQ(path.substr(path.size() - 4), "f\u00FCr");
  EXPECT_FALSE(FileExists(path));
}

TEST(FilesTest, PatternsOfDifferentSeedsAndBanksDiffer) {
  const std::string two_banks = Pattern(131072);
  EXPECT_NE(two_banks.substr(0, 65536), two_banks.substr(65536));
  EXPECT_NE(two_banks, Pattern(131072, 2));
  EXPECT_EQ(two_banks, Pattern(131072, 1));
}

}  // namespace
