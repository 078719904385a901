// SPDX-License-Identifier: MIT
#include "base/text_data.h"

#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <cwchar>
#include <string>
#include <vector>

#include "edid_blocks.h"
#include "support/files.h"
#include "support/scratch_dir.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

using Bytes = std::vector<unsigned char>;

// A copy without a terminating zero, so that a sanitizer sees a read past the length.
class Unterminated {
 public:
  explicit Unterminated(const std::wstring& text) : m_text(text.begin(), text.end()) {
    m_text.shrink_to_fit();
  }
  const wchar_t* Text() const { return m_text.data(); }
  unsigned int Length() const { return static_cast<unsigned int>(m_text.size()); }

 private:
  std::vector<wchar_t> m_text;
};

// What one call of GetNextWord or FindNextBytes gave.
struct Taken {
  int result;
  unsigned int position;
};

bool operator==(const Taken& left, const Taken& right) {
  return left.result == right.result && left.position == right.position;
}

std::ostream& operator<<(std::ostream& out, const Taken& taken) {
  return out << taken.result << " at " << taken.position;
}

Taken TakeWord(const std::wstring& text, unsigned int position = 0) {
  const Unterminated input(text);
  wchar_t word[256];
  const int kind = GetNextWord(input.Text(), position, input.Length(), word, 256);
  return {kind, position};
}

constexpr unsigned int kUntouched = 0xABCD;

Taken TakeValue(const std::wstring& text, unsigned int& value,
                const wchar_t* definitions = nullptr) {
  const Unterminated input(text);
  unsigned int position = 0;
  const int result = FindNextBytes(input.Text(), position, input.Length(), definitions, &value);
  return {result, position};
}

Bytes EdidBytes(const std::wstring& text, unsigned int capacity = 1024) {
  const Unterminated input(text);
  Bytes bytes(capacity + 1, 0x5A);
  const unsigned int count = EDIDToBin(input.Text(), input.Length(), bytes.data(), capacity);
  EXPECT_EQ(bytes[capacity], 0x5A) << "written past the capacity";
  bytes.resize(count);
  return bytes;
}

TEST(GetNextWord, TellsKindsAndMovesBehindTheToken) {
  const struct {
    const wchar_t* text;
    Taken expected;
  } kCases[] = {
      {L"", {0, 0}},         {L" \t ", {0, 3}}, {L"word,", {1, 4}},   {L" \tA_z9 ", {1, 6}},
      {L"/* x */y", {2, 7}}, {L"/* x", {0, 4}}, {L"//x\ny", {2, 3}},  {L"//x\ry", {2, 3}},
      {L"//x", {2, 3}},      {L"\r\n", {3, 1}}, {L"\n", {3, 1}},      {L",x", {4, 1}},
      {L"{x", {5, 1}},       {L"}x", {6, 1}},   {L"#define", {0, 1}}, {L"/x", {0, 1}},
      {L"/", {0, 1}},        {L"  ;", {0, 3}},
  };
  for (const auto& row : kCases) {
    EXPECT_EQ(TakeWord(row.text), row.expected) << row.text;
  }
}

TEST(GetNextWord, GoesOnFromThePositionGiven) {
  EXPECT_EQ(TakeWord(L"one two", 3), (Taken{1, 7}));
  EXPECT_EQ(TakeWord(L"one", 3), (Taken{0, 3}));
  EXPECT_EQ(TakeWord(L"one", 8), (Taken{0, 8}));
}

TEST(GetNextWord, CopiesTheWordAndZeroesTheRestOfTheOutput) {
  wchar_t word[9];
  std::wmemset(word, L'#', 9);
  unsigned int position = 0;
  EXPECT_EQ(GetNextWord(L"abc,", position, 4, word, 8), 1);
  EXPECT_EQ(std::wstring(word, 9), std::wstring(L"abc\0\0\0\0\0#", 9));
}

TEST(GetNextWord, LeavesTheOutputAloneWithoutAWord) {
  wchar_t word[2] = {L'#', L'#'};
  unsigned int position = 0;
  EXPECT_EQ(GetNextWord(L",abc", position, 4, word, 2), 4);
  EXPECT_EQ(std::wstring(word, 2), L"##");
}

