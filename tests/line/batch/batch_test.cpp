// SPDX-License-Identifier: MIT
//
// Which displays a batch takes, what it locks down, and what it leaves in the record.
#include <filesystem>
#include <string>

#include "line/support/batch_tool.h"
#include "support/files.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using Words = LineTool::Words;

constexpr const char* kJob = R"(schema = 1
name = "panel"
[unit]
pattern = "ZP[0-9]"
once = true
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

class BatchTest : public testing::Test {
 protected:
  BatchTest() {
    GivenFile(m_tool.NextToJob("b.bin"), "b");
    m_tool.GivenJob(kJob);
  }

  RunResult Batch(const std::string& first, const std::string& second) const {
    return m_tool.Batch({"--unit", "A1=" + first, "--unit", "A2=" + second});
  }
  void ExpectRefused(const RunResult& run, const Words& errors) const {
    EXPECT_EQ(run.status, 2) << run.out;
    EXPECT_EQ(ErrorsIn(run.out), errors);
    EXPECT_THAT(EventsOf(run.out, "unit_start"), testing::IsEmpty());
  }
  void ExpectUntouched() const {
    EXPECT_TRUE(std::filesystem::is_empty(m_tool.DisplaysDirectory()));
    EXPECT_EQ(m_tool.Record(), "");
  }

  BatchTool m_tool;
};

TEST_F(BatchTest, EveryDisplayIsProgrammedReadBackAndRecorded) {
  const RunResult run = Batch("ZP1", "ZP2");
  EXPECT_EQ(run.status, 0) << run.out;
  const auto results = EventsOf(run.out, "unit_result");
  ASSERT_EQ(results.size(), 2u);
  for (const std::string& result : results) {
    EXPECT_EQ(FieldOf(result, "outcome"), "passed");
    EXPECT_EQ(FieldOf(result, "state"), "identical");
    EXPECT_EQ(FieldOf(result, "attempt"), "1");
    EXPECT_EQ(FieldOf(result, "job_name"), "panel");
  }
  EXPECT_EQ(EventsOf(run.out, "plan").size(), 2u);
  EXPECT_EQ(EventsOf(run.out, "result").size(), 4u);
  EXPECT_THAT(EventOf(run.out, "summary"), testing::HasSubstr("\"passed\":2"));
  EXPECT_EQ(m_tool.AllDisplays().Flash(1).substr(0x80000, 1), "b");
  EXPECT_EQ(m_tool.AllDisplays().Flash(2).substr(0x80000, 1), "b");
  EXPECT_EQ(EventsOf(m_tool.Record(), "unit_result").size(), 2u);
}

TEST_F(BatchTest, WhatAReadDoesNotFindFailsTheUnit) {
  std::string text = kJob;
  m_tool.GivenJob(text.replace(text.find("\"62\""), 4, "\"63\""));
  const RunResult run = m_tool.Batch({"--unit", "A1=ZP1", "--skip", "A2"});
  EXPECT_EQ(run.status, 1) << run.out;
  const std::string result = EventOf(run.out, "unit_result");
  EXPECT_EQ(FieldOf(result, "failed_step"), "version");
  EXPECT_EQ(FieldOf(result, "state"), "identical");
  const std::string step = EventsOf(run.out, "result").back();
  EXPECT_EQ(FieldOf(step, "value"), "62");
  EXPECT_EQ(FieldOf(step, "expected"), "63");
}

TEST_F(BatchTest, SerialsThatCannotBeAreRefusedTogether) {
  ExpectRefused(Batch("x", "ZP1"), {"Place \"A1\": the serial x does not match the job's pattern "
                                    "ZP[0-9]; read it again."});
  ExpectRefused(Batch("ZP1", "ZP1"),
                {"The serial ZP1 is at two places, \"A1\" and \"A2\"; read both again."});
  ExpectRefused(m_tool.Batch({"--unit", "A1=ZP1"}),
                {"The place \"A2\" has no serial; give --unit A2=SERIAL, or leave it out with "
                 "--skip A2."});
  ExpectUntouched();
}

