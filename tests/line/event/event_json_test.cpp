// SPDX-License-Identifier: MIT
//
// Every type of event as a line of JSON, and what the record's readers take from it.
#include "line/event/event_json.h"

#include "event/events.h"
#include "line/event/session.h"
#include "line/event/time_text.h"
#include "line/support/kept_events.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace line {
namespace {

constexpr const char* kFront =
    "\"time\":\"2026-11-21T12:00:00.007Z\",\"mono_ms\":1000007,"
    "\"session\":\"0192a0b0-0000-7000-8000-000000000001\",\"seq\":0,\"run\":\"r1\","
    "\"unit\":\"ZP00000001\",\"place\":\"comm-3\",\"comm\":3,\"step\":\"program\",\"step_index\":"
    "0,";

struct TypeRow {
  EventBody body;
  const char* type;
  const char* own;
};

HelloEvent FullHello() {
  HelloEvent hello;
  hello.tool_version = "1.0.9";
  hello.host = "line-1";
  hello.operator_name = "ann";
  hello.pid = 7;
  hello.plugin = FileFacts{"/p/libIsp.dylib", "aa"};
  hello.job = HelloEvent::Job{"r4", "/j.toml", "bb", {{"A1", "ZP1", 1}, {"A2", "ZP2", {}}}};
  return hello;
}

ResultEvent FullResult() {
  ResultEvent result;
  result.outcome = Outcome::kDifferent;
  result.state = UnitState::kDifferent;
  result.code = 0xFFFFFF00;
  result.code_source = "plug-in";
  result.meaning = "m";
  result.value = "1";
  result.expected = "2";
  result.signal = 9;
  result.last_percent = 50;
  result.compared_bytes = 65536;
  result.difference = Difference{1, 65536, 18, 0};
  result.duration_ms = 5;
  return result;
}

UnitResultEvent FullUnitResult() {
  return {Outcome::kTimedOut, UnitState::kUncertain, 2, "program", false, 9, "The hook said no"};
}

// clang-format off
const TypeRow kTypes[] = {
  {FullHello(), "hello", R"("tool_version":"1.0.9","pid":7,"host":"line-1","operator":"ann","plugin":{"path":"/p/libIsp.dylib","sha256":"aa"},"job":{"name":"r4","path":"/j.toml","sha256":"bb","units":[{"place":"A1","unit":"ZP1","comm":1},{"place":"A2","unit":"ZP2"}]}})"},
  {PlanEvent{"isp", {{1, "/a", 3, "aa", 7}}, {{7, 1, 0, 3, "aa"}}, {{"w", "W."}}}, "plan", R"("action":"isp","files":[{"slot":1,"path":"/a","bytes":3,"sha256":"aa","start_bank":7}],"banks":[{"target":7,"slot":1,"file_bank":0,"bytes":3,"sha256":"aa"}],"warnings":[{"id":"w","text":"W."}]})"},
  {PlanEvent{"resetmcu", {}, {}, {}}, "plan", R"("action":"resetmcu","files":[],"warnings":[]})"},
  {WaitEvent{WaitReason::kInterface, "In use"}, "wait", R"("for":"interface","text":"In use"})"},
  {UnitStartEvent{3, true}, "unit_start", R"("attempt":3,"unsigned":true})"},
  {StartEvent{2.5}, "start", R"("timeout_s":2.5})"},
  {StateEvent{UnitState::kProgramming, UnitState::kUntouched, "IspFlash"}, "state", R"("state":"programming","previous":"untouched","call":"IspFlash"})"},
  {ProgressEvent{42, 77}, "progress", R"("percent":42,"elapsed_ms":77})"},
  {MessageEvent{Source::kPlugin, Level::kWarning, "a\xff\n", true}, "message", "\"source\":\"plug-in\",\"level\":\"warning\",\"text\":\"a\xEF\xBF\xBD\\n\",\"truncated\":true}"},
  {FullResult(), "result", R"("outcome":"different","state":"different","code":4294967040,"code_hex":"0xFFFFFF00","code_source":"plug-in","meaning":"m","value":"1","expected":"2","signal":9,"last_percent":50,"compared_bytes":65536,"difference":{"bank":1,"address":65536,"expected":18,"actual":0},"duration_ms":5})"},
  {ResultEvent{}, "result", R"("outcome":"failed","state":"untouched","code":null,"code_hex":null,"duration_ms":0})"},
  {FullUnitResult(), "unit_result", R"("outcome":"timed_out","state":"uncertain","attempt":2,"failed_step":"program","recorded":false,"duration_ms":9,"reason":"The hook said no"})"},
  {ErrorEvent{"job", "No.", "a.toml", 3, 7}, "error", R"("id":"job","text":"No.","file":"a.toml","line":3,"column":7})"},
  {ResolvedEvent{"scrapped"}, "resolved", R"("note":"scrapped"})"},
  {FindingEvent{UnitState::kUncertain, 40, "t"}, "finding", R"("state":"uncertain","last_percent":40,"since":"t"})"},
  {CheckEvent{"loads", "is a library", CheckOutcome::kNotRun, "no"}, "check", R"("id":"loads","title":"is a library","outcome":"not_run","text":"no"})"},
  {SummaryEvent{{}, {}, {{CheckOutcome::kFailed, 1}}}, "summary", R"("outcomes":{},"states":{},"checks":{"failed":1}})"},
  {SummaryEvent{{{Outcome::kPassed, 2}}, {{UnitState::kIdentical, 2}}}, "summary", R"("outcomes":{"passed":2},"states":{"identical":2}})"},
  {EndEvent{5, true}, "end", R"("exit_status":5,"interrupted":true})"},
};
// clang-format on

TEST(EventJson, EveryTypeHasTheEnvelopeAndItsOwnFields) {
  static_assert(std::size(kTypes) == std::variant_size_v<EventBody> + 3,
                "each type, three of them twice");
  for (const TypeRow& row : kTypes) {
    EXPECT_EQ(ToJsonLine(At(7, row.body)),
              "{\"v\":1,\"type\":\"" + std::string(row.type) + "\"," + kFront + row.own + "\n");
  }
}

// One of each type, with all its fields, for the check against the schema.
TEST(EventJson, EveryTypeIsKeptForTheSchema) {
  const std::string hash(64, 'a');
  const std::string uuid = "0192a0b0-0000-7000-8000-000000000002";
  for (const TypeRow& row : kTypes) {
    Event event = At(7, row.body);
    event.where.run = uuid;
    event.where.phase = Phase::kReadBack;
    event.where.job_name = "r4";
    std::string text = ToJsonLine(event);
    for (const char* digits : {"\"aa\"", "\"bb\""}) {
      for (std::size_t at = text.find(digits); at != std::string::npos; at = text.find(digits))
        text.replace(at, 4, '"' + hash + '"');
    }
    const std::size_t since = text.find("\"since\":\"t\"");
    if (since != std::string::npos) text.replace(since + 9, 1, "2026-11-21T12:00:00.007Z");
    KeepForSchema(text);
    EXPECT_EQ(text.back(), '\n');
  }
}

TEST(EventJson, WhatDoesNotApplyIsAbsent) {
  Event event = At(7, EndEvent{});
  event.where = {};
  EXPECT_EQ(ToJsonLine(event),
            "{\"v\":1,\"type\":\"end\",\"time\":\"2026-11-21T12:00:00.007Z\",\"mono_ms\":1000007,"
            "\"session\":\"0192a0b0-0000-7000-8000-000000000001\",\"seq\":0,\"exit_status\":0,"
            "\"interrupted\":false}\n");
}

TEST(EventJson, ALineComesBackAsWhatTheReadersNeed) {
  const auto result = FromJsonLine(ToJsonLine(At(7, FullResult())));
  ASSERT_TRUE(result.has_value());
  EXPECT_EQ(result->type, "result");
  EXPECT_EQ(result->time, "2026-11-21T12:00:00.007Z");
  EXPECT_EQ(result->where.run, "r1");
  EXPECT_EQ(result->where.unit, "ZP00000001");
  EXPECT_EQ(result->where.comm, 3u);
  EXPECT_EQ(result->state, UnitState::kDifferent);
  EXPECT_EQ(result->outcome, Outcome::kDifferent);
  EXPECT_EQ(result->percent, 50);
  Event of_a_job = At(7, PassedUnit());
  of_a_job.where.job_name = "r4";
  EXPECT_EQ(FromJsonLine(ToJsonLine(of_a_job))->where.job_name, "r4");
  EXPECT_EQ(FromJsonLine(ToJsonLine(At(7, FullUnitResult())))->reason, "The hook said no");
  EXPECT_EQ(FromJsonLine(ToJsonLine(At(7, ProgressEvent{42, 1})))->percent, 42);
}

TEST(EventJson, WhatIsNoEventIsNothing) {
  for (const char* text : {"", "{", "[]", "7", "{\"v\":1}", "{\"type\":7}", "{\"type\":\"end\"} x",
                           "{\"v\":1,\"type\":\"sta"}) {
    EXPECT_FALSE(FromJsonLine(text).has_value()) << text;
  }
}

TEST(EventJson, FieldsOfTheWrongKindAreNothing) {
  const auto event = FromJsonLine(R"({"type":"state","state":3,"comm":"x","unit":[],"job":"j"})");
  ASSERT_TRUE(event.has_value());
  EXPECT_FALSE(event->state.has_value());
  EXPECT_FALSE(event->where.comm.has_value());
  EXPECT_EQ(event->where.unit, "");
}

class KeepingSink : public EventSink {
 public:
  void Take(const Event& event) override { m_events.push_back(event); }
  std::vector<Event> m_events;
};

TEST(Session, CountsWithoutGapsAndNamesItself) {
  KeepingSink first, second;
  Session session;
  session.Add(first);
  session.Add(second);
  session.Emit({}, EndEvent{});
  session.Emit({}, EndEvent{});
  ASSERT_EQ(first.m_events.size(), 2u);
  ASSERT_EQ(second.m_events.size(), 2u);
  EXPECT_EQ(first.m_events[0].seq, 0u);
  EXPECT_EQ(first.m_events[1].seq, 1u);
  EXPECT_EQ(first.m_events[0].session, session.Id());
  EXPECT_LE(first.m_events[0].mono_ms, first.m_events[1].mono_ms);
}

TEST(Session, UuidsHaveVersionSevenAndAscendWithTime) {
  const std::string uuid = NewUuid();
  EXPECT_THAT(uuid, testing::MatchesRegex("[0-9a-f]{8}-[0-9a-f]{4}-7[0-9a-f]{3}-[89ab][0-9a-f]{3}-"
                                          "[0-9a-f]{12}"));
  EXPECT_NE(uuid, NewUuid());
  EXPECT_LE(uuid.substr(0, 13), NewUuid().substr(0, 13));
}

TEST(TimeText, DurationsAreRoundedDown) {
  EXPECT_EQ(DurationText(7999), "0:07");
  EXPECT_EQ(DurationText(754000), "12:34");
  EXPECT_EQ(DurationText(3723000), "1:02:03");
}

}  // namespace
}  // namespace line
