// SPDX-License-Identifier: MIT
#include <set>
#include <string>

#include "line/plugin_check/check.h"

#include <gtest/gtest.h>

namespace line {
namespace {

TEST(CheckTable, HasEachIdOnce) {
  std::set<std::string> ids;
  for (const CheckRow& row : AllChecks()) {
    EXPECT_TRUE(ids.insert(row.id).second) << row.id;
    EXPECT_EQ(FindCheck(row.id), &row);
  }
  EXPECT_EQ(ids.size(), 26u);
  EXPECT_EQ(FindCheck("no such check"), nullptr);
}

// What later rows depend on has to be known before them.
TEST(CheckTable, BeginsWithTheOneCheckThatNeedsNothing) {
  EXPECT_EQ(AllChecks().front().needs, Needs::kNothing);
  int needing_nothing = 0;
  bool exports_seen = false;
  for (const CheckRow& row : AllChecks()) {
    needing_nothing += row.needs == Needs::kNothing ? 1 : 0;
    exports_seen = exports_seen || std::string(row.id) == "sign-exports";
    EXPECT_TRUE(exports_seen || row.needs < Needs::kExports) << row.id;
  }
  EXPECT_EQ(needing_nothing, 1);
}

// A table of 80 columns has room for a title and a short text next to it.
TEST(CheckTable, HasTitlesThatFitTheTable) {
  for (const CheckRow& row : AllChecks()) {
    EXPECT_LT(std::string(row.title).size(), 39u) << row.id;
  }
}

}  // namespace
}  // namespace line
