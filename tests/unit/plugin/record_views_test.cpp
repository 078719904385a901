// SPDX-License-Identifier: MIT
//
// The record headers have several views: with operations for the tool, plain for plug-ins, and C.
// A program may hold two of them, so they must agree on every byte.
#include <vector>

#include "unit/plugin/views/plugin_views.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

std::vector<std::size_t> Layout(const std::size_t* (*view)(std::size_t*)) {
  std::size_t count = 0;
  const std::size_t* const values = view(&count);
  return {values, values + count};
}

TEST(RecordViews, APluginInCxxSeesTheLayoutOfTheTool) {
  EXPECT_EQ(Layout(LayoutInCxxPlugin), Layout(LayoutInTheTool));
}

TEST(RecordViews, APluginInCSeesTheLayoutOfTheTool) {
  EXPECT_EQ(Layout(LayoutInCPlugin), Layout(LayoutInTheTool));
}

TEST(RecordViews, AllRecordsAndFieldsAreCompared) {
  EXPECT_EQ(Layout(LayoutInTheTool).size(), 84u);
  EXPECT_THAT(Layout(LayoutInTheTool), testing::IsSupersetOf({275328u, 271368u, 1840u, 275308u}));
}

}  // namespace
