// SPDX-License-Identifier: MIT
#include <signal.h>
#include <sys/resource.h>
#include <unistd.h>

#ifdef __linux__
#include <sys/inotify.h>
#endif

#include <random>
#include <string>
#include <vector>

#include "settings/profile.h"
#include "support/profile_file.h"
#include "support/unprivileged.h"

#include <gtest/gtest.h>

using namespace zvisp;

namespace {

using Changes = std::vector<ProfileChange<std::wstring>>;

void WriteAll(const ProfileFile& file, const Changes& changes) {
  WriteProfileChanges(L"S", changes, file.WidePath().c_str());
}

void WriteEach(const ProfileFile& file, const Changes& changes) {
  for (const auto& [key, value] : changes) {
    file.Write(L"S", key.c_str(), value.c_str());
  }
}

// "L" is a line that only just fits, "O" one that does not.
std::string RandomContent(std::mt19937& random) {
  static const std::string kLines[] = {
      "[S]", "[S]",      "[S]",  "  [S]",    "[T]",   "",        "  ",  "; note",
      "a=1", "b=1",      "c=1",  "a = 1",    "a=1=2", " b=1=  ", "=x",  "x=\xC3\xBC",
      "c=",  "x=\xFF\n", "a=\r", "b=x\tx\t", "d=1",   "a=L",     "c=O", "x=\xC3",
  };
  std::string content;
  for (std::size_t left = random() % 12; left > 0; --left) {
    std::string line = kLines[random() % std::size(kLines)];
    if (line.back() == 'L') line = line.substr(0, 2) + std::string(1021, 'l');
    if (line.back() == 'O') line = line.substr(0, 2) + std::string(1022, 'o');
    content += line + "\n";
  }
  if (!content.empty() && random() % 3 == 0) content.pop_back();
  return content;
}

Changes RandomChanges(std::mt19937& random) {
  static const wchar_t* const kKeys[] = {L"a", L"b", L"c", L"d", L"e", L"", L"a ", L"x=y"};
  static const wchar_t* const kValues[] = {
      L"5",        L"",       L"b b",        L"x=y", L" lead",    L"trail ", L"two\nlines",
      L"[S]\nb=1", L"\u5C4F", L"\U0001F5A5", L"7=",  L"\x300000", L"\r",     L"8",
  };
  Changes changes;
  for (std::size_t left = random() % 6; left > 0; --left) {
    changes.push_back({kKeys[random() % std::size(kKeys)], kValues[random() % std::size(kValues)]});
  }
  return changes;
}

TEST(ProfileChanges, GiveTheSameFileAsKeyByKey) {
  std::mt19937 random(1);
  const ProfileFile at_once;
  const ProfileFile one_by_one;
  for (int i = 0; i < 500; ++i) {
    setenv("LC_ALL", i % 5 == 0 ? "C" : "C.UTF-8", 1);
    const std::string content = RandomContent(random);
    const Changes changes = RandomChanges(random);
    at_once.Put(content);
    one_by_one.Put(content);
    WriteAll(at_once, changes);
    WriteEach(one_by_one, changes);
    ASSERT_EQ(at_once.Content(), one_by_one.Content()) << "round " << i << " of\n" << content;
  }
}

// A disk that is full after so many bytes.
void WithRoomFor(rlim_t bytes, void (*write)(const ProfileFile&, const Changes&),
                 const ProfileFile& file, const Changes& changes) {
  InChild([&] {
    signal(SIGXFSZ, SIG_IGN);
    const rlimit limit = {bytes, bytes};
    setrlimit(RLIMIT_FSIZE, &limit);
    write(file, changes);
    return 0;
  });
}

TEST(ProfileChanges, GiveTheSameFileOnADiskThatFillsUp) {
  const Changes changes = {{L"a", L"1"}, {L"b", L"22"}, {L"c", L"333"}};
  for (rlim_t bytes = 0; bytes < 40; ++bytes) {
    const ProfileFile at_once("[S]\nx=1\n\n[T]\ny=1\n");
    const ProfileFile one_by_one("[S]\nx=1\n\n[T]\ny=1\n");
    WithRoomFor(bytes, WriteAll, at_once, changes);
    WithRoomFor(bytes, WriteEach, one_by_one, changes);
    EXPECT_EQ(at_once.Content(), one_by_one.Content()) << bytes;
  }
}

TEST(ProfileChanges, GiveTheSameFileWhenItMayBeWrittenButNotRead) {
  const ProfileFile file("[S]\nx=1\n");
  SetMode(file.Directory(), 0755);
  SetMode(file.Path(), 0222);
  AsOrdinaryUser([&] {
    WriteAll(file, {{L"a", L"1"}, {L"b", L"2"}});
    return 0;
  });
  SetMode(file.Path(), 0644);
  EXPECT_EQ(file.Content(), "[S]\nb=2\n");
}

TEST(ProfileChanges, EachKeyThatCannotBeWrittenIsReportedButNotThoseTheLocaleRefuses) {
  const ProfileFile file;
  GivenDirectory(file.Path());
  setenv("LC_ALL", "C", 1);
  const Changes changes = {{L"a", L"1"}, {L"b", L"\u5C4F"}, {L"c", L"3"}};
  EXPECT_EQ(Printed([&] { WriteAll(file, changes); }), "Open file error \nOpen file error \n");
}

TEST(ProfileChanges, NoChangeLeavesTheFileAlone) {
  const ProfileFile file(" [S] \n");
  WriteAll(file, {});
  EXPECT_EQ(file.Content(), " [S] \n");
}

#ifdef __linux__
// How often the file was closed, after reading and after writing.
int ClosesOf(const ProfileFile& file, const Changes& changes) {
  const int watch = inotify_init1(IN_NONBLOCK);
  inotify_add_watch(watch, file.Path().c_str(), IN_CLOSE);
  WriteAll(file, changes);
  int closes = 0;
  for (inotify_event event = {}; read(watch, &event, sizeof event) > 0;) {
    ++closes;
  }
  close(watch);
  return closes;
}

TEST(ProfileChanges, TheFileIsReadOnceAndWrittenOnce) {
  const ProfileFile file("[S]\na=1\n\n[S]\nb=1\n");
  EXPECT_EQ(ClosesOf(file, {{L"a", L"2"}, {L"b", L"3"}, {L"c", L"4"}}), 2);
  EXPECT_EQ(file.Content(), "[S]\na=2\nb=3\nc=4\n\n[S]\nb=3\n");
}
#endif

}  // namespace
