// SPDX-License-Identifier: MIT
//
// Jobs of several steps: the first that does not pass ends its display, and no other.
#include <string>

#include "line/support/batch_floor.h"
#include "support/files.h"

#include <gtest/gtest.h>

namespace {

using Words = LineTool::Words;

constexpr const char* kSteps = R"([[step]]
name = "program"
zvisp = ["--isp", "--fw1", "fw.bin", "--bank1", "0"]
[[step]]
name = "scaler type"
zvisp = ["--getscalertype"]
expect = 3
[[step]]
name = "version"
)";

std::string Hex(const std::string& bytes) {
  constexpr const char* kDigits = "0123456789ABCDEF";
  std::string text;
  for (const char byte : bytes) {
    const auto value = static_cast<unsigned char>(byte);
    text += {kDigits[value >> 4], kDigits[value & 15], ' '};
  }
  text.pop_back();
  return text;
}

class Steps : public testing::Test {
 protected:
  Steps() : m_floor(6, 2) {
    m_floor.GivenTables("[plugin]\nnothing_written = [0x5A29]\n");
    m_version = m_floor.Firmware().substr(0x10010, 4);
    m_floor.GivenSteps(std::string(kSteps) + "read = { addr = 0x10010, len = 4, equals = \"" +
                       Hex(m_version) + "\" }\n");
    for (unsigned place = 1; place <= 6; ++place)
      GivenScalerType(place, 3);
  }

  void GivenScalerType(unsigned comm, unsigned type) const {
    GivenFile(m_floor.AllDisplays().File(comm, "identity"),
              "scaler_type = " + std::to_string(type) + "\n");
  }

  // "program passed programmed" for each step at a place.
  static Words StepsAt(const std::string& events, unsigned place) {
    Words steps;
    for (const std::string& result : EventsAt(events, "result", place)) {
      steps.push_back(FieldOf(result, "step") + " " + FieldOf(result, "outcome") + " " +
                      FieldOf(result, "state"));
    }
    EXPECT_EQ(EventsAt(events, "start", place).size(), steps.size());
    return steps;
  }

  BatchFloor m_floor;
  std::string m_version;
};

const Words kAllPass = {"program passed programmed", "scaler type passed programmed",
                        "version passed programmed"};

TEST_F(Steps, TheFirstThatDoesNotPassEndsItsDisplayAlone) {
  m_floor.AllDisplays().GivenFaults(2, "fail bank=1");
  GivenScalerType(3, 4);
  // A bit of the version that nothing but the third step looks at.
  m_floor.AllDisplays().GivenFaults(4, "lie bank=1 bit=129");
  m_floor.AllDisplays().GivenFaults(5, "no-answer call=3");
  const RunResult batch = m_floor.RunBatch();
  EXPECT_EQ(batch.status, 5);
  EXPECT_EQ(StepsAt(batch.out, 1), kAllPass);
  EXPECT_EQ(StepsAt(batch.out, 2), (Words{"program failed uncertain"}));
  EXPECT_EQ(StepsAt(batch.out, 3),
            (Words{"program passed programmed", "scaler type failed programmed"}));
  EXPECT_EQ(StepsAt(batch.out, 4),
            (Words{"program passed programmed", "scaler type passed programmed",
                   "version different programmed"}));
  EXPECT_EQ(StepsAt(batch.out, 5),
            (Words{"program passed programmed", "scaler type passed programmed",
                   "version failed programmed"}));
  EXPECT_EQ(StepsAt(batch.out, 6), kAllPass);
  EXPECT_EQ(EndsOf(batch.out, 6),
            (Words{"P1 passed programmed", "P2 failed uncertain", "P3 failed programmed",
                   "P4 different programmed", "P5 failed programmed", "P6 passed programmed"}));
  Words failed_steps;
  for (unsigned place = 1; place <= 6; ++place)
    failed_steps.push_back(FieldOf(EventAt(batch.out, "unit_result", place), "failed_step"));
  EXPECT_EQ(failed_steps, (Words{"-", "program", "scaler type", "version", "version", "-"}));
  EXPECT_EQ(m_floor.Noted(2, "call "), 1u);
  EXPECT_EQ(m_floor.Noted(3, "call "), 2u);
  EXPECT_EQ(m_floor.Noted(6, "call "), 3u);
}

TEST_F(Steps, WhatAStepFoundIsReported) {
  GivenScalerType(1, 4);
  m_floor.AllDisplays().GivenFaults(2, "lie bank=1 bit=129");
  const RunResult batch = m_floor.RunBatch();
  EXPECT_EQ(batch.status, 1);
  const std::string type = EventsAt(batch.out, "result", 1).at(1);
  EXPECT_EQ(FieldOf(type, "value"), "4");
  EXPECT_EQ(FieldOf(type, "expected"), "3");
  const std::string version = EventsAt(batch.out, "result", 2).at(2);
  std::string changed = m_version;
  changed[0] = static_cast<char>(changed[0] ^ 2);
  EXPECT_EQ(FieldOf(version, "value"), Hex(changed));
  EXPECT_EQ(FieldOf(version, "expected"), Hex(m_version));
  EXPECT_EQ(FieldOf(version, "compared_bytes"), "4");
}

// All steps of a display are one run.
TEST_F(Steps, AreOneRun) {
  const RunResult batch = m_floor.RunBatch();
  EXPECT_EQ(batch.status, 0) << batch.out;
  for (unsigned place = 1; place <= 6; ++place) {
    const std::string run = FieldOf(EventAt(batch.out, "unit_start", place), "run");
    for (const std::string& result : EventsAt(batch.out, "result", place))
      EXPECT_EQ(FieldOf(result, "run"), run);
    EXPECT_EQ(FieldOf(EventAt(batch.out, "unit_result", place), "run"), run);
  }
  EXPECT_EQ(m_floor.Doctor().status, 0);
}

}  // namespace
