// SPDX-License-Identifier: MIT
//
// What is said when this process may open too few files.
#include <sys/resource.h>

#include <string>

#include "line/supervise/unnamed_file.h"
#include "line/supervise/worker_process.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace line {
namespace {

using testing::EndsWith;

class FewFiles : public testing::Test {
 protected:
  FewFiles() {
    getrlimit(RLIMIT_NOFILE, &m_before);
    rlimit few = m_before;
    few.rlim_cur = 14;
    EXPECT_EQ(setrlimit(RLIMIT_NOFILE, &few), 0);
  }
  ~FewFiles() override { setrlimit(RLIMIT_NOFILE, &m_before); }

  std::string m_error;

 private:
  rlimit m_before = {};
};

TEST_F(FewFiles, AFileWithoutANameSaysWhichLimitItIs) {
  EXPECT_EQ(OpenUnnamedFile(m_error), -1);
  EXPECT_EQ(m_error,
            "No file can be made in /tmp: Too many open files; allow more open files (ulimit -n).");
}

TEST_F(FewFiles, AWorkerSaysWhichLimitItIs) {
  WorkerProcess worker;
  EXPECT_FALSE(worker.Start(1, -1, m_error));
  EXPECT_THAT(m_error, EndsWith("Too many open files; allow more open files (ulimit -n)."));
}

}  // namespace
}  // namespace line
