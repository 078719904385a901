// SPDX-License-Identifier: MIT
//
// Hooks of a job, as shell scripts next to it: the one that may refuse a display, and the one that
// gets the result and changes nothing.
#include <string>
#include <vector>

#include "line/support/batch_floor.h"
#include "support/files.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using testing::HasSubstr;
using testing::StartsWith;
using Words = LineTool::Words;

constexpr const char* kAsk = "[hook]\nbefore_unit = [\"./may\", \"{unit}\", \"{place}\"]\n";
constexpr const char* kTell = "[hook]\non_result = [\"./tell\", \"{unit}\"]\n";

std::string ReasonAt(const std::string& events, unsigned place) {
  return FieldOf(EventAt(events, "unit_result", place), "reason");
}

// The texts of the warnings about a place.
Words WarningsAt(const std::string& events, unsigned place) {
  Words texts;
  for (const std::string& message : EventsAt(events, "message", place)) {
    if (FieldOf(message, "level") == "warning") texts.push_back(FieldOf(message, "text"));
  }
  return texts;
}

TEST(HookBefore, MaySayNoHangOrPrintAGigabyteForItsOwnDisplayAlone) {
  BatchFloor floor(5);
  floor.GivenTables(std::string(kAsk) + "timeout_s = 8\n");
  floor.GivenScript("may",
                    "case $1 in\n"
                    "ZP1) echo \"$1 at $2 is blocked\"; echo more; exit 3;;\n"
                    "ZP2) echo thinking; exec sleep 300;;\n"
                    "ZP3) exec head -c 1000000000 /dev/zero;;\n"
                    "ZP4) kill -KILL $$;;\n"
                    "esac");
  const RunResult batch = floor.RunBatch();
  EXPECT_EQ(batch.status, 1);
  EXPECT_EQ(EndsOf(batch.out, 5),
            (Words{"P1 refused untouched", "P2 refused untouched", "P3 passed identical",
                   "P4 refused untouched", "P5 passed identical"}));
  EXPECT_EQ(ReasonAt(batch.out, 1), "./may ended with exit status 3: ZP1 at P1 is blocked");
  EXPECT_EQ(ReasonAt(batch.out, 2), "./may did not end within 8 s: thinking");
  EXPECT_EQ(ReasonAt(batch.out, 4), "./may was ended by signal 9 (Killed)");
  EXPECT_EQ(ReasonAt(batch.out, 5), "-");
  for (const unsigned place : {1u, 2u, 4u}) {
    EXPECT_FALSE(floor.WasCalled(place)) << place;
    EXPECT_EQ(EventsAt(batch.out, "unit_start", place).size(), 0u);
  }
  // What it prints fills neither the output nor the record.
  EXPECT_LT(batch.out.size() + batch.err.size() + floor.Record().size(), 200000u);
  EXPECT_LT(MsOf(EventAt(batch.out, "unit_result", 5)) + 2000,
            MsOf(EventAt(batch.out, "unit_result", 2)));
  EXPECT_EQ(floor.Doctor().status, 0);
}

TEST(HookBefore, ThatIsMissingRefusesItsDisplay) {
  BatchFloor floor(2);
  floor.GivenTables("[hook]\nbefore_unit = [\"./may-{unit}\"]\n");
  floor.GivenScript("may-ZP2", "exit 0");
  const RunResult batch = floor.RunBatch();
  EXPECT_EQ(batch.status, 1);
  EXPECT_EQ(EndsOf(batch.out, 2), (Words{"P1 refused untouched", "P2 passed identical"}));
  EXPECT_FALSE(floor.WasCalled(1));
  EXPECT_THAT(ReasonAt(batch.out, 1),
              StartsWith("The hook ./may-ZP1 cannot be started: No such file or directory; "));
}

