// SPDX-License-Identifier: MIT
//
// TextLexer: the tokens of C-like initialiser text such as "{ 0x00, 0xFF } // first block".
#ifndef ZVISP_BASE_TEXT_LEXER_H_
#define ZVISP_BASE_TEXT_LEXER_H_

#include <cstddef>
#include <string_view>

namespace zvisp {

// The numbers are the results of GetNextWord: never renumber them.
enum class TextToken {
  kNone = 0,        // blanks up to the end, a comment without an end, or any other character
  kWord = 1,        // a run of ASCII letters, digits and "_"
  kComment = 2,     // "/*" with its "*/", or "//" without its newline
  kLineEnd = 3,     // one CR or LF
  kComma = 4,       // ","
  kOpenBrace = 5,   // "{"
  kCloseBrace = 6,  // "}"
};

// Walks over a text that it does not own. Every token takes at least one character, so a walk that
// stops at the end of the text ends.
class TextLexer {
 public:
  // A position past the end counts as the end and stays where it is.
  TextLexer(std::wstring_view text, std::size_t position) : m_text(text), m_position(position) {}

  bool AtEnd() const { return m_position >= m_text.size(); }
  // Index of the first character that no token has taken yet.
  std::size_t Position() const { return m_position; }
  // The characters of the last kWord token: a view into the text.
  std::wstring_view Word() const { return m_word; }

  // Skips blanks (tabs and spaces) and takes the next token; kNone at the end of the text.
  TextToken Next();

 private:
  TextToken TakeBlockComment();
  TextToken TakeLineComment();
  TextToken TakeWord();

  std::wstring_view m_text;
  std::size_t m_position;
  std::wstring_view m_word;
};

}  // namespace zvisp

#endif  // ZVISP_BASE_TEXT_LEXER_H_
