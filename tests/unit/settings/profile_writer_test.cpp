// SPDX-License-Identifier: MIT
#include <signal.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <string>
#include <vector>

#include "settings/profile.h"
#include "support/profile_file.h"
#include "support/unprivileged.h"

#include <gtest/gtest.h>

namespace {

// Every case writes value "5" for key "a" of section "S".
struct WriteCase {
  std::string before, after;
};

void ExpectWrites(const std::vector<WriteCase>& cases) {
  for (const auto& [before, after] : cases) {
    const ProfileFile file(before);
    EXPECT_EQ(file.Write(L"S", L"a", L"5"), 1) << before;
    EXPECT_EQ(file.Content(), after) << before;
  }
}

TEST(ProfileWriter, ReplacesTheValueOfAKey) {
  ExpectWrites({
      {"[S]\na=1\n", "[S]\na=5\n"},
      {"[S]\na=1", "[S]\na=5\n"},
      {"[S]\na=\n", "[S]\na=5\n"},
      {"[S]\nx=1\na=1\ny=1\n", "[S]\nx=1\na=5\ny=1\n"},
      {"[T]\na=1\n[S]\na=1\n", "[T]\na=1\n[S]\na=5\n"},
      {"[S]\na=1\na=2\n", "[S]\na=5\na=2\n"},
  });
}

TEST(ProfileWriter, AllButTheLastPieceOfAValueStays) {
  ExpectWrites({
      {"[S]\na=1=2\n", "[S]\na=1=5\n"},
      {"[S]\na=x=y=\n", "[S]\na=x=y=5\n"},
  });
}

TEST(ProfileWriter, AKeyWithABlankBeforeEqualsIsAnotherKey) {
  ExpectWrites({
      {"[S]\na = 1\n", "[S]\na = 1\na=5\n"},
      {"[S]\na = 1\n\n[T]\n", "[S]\na = 1\na=5\n\n[T]\n"},
  });
}

TEST(ProfileWriter, ANewKeyGoesBeforeTheLineThatEndsItsSection) {
  ExpectWrites({
      {"[S]\nx=1\n\n[T]\ny=1\n", "[S]\nx=1\na=5\n\n[T]\ny=1\n"},
      {"[S]\nx=1\n[T]\ny=1\n", "[S]\nx=1\na=5\n[T]\ny=1\n"},
      {"[S]\n; note\na=1\n", "[S]\na=5\n; note\na=1\n"},
      {"[S]\n\na=1\n", "[S]\na=5\n\na=1\n"},
  });
}

TEST(ProfileWriter, ANewKeyGoesToTheEndOfTheFileWhenItsSectionRunsThatFar) {
  ExpectWrites({
      {"[S]\n", "[S]\na=5\n"},
      {"[S]\nx=1\n", "[S]\nx=1\na=5\n"},
      {"[T]\n\n[S]\nx=1", "[T]\n\n[S]\nx=1\na=5\n"},
  });
}

TEST(ProfileWriter, ANewSectionGoesToTheEndOfTheFile) {
  ExpectWrites({
      {"", "[S]\na=5\n"},
      {"[T]\na=1\n", "[T]\na=1\n[S]\na=5\n"},
      {"[s]\na=1\n", "[s]\na=1\n[S]\na=5\n"},
      {"[ S ]\na=1\n\n", "[ S ]\na=1\n\n[S]\na=5\n"},
  });
}

TEST(ProfileWriter, EveryLineLosesTheBlanksAtBothEnds) {
  ExpectWrites({
      {"  [S]  \n  x = 1  \n  a=1  \n  ; note  \n   \n", "[S]\nx = 1\na=5\n; note\n\n"},
      {"\t[T]\t\n", "\t[T]\t\n[S]\na=5\n"},
  });
}

TEST(ProfileWriter, ASectionThatComesTwiceIsHandledTwice) {
  ExpectWrites({
      {"[S]\na=1\n\n[S]\na=2\n", "[S]\na=5\n\n[S]\na=5\n"},
      {"[S]\nx=1\n\n[S]\nx=2\n\n", "[S]\nx=1\na=5\n\n[S]\nx=2\n\n"},
  });
}

TEST(ProfileWriter, AHeaderThatEndsTheSectionBeforeItOpensNone) {
  ExpectWrites({{"[S]\nx=1\n[S]\na=2\n", "[S]\nx=1\na=5\n[S]\na=2\n"}});
}

TEST(ProfileWriter, AKeyBelowAnEmptyLineIsDoubledAndTheReaderSeesTheNewOne) {
  const ProfileFile file("[S]\n\na=1\n");
  file.Write(L"S", L"a", L"5");
  EXPECT_EQ(file.Content(), "[S]\na=5\n\na=1\n");
  EXPECT_EQ(file.Read(L"S", L"a"), (ProfileRead{1, L"5"}));
}

TEST(ProfileWriter, AnyTextMayBeEmpty) {
  const ProfileFile file("[S]\na=1\n");
  EXPECT_EQ(file.Write(L"S", L"a", L""), 1);
  EXPECT_EQ(file.Write(L"S", L"", L"5"), 1);
  EXPECT_EQ(file.Write(L"", L"b", L"6"), 1);
  EXPECT_EQ(file.Content(), "[S]\na=\n=5\n[]\nb=6\n");
}

TEST(ProfileWriter, AMissingFileIsCreated) {
  const ProfileFile file;
  EXPECT_EQ(Printed([&] { EXPECT_EQ(file.Write(L"S", L"a", L"5"), 1); }), "");
  EXPECT_EQ(file.Content(), "[S]\na=5\n");
}

TEST(ProfileWriter, TextIsWrittenInTheEnvironmentsEncoding) {
  const ProfileFile file("[S]\nx=\xE5\xB1\x8F\n");
  file.Write(L"S", L"\u00FC", L"\U0001F5A5");
  EXPECT_EQ(file.Content(), "[S]\nx=\xE5\xB1\x8F\n\xC3\xBC=\xF0\x9F\x96\xA5\n");
}

TEST(ProfileWriter, TextThatTheLocaleCannotWriteLeavesTheFileAlone) {
  const ProfileFile file("[S]\na=1\n[T]\nb=1\n");
  setenv("LC_ALL", "C", 1);
  EXPECT_EQ(file.Write(L"S", L"a", L"\u5C4F"), 0);
  EXPECT_EQ(file.Write(L"S", L"\u5C4F", L"1"), 0);
  EXPECT_EQ(file.Write(L"\u5C4F", L"a", L"1"), 0);
  EXPECT_EQ(file.Content(), "[S]\na=1\n[T]\nb=1\n");
}

TEST(ProfileWriter, WhatFollowsAnOverlongOrUndecodableLineIsLost) {
  ExpectWrites({
      {"[S]\nx=1\n" + std::string(1024, 'y') + "\na=1\n", "[S]\nx=1\na=5\n"},
      {"[S]\nx=1\n\xFF\na=1\n", "[S]\nx=1\na=5\n"},
      {"[S]\nx=1\ny=\xC3", "[S]\nx=1\na=5\n"},
      {"[S]\n" + std::string(1023, 'y') + "\n", "[S]\na=5\n" + std::string(1023, 'y') + "\n"},
  });
}

TEST(ProfileWriter, ALongFileIsReadWholeBeforeItIsTruncated) {
  std::string lines;
  for (int i = 0; i < 50000; ++i)
    lines += "key" + std::to_string(i) + "=value\n";
  ExpectWrites({{"[S]\n" + lines, "[S]\n" + lines + "a=5\n"}});
}

TEST(ProfileWriter, AFileThatMustNotBeWrittenStaysAsItWas) {
  const ProfileFile file("[S]\n a=1 \n");
  SetMode(file.Directory(), 0755);
  SetMode(file.Path(), 0444);
  const std::string output =
      Printed([&] { EXPECT_EQ(AsOrdinaryUser([&] { return file.Write(L"S", L"a", L"5"); }), 0); });
  EXPECT_EQ(output, "Open file error \n");
  EXPECT_EQ(file.Content(), "[S]\n a=1 \n");
}

TEST(ProfileWriter, NoFileIsCreatedInADirectoryThatMustNotBeWritten) {
  const ProfileFile file;
  SetMode(file.Directory(), 0555);
  const std::string output =
      Printed([&] { EXPECT_EQ(AsOrdinaryUser([&] { return file.Write(L"S", L"a", L"5"); }), 0); });
  EXPECT_EQ(output, "Open file error \n");
  EXPECT_FALSE(FileExists(file.Path()));
}

TEST(ProfileWriter, AWritableFileInAReadOnlyDirectoryIsRewritten) {
  const ProfileFile file("[S]\na=1\n");
  SetMode(file.Path(), 0666);
  SetMode(file.Directory(), 0555);
  EXPECT_EQ(AsOrdinaryUser([&] { return file.Write(L"S", L"a", L"5"); }), 1);
  EXPECT_EQ(file.Content(), "[S]\na=5\n");
}

TEST(ProfileWriter, AnUnreadableFileThatCanBeWrittenStartsAnew) {
  const ProfileFile file("[S]\na=1\n[T]\n");
  SetMode(file.Directory(), 0755);
  SetMode(file.Path(), 0222);
  EXPECT_EQ(AsOrdinaryUser([&] { return file.Write(L"S", L"a", L"5"); }), 1);
  SetMode(file.Path(), 0644);
  EXPECT_EQ(file.Content(), "[S]\na=5\n");
}

TEST(ProfileWriter, ADirectoryOrAMissingOneCannotBeWritten) {
  const ProfileFile file;
  const std::wstring path = file.WidePath();
  GivenDirectory(file.Path());
  const std::string output = Printed([&] {
    EXPECT_EQ(file.Write(L"S", L"a", L"5"), 0);
    EXPECT_EQ(CpZvWritePrivateProfileStringW(L"S", L"a", L"5", (path + L"/x/y").c_str()), 0);
    EXPECT_EQ(CpZvWritePrivateProfileStringW(L"S", L"a", L"5", L""), 0);
  });
  EXPECT_EQ(output, "Open file error \nOpen file error \nOpen file error \n");
}

TEST(ProfileWriter, ADeviceAndAFifoCannotBeWritten) {
  const ProfileFile device;
  ASSERT_EQ(symlink("/dev/null", device.Path().c_str()), 0);
  EXPECT_EQ(Printed([&] { EXPECT_EQ(device.Write(L"S", L"a", L"5"), 0); }), "Open file error \n");
  const ProfileFile fifo;
  ASSERT_EQ(mkfifo(fifo.Path().c_str(), 0600), 0);
  EXPECT_EQ(Printed([&] { EXPECT_EQ(fifo.Write(L"S", L"a", L"5"), 0); }), "Open file error \n");
}

// Nothing is reported, either.
TEST(ProfileWriter, ADiskThatFillsUpKeepsTheLinesWrittenUntilThen) {
  const ProfileFile file("[S]\nx=1\ny=1\nz=1\n");
  EXPECT_EQ(InChild([&] {
              signal(SIGXFSZ, SIG_IGN);
              const rlimit twelve_bytes = {12, 12};
              setrlimit(RLIMIT_FSIZE, &twelve_bytes);
              return file.Write(L"S", L"x", L"5");
            }),
            1);
  EXPECT_EQ(file.Content(), "[S]\nx=5\ny=1\n");
}

}  // namespace
