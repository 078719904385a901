// SPDX-License-Identifier: MIT
//
// Sixteen displays at once, most of which fail in a way of their own. Every place has its own end
// in the output, in the record, in the journal of its display and in its flash.
#include <set>
#include <string>
#include <vector>

#include "line/support/batch_floor.h"
#include "support/files.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using testing::HasSubstr;

// What a flash holds of a firmware of two banks.
enum class Holds { kNothing, kFirstBank, kAll, kAllButABit };

struct Row {
  const char* faults;   // of the display
  const char* outcome;  // of the step and of the unit
  const char* state;
  const char* code;    // "null" without a result
  const char* signal;  // "-" without one
  Holds flash;
  std::size_t calls;  // that reached the display: the programming, and the read-back
  const char* text;   // what the table says of it
};

// clang-format off
const Row kRows[] = {
  // faults                 outcome        state        code   signal  flash              calls
  {"",                      "passed",      "identical", "0",     "-",  Holds::kAll,        2,
   "PASS  identical"},
  {"flip bank=1 bit=100",   "failed",      "uncertain", "23080", "-",  Holds::kAllButABit, 1,
   "FAIL  uncertain: program failed, code 0x5A28, last at 83 %"},
  {"slow ms=300",           "passed",      "identical", "0",     "-",  Holds::kAll,        2,
   "PASS  identical"},
  {"no-answer",             "unavailable", "untouched", "23081", "-",  Holds::kNothing,    1,
   "FAIL  untouched: program unavailable, code 0x5A29"},
  {"",                      "passed",      "identical", "0",     "-",  Holds::kAll,        2,
   "PASS  identical"},
  {"no-answer bank=1",      "failed",      "uncertain", "23088", "-",  Holds::kFirstBank,  1,
   "FAIL  uncertain: program failed, code 0x5A30, last at 50 %"},
  {"verify bank=0",         "failed",      "uncertain", "23080", "-",  Holds::kFirstBank,  1,
   "FAIL  uncertain: program failed, code 0x5A28, last at 33 %"},
  {"hang bank=1",           "timed_out",   "uncertain", "null",  "15", Holds::kFirstBank,  1,
   "FAIL  uncertain: program timed out, last at 50 %"},
  {"",                      "passed",      "identical", "0",     "-",  Holds::kAll,        2,
   "PASS  identical"},
  {"crash bank=1 at=write", "crashed",     "uncertain", "null",  "6",  Holds::kFirstBank,  1,
   "FAIL  uncertain: program crashed, last at 66 %, signal 6"},
  {"lie bank=0",            "different",   "different", "0",     "-",  Holds::kAllButABit, 2,
   "FAIL  different: program different in bank 0 at 0x000000"},
  {"lie bank=1 bit=12345",  "different",   "different", "0",     "-",  Holds::kAllButABit, 2,
   "FAIL  different: program different in bank 1 at 0x010607"},
  {"fail code=0x5A26",      "unavailable", "untouched", "23078", "-",  Holds::kNothing,    1,
   "FAIL  untouched: program unavailable, code 0x5A26"},
  {"fail code=0x177",       "failed",      "uncertain", "375",   "-",  Holds::kNothing,    1,
   "FAIL  uncertain: program failed, code 0x177"},
  {"no-answer call=2",      "failed",      "programmed", "23081", "-", Holds::kAll,        2,
   "FAIL  programmed: program failed, code 0x5A29"},
  {"slow ms=700",           "passed",      "identical", "0",     "-",  Holds::kAll,        2,
   "PASS  identical"},
};
// clang-format on

constexpr unsigned kPlaces = std::size(kRows);
constexpr unsigned kHanging = 8;
constexpr const char* kCounts =
    "5 passed, 5 failed, 2 different, 2 unavailable, 1 timed out, 1 crashed; "
    "2 untouched, 1 programmed, 5 identical, 2 different, 6 uncertain";

const Row& RowOf(unsigned place) {
  return kRows[place - 1];
}

Holds WhatItHolds(const std::string& flash, const std::string& firmware) {
  if (flash.empty()) return Holds::kNothing;
  if (flash == firmware) return Holds::kAll;
  int bits = 0;
  for (std::size_t i = 0; i < firmware.size() && i < flash.size(); ++i) {
    bits += __builtin_popcount(static_cast<unsigned char>(flash[i] ^ firmware[i]));
  }
  if (flash.size() == firmware.size() && bits == 1) return Holds::kAllButABit;
  EXPECT_EQ(flash.substr(0, kBankSize), firmware.substr(0, kBankSize));
  return Holds::kFirstBank;
}

class MixedFaults : public testing::Test {
 protected:
  MixedFaults() : m_floor(kPlaces, 2) {
    m_floor.GivenTables("[plugin]\nnothing_written = [0x5A26, 0x5A29]\n");
    m_floor.GivenSteps(std::string(kProgramStep) + "timeout_s = 8\n");
    for (unsigned place = 1; place <= kPlaces; ++place) {
      m_floor.AllDisplays().GivenFaults(place, RowOf(place).faults);
    }
  }