TEST(HookOnResult, GetsTheLineOfTheEventForEveryDisplay) {
  BatchFloor floor(5);
  floor.GivenTables("[line]\njobs_at_once = 1\nstop_after = 1\n" + std::string(kAsk) +
                    "on_result = [\"./tell\", \"{unit}\"]\n");
  floor.GivenScript("may", "test $1 != ZP2");
  // It runs in the job's directory.
  floor.GivenScript("tell", "cat > told-$1");
  floor.AllDisplays().GivenFaults(3, "fail bank=0");
  const RunResult batch = floor.RunBatch();
  EXPECT_EQ(batch.status, 5);
  EXPECT_EQ(EndsOf(batch.out, 5),
            (Words{"P1 passed identical", "P2 refused untouched", "P3 failed uncertain",
                   "P4 refused untouched", "P5 refused untouched"}));
  for (unsigned place = 1; place <= 5; ++place) {
    EXPECT_EQ(ReadWholeFile(floor.NextToJob("told-ZP" + std::to_string(place))),
              EventAt(batch.out, "unit_result", place) + "\n");
  }
}

// Fails for ZP1, hangs for ZP2, prints a gigabyte for ZP3.
constexpr const char* kBadTeller =
    "case $1 in\n"
    "ZP1) echo 'no connection'; exit 7;;\n"
    "ZP2) exec sleep 300;;\n"
    "ZP3) exec head -c 1000000000 /dev/zero;;\n"
    "esac";

class HookThatFails : public testing::TestWithParam<bool> {
 protected:
  HookThatFails() : m_floor(4) {
    m_floor.GivenTables(std::string(kTell) + "timeout_s = 6\n" +
                        (GetParam() ? "required = true\n" : ""));
    m_floor.GivenScript("tell", kBadTeller);
  }
  BatchFloor m_floor;
};

TEST_P(HookThatFails, ChangesNothingButTheExitStatusWhenItIsRequired) {
  const RunResult batch = m_floor.RunBatch();
  EXPECT_EQ(batch.status, GetParam() ? 4 : 0) << batch.out;
  EXPECT_EQ(EndsOf(batch.out, 4), (Words{"P1 passed identical", "P2 passed identical",
                                         "P3 passed identical", "P4 passed identical"}));
  EXPECT_EQ(WarningsAt(batch.out, 1), (Words{"./tell ended with exit status 7: no connection"}));
  EXPECT_EQ(WarningsAt(batch.out, 2), (Words{"./tell did not end within 6 s"}));
  EXPECT_EQ(WarningsAt(batch.out, 3), Words{});
  EXPECT_EQ(WarningsAt(batch.out, 4), Words{});
  for (unsigned place = 1; place <= 4; ++place) {
    const std::string end = EventAt(batch.out, "unit_result", place);
    EXPECT_EQ(FieldOf(end, "recorded"), "true");
    EXPECT_THAT(m_floor.Record(), HasSubstr(end));
    EXPECT_EQ(m_floor.AllDisplays().Flash(place), m_floor.Firmware());
  }
  EXPECT_LT(batch.out.size() + m_floor.Record().size(), 200000u);
  EXPECT_EQ(m_floor.Doctor().status, 0);
}

INSTANTIATE_TEST_SUITE_P(OfAJob, HookThatFails, testing::Bool(), [](const auto& required) {
  return required.param ? "Required" : "NotRequired";
});

TEST(HookOnResult, ThatIsRequiredNeverHidesADisplayInDoubt) {
  BatchFloor floor(2);
  floor.GivenTables(std::string(kTell) + "required = true\n");
  floor.GivenScript("tell", "exit 1");
  floor.AllDisplays().GivenFaults(2, "fail bank=0");
  const RunResult batch = floor.RunBatch();
  EXPECT_EQ(batch.status, 5);
  EXPECT_EQ(EndsOf(batch.out, 2), (Words{"P1 passed identical", "P2 failed uncertain"}));
}

// With one display at a time, the next one does not wait for what the hook does about the last.
TEST(HookOnResult, ThatHangsHoldsUpNoOtherDisplay) {
  BatchFloor floor(3);
  floor.GivenTables("[line]\njobs_at_once = 1\n" + std::string(kTell) + "timeout_s = 6\n");
  floor.GivenScript("tell", "test $1 != ZP1 || exec sleep 300");
  const RunResult batch = floor.RunBatch();
  EXPECT_EQ(batch.status, 0);
  const std::uint64_t first = MsOf(EventAt(batch.out, "unit_result", 1));
  EXPECT_LT(MsOf(EventAt(batch.out, "unit_result", 3)), first + 4000);
  EXPECT_GE(MsOf(EventOf(batch.out, "end")), first + 6000);
  EXPECT_EQ(WarningsAt(batch.out, 1), (Words{"./tell did not end within 6 s"}));
}

}  // namespace
