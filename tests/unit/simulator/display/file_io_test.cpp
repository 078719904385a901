// SPDX-License-Identifier: MIT
#include "display/file_io.h"

#include <fcntl.h>
#include <sys/stat.h>

#include "support/files.h"
#include "support/scratch_dir.h"

#include <gtest/gtest.h>

namespace {

using simulator::ReadResult;

TEST(FileIo, AHandleClosesItsFileAndHandsItOnWhole) {
  ScratchDir scratch;
  int number = -1;
  {
    simulator::FileHandle file = simulator::OpenFile(scratch / "a", O_RDWR | O_CREAT);
    number = file.Get();
    simulator::FileHandle owner = std::move(file);
    EXPECT_EQ(owner.Get(), number);
    EXPECT_NE(fcntl(number, F_GETFD), -1);
  }
  EXPECT_EQ(fcntl(number, F_GETFD), -1);
}

TEST(FileIo, APipeWithoutAReaderIsNotWaitedFor) {
  ScratchDir scratch;
  ASSERT_EQ(mkfifo((scratch / "pipe").c_str(), 0600), 0);
  EXPECT_FALSE(simulator::OpenFile(scratch / "pipe", O_WRONLY).IsOpen());
}

TEST(FileIo, ASmallFileIsReadWholeOrNotAtAll) {
  ScratchDir scratch;
  GivenFile(scratch / "key", "12345");
  std::string content;
  EXPECT_EQ(simulator::ReadSmallFile(scratch / "key", 5, content), ReadResult::kRead);
  EXPECT_EQ(content, "12345");
  EXPECT_EQ(simulator::ReadSmallFile(scratch / "key", 4, content), ReadResult::kFailed);
  EXPECT_EQ(simulator::ReadSmallFile(scratch / "none", 4, content), ReadResult::kMissing);
  EXPECT_EQ(simulator::ReadSmallFile(scratch.Path(), 4, content), ReadResult::kFailed);
}

TEST(FileIo, AReplacedFileHasTheNewContentAndNothingElseStays) {
  ScratchDir scratch;
  GivenFile(scratch / "state", "a long old content");
  EXPECT_TRUE(simulator::ReplaceFile(scratch / "state", "new"));
  EXPECT_EQ(ReadWholeFile(scratch / "state"), "new");
  EXPECT_FALSE(FileExists(scratch / "state.new"));
  EXPECT_FALSE(simulator::ReplaceFile(scratch / "none/state", "new"));
}

TEST(FileIo, DirectoriesAreMadeWithThoseAbove) {
  ScratchDir scratch;
  EXPECT_TRUE(simulator::MakeDirectories(scratch / "a/b/c"));
  EXPECT_TRUE(simulator::MakeDirectories(scratch / "a/b/c"));
  EXPECT_TRUE(simulator::MakeDirectories("/"));
  GivenFile(scratch / "file", "");
  EXPECT_FALSE(simulator::MakeDirectories(scratch / "file"));
  EXPECT_FALSE(simulator::MakeDirectories(scratch / "file/below"));
}

TEST(FileIo, AFullDeviceIsReported) {
  const simulator::FileHandle full = simulator::OpenFile("/dev/full", O_WRONLY);
  if (!full.IsOpen()) GTEST_SKIP() << "this system has no /dev/full";
  EXPECT_FALSE(simulator::WriteText(full.Get(), "x"));
  EXPECT_FALSE(simulator::WriteAt(full.Get(), "x", 1, 0));
}

}  // namespace
