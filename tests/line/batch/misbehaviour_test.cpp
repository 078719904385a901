// SPDX-License-Identifier: MIT
//
// Sixteen plug-ins at once that do wrong, each in a way of its own: crash, hang, flood, fork. Each
// harms its own display alone.
#include <iterator>
#include <string>

#include "line/support/batch_floor.h"
#include "support/files.h"

#include <gtest/gtest.h>

namespace {

struct Row {
  const char* misbehaviour;
  const char* outcome;
  const char* state;
};

// clang-format off
const Row kRows[] = {
  // misbehaviour        outcome      state
  {"succeed",            "passed",    "programmed"},
  {"crash",              "crashed",   "uncertain"},
  {"flood-output",       "passed",    "programmed"},
  {"exit",               "crashed",   "uncertain"},
  {"hang",               "timed_out", "uncertain"},
  {"fork-that-succeeds", "failed",    "uncertain"},
  {"close-all",          "crashed",   "uncertain"},
  {"succeed",            "passed",    "programmed"},
  {"garbage",            "crashed",   "uncertain"},
  {"kill",               "crashed",   "uncertain"},
  {"flood-progress",     "passed",    "programmed"},
  {"overrun",            "crashed",   "uncertain"},
  {"child-that-stays",   "passed",    "programmed"},
  {"flood-messages",     "passed",    "programmed"},
  {"throw",              "crashed",   "uncertain"},
  {"succeed",            "passed",    "programmed"},
};
// clang-format on

constexpr unsigned kPlaces = std::size(kRows);
constexpr unsigned kHanging = 5;

TEST(MisbehaviourAtOnce, HarmsItsOwnDisplayAlone) {
  BatchFloor floor(kPlaces);
  floor.Tool().WithIspPlugin(TestPlugin("bad_plugin"));
  floor.GivenSteps(
      "[[step]]\nname = \"program\"\ntimeout_s = 15\n"
      "zvisp = [\"--isp\", \"--fw1\", \"fw.bin\", \"--bank1\", \"0\"]\n");
  Command command = floor.InJson();
  for (unsigned place = 1; place <= kPlaces; ++place) {
    command.environment["ZVISP_BAD_PLUGIN_" + std::to_string(place)] =
        kRows[place - 1].misbehaviour;
  }
  const RunResult batch = RunCommand(command);
  EXPECT_EQ(batch.status, 5) << batch.err;
  const std::uint64_t hang_ended = MsOf(EventAt(batch.out, "unit_result", kHanging));
  for (unsigned place = 1; place <= kPlaces; ++place) {
    const Row& row = kRows[place - 1];
    SCOPED_TRACE(row.misbehaviour);
    const std::string end = EventAt(batch.out, "unit_result", place);
    EXPECT_EQ(FieldOf(end, "outcome"), row.outcome);
    EXPECT_EQ(FieldOf(end, "state"), row.state);
    if (place != kHanging) {
      EXPECT_LT(MsOf(end) + 2000, hang_ended);
    }
  }
  const RunResult doctor = floor.Doctor();
  EXPECT_EQ(doctor.status, 5);
  EXPECT_EQ(EventsOf(doctor.out, "finding").size(), 9u);
}

}  // namespace
