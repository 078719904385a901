// SPDX-License-Identifier: MIT
//
// job init: what it writes passes batch --check as it is, and it writes over nothing.
#include <string>

#include "line/support/batch_tool.h"
#include "support/files.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using Words = LineTool::Words;

class JobInitTest : public testing::Test {
 protected:
  JobInitTest() { GivenFile(m_tool / "b.bin", "b"); }

  std::string Job() const { return m_tool / "job.toml"; }
  RunResult Init(const Words& options, const Words& words) const {
    Words all = {"--output", Job()};
    all.insert(all.end(), options.begin(), options.end());
    return m_tool.Init(all, words);
  }
  // Checks a job that was written.
  RunResult Check(const std::string& job) const {
    return RunCommand(m_tool.LineOf({"batch", "--check", "--json", job}));
  }
  void ExpectGood(const Words& options, const Words& words) {
    SCOPED_TRACE(testing::PrintToString(words));
    std::remove(Job().c_str());
    const RunResult init = Init(options, words);
    EXPECT_EQ(init.status, 0);
    EXPECT_EQ(init.err + init.out, "");
    const RunResult check = Check(Job());
    EXPECT_EQ(check.status, 0) << check.out << ReadWholeFile(Job());
  }
  void ExpectRefused(const Words& options, const Words& words, const std::string& sentence) {
    const RunResult init = Init(options, words);
    EXPECT_EQ(init.status, 2);
    EXPECT_EQ(init.err, "zvisp-line: " + sentence + "\n");
    EXPECT_FALSE(FileExists(Job()));
  }

  BatchTool m_tool;
};

TEST_F(JobInitTest, TheJobIsWholeAndExplained) {
  m_tool.Tool().WithIspPlugin(GivenFile(m_tool.Tool().Elsewhere("plugin"), "b"));
  const RunResult init = Init({"--place", "A1=1", "--place", "A2=2", "--name", "panel", "--pattern",
                               "ZP[0-9]", "--timeout", "2.5", "--readback"},
                              {"--isp", "--fw1=b.bin", "--bank1", "8", "--slave", "0x6E"});
  EXPECT_EQ(init.status, 0) << init.err;
  EXPECT_EQ(ReadWholeFile(Job()), R"(# A job of zvisp-line. What follows a "#" is a remark.
# To judge it and touch nothing:
#   zvisp-line batch --check job.toml
# To do it, with --unit once for each place:
#   zvisp-line batch --unit A1=SERIAL job.toml
# Every relative path is relative to this file.
schema = 1
# The name by which the record knows the job.
name = "panel"

[unit]
# What a serial looks like, as a regular expression. The narrower, the more mistakes it
# finds: "^ZP[0-9]{8}$" takes ZP and eight digits.
pattern = "ZP[0-9]"
# true: a display that has passed this job is refused.
once = false

[line]
# So many displays at one time.
jobs_at_once = 16
# Milliseconds between two starts, to spare the power supply and hubs.
stagger_ms = 0
# true: one display alone at first; the others start when it has passed.
first_article = false
# Start nothing more after so many failures in a row; 0: never stop.
stop_after = 3

[firmware]
# The files that may be used, and no others. After a change: sha256sum FILE.
"b.bin" = { sha256 = "3e23e8160039594a33894f6564e1b1348bbd7a0088d42c4acb73eeaed59c009d", bytes = 1 }

[plugin]
# The only plug-in that may be used. Without this, any one may be.
sha256 = "3e23e8160039594a33894f6564e1b1348bbd7a0088d42c4acb73eeaed59c009d"

# What is done to a display. Steps run in this order; the first that fails ends it.
[[step]]
name = "program"
# Words of zvisp, without --comm and --slave: the place has them.
zvisp = ["--isp", "--fw1", "b.bin", "--bank1", "8"]
# Seconds after which the step is ended.
timeout_s = 2.5
# Afterwards the flash is read back and compared.
readback = true

[[place]]
name = "A1"
# Number of its interface, 1 to 16.
comm = 1
slave = 110

[[place]]
name = "A2"
# Number of its interface, 1 to 16.
comm = 2
slave = 110
)");
}

TEST_F(JobInitTest, WithoutOutputTheJobIsPrinted) {
  const RunResult init = m_tool.Init({}, {"--resetmcu"});
  EXPECT_EQ(init.status, 0);
  EXPECT_THAT(init.out, testing::HasSubstr("\n[[step]]\nname = \"resetmcu\"\n"));
  GivenFile(Job(), init.out);
  EXPECT_EQ(Check(Job()).status, 0);
}

