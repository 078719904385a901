// SPDX-License-Identifier: MIT
#include "line/worker/passed_files.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/socket.h>
#include <unistd.h>

#include <string>

#include "support/files.h"
#include "support/scratch_dir.h"

#include <gtest/gtest.h>

namespace line {
namespace {

class PassedFiles : public testing::Test {
 protected:
  PassedFiles() { EXPECT_EQ(socketpair(AF_UNIX, SOCK_STREAM, 0, m_ends), 0); }
  ~PassedFiles() override {
    for (const int end : m_ends) {
      close(end);
    }
    for (const int file : m_received) {
      close(file);
    }
  }

  int Opened(const std::string& name) const {
    return open((m_scratch / name).c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
  }
  std::string Receive() {
    char bytes[64];
    const ssize_t got = ReceiveWithFiles(m_ends[1], bytes, sizeof bytes, m_received);
    return {bytes, got > 0 ? static_cast<std::size_t>(got) : 0};
  }

  ScratchDir m_scratch;
  int m_ends[2] = {-1, -1};
  std::vector<int> m_received;
};

TEST_F(PassedFiles, TheLockOfAFileIsSharedUntilTheLastProcessClosesIt) {
  const int file = Opened("lock");
  ASSERT_EQ(flock(file, LOCK_EX | LOCK_NB), 0);
  ASSERT_EQ(SendWithFiles(m_ends[0], "Lock", 4, {file}, 0), 4);
  ASSERT_EQ(Receive(), "Lock");
  ASSERT_EQ(m_received.size(), 1u);
  close(file);
  const int other = Opened("lock");
  EXPECT_NE(flock(other, LOCK_EX | LOCK_NB), 0);
  close(m_received[0]);
  m_received.clear();
  EXPECT_EQ(flock(other, LOCK_EX | LOCK_NB), 0);
  close(other);
}

TEST_F(PassedFiles, ComeInTheirOrderAndAreClosedByExec) {
  const int first = Opened("first");
  const int second = Opened("second");
  ASSERT_EQ(write(second, "2", 1), 1);
  ASSERT_EQ(SendWithFiles(m_ends[0], "x", 1, {first, second}, 0), 1);
  EXPECT_EQ(Receive(), "x");
  ASSERT_EQ(m_received.size(), 2u);
  EXPECT_EQ(lseek(m_received[0], 0, SEEK_END), 0);
  EXPECT_EQ(lseek(m_received[1], 0, SEEK_END), 1);
  for (const int file : m_received) {
    EXPECT_EQ(fcntl(file, F_GETFD), FD_CLOEXEC);
  }
  close(first);
  close(second);
}

TEST_F(PassedFiles, BytesWithoutFilesBringNone) {
  ASSERT_EQ(SendWithFiles(m_ends[0], "plain", 5, {}, 0), 5);
  EXPECT_EQ(Receive(), "plain");
  EXPECT_TRUE(m_received.empty());
}

}  // namespace
}  // namespace line
