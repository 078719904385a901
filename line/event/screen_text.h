// SPDX-License-Identifier: MIT
//
// Text from elsewhere (serials, paths, what a plug-in prints) made fit for a screen.
#ifndef ZVISP_LINE_EVENT_SCREEN_TEXT_H_
#define ZVISP_LINE_EVENT_SCREEN_TEXT_H_

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace line {

// The text in one line: escape sequences and control characters are left out, tabs become blanks,
// newlines too; bytes that are not UTF-8 become U+FFFD.
std::string CleanText(std::string_view text);

// The lines of a text, each cleaned; a newline at the end starts no further line.
std::vector<std::string> CleanLines(std::string_view text);

// Columns that a cleaned text takes on a terminal.
std::size_t Columns(std::string_view text);

// The text with blanks after it, so that it takes at least so many columns.
std::string Padded(std::string text, std::size_t columns);

// The longest start of a cleaned text that takes at most so many columns.
std::string CutToColumns(std::string_view text, std::size_t columns);

}  // namespace line

#endif  // ZVISP_LINE_EVENT_SCREEN_TEXT_H_