TEST_F(BatchTest, ASerialThatPassedIsRefusedUntilItFails) {
  EXPECT_EQ(Batch("ZP1", "ZP2").status, 0);
  ExpectRefused(Batch("ZP3", "ZP1"),
                {"Place \"A2\": the serial ZP1 has passed this job already; take another display, "
                 "or write once = false under [unit]."});
  // A run without the job says nothing about the job.
  EXPECT_EQ(m_tool.Run({"--isp", "--fw", m_tool.NextToJob("b.bin"), "--comm", "1"}).status, 0);
  EXPECT_EQ(Batch("ZP3", "ZP1").status, 2);
  EXPECT_EQ(Batch("ZP3", "ZP4").status, 0);
}

TEST_F(BatchTest, ARecordThatCannotBeReadMayHoldAPass) {
  EXPECT_EQ(Batch("ZP1", "ZP2").status, 0);
  const std::string day = m_tool.DataDirectory() + "/journal/2026-01-01.jsonl";
  std::filesystem::create_directory(day);
  const RunResult run = Batch("ZP1", "ZP3");
  EXPECT_EQ(run.status, 3);
  EXPECT_THAT(FieldOf(EventOf(run.out, "error"), "text"),
              testing::StartsWith("The record " + day + " cannot be read: "));
  EXPECT_EQ(EventOf(run.out, "unit_start"), "");
}

TEST_F(BatchTest, AUnitThatWasNeverStartedIsNoAttempt) {
  std::string text = kJob;
  text += "[hook]\nbefore_unit = [\"./refuse\"]\n";
  m_tool.GivenJob(text);
  GivenFile(m_tool.NextToJob("refuse"), "#!/bin/sh\nexit 1\n");
  std::filesystem::permissions(m_tool.NextToJob("refuse"), std::filesystem::perms::owner_all);
  EXPECT_EQ(Batch("ZP1", "ZP2").status, 2);
  m_tool.GivenJob(kJob);
  const RunResult run = Batch("ZP1", "ZP2");
  EXPECT_EQ(run.status, 0) << run.out;
  EXPECT_EQ(FieldOf(EventsOf(run.out, "unit_start").front(), "attempt"), "1");
}

TEST_F(BatchTest, FilesThatAreNotTheJobsAreRefusedBeforeAnythingIsTouched) {
  GivenFile(m_tool.NextToJob("b.bin"), "c");
  const RunResult run = Batch("ZP1", "ZP2");
  EXPECT_EQ(run.status, 2);
  EXPECT_THAT(EventOf(run.out, "error"),
              testing::AllOf(testing::HasSubstr("\"line\":7,\"column\":1"),
                             testing::HasSubstr("which is not the job's; put the right file")));
  ExpectUntouched();
}

TEST_F(BatchTest, WithoutCopiesTheFilesAreUsedInPlace) {
  m_tool.GivenJob(std::string(kJob) + "[line]\ncopy = false\n");
  const RunResult run = Batch("ZP1", "ZP2");
  EXPECT_EQ(run.status, 0) << run.out;
  EXPECT_EQ(m_tool.AllDisplays().Flash(2).substr(0x80000, 1), "b");
}

TEST_F(BatchTest, ADumpIsNextToTheJobUnderItsOwnName) {
  std::string text = kJob;
  const std::string words = "\"--isp\", \"--fw1\", \"b.bin\", \"--bank1\", \"8\"]\nreadback = true";
  m_tool.GivenJob(text.replace(text.find(words), words.size(),
                               "\"--dumpflash\", \"--dumpaddr\", \"0\", \"--dumplen\", \"4\", "
                               "\"--dumpname\", \"{unit}-{place}.bin\"]"));
  Batch("ZP1", "ZP2");
  EXPECT_EQ(ReadWholeFile(m_tool.NextToJob("ZP1-A1.bin")).size(), 4u);
  EXPECT_EQ(ReadWholeFile(m_tool.NextToJob("ZP2-A2.bin")).size(), 4u);
}

TEST_F(BatchTest, ARecordThatCannotBeWrittenStopsTheBatchBeforeItStarts) {
  GivenFile(m_tool.DataDirectory(), "a file");
  const RunResult run = Batch("ZP1", "ZP2");
  EXPECT_EQ(run.status, 3) << run.out;
  EXPECT_TRUE(std::filesystem::is_empty(m_tool.DisplaysDirectory()));
}

}  // namespace
