// SPDX-License-Identifier: MIT
//
// The disk of the record is full in the middle of a batch: what runs is finished, nothing more is
// touched, and doctor names what was lost.
#include <filesystem>
#include <string>

#include "line/support/batch_floor.h"
#include "line/support/small_disk.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

constexpr unsigned kPlaces = 12;
constexpr unsigned kAtOnce = 6;

std::string RecordFileIn(const std::string& data) {
  for (const auto& entry : std::filesystem::directory_iterator(data + "/journal")) {
    if (entry.path().extension() == ".jsonl") return entry.path().string();
  }
  return "";
}

TEST(BatchOnAFullDisk, TouchesNothingMore) {
  BatchFloor floor(kPlaces);
  const SmallDisk disk(floor.DataDirectory(), 20 * 1024);
  if (!disk.IsThere()) GTEST_SKIP() << "a small disk needs Linux and the rights of root";
  floor.GivenTables("[line]\njobs_at_once = " + std::to_string(kAtOnce) + "\n");
  for (unsigned place = 1; place <= kPlaces; ++place)
    floor.AllDisplays().GivenFaults(place, "slow ms=1500");
  StartedRun started(floor.InJson());
  for (unsigned place = 1; place <= kAtOnce; ++place)
    ASSERT_TRUE(floor.AllDisplays().WaitForJournal(place, "call n=1 "));
  disk.Fill(RecordFileIn(floor.DataDirectory()));
  const RunResult batch = started.Wait();
  EXPECT_EQ(batch.status, 4) << batch.err;
  const LineTool::Words ends = EndsOf(batch.out, kPlaces);
  for (unsigned place = 1; place <= kPlaces; ++place) {
    SCOPED_TRACE(ends[place - 1]);
    const bool ran = place <= kAtOnce;
    EXPECT_THAT(ends[place - 1],
                testing::EndsWith(ran ? " passed identical" : " unavailable untouched"));
    EXPECT_EQ(FieldOf(EventAt(batch.out, "unit_result", place), "recorded"), "false");
    EXPECT_EQ(floor.WasCalled(place), ran);
  }
  disk.MakeRoom();
  const RunResult doctor = floor.Doctor();
  EXPECT_EQ(doctor.status, 5);
  for (unsigned place = 1; place <= kPlaces; ++place) {
    EXPECT_EQ(EventsAt(doctor.out, "finding", place).size(), place <= kAtOnce ? 1u : 0u) << place;
  }
}

}  // namespace
