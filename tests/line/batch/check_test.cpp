// SPDX-License-Identifier: MIT
//
// batch --check: judges the whole job, reports everything that is wrong with it, touches nothing.
#include <filesystem>
#include <string>

#include "line/support/batch_tool.h"
#include "line/support/replaced.h"
#include "support/files.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using Words = LineTool::Words;

constexpr const char* kOfB = "3e23e8160039594a33894f6564e1b1348bbd7a0088d42c4acb73eeaed59c009d";

// Line 9 is [firmware]'s row, line 10 the first step.
constexpr const char* kJob = R"(schema = 1
name = "panel"
[unit]
pattern = "ZP[0-9]"
[line]
stop_after = 3
# The file is next to the job.
[firmware]
"b.bin" = { sha256 = "3e23e8160039594a33894f6564e1b1348bbd7a0088d42c4acb73eeaed59c009d", bytes = 1 }
[[step]]
name = "program"
zvisp = ["--isp", "--fw1", "b.bin", "--bank1", "8"]
readback = true
[[step]]
name = "version"
read = { addr = 0x80000, len = 1, equals = "62" }
[[place]]
name = "A1"
comm = 1
[[place]]
name = "A2"
comm = 2
)";

class CheckTest : public testing::Test {
 protected:
  CheckTest() { GivenFile(m_tool.NextToJob("b.bin"), "b"); }

  // The job with one text replaced is refused for these reasons.
  void ExpectRefused(const std::string& what, const std::string& by, const Words& errors) {
    SCOPED_TRACE(what + " -> " + by);
    m_tool.GivenJob(Replaced(kJob, what, by));
    const RunResult check = m_tool.Check();
    EXPECT_EQ(check.status, 2) << check.out;
    EXPECT_EQ(ErrorsIn(check.out), errors);
    ExpectNothingTouched();
  }

  void ExpectNothingTouched() const {
    EXPECT_FALSE(FileExists(m_tool.DataDirectory()));
    EXPECT_FALSE(FileExists(m_tool.Tool().Elsewhere("locks")));
    EXPECT_TRUE(std::filesystem::is_empty(m_tool.DisplaysDirectory()));
    EXPECT_TRUE(std::filesystem::is_empty(m_tool.Tool().WorkDir()));
  }

  BatchTool m_tool;
};

TEST_F(CheckTest, ShowsEveryStepAndTouchesNothing) {
  m_tool.GivenJob(kJob);
  const RunResult check = m_tool.Check();
  EXPECT_EQ(check.status, 0) << check.out;
  EXPECT_EQ(check.err, "");
  const auto plans = EventsOf(check.out, "plan");
  ASSERT_EQ(plans.size(), 2u);
  EXPECT_EQ(FieldOf(plans[0], "step"), "program");
  EXPECT_EQ(FieldOf(plans[0], "job_name"), "panel");
  EXPECT_EQ(FieldOf(plans[0], "place"), "-");
  EXPECT_EQ(FieldOf(plans[0], "path"), m_tool.NextToJob("b.bin"));
  EXPECT_EQ(FieldOf(plans[0], "sha256"), kOfB);
  EXPECT_EQ(FieldOf(plans[1], "step"), "version");
  EXPECT_EQ(FieldOf(plans[1], "files"), "[]");
  EXPECT_EQ(FieldOf(EventOf(check.out, "message"), "text"),
            "The job can run: 2 steps at 2 places.");
  EXPECT_EQ(FieldOf(EventOf(check.out, "hello"), "job").substr(0, 15), "{\"name\":\"panel\"");
  ExpectNothingTouched();
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(m_tool.NextToJob("")), {}), 2);
}

TEST_F(CheckTest, NothingIsTouchedWithARecordEither) {
  m_tool.GivenJob(Replaced(kJob, "pattern", "once = true\npattern"));
  GivenFile(m_tool.DataDirectory() + "/journal/2026-11-21.jsonl", "");
  EXPECT_EQ(m_tool.Check({"--unit", "A1=ZP1", "--skip", "A2"}).status, 0);
  EXPECT_FALSE(FileExists(m_tool.DataDirectory() + "/journal/units.index"));
}

TEST_F(CheckTest, AMistakeOfTheJobHasItsLineAndColumn) {
  ExpectRefused("stop_after", "stopafter",
                {"6:1: \"stopafter\" is not a key of [line]; did you mean \"stop_after\"?"});
  ExpectRefused("comm = 2", "comm = 1",
                {"20:1: The places \"A1\" and \"A2\" have the interface 1 both; correct one, or "
                 "write serialise = true under [line]."});
}

