// SPDX-License-Identifier: MIT
//
// Hooks as an operator writes them: shell scripts next to a job.
#include "line/supervise/hook_process.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <string>
#include <thread>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "line/event/session.h"
#include "support/files.h"
#include "support/scratch_dir.h"

namespace line {
namespace {

using testing::AllOf;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;

class Hook : public testing::Test {
 protected:
  void GivenScript(const std::string& text, mode_t mode = 0755) const {
    ASSERT_EQ(chmod(GivenFile(m_directory / "hook", text).c_str(), mode), 0);
  }
  bool Start(const std::vector<std::string>& words, const std::string& input = "",
             std::uint64_t timeout_ms = kLongMs) {
    return m_hook.Start(words, m_directory.Path(), input, timeout_ms, m_error);
  }
  void WaitForEnd() {
    while (m_hook.IsRunning()) {
      std::this_thread::sleep_for(std::chrono::milliseconds(2));
      m_hook.OnTick(MonotonicMs());
      m_hook.OnProcessEnded();
    }
  }
  // Runs ./hook, a shell script of these lines, to its end.
  const std::string& Run(const std::string& lines, const std::string& input = "",
                         std::uint64_t timeout_ms = kLongMs) {
    GivenScript("#!/bin/sh\n" + lines + "\n");
    EXPECT_TRUE(Start({"./hook", "ZP1"}, input, timeout_ms)) << m_error;
    WaitForEnd();
    return m_hook.Complaint();
  }
  // Waits for a file that a script makes.
  void WaitFor(const std::string& name) const {
    for (int i = 0; i < 5000 && !FileExists(m_directory / name); ++i) {
      std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    ASSERT_TRUE(FileExists(m_directory / name));
  }

  static constexpr std::uint64_t kLongMs = 60000;
  ScratchDir m_directory;
  HookProcess m_hook;
  std::string m_error;
};

// How long a part of a test takes.
class StopWatch {
 public:
  std::uint64_t Ms() const { return MonotonicMs() - m_started_ms; }

