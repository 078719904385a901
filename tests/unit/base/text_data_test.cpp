// SPDX-License-Identifier: MIT
#include "base/text_data.h"

#include <clocale>
#include <cstdlib>
#include <string>
#include <vector>

#include "support/files.h"
#include "support/scratch_dir.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;

using Bytes = std::vector<unsigned char>;

TEST(HexStrToInt, ReadsExactlySoManyDigits) {
  constexpr struct {
    const wchar_t* digits;
    unsigned char count;
    unsigned int value;
  } kCases[] = {
      {L"1A", 2, 26},
      {L"1A", 1, 1},
      {L"1G", 2, 0},
      {L"1G", 1, 1},
      {L"G1", 2, 0},
      {L"", 0, 0},
      {L"1A", 0, 0},
      {L"", 1, 0},
      {L"1A", 3, 0},
      {L"0f9", 3, 0xF9},
      {L"DEADBEEF", 8, 0xDEADBEEFu},
      {L"deadbeef", 8, 0xDEADBEEFu},
      {L"-1", 2, 0},
      {L"0x1", 3, 0},
      {L" 1", 2, 0},
      {L"1\u0661", 2, 0},
      {L"@`", 2, 0},
      {L":/", 2, 0},
  };
  for (const auto& row : kCases) {
    EXPECT_EQ(HexStrToInt(row.digits, row.count), row.value) << row.digits;
    EXPECT_EQ(HexStrToInt(CCpZvString(row.digits), row.count), row.value) << row.digits;
  }
}

TEST(HexStrToInt, WrapsMoreThanEightDigits) {
  EXPECT_EQ(HexStrToInt(L"123456789", 9), 0x2345678Au);
  EXPECT_EQ(HexStrToInt(L"1000000010000000", 16), 0x20000000u);
  EXPECT_EQ(HexStrToInt(std::wstring(255, L'1').c_str(), 255), 0x12222220u);
}

TEST(HexStrToInt, NeverReadsPastTheEndOfAString) {
  EXPECT_EQ(HexStrToInt(CCpZvString(L"1A"), 255), 0u);
  EXPECT_EQ(HexStrToInt(CCpZvString(), 255), 0u);
}

struct ByteListRow {
  const char* text;
  unsigned int maximum;
  unsigned int count;
  Bytes stored;
};

// Room for four bytes, of which the untouched ones stay 0x5A.
void ExpectByteList(const ByteListRow& row) {
  Bytes output(4, 0x5A);
  EXPECT_EQ(ConvetStringToByteArry(row.text, output.data(), row.maximum), row.count) << row.text;
  Bytes expected = row.stored;
  expected.resize(4, 0x5A);
  EXPECT_EQ(output, expected) << row.text;
}

TEST(ConvetStringToByteArry, StoresTheNumbersBetweenCommas) {
  const ByteListRow kCases[] = {
      {"1,2", 4, 2, {1, 2}},    {"1, 2", 4, 2, {1, 2}}, {"0xFF,010,255", 4, 3, {255, 8, 255}},
      {",1,,2,", 4, 2, {1, 2}}, {"", 4, 0, {}},         {",,", 4, 0, {}},
      {"-0", 4, 1, {0}},
  };
  for (const ByteListRow& row : kCases) {
    ExpectByteList(row);
  }
}

TEST(ConvetStringToByteArry, RefusesOtherPiecesAndKeepsTheBytesBeforeThem) {
  const ByteListRow kCases[] = {
      {"1,256", 4, 0, {1}},     {"1,-1", 4, 0, {1}}, {"1,x", 4, 0, {1}}, {"1 ,2", 4, 0, {}},
      {"1,2,3x", 4, 0, {1, 2}}, {" ", 4, 0, {}},     {"1#2", 4, 0, {}},  {"1;2", 4, 0, {}},
  };
  for (const ByteListRow& row : kCases) {
    ExpectByteList(row);
  }
}

TEST(ConvetStringToByteArry, StopsAtTheMaximum) {
  ExpectByteList({"1,2,3", 2, 2, {1, 2}});
  ExpectByteList({"1,2,what follows", 2, 2, {1, 2}});
  ExpectByteList({"1,2,3,4", 0, 4, {1, 2, 3, 4}});
}

