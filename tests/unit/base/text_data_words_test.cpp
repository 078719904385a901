// SPDX-License-Identifier: MIT
#include "base/text_data.h"

#include <cwchar>
#include <ostream>
#include <string>

#include "unterminated.h"

#include <gtest/gtest.h>

namespace {

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

TEST(GetNextWord, GivesTheKindAndMovesPastTheToken) {
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

TEST(GetNextWord, ContinuesFromThePositionGiven) {
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

TEST(GetDefineValue, ReadsTheWordAfterTheName) {
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

TEST(GetDefineValue, RefusesWhateverIsNotAValue) {
  for (const wchar_t* const definitions :
       {L"", L"#define OTHER 1", L"NAME", L"NAME ", L"NAME\n5", L"NAME OTHER", L"NAME 1F",
        L"NAME 08", L"NAME (5)", L"NAME -5", L"NAME /* c */ 5", L"NAME, 5", L"/* NAME 5",
        L"OTHER NAME\nNAME 5"}) {
    unsigned int value = kUntouched;
    EXPECT_EQ(GetDefineValue(L"NAME", definitions, &value), 0) << definitions;
    EXPECT_EQ(value, kUntouched) << definitions;
  }
}

TEST(GetDefineValue, FindsNoNameThatIsNotAWord) {
  unsigned int value = kUntouched;
  EXPECT_EQ(GetDefineValue(L"", L"NAME 5", &value), 0);
  EXPECT_EQ(GetDefineValue(L"#", L"# 5", &value), 0);
  EXPECT_EQ(value, kUntouched);
}

}  // namespace