TEST_F(CheckTest, WordsAreJudgedForTheirStep) {
  ExpectRefused("\"--isp\", ", "",
                {"12:9: zvisp refuses its words: Action type undefined or illegal!"});
  ExpectRefused("--bank1", "--bnak1",
                {"12:37: The word --bnak1 is not an option of zvisp; did you mean --bank1?",
                 "12:48: The word 8 is not an option of zvisp; remove it, or check how it is "
                 "written."});
  ExpectRefused("\"8\"]", "\"8\", \"stray\"]\nallow_unsigned = true",
                {"12:53: The word stray is not an option of zvisp; remove it, or check how it is "
                 "written."});
  ExpectRefused("\"8\"]", "\"8\", \"--comparever\"]",
                {"12:9: --comparever may leave the flash as it was, so it cannot be read back; "
                 "leave one of the two out."});
  ExpectRefused("[line]", "[readback]\nignore = [\"0x80000-0x80000\"]\n[line]",
                {"14:9: Every planned byte is in a range to be ignored; leave less of them out."});
}

TEST_F(CheckTest, WhatIsWrongAtOnePlaceNamesIt) {
  m_tool.GivenJob(Replaced(kJob, "\"b.bin\", \"--bank1\"", "\"{place}.bin\", \"--bank1\""));
  GivenFile(m_tool.NextToJob("A1.bin"), "b");
  const RunResult check = m_tool.Check();
  EXPECT_EQ(check.status, 2);
  const std::string error = EventOf(check.out, "error");
  EXPECT_EQ(FieldOf(error, "place"), "A2");
  EXPECT_EQ(FieldOf(error, "step"), "program");
  EXPECT_EQ(FieldOf(error, "text"),
            "zvisp refuses its words: File open fail! " + m_tool.NextToJob("A2.bin"));
}

TEST_F(CheckTest, PlacesThatWriteOtherFilesHavePlansOfTheirOwn) {
  const std::string text = Replaced(kJob, "\"b.bin\", \"--bank1\"", "\"{place}.bin\", \"--bank1\"");
  const std::string row = std::string("\"b.bin\" = { sha256 = \"") + kOfB + "\", bytes = 1 }";
  m_tool.GivenJob(Replaced(
      text, row, Replaced(row, "b.bin", "A1.bin") + "\n" + Replaced(row, "b.bin", "./A2.bin")));
  GivenFile(m_tool.NextToJob("A1.bin"), "b");
  GivenFile(m_tool.NextToJob("A2.bin"), "b");
  const RunResult check = m_tool.Check();
  EXPECT_EQ(check.status, 0) << check.out;
  const auto plans = EventsOf(check.out, "plan");
  ASSERT_EQ(plans.size(), 3u);
  EXPECT_EQ(FieldOf(plans[0], "place"), "A1");
  EXPECT_EQ(FieldOf(plans[1], "place"), "A2");
  EXPECT_EQ(FieldOf(plans[2], "place"), "-");
}

TEST_F(CheckTest, FilesAreHeldAgainstTheJob) {
  ExpectRefused("bytes = 1", "bytes = 2",
                {std::string("9:1: The file \"b.bin\" has 1 bytes and the SHA-256 ") + kOfB +
                 ", and the job allows only one of 2 bytes; put the right file there, or correct "
                 "the job."});
  ExpectRefused("3e23e816", "00000000",
                {std::string("9:1: The file \"b.bin\" has the SHA-256 ") + kOfB +
                 ", which is not the job's; put the right file there, or correct the job."});
  ExpectRefused("\"b.bin\" =", "\"c.bin\" =",
                {"12:9: The file " + m_tool.NextToJob("b.bin") +
                 " is not listed under [firmware]; add it there with its size and SHA-256."});
}

TEST_F(CheckTest, AListedFileThatIsNotUsedIsAWarning) {
  m_tool.GivenJob(
      Replaced(kJob, "[firmware]\n",
               std::string("[firmware]\n\"c.bin\" = { sha256 = \"") + kOfB + "\", bytes = 1 }\n"));
  const RunResult check = m_tool.Check();
  EXPECT_EQ(check.status, 0) << check.out;
  const std::string warning = EventsOf(check.out, "message").front();
  EXPECT_EQ(FieldOf(warning, "level"), "warning");
  EXPECT_THAT(warning, testing::HasSubstr("job.toml:9:1: No step uses the file \\\"c.bin\\\" of "
                                          "[firmware]."));
}

