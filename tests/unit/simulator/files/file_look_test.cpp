// SPDX-License-Identifier: MIT
#include "files/file_look.h"

#include <fcntl.h>
#include <unistd.h>

#include <functional>

#include "support/files.h"
#include "support/scratch_dir.h"

#include <gtest/gtest.h>

namespace {

struct stat LookAtFile(const std::string& path) {
  struct stat look = {};
  EXPECT_TRUE(simulator::LookAt(simulator::OpenFile(path, O_RDONLY), look)) << path;
  return look;
}

// Changes a file until the system's clock has ticked, so that the change can be seen.
void ChangeLater(const std::string& path, const std::function<void()>& change) {
  const struct stat before = LookAtFile(path);
  for (int i = 0; i < 1000 && simulator::IsUnchanged(before, LookAtFile(path)); ++i) {
    usleep(1000);
    change();
  }
}

TEST(FileLook, AFileIsTheSameByAllItsNames) {
  ScratchDir scratch;
  const struct stat look = LookAtFile(GivenFile(scratch / "a", "a"));
  GivenFile(scratch / "b", "a");
  ASSERT_EQ(symlink("a", (scratch / "soft").c_str()), 0);
  ASSERT_EQ(link((scratch / "a").c_str(), (scratch / "hard").c_str()), 0);
  for (const char* const name : {"a", "soft", "hard"}) {
    EXPECT_TRUE(simulator::IsSameFile(look, LookAtFile(scratch / name))) << name;
    EXPECT_TRUE(simulator::IsFileAt(scratch / name, look)) << name;
  }
  EXPECT_FALSE(simulator::IsSameFile(look, LookAtFile(scratch / "b")));
  EXPECT_FALSE(simulator::IsFileAt(scratch / "b", look));
  EXPECT_FALSE(simulator::IsFileAt(scratch / "none", look));
}

TEST(FileLook, OnlyAPlainFileIsOrdinary) {
  ScratchDir scratch;
  EXPECT_TRUE(simulator::IsOrdinaryFile(LookAtFile(GivenFile(scratch / "a", ""))));
  EXPECT_FALSE(simulator::IsOrdinaryFile(LookAtFile(scratch.Path())));
  EXPECT_FALSE(simulator::IsOrdinaryFile(LookAtFile("/dev/null")));
}

TEST(FileLook, AFileThatNobodyTouchesIsUnchanged) {
  ScratchDir scratch;
  GivenFile(scratch / "a", "a");
  const struct stat before = LookAtFile(scratch / "a");
  EXPECT_EQ(ReadWholeFile(scratch / "a"), "a");
  EXPECT_TRUE(simulator::IsUnchanged(before, LookAtFile(scratch / "a")));
}

TEST(FileLook, EveryChangeIsSeen) {
  ScratchDir scratch;
  const std::string path = GivenFile(scratch / "a", "a");
  const timespec kept[] = {{1, 0}, {1, 0}};
  const std::function<void()> kChanges[] = {
      [&] { GivenFile(path, "b"); },
      [&] { GivenFile(path, "longer"); },
      [&] { chmod(path.c_str(), 0600); },
      // The time of the last change cannot be set back, unlike that of the last writing.
      [&] {
        GivenFile(path, "c");
        utimensat(AT_FDCWD, path.c_str(), kept, 0);
      },
  };
  for (const auto& change : kChanges) {
    const struct stat before = LookAtFile(path);
    ChangeLater(path, change);
    EXPECT_FALSE(simulator::IsUnchanged(before, LookAtFile(path)));
  }
  const struct stat before = LookAtFile(path);
  GivenFile(scratch / "other", "c");
  ASSERT_EQ(rename((scratch / "other").c_str(), path.c_str()), 0);
  EXPECT_FALSE(simulator::IsUnchanged(before, LookAtFile(path)));
}

TEST(FileLook, ADescriptorThatIsNotOpenCannotBeLookedAt) {
  struct stat look = {};
  EXPECT_FALSE(simulator::LookAt(simulator::FileHandle(), look));
}

}  // namespace
