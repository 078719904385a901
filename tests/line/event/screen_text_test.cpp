// SPDX-License-Identifier: MIT
#include "line/event/screen_text.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace line {
namespace {

struct CleanRow {
  std::string_view text, clean;
};

constexpr CleanRow kRows[] = {
    {"plain", "plain"},
    {"a\tb\nc", "a b c"},
    {"\x1b[1;31mred\x1b[m", "red"},
    {"\x1b]x", "x"},
    {"\x1b", ""},
    {"a\r\b\x7f\x01z", "az"},
    {"\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80", "\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80"},
    {"\xC2\x9B!", "!"},                                        // a control of 8 bits
    {"a\xFFz\xC3", "a\xEF\xBF\xBDz\xEF\xBF\xBD"},              // no UTF-8
    {"\xC0\xAF", "\xEF\xBF\xBD\xEF\xBF\xBD"},                  // longer than it must be
    {"\xED\xA0\x80", "\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD"},  // half a pair
};

TEST(ScreenText, LeavesOutWhatWouldMoveTheCursor) {
  for (const CleanRow& row : kRows)
    EXPECT_EQ(CleanText(row.text), row.clean);
}

TEST(ScreenText, LinesEndAtNewlines) {
  EXPECT_THAT(CleanLines("a\r\n\nb"), testing::ElementsAre("a", "", "b"));
  EXPECT_THAT(CleanLines("a\n"), testing::ElementsAre("a"));
  EXPECT_THAT(CleanLines(""), testing::IsEmpty());
}

TEST(ScreenText, WideCharactersTakeTwoColumns) {
  EXPECT_EQ(Columns("a\xE6\xB1\x89z"), 4u);
  EXPECT_EQ(Columns("e\xCC\x81"), 1u);
  EXPECT_EQ(CutToColumns("a\xE6\xB1\x89z", 2), "a");
  EXPECT_EQ(CutToColumns("a\xE6\xB1\x89z", 3), "a\xE6\xB1\x89");
}

}  // namespace
}  // namespace line
