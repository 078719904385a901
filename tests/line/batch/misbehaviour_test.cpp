// SPDX-License-Identifier: MIT
//
// Sixteen plug-ins at once that do wrong, each in a way of its own: crash, hang, flood, fork. Each
// harms its own display alone.
#include <iterator>
#include <string>

#include "line/job/sha256.h"
#include "line/support/batch_floor.h"
#include "support/files.h"

#include <gmock/gmock.h>
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

// One display after the other, so that the second display has what the first one left.
void GivenOneAfterTheOther(BatchFloor& floor, const std::string& tables) {
  floor.Tool().WithIspPlugin(TestPlugin("bad_plugin"));
  floor.GivenTables("[line]\njobs_at_once = 1\n" + tables);
  floor.GivenSteps(
      "[[step]]\nname = \"program\"\n"
      "zvisp = [\"--isp\", \"--fw1\", \"fw.bin\", \"--bank1\", \"0\"]\n");
}

TEST(APluginThatChangesItsInput, HarmsNoOtherDisplay) {
  BatchFloor floor(2);
  GivenOneAfterTheOther(floor, "");
  Command command = floor.InJson();
  command.environment["ZVISP_BAD_PLUGIN_1"] = "change-file";
  command.environment["ZVISP_BAD_PLUGIN_2"] = "succeed";
  const RunResult batch = RunCommand(command);
  EXPECT_EQ(batch.status, 5) << batch.err;
  EXPECT_EQ(EndsOf(batch.out, 2), (LineTool::Words{"P1 failed uncertain", "P2 failed untouched"}));
  EXPECT_THAT(EventAt(batch.out, "result", 1), testing::HasSubstr("changed while it was used"));
  EXPECT_THAT(EventAt(batch.out, "result", 2), testing::HasSubstr("is not what was checked"));
}

TEST(APluginThatIsReplaced, IsNotUsedForAnyOtherDisplay) {
  const std::string hash = *line::Sha256OfFile(TestPlugin("bad_plugin"));
  BatchFloor floor(2);
  GivenOneAfterTheOther(floor, "[plugin]\nsha256 = \"" + hash +
                                   "\"\n[hook]\nbefore_unit = [\"./replace\", \"{place}\"]\n");
  const std::string plugin = floor.Tool().IspPluginPath();
  floor.GivenScript(
      "replace", "[ $1 = P1 ] || { cp " + plugin + " new; echo >> new; mv new " + plugin + "; }");
  Command command = floor.InJson();
  command.environment["ZVISP_BAD_PLUGIN"] = "succeed";
  const RunResult batch = RunCommand(command);
  EXPECT_EQ(batch.status, 1) << batch.err;
  EXPECT_EQ(EndsOf(batch.out, 2), (LineTool::Words{"P1 passed programmed", "P2 failed untouched"}));
  EXPECT_THAT(EventAt(batch.out, "result", 2),
              testing::HasSubstr(plugin + " is not what was checked"));
}

}  // namespace