TEST_F(JobInitTest, WhatItWritesPassesTheCheck) {
  ExpectGood({}, {"--isp", "--fw", "b.bin"});
  ExpectGood({}, {"--isp", "--fw", m_tool / "b.bin", "--comm", "16", "--comparev"});
  ExpectGood({"--expect", "3"}, {"--getscalertype"});
  ExpectGood({}, {"--dumpflash", "--dumpaddr", "0", "--dumplen", "1", "--dumpname", "{unit}.bin"});
  ExpectGood({"--allow-unsigned"},
             {"--isp", "--fw", "b.bin", "--fw2", "b.bin", "--bank2", "8", "--sw", "--dsmode", "4"});
}

TEST_F(JobInitTest, EveryNameOfAFileIsWrittenSoThatItIsReadAgain) {
  for (const char* const name : {"a b", "we\"ird \\ .bin", "\xc3\xbc.bin", "#1 = {x}", "'''", "-",
                                 "--fw1=x", "{", "\\u0041"}) {
    GivenFile(m_tool / name, "b");
    ExpectGood({}, {"--isp", std::string("--fw=") + name});
    EXPECT_THAT(ReadWholeFile(Job()), testing::HasSubstr("bytes = 1 }")) << name;
  }
}

TEST_F(JobInitTest, PathsFitTheDirectoryOfTheJob) {
  GivenFile(m_tool / "jobs/inner/c.bin", "c");
  const RunResult init =
      m_tool.Init({"--output", "jobs/job.toml"},
                  {"--isp", "--fw", "b.bin", "--fw1", "jobs/inner/c.bin", "--bank1", "8"});
  EXPECT_EQ(init.status, 0) << init.err;
  const std::string job = ReadWholeFile(m_tool / "jobs/job.toml");
  EXPECT_THAT(job, testing::HasSubstr("\"--fw\", \"" + (m_tool / "b.bin") + "\""));
  EXPECT_THAT(job, testing::HasSubstr("\"--fw1\", \"inner/c.bin\""));
  EXPECT_THAT(job, testing::HasSubstr("\n\"inner/c.bin\" = { sha256"));
  EXPECT_EQ(Check(m_tool / "jobs/job.toml").status, 0);
}

TEST_F(JobInitTest, NoFileIsWrittenOver) {
  GivenFile(Job(), "mine");
  const RunResult init = Init({}, {"--resetmcu"});
  EXPECT_EQ(init.status, 2);
  EXPECT_EQ(init.err,
            "zvisp-line: Cannot write " + Job() +
                ": File exists; give --output a name that is not taken yet, where there is "
                "room.\n");
  EXPECT_EQ(ReadWholeFile(Job()), "mine");
}

TEST_F(JobInitTest, WhatZvispOrZvispLineRefusesIsRefusedHere) {
  ExpectRefused({}, {}, "There are no words of zvisp; give them after \"--\".");
  ExpectRefused({}, {"--isp", "--fw", "gone.bin"},
                "zvisp refuses its words: File open fail! " + (m_tool / "gone.bin"));
  ExpectRefused({}, {"--resetmcu", "stray"},
                "The word stray is not an option of zvisp; remove it, or check how it is written.");
  ExpectRefused({}, {"--getscalertype"},
                "The action --getscalertype needs the type that is right; give it with --expect "
                "before \"--\".");
  ExpectRefused({"--readback"}, {"--resetmcu"},
                "Only --isp, --ispuser, --ispdiff and --ispcopy can be read back; leave the "
                "read-back out.");
  ExpectRefused({}, {"--dumpflash", "--dumpaddr", "0", "--dumplen", "1", "--dumpname", "d.bin"},
                "Every display would be dumped into d.bin; put {unit} or {place} into its name.");
}

TEST_F(JobInitTest, OptionsThatMakeNoJobAreRefused) {
  ExpectRefused({"--place", "A1"}, {"--resetmcu"},
                "--place A1 is not a place; give NAME=COMM, as A1=1.");
  ExpectRefused({"--place", "A1=17"}, {"--resetmcu"},
                "\"comm\" is the number of an interface, 1 to 16, and has 17; correct it.");
  ExpectRefused({"--place", "A1=1"}, {"--resetmcu", "--comm", "1"},
                "The option --comm names one interface and --place others; leave one of the two "
                "out.");
  ExpectRefused({"--pattern", "["}, {"--resetmcu"},
                "The pattern of a serial is not a regular expression that can be used: it has a "
                "\"[\" without \"]\"; correct it.");
  ExpectRefused({}, {"--isp", "--fw", "a\nb"},
                "The word a b has control characters, or is not UTF-8, so a job cannot hold it; "
                "rename the file.");
  const RunResult json = m_tool.Init({"--json"}, {"--resetmcu"});
  EXPECT_EQ(json.status, 2);
  EXPECT_EQ(ErrorsIn(json.out),
            (Words{"With --json, standard output is for events; give --output FILE for the job."}));
}

}  // namespace
