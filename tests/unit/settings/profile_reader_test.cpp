// SPDX-License-Identifier: MIT
#include <sys/stat.h>
#include <unistd.h>

#include <string>
#include <vector>

#include "settings/profile.h"
#include "support/profile_file.h"

#include <gtest/gtest.h>

using namespace zvisp;

namespace {

using std::string_literals::operator""s;

const ProfileRead kDefault = {0, L"default"};
const ProfileRead kUntouched = {0, L"untouched"};

// Every case is read for key "k" of section "S".
struct ReadCase {
  std::string content;
  ProfileRead expected;
};

void ExpectReads(const std::vector<ReadCase>& cases) {
  for (const auto& [content, expected] : cases) {
    EXPECT_EQ(ProfileFile(content).Read(L"S", L"k"), expected) << content;
  }
}

TEST(ProfileReader, FindsTheValueOfAKeyWithBlanksAtBothEndsRemoved) {
  ExpectReads({
      {"[S]\nk=abc\n", {3, L"abc"}},
      {"[S]\nk=abc", {3, L"abc"}},
      {"  [S]  \n  k  =  a b  \n", {3, L"a b"}},
      {"[S]\na=1\nb=2\nk=abc\n", {3, L"abc"}},
      {"[A]\nk=1\n[S]\nk=abc\n", {3, L"abc"}},
      {"k=1\n; note\n\n[S]\nk=abc\n", {3, L"abc"}},
      {"[S]\nk=first\nk=second\n", {5, L"first"}},
      {"[S]\nk=\"q\"\n", {3, L"\"q\""}},
      {"[S]\nk=\tx\t\n", {3, L"\tx\t"}},
      {"[S]\nk=\n", {0, L""}},
      {"[S]\nk=abc ; note\n", {10, L"abc ; note"}},
  });
}

TEST(ProfileReader, CopiesTheValueWithItsZeroAndNothingMore) {
  const ProfileFile file("[S]\nk=abc\n");
  std::wstring output(kProfileValueCapacity, L'#');
  EXPECT_EQ(CpZvGetPrivateProfileStringW(L"S", L"k", L"", output.data(), kProfileValueCapacity,
                                         file.WidePath().c_str()),
            3u);
  EXPECT_EQ(output.substr(0, 6), std::wstring(L"abc\0##", 6));
}

TEST(ProfileReader, TheValueIsAfterTheLastEqualsSign) {
  ExpectReads({
      {"[S]\nk=a=b=c\n", {1, L"c"}},
      {"[S]\nk = a = b\n", {1, L"b"}},
      {"[S]\nk=a=\n", {0, L""}},
  });
}

TEST(ProfileReader, TheDefaultIsCopiedWhenTheFileEndsFirst) {
  ExpectReads({
      {"", kDefault},
      {"[A]\nk=1\n", kDefault},
      {"[S]\n", kDefault},
      {"[S]\na=1\n", kDefault},
      {"[s]\nk=1\n", kDefault},
      {"[ S ]\nk=1\n", kDefault},
      {"[S]\nK=1\n", kDefault},
      {"[S]x\nk=1\n", kDefault},
      {"[S]\r\nk=1\r\n", kDefault},
  });
}

TEST(ProfileReader, TheOutputStaysUntouchedWhenTheSectionEndsFirst) {
  ExpectReads({
      {"[S]\n\nk=abc\n", kUntouched},
      {"[S]\na=1\n; note\nk=abc\n", kUntouched},
      {"[S]\n[T]\nk=abc\n", kUntouched},
      {"[S]\n\n[S]\nk=abc\n", kUntouched},
      {"[S]\n   \nk=abc\n", kUntouched},
  });
}

TEST(ProfileReader, AnEqualsSignInFrontGivesAnEmptyName) {
  EXPECT_EQ(ProfileFile("[S]\n=abc\n").Read(L"S", L""), (ProfileRead{3, L"abc"}));
}

TEST(ProfileReader, AMissingFileLeavesTheOutputUntouchedAndPrintsNothing) {
  const ProfileFile file;
  EXPECT_EQ(Printed([&] { EXPECT_EQ(file.Read(L"S", L"k"), kUntouched); }), "");
}

TEST(ProfileReader, ADirectoryAndADeviceCannotBeOpened) {
  const ProfileFile directory;
  GivenDirectory(directory.Path());
  EXPECT_EQ(directory.Read(L"S", L"k"), kUntouched);
  const ProfileFile device;
  ASSERT_EQ(symlink("/dev/zero", device.Path().c_str()), 0);
  EXPECT_EQ(device.Read(L"S", L"k"), kUntouched);
}

// It would wait for a writer that never comes.
TEST(ProfileReader, AFifoCannotBeOpened) {
  const ProfileFile file;
  ASSERT_EQ(mkfifo(file.Path().c_str(), 0600), 0);
  EXPECT_EQ(file.Read(L"S", L"k"), kUntouched);
  EXPECT_EQ(file.ReadInt(L"S", L"k", 7), 7);
}

TEST(ProfileReader, ALinkToAnOrdinaryFileIsOne) {
  const ProfileFile file("[S]\nk=v\n");
  const ProfileFile link;
  ASSERT_EQ(symlink(file.Path().c_str(), link.Path().c_str()), 0);
  EXPECT_EQ(link.Read(L"S", L"k"), (ProfileRead{1, L"v"}));
}

TEST(ProfileReader, TheStatedBufferSizeIsNotUsed) {
  const ProfileFile file("[S]\nk=abcdef\n");
  wchar_t output[kProfileValueCapacity] = {};
  EXPECT_EQ(CpZvGetPrivateProfileStringW(L"S", L"k", L"", output, 2, file.WidePath().c_str()), 6u);
  EXPECT_STREQ(output, L"abcdef");
}

TEST(ProfileReader, ALineMayHold1023CharactersAndNotOneMore) {
  const std::string fits = "k=" + std::string(1021, 'x');
  const ProfileRead whole = {1021, std::wstring(1021, L'x')};
  ExpectReads({
      {"[S]\n" + fits + "\n", whole},
      {"[S]\n" + fits, whole},
      {"[S]\n" + fits + "x\n", kDefault},
      {"[S]\n" + fits + "x", kDefault},
  });
}

TEST(ProfileReader, TheLimitCountsCharactersAndNotBytes) {
  std::string umlauts;
  for (int i = 0; i < 1021; ++i)
    umlauts += "\xC3\xBC";
  EXPECT_EQ(ProfileFile("[S]\nk=" + umlauts + "\n").Read(L"S", L"k").length, 1021u);
  EXPECT_EQ(ProfileFile("[S]\nk=" + umlauts + "x\n").Read(L"S", L"k"), kDefault);
}

TEST(ProfileReader, NothingIsFoundAfterAnOverlongLine) {
  const std::string overlong(1024, 'x');
  ExpectReads({
      {overlong + "\n[S]\nk=1\n", kDefault},
      {"[S]\na=" + overlong + "\nk=1\n", kDefault},
      {"[S]\nk=1\n" + overlong, {1, L"1"}},
  });
}

TEST(ProfileReader, TextIsReadInTheEnvironmentsEncoding) {
  const ProfileFile file("[\xC3\x9C]\nfl\xC3\xA4\x63he=\xE5\xB1\x8F \xF0\x9F\x96\xA5\n");
  EXPECT_EQ(file.Read(L"\u00DC", L"fl\u00E4che"), (ProfileRead{3, L"\u5C4F \U0001F5A5"}));
}

TEST(ProfileReader, BytesThatAreNotTextEndTheFileBeforeTheirLine) {
  ExpectReads({
      {"[S]\nk=1\n\xFF\n", {1, L"1"}},
      {"[S]\n\xFF\nk=1\n", kDefault},
      {"[S]\nk=ab\xFF", kDefault},
      {"[S]\nk=ab\xFF\n", kDefault},
      {"[S]\nk=ab\xC3", kDefault},
      {"[S]\nk=ab\xC3\nj=2\n", kDefault},
      {"[S]\nk=ab\x80\n", kDefault},
      {"\xFF[S]\nk=1\n", kDefault},
      {"[S]\nk=ab\xED\xA0\x80\n", kDefault},
      {std::string(20000, '\n') + "[S]\nk=ab\xFF", kDefault},
      {std::string(20000, '\n') + "[S]\nk=ab\xC3", kDefault},
  });
}

TEST(ProfileReader, UnderThePlainLocaleOnlyAsciiIsText) {
  const ProfileFile file;
  file.Put("[S]\nk=abc\nj=\xC3\xBC\nl=1\n");
  setenv("LC_ALL", "C", 1);
  EXPECT_EQ(file.Read(L"S", L"k"), (ProfileRead{3, L"abc"}));
  EXPECT_EQ(file.Read(L"S", L"l"), kDefault);
}

TEST(ProfileReader, ALocaleThatTheMachineLacksStillReadsUtf8) {
  const ProfileFile file("[S]\nk=\xC3\xBC\n");
  setenv("LC_ALL", "xx_XX.NoSuchCodeset", 1);
  EXPECT_EQ(file.Read(L"S", L"k"), (ProfileRead{1, L"\u00FC"}));
}

TEST(ProfileReader, AZeroInALineIsOnlyACharacter) {
  const ProfileFile file("[S]\nz=a\0b\nk=abc\n"s);
  EXPECT_EQ(file.Read(L"S", L"k"), (ProfileRead{3, L"abc"}));
  EXPECT_EQ(file.Read(L"S", L"z"), (ProfileRead{3, L"a"}));
}

TEST(ProfileReader, ReadsFilesOfAnyLength) {
  std::string content;
  for (int i = 0; i < 20000; ++i)
    content += "[Section" + std::to_string(i) + "]\nkey=" + std::to_string(i) + "\n";
  EXPECT_EQ(ProfileFile(content).Read(L"Section19999", L"key"), (ProfileRead{5, L"19999"}));
}

TEST(ProfileReader, NumbersMayBeDecimalHexadecimalOrOctal) {
  const struct {
    std::string value;
    int expected;
  } kCases[] = {
      {"16", 16},
      {"0x10", 16},
      {"0X1f", 31},
      {"010", 8},
      {"-5", -5},
      {"+5", 5},
      {"\t7", 7},
      {"12 apples", 12},
      {"abc", 0},
      {"0", 0},
      {"08", 0},
      {"a=3", 3},
      {"", 77},
      {"  ", 77},
      {"4294967295", -1},
      {"-1", -1},
      {"4294967296", 0},
      {"2147483648", -2147483647 - 1},
      {"99999999999999999999", -1},
  };
  for (const auto& [value, expected] : kCases) {
    EXPECT_EQ(ProfileFile("[S]\nk=" + value + "\n").ReadInt(L"S", L"k", 77), expected) << value;
  }
}

TEST(ProfileReader, ANumberThatIsNotThereIsTheDefault) {
  EXPECT_EQ(ProfileFile().ReadInt(L"S", L"k", 77), 77);
  for (const char* content : {"", "[T]\nk=1\n", "[S]\na=1\n", "[S]\n\nk=1\n"}) {
    EXPECT_EQ(ProfileFile(content).ReadInt(L"S", L"k", 77), 77) << content;
  }
}

TEST(ProfileReader, TextIsCutToTheCapacityOfItsBuffer) {
  const ProfileFile file("[S]\nk=" + std::string(300, 'x') + "\n[T]\n\n");
  const std::wstring path = file.WidePath();
  EXPECT_EQ(ReadProfileText(L"S", L"k", path.c_str(), 260), std::wstring(259, L'x'));
  EXPECT_EQ(ReadProfileText(L"S", L"k", path.c_str(), 302), std::wstring(300, L'x'));
  EXPECT_EQ(ReadProfileText(L"T", L"k", path.c_str(), 260), L"");
}

}  // namespace
