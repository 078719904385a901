// SPDX-License-Identifier: MIT
#include "line/supervise/private_copies.h"

#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>

#include "plugin/fresh_setting.h"
#include "support/files.h"
#include "support/scratch_dir.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace zvisp;

namespace line {
namespace {

using testing::EndsWith;
using testing::HasSubstr;

class PrivateCopiesOf : public testing::Test {
 protected:
  PrivateCopiesOf() : m_copies(PrivateCopies::Make(m_error)) {}

  static mode_t ModeOf(const std::string& path) {
    struct stat facts = {};
    EXPECT_EQ(stat(path.c_str(), &facts), 0);
    return facts.st_mode & 07777;
  }

  ScratchDir m_scratch;
  std::string m_error;
  std::unique_ptr<PrivateCopies> m_copies;
};

TEST_F(PrivateCopiesOf, ACopyHasTheBytesAndTheNameInADirectoryOfItsOwn) {
  const std::string first = GivenFirmware(m_scratch / "a/fw.bin", 300000, 1);
  const std::string second = GivenFirmware(m_scratch / "b/fw.bin", 1000, 2);
  const std::string copy = m_copies->CopyOf(first, m_error);
  const std::string other = m_copies->CopyOf(second, m_error);
  EXPECT_THAT(copy, EndsWith("/fw.bin"));
  EXPECT_NE(copy, other);
  EXPECT_LT(copy.size(), 50u);
  EXPECT_EQ(ReadWholeFile(copy), ReadWholeFile(first));
  EXPECT_EQ(ReadWholeFile(other), ReadWholeFile(second));
  EXPECT_EQ(ModeOf(copy), 0400u);
  EXPECT_EQ(ModeOf(m_copies->PathFor("")), 0700u);
}

TEST_F(PrivateCopiesOf, AFileIsCopiedOnce) {
  const std::string file = GivenFile(m_scratch / "fw.bin", "first");
  const std::string copy = m_copies->CopyOf(file, m_error);
  GivenFile(file, "second");
  EXPECT_EQ(m_copies->CopyOf(file, m_error), copy);
  EXPECT_EQ(ReadWholeFile(copy), "first");
}

TEST_F(PrivateCopiesOf, WhatIsNoOrdinaryFileIsRefused) {
  mkfifo((m_scratch / "fifo").c_str(), 0600);
  EXPECT_EQ(m_copies->CopyOf(m_scratch / "fifo", m_error), "");
  EXPECT_THAT(m_error, HasSubstr("is not an ordinary file"));
  EXPECT_EQ(m_copies->CopyOf(m_scratch / "nothing", m_error), "");
  EXPECT_THAT(m_error, HasSubstr("Cannot open"));
  EXPECT_EQ(m_copies->CopyOf(GivenFile(m_scratch / std::string(201, 'x'), "x"), m_error), "");
  EXPECT_THAT(m_error, HasSubstr("is too long"));
}

TEST_F(PrivateCopiesOf, TheDirectoryGoesWithItsOwner) {
  const std::string directory = m_copies->PathFor("");
  m_copies->CopyOf(GivenFile(m_scratch / "fw.bin", "x"), m_error);
  m_copies.reset();
  EXPECT_FALSE(std::filesystem::exists(directory));
}

// The open file of a worker: here it belongs to a child.
TEST_F(PrivateCopiesOf, ADirectoryThatAWorkerUsesStaysUntilTheWorkerEnds) {
  const std::string directory = m_copies->PathFor("");
  int pipe_ends[2];
  ASSERT_EQ(pipe(pipe_ends), 0);
  const pid_t worker = fork();
  if (worker == 0) {
    close(pipe_ends[1]);
    char byte = 0;
    static_cast<void>(!read(pipe_ends[0], &byte, 1));
    _exit(0);
  }
  m_copies.reset();
  EXPECT_TRUE(std::filesystem::exists(directory));
  PrivateCopies::Make(m_error);
  EXPECT_TRUE(std::filesystem::exists(directory));
  close(pipe_ends[1]);
  close(pipe_ends[0]);
  waitpid(worker, nullptr, 0);
  PrivateCopies::Make(m_error);
  EXPECT_FALSE(std::filesystem::exists(directory));
}

class UseCopiesOf : public PrivateCopiesOf {
 protected:
  UseCopiesOf() {
    m_words.setting = MakeFreshSetting();
    m_words.sign_args = MakeZeroed<STRUCT_C_STYLE_CP_DIGITAL_SIGN_ARGS>();
  }
  void GivenBank(std::uint32_t target, std::uint32_t file_bank, const std::string& path) {
    STRUCT_C_STYLE_MAP_FW& map = m_words.setting->stMapFw;
    map.ulTargetBank[map.ulCount] = target;
    map.stBank[map.ulCount].ulFileBank = file_bank;
    std::copy(path.begin(), path.end(), map.stBank[map.ulCount].wszPath);
    ++map.ulCount;
  }
  std::string PathOfBank(int entry) const {
    const std::wstring path = m_words.setting->stMapFw.stBank[entry].wszPath;
    return {path.begin(), path.end()};
  }
  JudgedWords m_words;
};

TEST_F(UseCopiesOf, TheRecordsGetTheSameCopyOfTheSameFile) {
  const std::string file = GivenFirmware(m_scratch / "fw.bin", 70000);
  const std::string key = GivenFile(m_scratch / "key", "key");
  GivenBank(4, 0, file);
  GivenBank(5, 1, m_scratch.Path() + "/./fw.bin");
  file.copy(m_words.sign_args->szFwFile, 259);
  key.copy(m_words.sign_args->szVerifyKeyFile, 259);
  ASSERT_TRUE(UseCopies(*m_copies, m_words, m_error)) << m_error;
  EXPECT_NE(PathOfBank(0), file);
  EXPECT_EQ(ReadWholeFile(PathOfBank(0)), ReadWholeFile(file));
  EXPECT_EQ(PathOfBank(1), PathOfBank(0));
  EXPECT_EQ(m_words.sign_args->szFwFile, PathOfBank(0));
  EXPECT_EQ(ReadWholeFile(m_words.sign_args->szVerifyKeyFile), "key");
  EXPECT_STREQ(m_words.sign_args->szSubCertFile, "");
}

TEST_F(UseCopiesOf, AFileThatHasOtherBanksThanItWasJudgedWithIsRefused) {
  const std::string file = GivenFirmware(m_scratch / "fw.bin", 70000);
  GivenBank(0, 0, file);
  EXPECT_FALSE(UseCopies(*m_copies, m_words, m_error));
  EXPECT_THAT(m_error, HasSubstr("fw.bin changed its size"));
}

}  // namespace
}  // namespace line
