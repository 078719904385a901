// SPDX-License-Identifier: MIT
//
// Everything that a plug-in can do wrong in the middle of programming: the worker bears it, the
// parent and the record know what became of the display.
#include <chrono>
#include <ostream>
#include <string>

#include "line/support/line_tool.h"
#include "support/files.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using testing::HasSubstr;

struct Misbehaviour {
  const char* name;
  const char* outcome;
  const char* state;
  const char* code;    // "null" without a result
  const char* signal;  // "-" without one
  int status;
};

void PrintTo(const Misbehaviour& misbehaviour, std::ostream* out) {
  *out << misbehaviour.name;
}

// clang-format off
const Misbehaviour kMisbehaviours[] = {
  // name                 outcome    state         code          signal  status
  {"crash",               "crashed", "uncertain",  "null",       "11",   5},
  {"abort",               "crashed", "uncertain",  "null",       "6",    5},
  {"kill",                "crashed", "uncertain",  "null",       "9",    5},
  {"throw",               "crashed", "uncertain",  "null",       "6",    5},
  {"exit",                "crashed", "uncertain",  "null",       "-",    5},
  {"exit-at-once",        "crashed", "uncertain",  "null",       "-",    5},
  {"overrun",             "crashed", "uncertain",  "null",       "11",   5},
  {"close-all",           "crashed", "uncertain",  "null",       "-",    5},
  {"garbage",             "crashed", "uncertain",  "null",       "-",    5},
  {"fork-that-survives",  "crashed", "uncertain",  "null",       "-",    5},
  {"fork-that-succeeds",  "failed",  "uncertain",  "7",          "-",    5},
  {"code-256",            "failed",  "uncertain",  "256",        "-",    5},
  {"code-minus-256",      "failed",  "uncertain",  "4294967040", "-",    5},
  {"lie",                 "failed",  "uncertain",  "5",          "-",    5},
  {"close-output",        "passed",  "programmed", "0",          "-",    0},
  {"flood-output",        "passed",  "programmed", "0",          "-",    0},
  {"flood-progress",      "passed",  "programmed", "0",          "-",    0},
  {"flood-messages",      "passed",  "programmed", "0",          "-",    0},
  {"change-directory",    "passed",  "programmed", "0",          "-",    0},
  {"change-locale",       "passed",  "programmed", "0",          "-",    0},
  {"change-signals",      "passed",  "programmed", "0",          "-",    0},
  {"child-that-stays",    "passed",  "programmed", "0",          "-",    0},
  {"succeed",             "passed",  "programmed", "0",          "-",    0},
};
// clang-format on

class BadPlugin : public testing::Test {
 protected:
  BadPlugin() {
    m_line.Tool().WithIspPlugin(TestPlugin("bad_plugin"));
    GivenFirmware(m_line / "fw.bin", 1000);
  }

  Command LineOf(const std::string& misbehaviour, const LineTool::Words& options = {}) const {
    Command command = m_line.Line("run", options, {"--isp", "--fw", "fw.bin", "--comm", "3"});
    command.environment["ZVISP_BAD_PLUGIN"] = misbehaviour;
    return command;
  }

  // The last result counts: a worker that lost its socket records what it knows as well.
  static void Expect(const Misbehaviour& expected, const std::string& events) {
    const std::vector<std::string> results = EventsOf(events, "result");
    ASSERT_FALSE(results.empty()) << events;
    const std::string& result = results.back();
    EXPECT_EQ(FieldOf(result, "outcome"), expected.outcome);
    EXPECT_EQ(FieldOf(result, "state"), expected.state);
    EXPECT_EQ(FieldOf(result, "code"), expected.code);
    EXPECT_EQ(FieldOf(result, "signal"), expected.signal);
    const std::string unit_result = EventsOf(events, "unit_result").back();
    EXPECT_EQ(FieldOf(unit_result, "outcome"), expected.outcome);
    EXPECT_EQ(FieldOf(unit_result, "state"), expected.state);
  }

  LineTool m_line;
};

class EveryMisbehaviour : public BadPlugin, public testing::WithParamInterface<Misbehaviour> {};

TEST_P(EveryMisbehaviour, HasItsOutcomeItsStateAndItsExitStatus) {
  const Misbehaviour& expected = GetParam();
  const RunResult run = RunCommand(LineOf(expected.name));
  EXPECT_EQ(run.status, expected.status) << run.out << run.err;
  EXPECT_EQ(run.signal, 0);
  Expect(expected, run.out);
  Expect(expected, m_line.Record());
  EXPECT_EQ(FieldOf(EventOf(run.out, "end"), "exit_status"), std::to_string(expected.status));
}

INSTANTIATE_TEST_SUITE_P(OfAPlugin, EveryMisbehaviour, testing::ValuesIn(kMisbehaviours),
                         [](const auto& misbehaviour) {
                           std::string name = misbehaviour.param.name;
                           for (char& character : name) {
                             if (character == '-') character = '_';
                           }
                           return name;
                         });

TEST_F(BadPlugin, WhatItPrintedIsReportedUpToALimit) {
  const RunResult little = RunCommand(LineOf("lie"));
  EXPECT_THAT(little.out, HasSubstr("\"source\":\"output\""));
  EXPECT_THAT(little.out, HasSubstr("Success"));
  const RunResult much = RunCommand(LineOf("flood-output"));
  EXPECT_LT(much.out.size(), 2u * 1024 * 1024);
  EXPECT_THAT(much.out, HasSubstr(" more bytes of output were not kept"));
}

TEST_F(BadPlugin, ATimeOutEndsAHang) {
  const RunResult run = RunCommand(LineOf("hang", {"--timeout", "0.5"}));
  EXPECT_EQ(run.status, 5);
  Expect({"", "timed_out", "uncertain", "null", "15", 5}, run.out);
}

TEST_F(BadPlugin, ATimeOutEndsAHangThatBlocksSignals) {
  const auto begin = std::chrono::steady_clock::now();
  const RunResult run = RunCommand(LineOf("hang-without-signals", {"--timeout", "0.5"}));
  EXPECT_GE(std::chrono::steady_clock::now() - begin, std::chrono::seconds(10));
  EXPECT_EQ(run.status, 5);
  Expect({"", "timed_out", "uncertain", "null", "9", 5}, run.out);
}

TEST_F(BadPlugin, WhatItHasStartedEndsWithIt) {
  EXPECT_EQ(RunCommand(LineOf("child-that-stays")).status, 0);
  // The child would still hold the lock of the interface.
  EXPECT_EQ(RunCommand(LineOf("succeed")).status, 0);
}

}  // namespace
