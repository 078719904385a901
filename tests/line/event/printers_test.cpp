// SPDX-License-Identifier: MIT
//
// The printers for people, byte for byte.
#include <string>

#include "event/events.h"
#include "event/printed_by.h"
#include "line/event/line_printers.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace line {
namespace {

void PlayRun(Printer& printer) {
  printer.Take(At(0, HelloEvent{}));
  printer.Take(At(0, UnitStartEvent{}));
  printer.Take(At(0, StartEvent{}));
  printer.Take(At(1, StateEvent{UnitState::kProgramming, UnitState::kUntouched, "IspFlash"}));
  printer.Take(ProgressAt(5000, 20));
  printer.Take(ProgressAt(10500, 42));
  printer.Take(ProgressAt(11000, 44));
  printer.Take(At(31500, PassedResult()));
  printer.Take(At(31500, PassedUnit()));
  printer.Take(At(31500, EndEvent{}));
}

TEST(PlainPrinter, PrintsFinishedStepsResultsAndProgressNowAndThen) {
  const Printed printed = PrintedBy([] { PlayRun(*MakePlainPrinter({}, When::kAuto)); });
  EXPECT_EQ(printed.out, "comm-3  ZP00000001  PASS  programmed\n");
  EXPECT_EQ(printed.err,
            "comm-3: program 42 %, 0:10\n"
            "comm-3: program passed after 0:31, programmed\n");
}

TEST(PlainPrinter, PrintsAllProgressOrNoneWhenAsked) {
  EXPECT_EQ(PrintedBy([] { PlayRun(*MakePlainPrinter({}, When::kAlways)); }).err,
            "comm-3: program 20 %, 0:05\n"
            "comm-3: program 42 %, 0:10\n"
            "comm-3: program 44 %, 0:11\n"
            "comm-3: program passed after 0:31, programmed\n");
  EXPECT_EQ(PrintedBy([] { PlayRun(*MakePlainPrinter({}, When::kNever)); }).err,
            "comm-3: program passed after 0:31, programmed\n");
}

TEST(PlainPrinter, ColoursOnlyWhereAsked) {
  const Printed printed = PrintedBy([] {
    PlayRun(*MakePlainPrinter({true, false}, When::kNever));
  });
  EXPECT_EQ(printed.out, "\x1b[32mcomm-3  ZP00000001  PASS  programmed\x1b[m\n");
  EXPECT_EQ(printed.err, "comm-3: program passed after 0:31, programmed\n");
}

struct EventRow {
  EventBody body;
  const char* out;
  const char* err;
};

ResultEvent UncertainResult() {
  ResultEvent result;
  result.outcome = Outcome::kFailed;
  result.state = UnitState::kUncertain;
  result.code = 0x5A22;
  result.meaning = "erase failed";
  result.last_percent = 42;
  result.duration_ms = 12000;
  return result;
}

ResultEvent DifferentResult() {
  ResultEvent result;
  result.outcome = Outcome::kDifferent;
  result.state = UnitState::kDifferent;
  result.code = 0;
  result.compared_bytes = 65536;
  result.difference = Difference{3, 0x31234, 0x12, 0x0};
  return result;
}

ResultEvent CrashedResult() {
  ResultEvent result;
  result.outcome = Outcome::kCrashed;
  result.state = UnitState::kUntouched;
  result.signal = 11;
  return result;
}

ResultEvent TimedOutResult() {
  ResultEvent result;
  result.outcome = Outcome::kTimedOut;
  result.value = "2";
  result.expected = "3";
  return result;
}

UnitResultEvent UncertainUnit() {
  UnitResultEvent result;
  result.state = UnitState::kUncertain;
  result.recorded = false;
  return result;
}

UnitResultEvent RefusedUnit() {
  UnitResultEvent result;
  result.outcome = Outcome::kRefused;
  result.reason = "the hook said no";
  return result;
}

// clang-format off
const EventRow kEvents[] = {
  {UncertainResult(), "", "comm-3: program failed after 0:12, uncertain, code 0x5A22 (erase failed), last at 42 %\n"},
  {DifferentResult(), "", "comm-3: program different after 0:00, different, code 0x0, 65536 bytes compared, first difference in bank 3 at 0x031234: expected 0x12, read 0x00\n"},
  {CrashedResult(), "", "comm-3: program crashed after 0:00, untouched, signal 11\n"},
  {TimedOutResult(), "", "comm-3: program timed out after 0:00, untouched, value 2, expected 3\n"},
  {UncertainUnit(), "comm-3  ZP00000001  FAIL  uncertain: it may be half-written: program it again, or see zvisp-line journal doctor (not recorded)\n", ""},
  {RefusedUnit(), "comm-3  ZP00000001  FAIL  untouched: the hook said no\n", ""},
  {WaitEvent{WaitReason::kInterface, "Interface 3 is in use by process 7"}, "", "comm-3: waits: Interface 3 is in use by process 7\n"},
  {WaitEvent{WaitReason::kHook, ""}, "", ""},
  {MessageEvent{Source::kPlugin, Level::kInfo, "one\ntwo\r\x1b[2J\n", false}, "", "comm-3: one\ncomm-3: two\n"},
  {MessageEvent{Source::kOutput, Level::kInfo, "much", true}, "", "comm-3: much\ncomm-3: (the rest of this output was cut)\n"},
  {ErrorEvent{"job", "No step.", "a.toml", 3, 7}, "", "a.toml:3:7: No step.\n"},
  {FindingEvent{UnitState::kProgramming, 40, "2026-11-21T12:00:00.000Z"}, "comm-3  ZP00000001  programming  program at 40 %  2026-11-21T12:00:00.000Z  run r1\n", ""},
  {ResolvedEvent{"scrapped"}, "comm-3  ZP00000001  resolved: scrapped  run r1\n", ""},
  {SummaryEvent{{{Outcome::kPassed, 2}, {Outcome::kTimedOut, 1}}, {{UnitState::kIdentical, 2}, {UnitState::kUncertain, 1}}}, "2 passed, 1 timed out; 2 identical, 1 uncertain\n", ""},
};
// clang-format on

TEST(PlainPrinter, EveryTypeOfEventInWords) {
  for (const EventRow& row : kEvents) {
    const Printed printed =
        PrintedBy([&row] { MakePlainPrinter({}, When::kAuto)->Take(At(0, row.body)); });
    EXPECT_EQ(printed.out, row.out);
    EXPECT_EQ(printed.err, row.err);
  }
}

TEST(TerminalPrinter, RedrawsTheRowInPlaceAndErasesItAtTheEnd) {
  const Printed printed = PrintedBy([] {
    PlayRun(*MakeTerminalPrinter({}, [] { return TerminalSize{40, 24}; }));
  });
  EXPECT_EQ(printed.out, "comm-3  ZP00000001  PASS  programmed\n");
  EXPECT_EQ(printed.err,
            "comm-3 ZP00000001 waits  0:00"
            "\r\x1b[J"
            "comm-3 ZP00000001 program  0:00"
            "\r\x1b[J"
            "comm-3 program [#-------]  20 %  0:05"
            "\r\x1b[J"
            "comm-3 program [###-----]  42 %  0:10"
            "\r\x1b[J"
            "comm-3 program [###-----]  44 %  0:11"
            "\r\x1b[J"
            "comm-3: program passed after 0:31, programmed\n"
            "comm-3 program [###-----]  44 %  0:31"
            "\r\x1b[J");
}

TEST(TerminalPrinter, ErasesRowsThatANarrowerTerminalHasBroken) {
  std::size_t columns = 80;
  const Printed printed = PrintedBy([&columns] {
    const auto printer = MakeTerminalPrinter({}, [&columns] { return TerminalSize{columns, 24}; });
    printer->Take(At(0, UnitStartEvent{}));  // 29 columns
    columns = 10;
    printer->Tick(1001000);
    columns = 80;
    printer->Tick(1002000);
  });
  EXPECT_EQ(printed.err,
            "comm-3 ZP00000001 waits  0:00"
            "\r\x1b[2A\x1b[J"
            "comm-3 "
            "\r\x1b[J"
            "comm-3 ZP00000001 waits  0:02"
            "\r\x1b[J");
}

TEST(QuietPrinter, PrintsErrorsAndNothingElse) {
  const Printed printed = PrintedBy([] {
    PrinterOptions options;
    options.quiet = true;
    const auto printer = MakePrinter(options);
    PlayRun(*printer);
    printer->Take(At(0, ErrorEvent{"job", "No step.", "", {}, {}}));
  });
  EXPECT_EQ(printed.out, "");
  EXPECT_EQ(printed.err, "zvisp-line: No step.\n");
}

TEST(QuietPrinter, NamesADisplayThatDidNotPass) {
  const Printed printed = PrintedBy([] {
    PrinterOptions options;
    options.quiet = true;
    UnitResultEvent result;
    result.outcome = Outcome::kDifferent;
    result.state = UnitState::kDifferent;
    MakePrinter(options)->Take(At(0, result));
  });
  EXPECT_EQ(printed.out, "");
  EXPECT_EQ(printed.err, "comm-3  ZP00000001  FAIL  different\n");
}

TEST(JsonPrinter, PrintsOnStandardOutputAlone) {
  const Printed printed = PrintedBy([] {
    PrinterOptions options;
    options.json = true;
    options.quiet = true;
    MakePrinter(options)->Take(At(0, ErrorEvent{"job", "No step.", "", {}, {}}));
  });
  EXPECT_EQ(printed.err, "");
  EXPECT_THAT(printed.out, testing::EndsWith("\"id\":\"job\",\"text\":\"No step.\"}\n"));
}

TEST(PlanText, ShowsTheTableTheFilesThePictureAndTheTotals) {
  PlanEvent plan;
  plan.action = "isp";
  plan.files = {{1, "/fw/main.bin", 65537, "aa", 0}, {3, "/fw/b.bin", 10, "bb", 18}};
  plan.banks = {{0, 1, 0, 65536, "a0"}, {1, 1, 1, 1, "a1"}, {18, 3, 0, 10, "bb"}};
  plan.warnings = {{"unsigned", "Slot 3 is not signed."}};
  Event event = At(0, plan);
  event.where = {};
  const Printed printed = PrintedBy([&] { MakePlainPrinter({}, When::kAuto)->Take(event); });
  std::string picture =
      "   0  AA..............\n"
      "  16  ..B.............\n";
  for (const char* number : {"32", "48", "64", "80", "96", "112", "128", "144", "160", "176", "192",
                             "208", "224", "240"}) {
    picture += std::string(4 - std::string(number).size(), ' ') + number + "  ................\n";
  }
  EXPECT_EQ(printed.out,
            "Action: --isp\n"
            "\n"
            "bank  file  bank in file  bytes  SHA-256\n"
            "   0  A                0  65536  a0\n"
            "   1  A                1      1  a1\n"
            "  18  B                0     10  bb\n"
            "\n"
            "A  /fw/main.bin\n"
            "   slot 1, from bank 0, 65537 bytes, SHA-256 aa\n"
            "B  /fw/b.bin\n"
            "   slot 3, from bank 18, 10 bytes, SHA-256 bb\n"
            "\n" +
                picture +
                "\n"
                "3 banks, 65547 bytes, from 2 files.\n");
  EXPECT_EQ(printed.err, "zvisp-line: warning: Slot 3 is not signed.\n");
}

}  // namespace
}  // namespace line
