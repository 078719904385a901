// SPDX-License-Identifier: MIT
#include "app/standard_streams.h"

#include <fcntl.h>
#include <unistd.h>

#include <cstdio>
#include <string>

#include "support/files.h"
#include "support/scratch_dir.h"

#include <gtest/gtest.h>

using namespace zvisp;

namespace {

// What the process of a test ends with.
enum Outcome { kGood = 0, kBad = 3 };

int NextDescriptor() {
  const int descriptor = open("/dev/null", O_RDONLY);
  close(descriptor);
  return descriptor;
}

[[noreturn]] void OpenAFileWithoutStandardStreams() {
  for (int stream = 0; stream <= 2; ++stream) {
    close(stream);
  }
  PrepareStandardStreams();
  for (int stream = 0; stream <= 2; ++stream) {
    if ((fcntl(stream, F_GETFL) & O_ACCMODE) != O_RDWR) _exit(kBad);
  }
  _exit(NextDescriptor() > 2 ? kGood : kBad);
}

[[noreturn]] void CountDescriptors() {
  const int before = NextDescriptor();
  PrepareStandardStreams();
  _exit(NextDescriptor() == before ? kGood : kBad);
}

[[noreturn]] void PrintAndEndAtOnce(const std::string& path) {
  dup2(open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600), STDOUT_FILENO);
  PrepareStandardStreams();
  std::printf("whole line\npart of a line");
  _exit(kGood);
}

TEST(StandardStreamsDeathTest, AFileNeverGetsTheNumberOfAStreamThatTheCallerClosed) {
  EXPECT_EXIT(OpenAFileWithoutStandardStreams(), testing::ExitedWithCode(kGood), "");
}

TEST(StandardStreamsDeathTest, NothingStaysOpenWhenAllStreamsAreThere) {
  EXPECT_EXIT(CountDescriptors(), testing::ExitedWithCode(kGood), "");
}

TEST(StandardStreamsDeathTest, AWholeLineIsSeenEvenWhenTheProcessIsCutOff) {
  const ScratchDir scratch;
  EXPECT_EXIT(PrintAndEndAtOnce(scratch / "out"), testing::ExitedWithCode(kGood), "");
  EXPECT_EQ(ReadWholeFile(scratch / "out"), "whole line\n");
}

}  // namespace
