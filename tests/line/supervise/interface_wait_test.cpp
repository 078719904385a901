// SPDX-License-Identifier: MIT
#include "line/supervise/interface_wait.h"

#include <cstdlib>

#include "support/scratch_dir.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace line {
namespace {

using testing::HasSubstr;
using State = InterfaceWait::State;

class InterfaceWaitOf : public testing::Test {
 protected:
  InterfaceWaitOf() { setenv("ZVISP_LINE_LOCK_DIR", (m_scratch / "locks").c_str(), 1); }
  ~InterfaceWaitOf() override { unsetenv("ZVISP_LINE_LOCK_DIR"); }

  // Ticks until the time; the answer is what the wait has come to.
  State At(std::uint64_t now_ms) {
    for (; m_now < now_ms; ++m_now) {
      m_wait.OnTick(m_now);
    }
    return m_wait.Now();
  }
  void GivenAHolder() {
    ASSERT_EQ(m_other.Take({3, false}, "somebody", m_reason), InterfaceLock::Answer::kTaken);
  }

  ScratchDir m_scratch;
  InterfaceLock m_other;
  std::string m_reason;
  InterfaceWait m_wait;
  std::uint64_t m_now = 1000;
};

TEST_F(InterfaceWaitOf, AFreeInterfaceIsTakenAtOnceWithBothFilesOfItsLock) {
  m_wait.Begin({3, false}, "me", 0, m_now);
  EXPECT_EQ(m_wait.Now(), State::kTaken);
  EXPECT_EQ(m_wait.Files().size(), 2u);
  EXPECT_FALSE(IsInterfaceFree(3));
  m_wait.Release();
  EXPECT_TRUE(m_wait.Files().empty());
  EXPECT_TRUE(IsInterfaceFree(3));
}

TEST_F(InterfaceWaitOf, AnInterfaceInUseIsRefusedAfterAFewShortTries) {
  GivenAHolder();
  m_wait.Begin({3, false}, "me", 0, m_now);
  EXPECT_EQ(At(1020), State::kWaiting);
  EXPECT_FALSE(m_wait.IsLong());
  EXPECT_EQ(At(1040), State::kInUse);
  EXPECT_THAT(m_wait.Reason(), HasSubstr("Interface 3 is in use by somebody"));
}

TEST_F(InterfaceWaitOf, WhoOnlyAskedForAMomentIsNoReasonToRefuse) {
  GivenAHolder();
  m_wait.Begin({3, false}, "me", 0, m_now);
  EXPECT_EQ(At(1020), State::kWaiting);
  m_other.Release();
  EXPECT_EQ(At(1040), State::kTaken);
}

TEST_F(InterfaceWaitOf, WaitsAsLongAsItMay) {
  GivenAHolder();
  m_wait.Begin({3, false}, "me", 500, m_now);
  EXPECT_EQ(At(1499), State::kWaiting);
  EXPECT_TRUE(m_wait.IsLong());
  EXPECT_EQ(At(1600), State::kInUse);
}

TEST_F(InterfaceWaitOf, TakesTheInterfaceWhenItBecomesFree) {
  GivenAHolder();
  m_wait.Begin({3, false}, "me", 500, m_now);
  EXPECT_EQ(At(1300), State::kWaiting);
  m_other.Release();
  EXPECT_EQ(At(1400), State::kTaken);
}

}  // namespace
}  // namespace line
