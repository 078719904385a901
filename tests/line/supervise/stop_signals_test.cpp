// SPDX-License-Identifier: MIT
//
// Signals are noticed whatever the program that started this one has blocked.
#include "line/supervise/stop_signals.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace line {
namespace {

bool IsBlocked(int signal) {
  sigset_t blocked = {};
  sigprocmask(SIG_SETMASK, nullptr, &blocked);
  return sigismember(&blocked, signal) == 1;
}

TEST(StopSignalsOf, AParentThatBlockedThemAreNoticedAllTheSame) {
  sigset_t ours = {};
  sigset_t before = {};
  sigemptyset(&ours);
  for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGCHLD, SIGUSR1}) {
    sigaddset(&ours, signal);
  }
  sigprocmask(SIG_BLOCK, &ours, &before);
  {
    StopSignals signals;
    EXPECT_FALSE(IsBlocked(SIGCHLD));
    raise(SIGTERM);
    raise(SIGHUP);
    EXPECT_THAT(signals.Take(), testing::ElementsAre(SIGTERM, SIGHUP));
    EXPECT_TRUE(IsBlocked(SIGUSR1));
  }
  EXPECT_TRUE(IsBlocked(SIGTERM));
  sigprocmask(SIG_SETMASK, &before, nullptr);
}

}  // namespace
}  // namespace line
