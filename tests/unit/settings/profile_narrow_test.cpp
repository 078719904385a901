// SPDX-License-Identifier: MIT
#include <signal.h>
#include <sys/time.h>

#include <functional>
#include <string>

#include "settings/profile.h"
#include "support/profile_file.h"
#include "support/unprivileged.h"

#include <gtest/gtest.h>

using namespace zvisp;

namespace {

std::string ReadA(const ProfileFile& file, const char* key, unsigned int expected_length) {
  char output[kProfileValueCapacity] = "untouched";
  EXPECT_EQ(CpZvGetPrivateProfileStringA("S", key, "default", output, 1, file.Path().c_str()),
            expected_length);
  return output;
}

int ReadIntA(const ProfileFile& file, const char* key) {
  return CpZvGetPrivateProfileIntA("S", key, 77, file.Path().c_str());
}

// A signal ends the child when the work has not come back in a while.
int ReturnsInTime(const std::function<int()>& work) {
  return InChild([&] {
    const itimerval soon = {{0, 0}, {0, 200'000}};
    setitimer(ITIMER_REAL, &soon, nullptr);
    return work();
  });
}

TEST(NarrowProfile, ReadsBytesAsTheyAre) {
  const ProfileFile file("[S]\nk=a\xFF=b\xC3\nj=2\n");
  EXPECT_EQ(ReadA(file, "k", 2), "b\xC3");
  EXPECT_EQ(ReadA(file, "j", 1), "2");
  EXPECT_EQ(ReadA(file, "missing", 0), "default");
}

TEST(NarrowProfile, NamesAndValuesKeepTheirBlanks) {
  const ProfileFile file("[S]\nk = 1 \n");
  EXPECT_EQ(ReadA(file, "k ", 3), " 1 ");
  EXPECT_EQ(ReadA(file, "k", 0), "default");
}

TEST(NarrowProfile, TheOutputStaysUntouchedWhenTheSectionEndsFirst) {
  EXPECT_EQ(ReadA(ProfileFile("[S]\n\nk=1\n"), "k", 0), "untouched");
}

TEST(NarrowProfile, AMissingFileIsReported) {
  const ProfileFile file;
  const std::string output = Printed([&] {
    EXPECT_EQ(ReadA(file, "k", 0), "untouched");
    EXPECT_EQ(ReadIntA(file, "k"), 77);
  });
  EXPECT_EQ(output, "Error \nError \n");
}

TEST(NarrowProfile, ReadsNumbers) {
  const ProfileFile file("[S]\na=0x10\nb=010\nc=-3\nd=x\ne=\nf=4294967295\n");
  const struct {
    const char* key;
    int expected;
  } kCases[] = {
      // clang-format off
      {"a", 16},
      {"b", 8},
      {"c", -3},
      {"d", 0},
      {"e", 77},
      {"f", -1},
      {"g", 77},
      // clang-format on
  };
  for (const auto& [key, expected] : kCases) {
    EXPECT_EQ(ReadIntA(file, key), expected) << key;
  }
}

TEST(NarrowProfile, WritesBytesAsTheyAre) {
  const ProfileFile file("[T]\nx=\xFF\n[S]\nk=1=2\n");
  EXPECT_EQ(CpZvWritePrivateProfileStringA("S", "k", "\xC3", file.Path().c_str()), 1);
  EXPECT_EQ(CpZvWritePrivateProfileStringA("T", "y", "5", file.Path().c_str()), 1);
  EXPECT_EQ(file.Content(), "[T]\nx=\xFF\ny=5\n[S]\nk=1=\xC3\n");
}

TEST(NarrowProfile, AFileThatCannotBeWrittenIsReported) {
  const ProfileFile file;
  GivenDirectory(file.Path());
  const std::string output = Printed(
      [&] { EXPECT_EQ(CpZvWritePrivateProfileStringA("S", "k", "5", file.Path().c_str()), 0); });
  EXPECT_EQ(output, "Open file error \n");
}

TEST(NarrowProfile, ALineThatHoldsABlankNeverLetsGo) {
  const ProfileFile header_first("a b\n[S]\nk=1\n");
  const ProfileFile key("[S]\nk= 1\n");
  EXPECT_EQ(ReturnsInTime([&] { return ReadIntA(key, "k"); }), 1);
  EXPECT_EQ(ReturnsInTime([&] { return ReadIntA(header_first, "k"); }), 1000 + SIGALRM);
  EXPECT_EQ(ReturnsInTime(
                [&] { return CpZvWritePrivateProfileStringA("S", "k", "5", key.Path().c_str()); }),
            1000 + SIGALRM);
}

}  // namespace