TEST(CalculateByteChecksum, SumsBytes) {
  const unsigned char data[] = {0x01, 0xFF, 0x80};
  EXPECT_EQ(CalculateByteChecksum(data, 3), 0x180u);
  EXPECT_EQ(CalculateByteChecksum(data, 1), 1u);
  EXPECT_EQ(CalculateByteChecksum(nullptr, 0), 0u);
}

TEST(CalculateByteChecksum, GoesBeyond16Bits) {
  const Bytes data(70000, 0xFF);
  EXPECT_EQ(CalculateByteChecksum(data.data(), 70000), 17850000u);
}

TEST(CalculateWordChecksum, SumsLittleEndianWordsAndAnOddByte) {
  const unsigned char data[] = {0x01, 0x02, 0x03};
  EXPECT_EQ(CalculateWordChecksum(data, 3), 0x0204);
  EXPECT_EQ(CalculateWordChecksum(data, 2), 0x0201);
  EXPECT_EQ(CalculateWordChecksum(data, 1), 0x0001);
  EXPECT_EQ(CalculateWordChecksum(nullptr, 0), 0);
}

TEST(CalculateWordChecksum, WrapsAt16Bits) {
  const unsigned char data[] = {0xFF, 0xFF, 0x02, 0x00};
  EXPECT_EQ(CalculateWordChecksum(data, 4), 0x0001);
  EXPECT_EQ(CalculateWordChecksum(Bytes(400000, 0xFF).data(), 400000), 0xF2C0);
}

class CpZvSaveAnsiFileTest : public testing::Test {
 protected:
  CpZvSaveAnsiFileTest() {
    setenv("LC_ALL", "C.UTF-8", 1);
    std::setlocale(LC_ALL, "C");
    m_file = m_scratch / "\xC3\xBC.txt";
    m_path = m_file;
  }
  std::string Content() const { return ReadWholeFile(m_file); }

  ScratchDir m_scratch;
  std::string m_file;
  CCpZvString m_path;
};

TEST_F(CpZvSaveAnsiFileTest, WritesTheTextInTheLocalesEncodingAndAZero) {
  EXPECT_EQ(CpZvSaveAnsiFile(m_path, L"a\u00FC\u20AC\n", 0, 0), 1);
  EXPECT_EQ(Content(), std::string("a\xC3\xBC\xE2\x82\xAC\n\0", 8));
}

TEST_F(CpZvSaveAnsiFileTest, WritesOnlyTheZeroOfEmptyText) {
  EXPECT_EQ(CpZvSaveAnsiFile(m_path, L"", 0, 0), 1);
  EXPECT_EQ(Content(), std::string(1, '\0'));
}

TEST_F(CpZvSaveAnsiFileTest, FillsALengthThatIsGivenWithZeros) {
  EXPECT_EQ(CpZvSaveAnsiFile(m_path, L"a\u00FC", 2, 0), 1);
  EXPECT_EQ(Content(), std::string("a\xC3\xBC\0\0\0\0\0\0", 9));
}

TEST_F(CpZvSaveAnsiFileTest, CutsTextThatALengthHasNoRoomFor) {
  EXPECT_EQ(CpZvSaveAnsiFile(m_path, L"abcdefgh", 1, 0), 1);
  EXPECT_EQ(Content(), std::string("abcd\0", 5));
  EXPECT_EQ(CpZvSaveAnsiFile(m_path, L"abc\u20AC", 1, 0), 1);
  EXPECT_EQ(Content(), std::string("abc\0\0", 5));
}

TEST_F(CpZvSaveAnsiFileTest, ReplacesOrAppends) {
  EXPECT_EQ(CpZvSaveAnsiFile(m_path, L"first", 0, 0), 1);
  EXPECT_EQ(CpZvSaveAnsiFile(m_path, L"2", 0, 1), 1);
  EXPECT_EQ(Content(), std::string("first\0"
                                   "2\0",
                                   8));
  EXPECT_EQ(CpZvSaveAnsiFile(m_path, L"3", 0, 0), 1);
  EXPECT_EQ(Content(), std::string("3\0", 2));
}

