// SPDX-License-Identifier: MIT
//
// The words of zvisp-line's own command line: lists, values that were forgotten, and its help.
#include <string>

#include "line/support/line_tool.h"
#include "support/files.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using testing::HasSubstr;

class CommandLineOf : public testing::Test {
 protected:
  CommandLineOf() { GivenFirmware(m_line / "fw.bin", 70000); }

  RunResult Run(const LineTool::Words& options) const {
    return m_line.Run({"--isp", "--fw", "fw.bin", "--comm", "3"}, options);
  }
  // The options are refused with this sentence, and nothing is touched.
  void ExpectRefused(const LineTool::Words& options, const std::string& sentence) const {
    const RunResult run = Run(options);
    EXPECT_EQ(run.status, 2) << run.out;
    EXPECT_THAT(run.out,
                HasSubstr("\"Command line: " + sentence + "; see zvisp-line run --help.\""));
    EXPECT_FALSE(FileExists(m_line.AllDisplays().File(3, "journal")));
  }
  RunResult Say(const LineTool::Words& words) const { return RunCommand(m_line.LineOf(words)); }

  LineTool m_line;
};

TEST_F(CommandLineOf, AListTakesNoWordThatFollowsIt) {
  ExpectRefused({"--nothing-written", "1,2", "3"}, "3 is not an option of run");
  ExpectRefused({"--ignore", "1-2", "3-4"}, "3-4 is not an option of run");
  EXPECT_EQ(Run({"--ignore", "1-2", "--ignore", "3-4", "--readback"}).status, 0);
  EXPECT_EQ(Run({"--nothing-written", "1,2", "--nothing-written", "3"}).status, 0);
}

TEST_F(CommandLineOf, AnOptionIsNoValueOfTheOneBeforeIt) {
  for (const char* const name : {"--unit", "--data", "--plugins"}) {
    ExpectRefused({name, "--readback"},
                  std::string(name) + ": the value is missing before --readback");
  }
}

TEST_F(CommandLineOf, AFlagTakesNoValue) {
  EXPECT_EQ(Run({"--readback=false"}).status, 2);
  EXPECT_FALSE(FileExists(m_line.AllDisplays().File(3, "journal")));
}

TEST_F(CommandLineOf, WordsOfZvispWithoutTheDashesAreNamed) {
  EXPECT_EQ(
      Say({"run", "--isp", "--fw", "fw.bin"}).err,
      "zvisp-line: Command line: --isp is not an option of run; the words of zvisp belong after "
      "\"--\"; see zvisp-line run --help.\n");
  EXPECT_EQ(Say({"flash"}).err,
            "zvisp-line: Command line: flash is not a command; see zvisp-line --help.\n");
  EXPECT_EQ(Say({"journal"}).err,
            "zvisp-line: Command line: a command is missing; see zvisp-line journal --help.\n");
  EXPECT_EQ(Say({"journal", "resolve"}).err,
            "zvisp-line: Command line: RUN is required; see zvisp-line journal resolve --help.\n");
}

TEST_F(CommandLineOf, WordsAfterTheDashesOfACommandWithoutWordsAreRefused) {
  const RunResult batch = Say({"batch", "job.toml", "--", "--isp"});
  EXPECT_EQ(batch.status, 2);
  EXPECT_EQ(batch.err,
            "zvisp-line: Command line: batch takes no words of zvisp; see zvisp-line batch --help."
            "\n");
  EXPECT_EQ(Say({"batch", "job.toml", "other.toml"}).err,
            "zvisp-line: Command line: other.toml is not an option of batch; see zvisp-line batch "
            "--help.\n");
  EXPECT_EQ(Say({"journal", "show", "--", "--isp"}).status, 2);
}

TEST_F(CommandLineOf, HelpNamesTheProgramAndWhatFollowsEachOption) {
  const RunResult help = Say({"run", "--help"});
  EXPECT_EQ(help.status, 0);
  EXPECT_THAT(help.out, HasSubstr("\nUsage: zvisp-line run [OPTIONS] -- ZVISP-WORDS\n"));
  EXPECT_THAT(help.out, HasSubstr("\n  --nothing-written CODE,...  Codes"));
  EXPECT_THAT(help.out, HasSubstr("\n  --ignore FIRST-LAST         Leave"));
  EXPECT_THAT(Say({"journal", "resolve", "--help"}).out,
              HasSubstr("\nUsage: zvisp-line journal resolve [OPTIONS] RUN --note TEXT\n"));
}

}  // namespace
