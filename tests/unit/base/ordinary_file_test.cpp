// SPDX-License-Identifier: MIT
#include "base/ordinary_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <string>

#include "support/files.h"
#include "support/scratch_dir.h"

#include <gtest/gtest.h>

using namespace zvisp;

namespace {

bool Opens(const std::string& path, const char* mode) {
  std::FILE* const file = OpenOrdinaryFile(path.c_str(), mode);
  if (file != nullptr) std::fclose(file);
  return file != nullptr;
}

// A descriptor that is left open raises it.
int LowestFreeDescriptor() {
  const int descriptor = dup(STDERR_FILENO);
  close(descriptor);
  return descriptor;
}

TEST(OrdinaryFile, IsReadFromItsStart) {
  const ScratchDir scratch;
  std::FILE* const file = OpenOrdinaryFile(GivenFile(scratch / "a", "text").c_str(), "r");
  ASSERT_NE(file, nullptr);
  EXPECT_EQ(std::fgetc(file), 't');
  EXPECT_EQ(fcntl(fileno(file), F_GETFD), FD_CLOEXEC);
  std::fclose(file);
  EXPECT_EQ(ReadWholeFile(scratch / "a"), "text");
}

TEST(OrdinaryFile, IsWrittenAnewOrMadeWithTheModeOfTheMask) {
  const ScratchDir scratch;
  GivenFile(scratch / "a", "text");
  for (const char* const name : {"a", "new"}) {
    const mode_t mask = umask(027);
    std::FILE* const file = OpenOrdinaryFile((scratch / name).c_str(), "w");
    umask(mask);
    ASSERT_NE(file, nullptr) << name;
    std::fputs("x", file);
    std::fclose(file);
    EXPECT_EQ(ReadWholeFile(scratch / name), "x") << name;
  }
  struct stat status = {};
  ASSERT_EQ(stat((scratch / "new").c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 0777, 0640u);
}

TEST(OrdinaryFile, MayBeReachedThroughALink) {
  const ScratchDir scratch;
  GivenFile(scratch / "a", "text");
  ASSERT_EQ(symlink("a", (scratch / "link").c_str()), 0);
  EXPECT_TRUE(Opens(scratch / "link", "r"));
}

TEST(OrdinaryFile, IsNothingElseAndNothingIsWaitedForOrLeftOpen) {
  const ScratchDir scratch;
  const std::string fifo = scratch / "fifo";
  ASSERT_EQ(mkfifo(fifo.c_str(), 0600), 0);
  const int lowest = LowestFreeDescriptor();
  for (const char* const mode : {"r", "w"}) {
    for (const std::string& path : {fifo, scratch.Path(), std::string("/dev/null"),
                                    scratch / "missing/file", std::string()}) {
      EXPECT_FALSE(Opens(path, mode)) << path << mode;
    }
  }
  EXPECT_FALSE(Opens(scratch / "missing", "r"));
  EXPECT_EQ(LowestFreeDescriptor(), lowest);
}

// With a reader, opening for writing succeeds at once, and only the look at the file refuses it.
TEST(OrdinaryFile, IsNoFifoThatHasAReader) {
  const ScratchDir scratch;
  const std::string fifo = scratch / "fifo";
  ASSERT_EQ(mkfifo(fifo.c_str(), 0600), 0);
  const int reader = open(fifo.c_str(), O_RDONLY | O_NONBLOCK);
  ASSERT_GE(reader, 0);
  EXPECT_FALSE(Opens(fifo, "w"));
  close(reader);
}

}  // namespace