TEST(GetNextWord, AcceptsWordsOf256CharactersWhole) {
  const std::wstring text(256, L'w');
  wchar_t word[257];
  word[256] = L'#';
  unsigned int position = 0;
  EXPECT_EQ(GetNextWord(text.c_str(), position, 256, word, 256), 1);
  EXPECT_EQ(position, 256u);
  EXPECT_EQ(std::wstring(word, 257), text + L"#");
}

TEST(GetNextWord, CutsLongerWordsAndTerminatesThem) {
  const std::wstring text(300, L'w');
  wchar_t word[257];
  word[256] = L'#';
  unsigned int position = 0;
  EXPECT_EQ(GetNextWord(text.c_str(), position, 300, word, 256), 1);
  EXPECT_EQ(position, 300u);
  EXPECT_EQ(std::wstring(word), std::wstring(255, L'w'));
  EXPECT_EQ(word[256], L'#');
}

TEST(GetNextWord, WritesNothingWithoutCapacity) {
  wchar_t word = L'#';
  unsigned int position = 0;
  EXPECT_EQ(GetNextWord(L"abc", position, 3, &word, 0), 1);
  EXPECT_EQ(word, L'#');
}

TEST(FindNextBytes, FindsValuesUpToTheirSeparator) {
  const struct {
    const wchar_t* text;
    unsigned int value;
    unsigned int position;
  } kCases[] = {
      {L"012,", 10, 4},
      {L"0x1F,5", 31, 5},
      {L"0X1f\n5", 31, 5},
      {L"255}5", 255, 4},
      {L"7", 7, 1},
      {L"/* c */ // d\r\n{ , 9 ,", 9, 21},
      {L"1 /* one */ , 2", 1, 13},
      {L"1 two three, 4", 1, 12},
      {L"1 // one\n2", 1, 9},
      {L"1 { , 2", 1, 5},
      {L"1 // one", 1, 8},
      {L"0xFFFFFFFF", 0xFFFFFFFFu, 10},
      {L"4294967297,", 1, 11},
  };
  for (const auto& row : kCases) {
    unsigned int value = kUntouched;
    EXPECT_EQ(TakeValue(row.text, value), (Taken{1, row.position})) << row.text;
    EXPECT_EQ(value, row.value) << row.text;
  }
}

TEST(FindNextBytes, LeavesTheValueWhenThereIsNone) {
  const struct {
    const wchar_t* text;
    Taken expected;
  } kCases[] = {
      {L"", {0, 0}},      {L"name, 1", {0, 4}},   {L"08, 1", {0, 2}},
      {L"0x, 1", {0, 2}}, {L"0xG, 1", {0, 3}},    {L"1F, 1", {0, 2}},
      {L"; 1", {0, 1}},   {L"-1", {0, 1}},        {L"} 1", {6, 1}},
      {L"}", {6, 1}},     {L"1; 2", {0, 2}},      {L"1 /* no end", {0, 11}},
      {L"1 ", {0, 2}},    {L", ,", {6, 3}},       {L"{ // no value", {6, 13}},
      {L"   ", {6, 3}},   {L"/* no end", {6, 9}},
  };
  for (const auto& row : kCases) {
    unsigned int value = kUntouched;
    EXPECT_EQ(TakeValue(row.text, value), row.expected) << row.text;
    EXPECT_EQ(value, kUntouched) << row.text;
  }
}

TEST(FindNextBytes, ReturnsZeroAtOrPastTheEnd) {
  unsigned int value = kUntouched;
  unsigned int position = 5;
  EXPECT_EQ(FindNextBytes(L"1,2", position, 3, nullptr, &value), 0);
  EXPECT_EQ(position, 5u);
  EXPECT_EQ(value, kUntouched);
}

TEST(FindNextBytes, LooksUpWordsThatAreNoNumbers) {
  const wchar_t* const definitions = L"#define WIDTH 0x50\n#define 08 8\n#define 0xQ 9\n";
  const struct {
    const wchar_t* text;
    int result;
    unsigned int value;
  } kCases[] = {
      {L"WIDTH, 1", 1, 0x50},
      {L"08, 1", 1, 8},
      {L"0xQ", 1, 9},
      {L"010, 1", 1, 8},
      {L"width, 1", 0, kUntouched},
      {L"WIDTH; 1", 0, kUntouched},
  };
  for (const auto& row : kCases) {
    unsigned int value = kUntouched;
    EXPECT_EQ(TakeValue(row.text, value, definitions).result, row.result) << row.text;
    EXPECT_EQ(value, row.value) << row.text;
  }
}

