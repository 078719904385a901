// SPDX-License-Identifier: MIT
#include "base/text_lexer.h"

#include <algorithm>

namespace zvisp {

namespace {

constexpr std::wstring_view kBlanks = L"\t ";
constexpr std::wstring_view kLineEnds = L"\r\n";
constexpr std::wstring_view kCommentStart = L"/*";
constexpr std::wstring_view kCommentEnd = L"*/";
constexpr std::wstring_view kLineCommentStart = L"//";

struct PunctuationRow {
  wchar_t character;
  TextToken token;
};

// clang-format off
constexpr PunctuationRow kPunctuation[] = {
  // character  token
  {L'\r',       TextToken::kLineEnd},
  {L'\n',       TextToken::kLineEnd},
  {L',',        TextToken::kComma},
  {L'{',        TextToken::kOpenBrace},
  {L'}',        TextToken::kCloseBrace},
};
// clang-format on

// ASCII only, whatever the locale says.
bool IsWordCharacter(wchar_t character) {
  return (character >= L'0' && character <= L'9') || (character >= L'A' && character <= L'Z') ||
         (character >= L'a' && character <= L'z') || character == L'_';
}

}  // namespace

TextToken TextLexer::Next() {
  if (AtEnd()) return TextToken::kNone;
  m_position = std::min(m_text.find_first_not_of(kBlanks, m_position), m_text.size());
  if (AtEnd()) return TextToken::kNone;
  for (const PunctuationRow& row : kPunctuation) {
    if (row.character == m_text[m_position]) {
      ++m_position;
      return row.token;
    }
  }
  const std::wstring_view lead = m_text.substr(m_position, kCommentStart.size());
  if (lead == kCommentStart) return TakeBlockComment();
  if (lead == kLineCommentStart) return TakeLineComment();
  return TakeWord();
}

TextToken TextLexer::TakeBlockComment() {
  const std::size_t end = m_text.find(kCommentEnd, m_position + kCommentStart.size());
  if (end == std::wstring_view::npos) {
    // Takes all of the rest, so that the walk ends.
    m_position = m_text.size();
    return TextToken::kNone;
  }
  m_position = end + kCommentEnd.size();
  return TextToken::kComment;
}

TextToken TextLexer::TakeLineComment() {
  m_position = std::min(m_text.find_first_of(kLineEnds, m_position), m_text.size());
  return TextToken::kComment;
}

TextToken TextLexer::TakeWord() {
  const wchar_t* const start = m_text.data() + m_position;
  const wchar_t* const end =
      std::find_if_not(start, m_text.data() + m_text.size(), IsWordCharacter);
  if (end == start) {
    // An unknown character is a token as well, or the walk would stay here.
    ++m_position;
    return TextToken::kNone;
  }
  m_word = m_text.substr(m_position, static_cast<std::size_t>(end - start));
  m_position += m_word.size();
  return TextToken::kWord;
}

}  // namespace zvisp