TEST_F(CheckTest, ThePlugInIsHeldAgainstTheJob) {
  const std::string plugin = m_tool.Tool().IspPluginPath();
  const std::string text =
      Replaced(kJob, "[line]", std::string("[plugin]\nsha256 = \"") + kOfB + "\"\n[line]");
  m_tool.GivenJob(text);
  RunResult check = m_tool.Check();
  EXPECT_EQ(check.status, 2);
  EXPECT_THAT(EventOf(check.out, "error"),
              testing::AllOf(testing::HasSubstr("\"line\":6,\"column\":10"),
                             testing::HasSubstr("which is not the job's; install the right one")));
  m_tool.Tool().WithIspPlugin(GivenFile(m_tool.Tool().Elsewhere("fake"), "b"));
  check = m_tool.Check();
  EXPECT_EQ(check.status, 3);
  EXPECT_THAT(ErrorsIn(check.out), testing::ElementsAre(testing::HasSubstr(" is not a library; ")));
  const std::string gone = m_tool.Tool().Elsewhere("gone");
  EXPECT_EQ(ErrorsIn(m_tool.Check({"--plugins", gone}).out),
            (Words{"6:10: The plug-in " + gone +
                   "/PlugIn/libIsp.dylib cannot be read, so nobody knows whether it is the job's; "
                   "install it, or name its directory with --plugins."}));
}

TEST_F(CheckTest, APlugInThatNoPlaceCanLoadIsReportedOnce) {
  m_tool.GivenJob(kJob);
  const std::string gone = m_tool.Tool().Elsewhere("gone");
  const Words sentence = {"The ISP plug-in " + gone +
                          "/PlugIn/libIsp.dylib is missing; put the plug-in there, or give the "
                          "right path."};
  const RunResult check = m_tool.Check({"--plugins", gone});
  EXPECT_EQ(check.status, 3);
  EXPECT_EQ(ErrorsIn(check.out), sentence);
  ExpectNothingTouched();
  const RunResult batch = m_tool.Batch({"--plugins", gone, "--unit", "A1=ZP1", "--skip", "A2"});
  EXPECT_EQ(batch.status, 3);
  EXPECT_EQ(ErrorsIn(batch.out), sentence);
  EXPECT_THAT(EventsOf(batch.out, "unit_result"), testing::IsEmpty());
}

TEST_F(CheckTest, AHookThatIsNotThereIsRefused) {
  ExpectRefused("[line]", "[hook]\non_result = [\"./gone\"]\n[line]",
                {"6:13: The program ./gone of \"on_result\" is not a file that may be executed; "
                 "check its name and its permissions."});
}

TEST_F(CheckTest, SerialsAreJudgedWhenTheyAreGiven) {
  m_tool.GivenJob(kJob);
  EXPECT_EQ(m_tool.Check({"--unit", "A1=ZP1", "--unit", "A2=ZP2"}).status, 0);
  const RunResult check = m_tool.Check({"--unit", "A1=ZP1", "--unit", "A2=x"});
  EXPECT_EQ(check.status, 2);
  EXPECT_EQ(ErrorsIn(check.out),
            (Words{"Place \"A2\": the serial x does not match the job's pattern ZP[0-9]; read it "
                   "again."}));
  EXPECT_EQ(ErrorsIn(m_tool.Check({"--skip", "A1", "--skip", "A2"}).out),
            (Words{"Every place is skipped, so there is nothing to do; leave out one --skip."}));
  ExpectNothingTouched();
}

TEST_F(CheckTest, InWordsTheJobsNameIsInFront) {
  m_tool.GivenJob(Replaced(kJob, "comm = 2", "comm = 17"));
  const RunResult check =
      RunCommand(m_tool.LineOf({"batch", "--check", m_tool.NextToJob("job.toml")}));
  EXPECT_EQ(check.out, "");
  EXPECT_EQ(check.err, m_tool.NextToJob("job.toml") +
                           ":22:8: \"comm\" is the number of an interface, 1 to 16, and has 17; "
                           "correct it.\n");
}

TEST_F(CheckTest, AJobThatIsNotThereIsRefused) {
  const RunResult check = m_tool.Check();
  EXPECT_EQ(check.status, 2);
  EXPECT_EQ(ErrorsIn(check.out),
            (Words{"The job " + m_tool.NextToJob("job.toml") +
                   " is not an ordinary file that can be read; check its name and its "
                   "permissions."}));
}

}  // namespace