TEST(FindNextBytes, TakesNamesLongerThanAnyBuffer) {
  const std::wstring name(5000, L'N');
  unsigned int value = kUntouched;
  const std::wstring definitions = L"#define " + name + L" 7";
  EXPECT_EQ(TakeValue(name + L",", value, definitions.c_str()), (Taken{1, 5001}));
  EXPECT_EQ(value, 7u);
}

TEST(GetDefineValue, ReadsTheWordBehindTheName) {
  const struct {
    const wchar_t *name, *definitions;
    unsigned int value;
  } kCases[] = {
      {L"NAME", L"#define NAME 0x1F", 31},
      {L"NAME", L"#define NAME 0X1f\n", 31},
      {L"NAME", L"NAME 12", 12},
      {L"NAME", L"#define NAME\t010\n", 8},
      {L"NAME", L"/* NAME 1 */ // NAME 2\nNAME 3", 3},
      {L"NAME", L"NAMES 1\nname 2\nA_NAME 3\nNAME 4\nNAME 5", 4},
      {L"NAME", L"NAME 0x", 0},
      {L"NAME", L"NAME 0x1G", 0},
      {L"NAME", L"NAME 0x123456789", 0x2345678Au},
  };
  for (const auto& row : kCases) {
    unsigned int value = kUntouched;
    EXPECT_EQ(GetDefineValue(row.name, row.definitions, &value), 1) << row.definitions;
    EXPECT_EQ(value, row.value) << row.definitions;
  }
}

TEST(GetDefineValue, RefusesWhateverIsNoValue) {
  for (const wchar_t* const definitions :
       {L"", L"#define OTHER 1", L"NAME", L"NAME ", L"NAME\n5", L"NAME OTHER", L"NAME 1F",
        L"NAME 08", L"NAME (5)", L"NAME -5", L"NAME /* c */ 5", L"NAME, 5", L"/* NAME 5",
        L"OTHER NAME\nNAME 5"}) {
    unsigned int value = kUntouched;
    EXPECT_EQ(GetDefineValue(L"NAME", definitions, &value), 0) << definitions;
    EXPECT_EQ(value, kUntouched) << definitions;
  }
}

TEST(GetDefineValue, FindsNoNameThatIsNoWord) {
  unsigned int value = kUntouched;
  EXPECT_EQ(GetDefineValue(L"", L"NAME 5", &value), 0);
  EXPECT_EQ(GetDefineValue(L"#", L"# 5", &value), 0);
  EXPECT_EQ(value, kUntouched);
}

TEST(EDIDToBin, ConvertsListsWhoseBytesSumUpToZero) {
  EXPECT_THAT(EdidBytes(L"{ 0x00, 0xFF, 0x01 }"), ElementsAre(0x00, 0xFF, 0x01));
  EXPECT_THAT(EdidBytes(L"128,128"), ElementsAre(128, 128));
  EXPECT_THAT(EdidBytes(L"0"), ElementsAre(0));
}

TEST(EDIDToBin, RefusesListsWithAWrongSum) {
  EXPECT_THAT(EdidBytes(L"0x01, 0x01"), IsEmpty());
  EXPECT_THAT(EdidBytes(L"0xFF, 0x02"), IsEmpty());
}

TEST(EDIDToBin, RefusesListsWithoutAByte) {
  for (const wchar_t* const text : {L"", L" ", L"{ }", L"// 0x00", L"name", L"/* 0x00,", L";"}) {
    EXPECT_THAT(EdidBytes(text), IsEmpty()) << text;
  }
}

TEST(EDIDToBin, RefusesValuesAbove255) {
  EXPECT_THAT(EdidBytes(L"255, 1"), ElementsAre(255, 1));
  EXPECT_THAT(EdidBytes(L"256"), IsEmpty());
  EXPECT_THAT(EdidBytes(L"0, 0xFFFFFFFF, 0"), IsEmpty());
}

