// SPDX-License-Identifier: MIT
//
// A job that is written is read again as it was.
#include "line/job/job_text.h"

#include "line/job/job_file.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace line {
namespace {

TEST(JobTextTest, EveryTextIsOneOfToml) {
  EXPECT_EQ(TomlText("a\"b\\c"), "\"a\\\"b\\\\c\"");
  EXPECT_EQ(TomlText("\n\x7f"), "\"\\u000A\\u007F\"");
  EXPECT_EQ(TomlText("\xc3\xbc"), "\"\xc3\xbc\"");
}

TEST(JobTextTest, WhatIsWrittenIsRead) {
  const std::string name = "a \"b\" \\ # = {unit} \xc3\xbc";
  Job job;
  job.name = name;
  job.pattern = "\\d{3}";
  job.once = true;
  job.line.stagger_ms = 20;
  job.line.first_article = true;
  job.firmware = {{name, std::string(64, 'a'), 7, {}}};
  job.plugin_sha256 = std::string(64, 'b');
  JobStep step;
  step.name = name;
  step.words = {"--isp", "--fw", name, std::string(200, 'w')};
  step.timeout_s = 0.25;
  step.readback = true;
  step.allow_unsigned = true;
  step.expect = 3;
  job.steps = {step};
  job.places = {{name.substr(0, 3), 16, 110u, {}}};
  const JobReading reading = ReadJobText(JobText(job, "a\nb.toml"));
  ASSERT_THAT(reading.errors, testing::IsEmpty()) << reading.errors.front().text;
  const Job& read = reading.job;
  EXPECT_EQ(read.name, name);
  EXPECT_EQ(read.pattern, "\\d{3}");
  EXPECT_TRUE(read.once);
  EXPECT_EQ(read.line.stagger_ms, 20u);
  EXPECT_TRUE(read.line.first_article);
  EXPECT_EQ(read.firmware.at(0).path, name);
  EXPECT_EQ(read.firmware[0].bytes, 7u);
  EXPECT_EQ(read.plugin_sha256, std::string(64, 'b'));
  EXPECT_EQ(read.steps.at(0).words, step.words);
  EXPECT_EQ(read.steps[0].timeout_s, 0.25);
  EXPECT_TRUE(read.steps[0].readback);
  EXPECT_TRUE(read.steps[0].allow_unsigned);
  EXPECT_EQ(read.steps[0].expect, 3u);
  EXPECT_EQ(read.places.at(0).slave, 110u);
  EXPECT_EQ(read.places[0].comm, 16u);
}

}  // namespace
}  // namespace line
