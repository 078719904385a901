// SPDX-License-Identifier: MIT
//
// A batch as the printers for people print it, byte for byte.
#include <string>
#include <vector>

#include "event/batch_events.h"
#include "event/printed_by.h"
#include "line/event/event_text.h"
#include "line/event/line_printers.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace line {
namespace {

using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;

void Play(Printer& printer, const std::vector<Event>& events) {
  for (const Event& event : events)
    printer.Take(event);
}

Event Summary() {
  SummaryEvent summary;
  summary.outcomes = {{Outcome::kPassed, 1}, {Outcome::kRefused, 1}, {Outcome::kCrashed, 1}};
  summary.states = {{UnitState::kUntouched, 1},
                    {UnitState::kProgrammed, 1},
                    {UnitState::kDifferent, 0},
                    {UnitState::kUncertain, 1}};
  Event event = At(60000, summary);
  event.where = {};
  return event;
}

Event End() {
  Event event = At(60001, EndEvent{5, false});
  event.where = {};
  return event;
}

Event PlanWithAWarning() {
  PlanEvent plan;
  plan.action = "isp";
  plan.files = {{0, "/a.bin", 3, "aa", 0}};
  plan.warnings = {{"unsigned", "Slot 3 is not signed."}};
  Event event = At(0, plan);
  event.where = {};
  event.where.step = "program";
  event.where.job_name = "panel";
  return event;
}

// The last display is refused, the second one crashes, and ends before the first one.
void PlayBatch(Printer& printer) {
  Play(printer, {BatchHello(3), PlanWithAWarning(), PlanWithAWarning()});
  Play(printer,
       {Of(1, 0, WaitEvent{WaitReason::kInterface, "Interface 1 is in use by process 7"})});
  Play(printer, StartOf(2, 10));
  Play(printer, {Of(2, 20, MessageEvent{Source::kPlugin, Level::kInfo, "chatter", false})});
  Play(printer, {Of(2, 30, MessageEvent{Source::kPlugin, Level::kWarning, "hot", false})});
  Play(printer, CrashOf(2, 40));
  Play(printer, StartOf(1, 50));
  Play(printer, PassOf(1, 31550));
  Play(printer, {RefusalOf(3, 31560), Summary(), End()});
}

constexpr const char* kTable =
    "A1  ZP00000001  PASS  programmed\n"
    "A2  ZP00000002  FAIL  uncertain: program crashed, last at 42 %, signal 11\n"
    "A3  ZP00000003  FAIL  untouched: the first article did not pass\n"
    "1 passed, 1 refused, 1 crashed; 1 untouched, 1 programmed, 1 uncertain\n";

constexpr const char* kAdvice =
    "zvisp-line: Perhaps half-written: A2. Leave each powered and connected, remove the cause, and "
    "program it again; zvisp-line journal doctor names its run.\n";

TEST(PlainBatch, HasThePlaceInFrontAndTheTableInTheOrderOfTheJob) {
  const Printed printed = PrintedBy([] { PlayBatch(*MakePlainPrinter({}, When::kAuto)); });
  EXPECT_EQ(printed.out, kTable);
  EXPECT_EQ(printed.err,
            "zvisp-line: warning: Slot 3 is not signed.\n"
            "A1: waits: Interface 1 is in use by process 7\n"
            "A2: chatter\n"
            "A2: hot\n"
            "A2: program crashed after 0:00, uncertain, signal 11, last at 42 %\n"
            "A2: ZP00000002  FAIL  uncertain\n"
            "A1: program passed after 0:31, programmed\n"
            "A1: ZP00000001  PASS  programmed\n"
            "A3: ZP00000003  FAIL  untouched: the first article did not pass\n" +
                std::string(kAdvice));
}

TEST(PlainBatch, ATableIsPrintedWithoutASummaryToo) {
  const Printed printed = PrintedBy([] {
    const auto printer = MakePlainPrinter({}, When::kAuto);
    printer->Take(BatchHello(2));
    Play(*printer, PassOf(1, 10));
    printer->Take(End());
  });
  EXPECT_EQ(printed.out,
            "A1  ZP00000001  PASS  programmed\n"
            "A2  ZP00000002  FAIL  no result was reported\n");
}

TEST(PlainBatch, ThereIsNoTableWhenNoUnitWasBegun) {
  const Printed printed = PrintedBy([] {
    const auto printer = MakePlainPrinter({}, When::kAuto);
    Play(*printer, {BatchHello(2), PlanWithAWarning(), End()});
  });
  EXPECT_EQ(printed.out, "");
}

TEST(PlainBatch, EachLineOfTheTableHasOneColour) {
  const Printed printed = PrintedBy([] {
    PlayBatch(*MakePlainPrinter({true, false}, When::kNever));
  });
  EXPECT_THAT(printed.out, HasSubstr("\x1b[32mA1  ZP00000001  PASS  programmed\x1b[m\n"
                                     "\x1b[31mA2  ZP00000002  FAIL  uncertain: "));
}

TEST(PlainBatch, NamesOfDifferentLengthsAreAligned) {
  const Printed printed = PrintedBy([] {
    const auto printer = MakePlainPrinter({}, When::kAuto);
    Event hello = BatchHello(2);
    std::get<HelloEvent>(hello.body).job->units[1] = {"left rack", "\x1b[2JZ1", {}};
    printer->Take(hello);
    Play(*printer, PassOf(1, 10));
    Event unit = PassOf(2, 10)[1];
    unit.where.place = "left rack";
    printer->Take(unit);
    printer->Take(Summary());
  });
  EXPECT_THAT(printed.out, testing::StartsWith("A1         ZP00000001  PASS  programmed\n"
                                               "left rack  Z1          PASS  programmed\n"));
}

TEST(TerminalBatch, RowsAreBelowEachOtherAndTheTableReplacesThem) {
  const Printed printed = PrintedBy([] {
    const auto printer = MakeTerminalPrinter({}, [] { return TerminalSize{80, 24}; });
    Play(*printer, {BatchHello(2)});
    Play(*printer, CrashOf(1, 10));
    Play(*printer, {Summary(), End()});
  });
  EXPECT_EQ(printed.err,
            "A1 ZP00000001 waits\r\nA2 ZP00000002 waits"
            "\r\x1b[K\x1b[A\x1b[K"
            "A1: program crashed after 0:00, uncertain, signal 11, last at 42 %\n"
            "A1 ZP00000001 waits\r\nA2 ZP00000002 waits"
            "\r\x1b[K\x1b[A\x1b[K"
            "A1 ZP00000001 FAIL  uncertain: program crashed, last at 42 %, signal 11\r\n"
            "A2 ZP00000002 waits"
            "\r\x1b[K\x1b[A\x1b[K"
            "zvisp-line: Perhaps half-written: A1. Leave each powered and connected, remove the "
            "cause, and program it again; zvisp-line journal doctor names its run.\n");
  EXPECT_THAT(printed.out, EndsWith("A2  ZP00000002  FAIL  no result was reported\n"
                                    "1 passed, 1 refused, 1 crashed; 1 untouched, 1 programmed, 1 "
                                    "uncertain\n"));
}

TEST(TerminalBatch, LinesSayOnlyWhatDoesNotGoWell) {
  const Printed printed = PrintedBy([] {
    PlayBatch(*MakeTerminalPrinter({}, [] { return TerminalSize{80, 24}; }));
  });
  EXPECT_EQ(printed.out, kTable);
  EXPECT_THAT(printed.err, HasSubstr("zvisp-line: warning: Slot 3 is not signed.\n"));
  EXPECT_THAT(printed.err, HasSubstr("A2: hot\n"));
  for (const char* const absent : {"chatter", "passed after", "A1: ", "A3: "}) {
    EXPECT_THAT(printed.err, Not(HasSubstr(absent)));
  }
}

TEST(TerminalBatch, RowsOfEndedUnitsHaveTheirColour) {
  const Printed printed = PrintedBy([] {
    const auto printer = MakeTerminalPrinter({false, true}, [] { return TerminalSize{80, 24}; });
    Play(*printer, {BatchHello(1)});
    Play(*printer, PassOf(1, 10));
  });
  EXPECT_THAT(printed.err, HasSubstr("\x1b[32mA1 ZP00000001 PASS  programmed\x1b[m"));
}

TEST(TerminalBatch, ErasesAllRowsThatANarrowerTerminalHasBroken) {
  std::size_t columns = 80;
  const Printed printed = PrintedBy([&columns] {
    const auto printer = MakeTerminalPrinter({}, [&columns] { return TerminalSize{columns, 24}; });
    Play(*printer, {BatchHello(2)});  // two rows of 19 columns
    columns = 10;
    printer->Tick(1001000);
  });
  EXPECT_THAT(printed.err, EndsWith("\r\x1b[K\x1b[A\x1b[K\x1b[A\x1b[K\x1b[A\x1b[K"
                                    "A1 wait\r\nA2 wait\r\x1b[K\x1b[A\x1b[K"));
}

TEST(TerminalBatch, LeavesTheFirstLineOfALowTerminalToMessages) {
  const Printed printed = PrintedBy([] {
    MakeTerminalPrinter({}, [] { return TerminalSize{80, 3}; })->Take(BatchHello(3));
  });
  EXPECT_EQ(printed.err, "A1 ZP00000001 waits\r\nand 2 more: 2 waiting\r\x1b[K\x1b[A\x1b[K");
}

TEST(Batch, TheCheckOfAJobPrintsThePlanOfEachStep) {
  const Printed printed = PrintedBy([] {
    const auto printer = MakePlainPrinter({}, When::kAuto);
    Play(*printer, {BatchHello(0), PlanWithAWarning(), End()});
  });
  EXPECT_THAT(printed.out, testing::StartsWith("Step program:\nAction: --isp\n\nbank  file"));
  EXPECT_THAT(printed.out, EndsWith("from 1 file.\n\n"));
}

struct FailureRow {
  ResultEvent result;
  const char* text;
};

ResultEvent FailedResult(Outcome outcome) {
  ResultEvent result;
  result.outcome = outcome;
  return result;
}

ResultEvent CodeResult() {
  ResultEvent result = FailedResult(Outcome::kFailed);
  result.code = 0x5A22;
  result.meaning = "much text";
  result.last_percent = 47;
  return result;
}

ResultEvent EndedResult() {
  ResultEvent result = FailedResult(Outcome::kTimedOut);
  result.signal = 15;
  result.last_percent = 98;
  return result;
}

ResultEvent BytesResult() {
  ResultEvent result = FailedResult(Outcome::kDifferent);
  result.difference = Difference{2, 0x20009, 0x52, 0x72};
  result.last_percent = 100;
  return result;
}

ResultEvent ValueResult() {
  ResultEvent result = FailedResult(Outcome::kFailed);
  result.code = 0;
  result.value = "2";
  result.expected = "3";
  return result;
}

TEST(Batch, AFailureInShortHasWhatTheStateDoesNotSay) {
  const FailureRow rows[] = {
      {CodeResult(), "program failed, code 0x5A22, last at 47 %"},
      {EndedResult(), "program timed out, last at 98 %"},
      {BytesResult(), "program different in bank 2 at 0x020009"},
      {ValueResult(), "program failed, value 2, expected 3"},
  };
  for (const FailureRow& row : rows) {
    EXPECT_EQ(FailureText(Of(1, 0, row.result).where, row.result), row.text);
  }
}

TEST(Batch, AnErrorOfAPlaceNamesIt) {
  const Event error = Of(3, 0, ErrorEvent{"interface-in-use", "In use.", "", {}, {}});
  EXPECT_EQ(PrintedBy([&error] { MakePlainPrinter({}, When::kAuto)->Take(error); }).err,
            "zvisp-line: A3: In use.\n");
}

}  // namespace
}  // namespace line