TEST(EDIDToBin, RefusesMoreBytesThanTheOutputHolds) {
  EXPECT_THAT(EdidBytes(L"0, 0xFF, 1", 3), ElementsAre(0, 0xFF, 1));
  EXPECT_THAT(EdidBytes(L"0, 0xFF, 1", 2), IsEmpty());
  EXPECT_THAT(EdidBytes(L"0", 0), IsEmpty());
}

TEST(EDIDToBin, PassesOverWhatIsNoValue) {
  EXPECT_THAT(EdidBytes(L"const unsigned char edid[] = {\n  0x01, /* one */ 0xFF,\n};\n"),
              ElementsAre(0x01, 0xFF));
  EXPECT_THAT(EdidBytes(L"1; 2, x, 0xFE"), ElementsAre(2, 0xFE))
      << "a value without its separator is none";
}

Bytes BytesOfHex(const std::string& hex) {
  Bytes bytes;
  for (std::size_t i = 0; i < hex.size(); i += 2) {
    bytes.push_back(static_cast<unsigned char>(std::stoul(hex.substr(i, 2), nullptr, 16)));
  }
  return bytes;
}

// The bytes as a C array, 8 a line, as decimal or hexadecimal numbers.
std::wstring AsArray(const Bytes& bytes, const wchar_t* number) {
  std::wstring text = L"static const unsigned char edid[] = {  // sent by the display\n";
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    wchar_t piece[16];
    std::swprintf(piece, 16, number, static_cast<unsigned int>(bytes[i]));
    text += piece;
    text += i % 8 == 7 ? L",\r\n" : L", ";
  }
  return text + L"};\n";
}

TEST(EDIDToBin, ConvertsTheBlocksOfRealDisplays) {
  for (const EdidRow& row : kEdidBlocks) {
    const Bytes bytes = BytesOfHex(row.hex);
    ASSERT_EQ(bytes.size(), row.bytes) << row.display;
    EXPECT_EQ(EdidBytes(AsArray(bytes, L"0x%02x")), bytes) << row.display;
    EXPECT_EQ(EdidBytes(AsArray(bytes, L"0X%X")), bytes) << row.display;
    EXPECT_EQ(EdidBytes(AsArray(bytes, L"%u")), bytes) << row.display;
  }
}

TEST(EDIDToBin, RefusesARealBlockWithOneBitFlipped) {
  for (const EdidRow& row : kEdidBlocks) {
    Bytes bytes = BytesOfHex(row.hex);
    bytes[row.bytes / 2] ^= 1;
    EXPECT_THAT(EdidBytes(AsArray(bytes, L"0x%02x")), IsEmpty()) << row.display;
  }
}

// Has the other decoder turn the numbers into a file of the format given.
std::string DecodeElsewhere(const ScratchDir& scratch, const EdidRow& row, const char* format) {
  const std::string input = GivenFile(scratch / "edid.txt", row.hex);
  const std::string output = scratch / format;
  const std::string command =
      std::string("edid-decode -o ") + format + " " + input + " " + output + " >/dev/null 2>&1";
  // Its status tells whether the display kept to the standards, which is of no matter here.
  static_cast<void>(std::system(command.c_str()));
  return ReadWholeFile(output);
}

TEST(EDIDToBin, AgreesWithAnotherDecoder) {
  if (std::system("command -v edid-decode >/dev/null 2>&1") != 0) {
    GTEST_SKIP() << "edid-decode is not installed (Debian package edid-decode)";
  }
  const ScratchDir scratch;
  for (const EdidRow& row : kEdidBlocks) {
    const std::string array = DecodeElsewhere(scratch, row, "carray");
    const std::string raw = DecodeElsewhere(scratch, row, "raw");
    ASSERT_EQ(raw.size(), row.bytes) << row.display;
    EXPECT_EQ(EdidBytes(std::wstring(array.begin(), array.end())), Bytes(raw.begin(), raw.end()))
        << row.display;
  }
}

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
      {"1,256", 4, 0, {1}}, {"1,-1", 4, 0, {1}},      {"1,x", 4, 0, {1}},
      {"1 ,2", 4, 0, {}},   {"1,2,3x", 4, 0, {1, 2}}, {" ", 4, 0, {}},
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
