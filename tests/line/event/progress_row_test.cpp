// SPDX-License-Identifier: MIT
#include "line/event/progress_row.h"

#include "event/events.h"

#include <gtest/gtest.h>

namespace line {
namespace {

ProgressRow NewRow() {
  return {"comm-3", "ZP00000001", 1000000};
}

ProgressRow RowAt(int percent, std::uint64_t ms) {
  ProgressRow row = NewRow();
  row.Follow(At(0, StartEvent{}));
  row.Follow(At(0, MessageEvent{}, Phase::kProgram));
  row.Follow(ProgressAt(ms, percent));
  return row;
}

struct WidthRow {
  std::size_t columns;
  const char* text;
};

// 42 % after 31.5 s.
// clang-format off
constexpr WidthRow kWidths[] = {
  {79, "comm-3 ZP00000001 program [###########-----------------]  42 %  0:31, 0:43 left"},
  {200, "comm-3 ZP00000001 program [###############-----------------------]  42 %  0:31, 0:43 left"},
  {60, "comm-3 ZP00000001 program [###------]  42 %  0:31, 0:43 left"},
  {39, "comm-3 program [####------]  42 %  0:31"},
  {29, "comm-3 program  42 %  0:31"},
  {10, "comm-3 pro"},
};
// clang-format on

TEST(ProgressRow, LeavesOutTheLeastImportantWhereThereIsNoRoom) {
  for (const WidthRow& width : kWidths) {
    EXPECT_EQ(RowAt(42, 31500).Text(width.columns, 1031500), width.text) << width.columns;
  }
}

TEST(ProgressRow, WithoutAPercentageThereIsNoBar) {
  ProgressRow row = NewRow();
  EXPECT_EQ(row.Text(79, 1002000), "comm-3 ZP00000001 waits  0:02");
  row.Follow(At(5000, StartEvent{}));
  EXPECT_EQ(row.Text(79, 1067000), "comm-3 ZP00000001 program  1:02");
}

TEST(ProgressRow, APhaseStartsWithoutPercentageOfTheOneBefore) {
  ProgressRow row = RowAt(100, 60000);
  row.Follow(At(61000, MessageEvent{}, Phase::kReadBack));
  EXPECT_EQ(row.Text(79, 1062000), "comm-3 ZP00000001 read-back  1:02");
}

TEST(ProgressRow, RemainingTimeIsShownOnlyWhenItCanBeKnown) {
  const auto shows_remaining = [](const ProgressRow& row, std::uint64_t mono_ms) {
    return row.Text(79, mono_ms).find("left") != std::string::npos;
  };
  EXPECT_FALSE(shows_remaining(RowAt(2, 30000), 1030000));  // too early in percent
  EXPECT_FALSE(shows_remaining(RowAt(50, 1900), 1001900));  // too early in time
  EXPECT_TRUE(shows_remaining(RowAt(50, 2000), 1002000));
  EXPECT_FALSE(shows_remaining(RowAt(50, 2000), 1004000));   // overdue
  EXPECT_FALSE(shows_remaining(RowAt(100, 9000), 1009000));  // done
}

TEST(ProgressRow, ShowsNoControlCharactersOfASerial) {
  const ProgressRow row("comm-3", "ZP\x1b[31m\r1", 1000000);
  EXPECT_EQ(row.Text(79, 1000000), "comm-3 ZP1 waits  0:00");
}

}  // namespace
}  // namespace line
