// SPDX-License-Identifier: MIT
#include "base/text_lexer.h"

#include <string>

#include <gtest/gtest.h>

using namespace zvisp;

namespace {

// The kinds of all tokens of a text, a digit each.
std::string Kinds(std::wstring_view text) {
  std::string kinds;
  TextLexer lexer(text, 0);
  while (!lexer.AtEnd()) {
    kinds += static_cast<char>('0' + static_cast<int>(lexer.Next()));
  }
  return kinds;
}

TEST(TextLexer, TellsTheKindsOfTokensApart) {
  constexpr struct {
    const wchar_t* text;
    const char* kinds;
  } kCases[] = {
      {L"", ""},
      {L"0x00, 0xFF", "141"},
      {L"{ a_1\t,\r\n}", "514336"},
      {L"/* a, b */x", "21"},
      {L"// a, b\nx", "231"},
      {L"// to the end", "2"},
      {L"/**/x", "21"},
      {L"/*/x", "0"},
      {L"/* no end *", "0"},
      {L"a/b", "101"},
      {L"/", "0"},
      {L"#define", "01"},
      {L"-;=", "000"},
      {L"x  ", "10"},
      {L" \t", "0"},
      {L"\u00E9t\u00E9\u0660", "0100"},
  };
  for (const auto& row : kCases) {
    EXPECT_EQ(Kinds(row.text), row.kinds) << row.text;
  }
}

TEST(TextLexer, TakesAZeroForAnyOtherCharacter) {
  EXPECT_EQ(Kinds(std::wstring_view(L"a\0b", 3)), "101");
}

TEST(TextLexer, GivesTheWordAsPartOfTheText) {
  const std::wstring text = L" word_1,";
  TextLexer lexer(text, 0);
  EXPECT_EQ(lexer.Next(), TextToken::kWord);
  EXPECT_EQ(lexer.Word(), L"word_1");
  EXPECT_EQ(lexer.Word().data(), text.data() + 1);
  EXPECT_EQ(lexer.Position(), 7u);
}

TEST(TextLexer, StaysWhereItIsAtOrPastTheEnd) {
  for (const std::size_t position : {3u, 9u}) {
    TextLexer lexer(L"abc", position);
    EXPECT_TRUE(lexer.AtEnd());
    EXPECT_EQ(lexer.Next(), TextToken::kNone);
    EXPECT_EQ(lexer.Position(), position);
  }
}

}  // namespace