  // In the output and in the record, which have the same lines.
  void ExpectEvents(const std::string& events, const std::string& record) const {
    for (unsigned place = 1; place <= kPlaces; ++place) {
      SCOPED_TRACE("P" + std::to_string(place) + ": " + RowOf(place).faults);
      const std::string result = EventAt(events, "result", place);
      EXPECT_EQ(FieldOf(result, "outcome"), RowOf(place).outcome);
      EXPECT_EQ(FieldOf(result, "state"), RowOf(place).state);
      EXPECT_EQ(FieldOf(result, "code"), RowOf(place).code);
      EXPECT_EQ(FieldOf(result, "signal"), RowOf(place).signal);
      EXPECT_THAT(record, HasSubstr(result));
      const std::string end = EventAt(events, "unit_result", place);
      EXPECT_EQ(FieldOf(end, "outcome"), RowOf(place).outcome);
      EXPECT_EQ(FieldOf(end, "state"), RowOf(place).state);
      EXPECT_EQ(FieldOf(end, "unit"), "ZP" + std::to_string(place));
      EXPECT_EQ(FieldOf(end, "recorded"), "true");
      EXPECT_THAT(record, HasSubstr(end));
    }
  }

  // What the displays themselves say.
  void ExpectDisplays() const {
    const std::string firmware = m_floor.Firmware();
    for (unsigned place = 1; place <= kPlaces; ++place) {
      SCOPED_TRACE("P" + std::to_string(place) + ": " + RowOf(place).faults);
      EXPECT_EQ(m_floor.Noted(place, "call "), RowOf(place).calls);
      const bool has_flash = FileExists(m_floor.AllDisplays().File(place, "flash"));
      const std::string flash = has_flash ? m_floor.AllDisplays().Flash(place) : "";
      EXPECT_EQ(WhatItHolds(flash, firmware), RowOf(place).flash);
      EXPECT_EQ(m_floor.Noted(place, "erase ") > 0, RowOf(place).flash != Holds::kNothing);
    }
  }

  // It names exactly those that are uncertain, each with its run.
  void ExpectDoctor(const std::string& events) const {
    const RunResult doctor = m_floor.Doctor();
    EXPECT_EQ(doctor.status, 5);
    for (unsigned place = 1; place <= kPlaces; ++place) {
      SCOPED_TRACE("P" + std::to_string(place) + ": " + RowOf(place).faults);
      const std::string finding = EventAt(doctor.out, "finding", place);
      const bool is_uncertain = std::string(RowOf(place).state) == "uncertain";
      EXPECT_EQ(FieldOf(finding, "unit"), is_uncertain ? "ZP" + std::to_string(place) : "-");
      if (!is_uncertain) continue;
      EXPECT_EQ(FieldOf(finding, "run"), FieldOf(EventAt(events, "unit_result", place), "run"));
    }
  }

  BatchFloor m_floor;
};

TEST_F(MixedFaults, EveryPlaceHasItsOwnEnd) {
  const RunResult batch = RunCommand(m_floor.InJson());
  EXPECT_EQ(batch.status, 5) << batch.err;
  EXPECT_EQ(FieldOf(EventOf(batch.out, "end"), "exit_status"), "5");
  ExpectEvents(batch.out, m_floor.Record());
  ExpectDisplays();
  ExpectDoctor(batch.out);
  // One run for each place, and all others are over long before the one that hangs.
  std::set<std::string> runs;
  const std::uint64_t hang_ended = MsOf(EventAt(batch.out, "unit_result", kHanging));
  for (unsigned place = 1; place <= kPlaces; ++place) {
    const std::string end = EventAt(batch.out, "unit_result", place);
    runs.insert(FieldOf(end, "run"));
    if (place == kHanging) continue;
    EXPECT_LT(MsOf(end) + 2000, hang_ended) << "P" << place;
  }
  EXPECT_EQ(runs.size(), kPlaces);
}

TEST_F(MixedFaults, TheTableSaysSo) {
  const RunResult batch = RunCommand(m_floor.InWords());
  EXPECT_EQ(batch.status, 5);
  std::string table;
  for (unsigned place = 1; place <= kPlaces; ++place) {
    const std::string number = std::to_string(place);
    const std::string pad = place < 10 ? " " : "";
    table += "P" + number + pad + "  ZP" + number + pad + "  " + RowOf(place).text + "\n";
  }
  EXPECT_EQ(batch.out, table + kCounts + "\n");
  EXPECT_THAT(batch.err, HasSubstr("Perhaps half-written: P2, P6, P7, P8, P10, P14. "));
  ExpectDisplays();
}

// A station whose displays are all switched off: nothing to mend but the power.
TEST_F(MixedFaults, DisplaysThatDoNotAnswerAreNotAvailable) {
  for (unsigned place = 1; place <= kPlaces; ++place) {
    m_floor.AllDisplays().GivenFaults(place, "no-answer");
  }
  EXPECT_EQ(m_floor.RunBatch().status, 3);
  m_floor.AllDisplays().GivenFaults(1, "");
  EXPECT_EQ(m_floor.RunBatch().status, 1);
}

}  // namespace
