// SPDX-License-Identifier: MIT
//
// Files that are not what the job says.
#include "line/job/lock_down.h"

#include "line/job/judged_files.h"
#include "support/files.h"
#include "support/scratch_dir.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace line {
namespace {

constexpr const char* kOfB = "3e23e8160039594a33894f6564e1b1348bbd7a0088d42c4acb73eeaed59c009d";
const std::string kWrong(64, '0');

class LockDownTest : public testing::Test {
 protected:
  LockDownTest() : m_file(OneNameOf(GivenFile(m_directory / "b.bin", "b"))) {
    m_used[m_file] = {30, 1};
  }

  void Listed(const std::string& path, const std::string& sha256, std::uint64_t bytes) {
    m_job.firmware.push_back({path, sha256, bytes, {10, 1}});
  }

  static std::vector<std::string> Texts(const std::vector<JobError>& errors) {
    std::vector<std::string> texts;
    for (const JobError& error : errors)
      texts.push_back(std::to_string(error.position.line) + ": " + error.text);
    return texts;
  }

  LockDown Check() {
    return CheckLockDown(m_job, m_used, [this](const std::string& name) {
      ++m_reads;
      return name;
    });
  }
  std::vector<std::string> Errors() { return Texts(Check().errors); }

  ScratchDir m_directory;
  std::string m_file;
  Job m_job;
  UsedFiles m_used;
  int m_reads = 0;
};

TEST_F(LockDownTest, TheFileThatIsListedMayBeUsed) {
  Listed(m_directory / "../" + m_directory.Path().substr(m_directory.Path().rfind('/')) + "/b.bin",
         kOfB, 1);
  Listed(m_file, kOfB, 1);
  const LockDown result = Check();
  EXPECT_THAT(result.errors, testing::IsEmpty());
  EXPECT_THAT(result.hashes, testing::ElementsAre(testing::Pair(m_file, kOfB)));
  EXPECT_EQ(m_reads, 1);
}

TEST_F(LockDownTest, AFileThatIsNotListedIsRefusedAtItsStep) {
  EXPECT_THAT(Errors(),
              testing::ElementsAre("30: The file " + m_file +
                                   " is not listed under [firmware]; add it there with its size "
                                   "and SHA-256."));
}

TEST_F(LockDownTest, AnotherSizeOrHashIsRefusedAtItsRow) {
  Listed(m_file, kOfB, 2);
  Listed(m_file, kWrong, 1);
  EXPECT_THAT(Errors(), testing::ElementsAre(
                            "10: The file \"" + m_file + "\" has 1 bytes and the SHA-256 " + kOfB +
                                ", and the job allows only one of 2 bytes; put the right file "
                                "there, or correct the job.",
                            "10: The file \"" + m_file + "\" has the SHA-256 " + kOfB +
                                ", which is not the job's; put the right file there, or correct "
                                "the job."));
}

TEST_F(LockDownTest, AFileThatIsGoneIsRefused) {
  Listed(m_file, kOfB, 1);
  ASSERT_EQ(std::remove(m_file.c_str()), 0);
  EXPECT_THAT(Errors(), testing::ElementsAre("10: The file \"" + m_file +
                                             "\" cannot be read; check its name and its "
                                             "permissions."));
}

TEST_F(LockDownTest, WhatNoStepUsesIsAWarningAndIsNotRead) {
  Listed(m_file, kOfB, 1);
  Listed("/none/other.bin", kOfB, 1);
  const LockDown result = Check();
  EXPECT_THAT(result.errors, testing::IsEmpty());
  EXPECT_THAT(Texts(result.warnings),
              testing::ElementsAre("10: No step uses the file \"/none/other.bin\" of [firmware]."));
}

TEST_F(LockDownTest, TheBytesOfTheCopyCount) {
  Listed(m_file, kOfB, 1);
  const std::string copy = GivenFile(m_directory / "copy", "c");
  const LockDown result =
      CheckLockDown(m_job, m_used, [&copy](const std::string& /*name*/) { return copy; });
  ASSERT_EQ(result.errors.size(), 1u);
  EXPECT_EQ(result.errors[0].id, "locked-hash");
}

TEST_F(LockDownTest, AHookMustBeAProgram) {
  EXPECT_THAT(CheckHookPrograms(m_job), testing::IsEmpty());
  m_job.hook.before_unit = {m_file, "{unit}"};
  m_job.hook.before_unit_position = {21, 15};
  m_job.hook.on_result = {"./gone"};
  m_job.hook.on_result_position = {22, 13};
  EXPECT_THAT(Texts(CheckHookPrograms(m_job)),
              testing::ElementsAre("21: The program " + m_file +
                                       " of \"before_unit\" is not a file that may be executed; "
                                       "check its name and its permissions.",
                                   "22: The program ./gone of \"on_result\" is not a file that "
                                   "may be executed; check its name and its permissions."));
  m_job.hook.before_unit = {"/bin/sh"};
  m_job.hook.on_result = {"sh"};
  EXPECT_THAT(CheckHookPrograms(m_job), testing::IsEmpty());
  m_job.hook.on_result = {"no-program-of-this-name"};
  EXPECT_THAT(
      Texts(CheckHookPrograms(m_job)),
      testing::ElementsAre("22: The program no-program-of-this-name of \"on_result\" is not "
                           "found in PATH; write ./no-program-of-this-name for a file next "
                           "to the job, or the full path."));
}

TEST_F(LockDownTest, ThePlugInIsTheJobsOrAnyOne) {
  EXPECT_THAT(CheckPluginFile(m_job, "/none"), testing::IsEmpty());
  m_job.plugin_position = {16, 10};
  m_job.plugin_sha256 = kOfB;
  EXPECT_THAT(CheckPluginFile(m_job, m_file), testing::IsEmpty());
  EXPECT_THAT(Texts(CheckPluginFile(m_job, "/none")),
              testing::ElementsAre("16: The plug-in /none cannot be read, so nobody knows whether "
                                   "it is the job's; install it, or name its directory with "
                                   "--plugins."));
  m_job.plugin_sha256 = kWrong;
  EXPECT_THAT(Texts(CheckPluginFile(m_job, m_file)),
              testing::ElementsAre("16: The plug-in " + m_file + " has the SHA-256 " + kOfB +
                                   ", which is not the job's; install the right one, or correct "
                                   "the job."));
}

}  // namespace
}  // namespace line
