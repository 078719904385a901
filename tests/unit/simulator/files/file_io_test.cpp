// SPDX-License-Identifier: MIT
#include "files/file_io.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

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
  EXPECT_TRUE(simulator::ReplaceFile(scratch / "state", scratch / "state.new", "new"));
  EXPECT_EQ(ReadWholeFile(scratch / "state"), "new");
  EXPECT_FALSE(FileExists(scratch / "state.new"));
  EXPECT_FALSE(simulator::ReplaceFile(scratch / "none/state", scratch / "none/new", "new"));
}

TEST(FileIo, AReplacedFileKeepsItsPermissions) {
  ScratchDir scratch;
  GivenFile(scratch / "state", "old");
  ASSERT_EQ(chmod((scratch / "state").c_str(), 0604), 0);
  EXPECT_TRUE(simulator::ReplaceFile(scratch / "state", scratch / "state.new", "new"));
  struct stat look = {};
  ASSERT_EQ(stat((scratch / "state").c_str(), &look), 0);
  EXPECT_EQ(look.st_mode & 07777u, 0604u);
}

TEST(FileIo, WhatHasTheNameOfTheNewFileIsRemovedAndNeverWrittenTo) {
  ScratchDir scratch;
  GivenFile(scratch / "victim", "victim");
  GivenFile(scratch / "left", "of a killed run");
  ASSERT_EQ(symlink("victim", (scratch / "soft").c_str()), 0);
  ASSERT_EQ(link((scratch / "victim").c_str(), (scratch / "hard").c_str()), 0);
  for (const char* const fresh : {"soft", "hard", "left"}) {
    EXPECT_TRUE(simulator::ReplaceFile(scratch / "state", scratch / fresh, "new")) << fresh;
    EXPECT_FALSE(FileExists(scratch / fresh)) << fresh;
  }
  EXPECT_EQ(ReadWholeFile(scratch / "victim"), "victim");
  EXPECT_EQ(ReadWholeFile(scratch / "state"), "new");
}

TEST(FileIo, AFailedReplacementLeavesTheOldContentAndNoNewFile) {
  ScratchDir scratch;
  GivenDirectory(scratch / "state");
  errno = 0;
  EXPECT_FALSE(simulator::ReplaceFile(scratch / "state", scratch / "state.new", "new"));
  EXPECT_EQ(errno, EISDIR);
  EXPECT_FALSE(FileExists(scratch / "state.new"));
}

TEST(FileIo, AFileOfThePlugInIsNotOpenedThroughALink) {
  ScratchDir scratch;
  GivenFile(scratch / "victim", "victim");
  ASSERT_EQ(symlink("victim", (scratch / "link").c_str()), 0);
  ASSERT_EQ(symlink("nothing", (scratch / "open").c_str()), 0);
  EXPECT_TRUE(simulator::OpenFile(scratch / "link", O_RDWR).IsOpen());
  for (const char* const name : {"link", "open"}) {
    errno = 0;
    EXPECT_FALSE(simulator::OpenWithoutLink(scratch / name, O_RDWR | O_CREAT).IsOpen());
    EXPECT_EQ(errno, ELOOP);
  }
  EXPECT_FALSE(FileExists(scratch / "nothing"));
  EXPECT_TRUE(simulator::OpenWithoutLink(scratch / "victim", O_RDWR).IsOpen());
}

TEST(FileIo, ClosingTellsOnceThatTheFileIsWhole) {
  ScratchDir scratch;
  simulator::FileHandle file = simulator::OpenFile(scratch / "a", O_WRONLY | O_CREAT);
  EXPECT_TRUE(file.Close());
  EXPECT_FALSE(file.IsOpen());
  EXPECT_FALSE(file.Close());
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