TEST_F(CpZvSaveAnsiFileTest, WritesWhatTheLocaleCanExpressOrNothing) {
  setenv("LC_ALL", "C", 1);
  m_file = m_scratch / "plain.txt";
  m_path = m_file;
  EXPECT_EQ(CpZvSaveAnsiFile(m_path, L"ab\u20AC", 0, 0), 1);
  EXPECT_EQ(Content(), "") << "a text that cannot be measured has no bytes";
  EXPECT_EQ(CpZvSaveAnsiFile(m_path, L"ab\u20AC", 1, 0), 1);
  EXPECT_EQ(Content(), std::string("ab\0\0\0", 5));
}

TEST_F(CpZvSaveAnsiFileTest, RestoresTheCharacterType) {
  EXPECT_EQ(CpZvSaveAnsiFile(m_path, L"x", 0, 0), 1);
  EXPECT_STREQ(std::setlocale(LC_CTYPE, nullptr), "C");
  EXPECT_STREQ(std::setlocale(LC_NUMERIC, nullptr), "C.UTF-8");
}

TEST_F(CpZvSaveAnsiFileTest, LeavesTheLocaleSwitchedWhenTheFileDoesNotOpen) {
  m_path = m_scratch / "missing/file.txt";
  EXPECT_EQ(CpZvSaveAnsiFile(m_path, L"x", 0, 0), 0);
  EXPECT_STREQ(std::setlocale(LC_CTYPE, nullptr), "C.UTF-8");
}

TEST_F(CpZvSaveAnsiFileTest, RefusesANameThatTheLocaleCannotExpress) {
  setenv("LC_ALL", "C", 1);
  EXPECT_EQ(CpZvSaveAnsiFile(m_path, L"x", 0, 0), 0);
  EXPECT_FALSE(FileExists(m_file));
}

struct CommandLineRow {
  const char* line;
  std::vector<std::string> arguments;
};

void ExpectArguments(const CommandLineRow& row) {
  std::vector<std::string> arguments = {"old"};
  EXPECT_EQ(ParseCommandLineParameter(arguments, row.line), 1) << row.line;
  EXPECT_THAT(arguments, ElementsAreArray(row.arguments)) << row.line;
}

TEST(ParseCommandLineParameter, SplitsAtBlanksButNotInsideQuotes) {
  const CommandLineRow kCases[] = {
      {"", {}},
      {"   ", {}},
      {"a", {"a"}},
      {" a  b ", {"a", "b"}},
      {"a \"b c\" d", {"a", "b c", "d"}},
      {"--fw1 \"C d/e f.bin\" --bank1=\"0 1\"", {"--fw1", "C d/e f.bin", "--bank1=0 1"}},
      {"a x\"b c\"y", {"a", "xb cy"}},
      {"a \" \"", {"a", " "}},
      {"a\tb", {"a\tb"}},
      {"a#b --bank1=#2", {"a#b", "--bank1=#2"}},
      {"a \"b c\" \"b c\"", {"a", "b c", "b c"}},
  };
  for (const CommandLineRow& row : kCases) {
    ExpectArguments(row);
  }
}

TEST(ParseCommandLineParameter, NeverTakesAQuoteAtTheStartForAnOpeningOne) {
  ExpectArguments({"\"a b\" c", {"\"a", "b\"", "c"}});
  ExpectArguments({"\"a b\" c\" d\"", {"\"a", "b c", "d\""}});
  ExpectArguments({"\"\" a", {"\"\"", "a"}});
}

TEST(ParseCommandLineParameter, ReturnsOneQuotedTextToAnArgument) {
  ExpectArguments({"a \"b\"\"c\" d", {"a", "b\"\"", "d"}});
  ExpectArguments({"a \"b\"\"c\" \"d\"", {"a", "b\"\"", "c"}});
}

TEST(ParseCommandLineParameter, ReplacesTheFirstOccurrenceOfAQuotedText) {
  ExpectArguments({"a \"x\" \"y\" \" \"", {"a", "x\"\"", "\"", "\""}});
}

TEST(ParseCommandLineParameter, RefusesBadQuotingAndLeavesTheArguments) {
  for (const char* const line :
       {"\"", "a \"b", "a \"b\" \"c", "a \"\" b", "a \"b\" \"\"", "\"a\"\"\""}) {
    std::vector<std::string> arguments = {"old"};
    EXPECT_EQ(ParseCommandLineParameter(arguments, line), 0) << line;
    EXPECT_THAT(arguments, ElementsAre("old")) << line;
  }
}

}  // namespace
