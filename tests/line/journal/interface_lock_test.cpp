// SPDX-License-Identifier: MIT
#include "line/journal/interface_lock.h"

#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <utility>

#include "support/files.h"
#include "support/scratch_dir.h"
#include "support/unprivileged.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace line {
namespace {

using testing::HasSubstr;
using Answer = InterfaceLock::Answer;

class InterfaceLockOf : public testing::Test {
 protected:
  InterfaceLockOf() { setenv("ZVISP_LINE_LOCK_DIR", (m_scratch / "locks").c_str(), 1); }
  ~InterfaceLockOf() override { unsetenv("ZVISP_LINE_LOCK_DIR"); }

  Answer Take(InterfaceLock& lock, InterfaceUse use) {
    return lock.Take(use, "the run of unit A", m_reason);
  }

  ScratchDir m_scratch;
  std::string m_reason;
};

TEST_F(InterfaceLockOf, OneInterfaceKeepsOthersOffItAndNobodyElse) {
  InterfaceLock first;
  InterfaceLock second;
  ASSERT_EQ(Take(first, {3, false}), Answer::kTaken);
  EXPECT_EQ(Take(second, {3, false}), Answer::kInUse);
  EXPECT_THAT(m_reason, HasSubstr("Interface 3 is in use by the run of unit A"));
  EXPECT_EQ(Take(second, {4, false}), Answer::kTaken);
}

TEST_F(InterfaceLockOf, ARunThatNeedsTheHostAloneAndAnyOtherExcludeEachOther) {
  for (const InterfaceUse alone : {InterfaceUse{0, false}, InterfaceUse{5, true}}) {
    InterfaceLock other;
    InterfaceLock lock;
    ASSERT_EQ(Take(other, {3, false}), Answer::kTaken);
    EXPECT_EQ(Take(lock, alone), Answer::kInUse);
    EXPECT_THAT(m_reason, HasSubstr("interface 3 is in use by the run of unit A"));
    other.Release();
    ASSERT_EQ(Take(lock, alone), Answer::kTaken);
    EXPECT_EQ(Take(other, {3, false}), Answer::kInUse);
    EXPECT_THAT(m_reason, HasSubstr("The whole host is in use by the run of unit A"));
  }
}

TEST_F(InterfaceLockOf, AHolderThatHasEndedIsSaidToHaveLeftAProcess) {
  const pid_t gone = fork();
  if (gone == 0) _exit(0);
  ASSERT_EQ(waitpid(gone, nullptr, 0), gone);
  for (const auto& [process, ended] : {std::pair(gone, true), std::pair(getpid(), false)}) {
    const std::string holder = "process " + std::to_string(process) + " (unit A)";
    InterfaceLock first;
    InterfaceLock second;
    ASSERT_EQ(first.Take({3, false}, holder, m_reason), Answer::kTaken);
    ASSERT_EQ(Take(second, {3, false}), Answer::kInUse);
    const std::string and_left =
        ", which has ended and left a process that may still write to a "
        "display; fuser " +
        (m_scratch / "locks/comm-3") + " names it";
    EXPECT_EQ(m_reason, "Interface 3 is in use by " + holder + (ended ? and_left : ""));
  }
}

TEST_F(InterfaceLockOf, AReleasedInterfaceIsFree) {
  EXPECT_TRUE(IsInterfaceFree(3));
  InterfaceLock lock;
  ASSERT_EQ(Take(lock, {3, true}), Answer::kTaken);
  EXPECT_FALSE(IsInterfaceFree(3));
  EXPECT_TRUE(IsInterfaceFree(4));
  lock.Release();
  EXPECT_TRUE(IsInterfaceFree(3));
  EXPECT_EQ(Take(lock, {3, false}), Answer::kTaken);
}

TEST_F(InterfaceLockOf, AnotherUserMeetsTheSameLocks) {
  SetMode(m_scratch.Path(), 0755);
  {
    InterfaceLock lock;
    ASSERT_EQ(Take(lock, {3, false}), Answer::kTaken);
    EXPECT_EQ(AsOrdinaryUser([&] {
                InterfaceLock other;
                return static_cast<int>(Take(other, {3, false}));
              }),
              static_cast<int>(Answer::kInUse));
  }
  EXPECT_EQ(AsOrdinaryUser([&] {
              InterfaceLock other;
              return static_cast<int>(Take(other, {3, false}));
            }),
            static_cast<int>(Answer::kTaken));
}

TEST_F(InterfaceLockOf, LinksThatSomebodyMadeAreNotFollowed) {
  const std::string other = GivenFile(m_scratch / "other", "theirs");
  GivenDirectory(m_scratch / "locks");
  InterfaceLock lock;
  for (int (*const make)(const char*, const char*) : {symlink, link}) {
    ASSERT_EQ(make(other.c_str(), (m_scratch / "locks/comm-3").c_str()), 0);
    EXPECT_EQ(Take(lock, {3, false}), Answer::kNotAvailable);
    EXPECT_EQ(ReadWholeFile(other), "theirs");
    ASSERT_EQ(unlink((m_scratch / "locks/comm-3").c_str()), 0);
  }
  GivenDirectory(m_scratch / "elsewhere");
  ASSERT_EQ(rename((m_scratch / "locks").c_str(), (m_scratch / "real").c_str()), 0);
  ASSERT_EQ(symlink((m_scratch / "elsewhere").c_str(), (m_scratch / "locks").c_str()), 0);
  EXPECT_EQ(Take(lock, {3, false}), Answer::kNotAvailable);
  EXPECT_FALSE(FileExists(m_scratch / "elsewhere/comm-all"));
}

TEST_F(InterfaceLockOf, ADirectoryThatCannotBeUsedIsNotAvailable) {
  mkdir((m_scratch / "locks").c_str(), 0700);
  InterfaceLock lock;
  mkdir((m_scratch / "locks/comm-3").c_str(), 0700);
  EXPECT_EQ(Take(lock, {3, false}), Answer::kNotAvailable);
  EXPECT_THAT(m_reason, HasSubstr("locks/comm-3 cannot be opened"));
}

}  // namespace
}  // namespace line