 private:
  std::uint64_t m_started_ms = MonotonicMs();
};

TEST_F(Hook, ThatEndsWithStatusZeroIsNotComplainedAbout) {
  EXPECT_THAT(Run("echo fine; exit 0"), IsEmpty());
}

TEST_F(Hook, GetsItsWordsItsInputAndItsDirectory) {
  EXPECT_THAT(Run("cat >input; echo \"$1\" >word; pwd -P >where", "{\"unit\":\"ZP1\"}\n"),
              IsEmpty());
  EXPECT_EQ(ReadWholeFile(m_directory / "input"), "{\"unit\":\"ZP1\"}\n");
  EXPECT_EQ(ReadWholeFile(m_directory / "word"), "ZP1\n");
  EXPECT_EQ(ReadWholeFile(m_directory / "where"), m_directory.Path() + "\n");
}

TEST_F(Hook, ThatSaysNoIsQuotedWithItsFirstLine) {
  EXPECT_EQ(Run("echo; echo 'serial is unknown' >&2; echo more; exit 1"),
            "./hook ended with exit status 1: serial is unknown");
}

TEST_F(Hook, ThatSaysNothingIsNamedAlone) {
  EXPECT_EQ(Run("exit 3"), "./hook ended with exit status 3");
}

TEST_F(Hook, WhatItSaysIsFitForAScreenAndShort) {
  EXPECT_EQ(Run("printf '\\033[31mred\\007 \\377'; exit 1"),
            "./hook ended with exit status 1: red \xEF\xBF\xBD");
  HookProcess other;
  ASSERT_TRUE(other.Start({"sh", "-c", "printf '%0500d' 7; exit 1"}, "", "", kLongMs, m_error));
  while (other.IsRunning()) {
    other.OnProcessEnded();
  }
  EXPECT_EQ(other.Complaint(), "sh ended with exit status 1: " + std::string(200, '0'));
}

TEST_F(Hook, ThatIsKilledIsReportedWithTheSignal) {
  EXPECT_THAT(Run("echo dying; kill -KILL $$"),
              AllOf(HasSubstr("./hook was ended by signal 9 (Killed"), EndsWith("): dying")));
}

TEST_F(Hook, ATickThatIsOlderThanItsStartEndsNothing) {
  GivenScript("#!/bin/sh\nexit 0\n");
  const std::uint64_t before = MonotonicMs();
  std::this_thread::sleep_for(std::chrono::milliseconds(2));
  ASSERT_TRUE(Start({"./hook"})) << m_error;
  m_hook.OnTick(before);
  WaitForEnd();
  EXPECT_EQ(m_hook.Complaint(), "");
}

TEST_F(Hook, ThatHangsIsEndedWhenItsTimeIsOver) {
  const StopWatch watch;
  EXPECT_EQ(Run("echo waiting; sleep 100", "", 300), "./hook did not end within 300 ms: waiting");
  EXPECT_GE(watch.Ms(), 300u);
  EXPECT_LT(watch.Ms(), 2000u);
}

TEST_F(Hook, ThatHangsAndThenSaysYesIsNotBelieved) {
  EXPECT_EQ(Run("trap 'exit 0' TERM; sleep 100 & wait", "", 1000), "./hook did not end within 1 s");
}

TEST_F(Hook, ThatIsStoppedIsEndedWhenItsTimeIsOver) {
  const StopWatch watch;
  EXPECT_EQ(Run("kill -STOP $$", "", 300), "./hook did not end within 300 ms");
  EXPECT_LT(watch.Ms(), 2000u);
}

TEST_F(Hook, ThatIgnoresTheEndIsKilledTwoSecondsLater) {
  const StopWatch watch;
  EXPECT_EQ(Run("trap '' TERM; echo stubborn; while :; do sleep 0.05; done", "", 300),
            "./hook did not end within 300 ms: stubborn");
  EXPECT_GE(watch.Ms(), 2300u);
  EXPECT_LT(watch.Ms(), 10000u);
}

TEST_F(Hook, ThatIsInterruptedSaysSo) {
  GivenScript("#!/bin/sh\n: >started\nsleep 100\n");
  ASSERT_TRUE(Start({"./hook"})) << m_error;
  WaitFor("started");
  m_hook.Interrupt(MonotonicMs());
  WaitForEnd();
  EXPECT_EQ(m_hook.Complaint(), "./hook was interrupted");
}

TEST_F(Hook, WithoutATimeOutRunsAsLongAsItTakes) {
  EXPECT_THAT(Run("sleep 0.3", "", 0), IsEmpty());
}

TEST_F(Hook, ThatIsMissingCannotBeStarted) {
  EXPECT_FALSE(Start({"./missing"}));
  EXPECT_EQ(m_error,
            "The hook ./missing cannot be started: No such file or directory; write ./NAME for a "
            "file next to the job, and check the interpreter in its first line.");
  EXPECT_FALSE(m_hook.IsRunning());
}

TEST_F(Hook, ThatIsNotExecutableCannotBeStarted) {
  GivenScript("#!/bin/sh\n", 0644);
  EXPECT_FALSE(Start({"./hook"}));
  EXPECT_EQ(m_error,
            "The hook ./hook cannot be started: Permission denied; it must be a file that may be "
            "executed (chmod +x).");
}

TEST_F(Hook, ThatIsADirectoryCannotBeStarted) {
  GivenDirectory(m_directory / "hook");
  EXPECT_FALSE(Start({"./hook"}));
  EXPECT_THAT(m_error, HasSubstr("it must be a file that may be executed"));
}

TEST_F(Hook, WithoutAnInterpreterCannotBeStarted) {
  GivenScript("exit 0\n");
  EXPECT_FALSE(Start({"./hook"}));
  EXPECT_THAT(m_error, HasSubstr("begin a script with a line such as #!/bin/sh."));
}

TEST_F(Hook, WithoutASlashIsFoundInPathAndNotNextToTheJob) {
  GivenScript("#!/bin/sh\n");
  EXPECT_FALSE(Start({"hook"}));
  HookProcess other;
  EXPECT_TRUE(other.Start({"true"}, m_directory.Path(), "", kLongMs, m_error)) << m_error;
}

TEST_F(Hook, WithAFullPathIsTakenFromThere) {
  GivenScript("#!/bin/sh\necho no; exit 1\n");
  ASSERT_TRUE(m_hook.Start({m_directory / "hook"}, "/", "", kLongMs, m_error)) << m_error;
  WaitForEnd();
  EXPECT_EQ(m_hook.Complaint(), m_directory / "hook" + " ended with exit status 1: no");
}

// The limit of a file's size shows that no byte of it comes to a disk.
TEST_F(Hook, ThatPrintsAGigabyteIsNeitherStoppedNorKeptOnTheDisk) {
  EXPECT_EQ(Run("ulimit -f 64; echo first; head -c 1073741824 /dev/zero || exit 9; exit 1"),
            "./hook ended with exit status 1: first");
}

TEST_F(Hook, NeedNotReadItsInput) {
  EXPECT_THAT(Run("exit 0", std::string(8 * 1024 * 1024, 'x')), IsEmpty());
}

TEST_F(Hook, GetsAHugeInputWhole) {
  EXPECT_THAT(Run("test $(wc -c) -eq 8388608", std::string(8 * 1024 * 1024, 'x')), IsEmpty());
}

// The child's end of a FIFO is closed when the child is gone.
TEST_F(Hook, LeavesNoProcessOfItsGroup) {
  const StopWatch watch;
  ASSERT_EQ(mkfifo((m_directory / "fifo").c_str(), 0600), 0);
  const int read_end = open((m_directory / "fifo").c_str(), O_RDONLY | O_NONBLOCK);
  EXPECT_THAT(Run("sleep 100 >fifo & : >fifo; exit 0"), IsEmpty());
  pollfd entry = {read_end, POLLIN, 0};
  EXPECT_EQ(poll(&entry, 1, 10000), 1);
  EXPECT_EQ(entry.revents, POLLHUP);
  EXPECT_LT(watch.Ms(), 20000u);
  close(read_end);
}

#ifdef __linux__
// setsid and /proc belong to Linux.
TEST_F(Hook, IsOverWhenOnlyAChildOfAnotherSessionHoldsItsOutput) {
  const StopWatch watch;
  EXPECT_EQ(Run("setsid sh -c 'echo $$ >child; sleep 100' &\n"
                "while [ ! -s child ]; do sleep 0.01; done; echo reason; exit 1"),
            "./hook ended with exit status 1: reason");
  EXPECT_LT(watch.Ms(), 5000u);
  EXPECT_EQ(kill(-std::stoi(ReadWholeFile(m_directory / "child")), SIGKILL), 0);
}

TEST_F(Hook, IsOverWhenAChildOfAnotherSessionPrintsWithoutEnd) {
  const StopWatch watch;
  EXPECT_EQ(Run("setsid sh -c 'echo $$ >child; exec yes' &\n"
                "while [ ! -s child ]; do sleep 0.01; done; sleep 0.1; exit 1"),
            "./hook ended with exit status 1: y");
  EXPECT_LT(watch.Ms(), 5000u);
}

TEST_F(Hook, StartsWithDefaultSignalsAndWithoutOurDescriptors) {
  // The C library keeps signals 32 and up for itself.
  sigset_t blocked = {};
  sigset_t before = {};
  sigemptyset(&blocked);
  sigaddset(&blocked, SIGTERM);
  sigprocmask(SIG_BLOCK, &blocked, &before);
  signal(SIGPIPE, SIG_IGN);
  const std::string complaint =
      Run("grep -E 'SigBlk|SigIgn' /proc/$$/status | grep -Ev '[08]0000000$'\n"
          "ls /proc/$$/fd | grep -Ex '1[6-9]|[2-9].'; exit 1");
  signal(SIGPIPE, SIG_DFL);
  sigprocmask(SIG_SETMASK, &before, nullptr);
  EXPECT_EQ(complaint, "./hook ended with exit status 1");
}
#endif

TEST_F(Hook, ThatNobodyWaitsForIsEndedWithItsObject) {
  {
    HookProcess other;
    GivenScript("#!/bin/sh\necho $$ >child\nmv child started\nsleep 100\n");
    ASSERT_TRUE(other.Start({"./hook"}, m_directory.Path(), "", kLongMs, m_error)) << m_error;
    WaitFor("started");
  }
  EXPECT_EQ(kill(std::stoi(ReadWholeFile(m_directory / "started")), 0), -1);
}

}  // namespace
}  // namespace line
