// SPDX-License-Identifier: MIT
#include "line/event/batch_rows.h"

#include <string>
#include <vector>

#include "event/batch_events.h"
#include "line/event/screen_text.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace line {
namespace {

using testing::ElementsAre;

// A batch that is being shown.
class Shown {
 public:
  explicit Shown(int units)
      : m_table(std::get<HelloEvent>(BatchHello(units).body).job->units),
        m_rows(std::get<HelloEvent>(BatchHello(units).body).job->units, 1000000) {}

  Shown& Take(const std::vector<Event>& events) {
    for (const Event& event : events) {
      m_table.Follow(event);
      m_rows.Follow(event, m_table);
    }
    return *this;
  }
  // So many milliseconds after the start.
  std::vector<std::string> Rows(TerminalSize size, std::uint64_t ms) const {
    std::vector<std::string> texts;
    for (const TextLine& line : m_rows.Texts(size, 1000000 + ms))
      texts.push_back(line.text);
    return texts;
  }
  std::vector<TextLine> Lines() const { return m_rows.Texts({77, 23}, 1060000); }

 private:
  BatchTable m_table;
  BatchRows m_rows;
};

Event Percent(int number, std::uint64_t ms, int percent, Phase phase = Phase::kProgram) {
  return Of(number, ms, ProgressEvent{percent, ms}, phase);
}

Shown EachKindOfRow() {
  Shown batch(7);
  batch.Take(StartOf(1, 0)).Take({Percent(1, 1000, 9), Percent(1, 31500, 42)});
  batch.Take(StartOf(2, 0)).Take({Percent(2, 1000, 0, Phase::kReadBack)});
  batch.Take(StartOf(3, 0)).Take(PassOf(3, 20000));
  batch.Take(StartOf(4, 0)).Take(CrashOf(4, 20000));
  batch.Take(
      {Of(5, 30000, WaitEvent{WaitReason::kInterface, "Interface 5 is in use by process 7"})});
  batch.Take({Of(6, 30000, WaitEvent{WaitReason::kHook, ""})});
  return batch;
}

TEST(BatchRows, OneForEachUnitAndTheSameColumnsInAllOfThem) {
  EXPECT_THAT(
      EachKindOfRow().Rows({77, 23}, 31500),
      ElementsAre("A1 ZP00000001 program   [##########----------------]  42 %  0:31, 0:42 left",
                  "A2 ZP00000002 read-back [--------------------------]   0 %  0:31",
                  "A3 ZP00000003 PASS  programmed",
                  "A4 ZP00000004 FAIL  uncertain: program crashed, last at 42 %, signal 11",
                  "A5 ZP00000005 waits  0:01  Interface 5 is in use by process 7",
                  "A6 ZP00000006 waits for its hook  0:01", "A7 ZP00000007 waits"));
}

TEST(BatchRows, ANarrowTerminalLeavesOutTheSerialInAllOfThem) {
  EXPECT_THAT(
      EachKindOfRow().Rows({37, 23}, 31500),
      ElementsAre("A1 program   [###------]  42 %  0:31", "A2 read-back [---------]   0 %  0:31",
                  "A3 PASS  programmed", "A4 FAIL  uncertain: program crashed, ",
                  "A5 waits  0:01  Interface 5 is in use", "A6 waits for its hook  0:01",
                  "A7 waits"));
}

TEST(BatchRows, NoRowIsLongerThanTheTerminal) {
  for (std::size_t columns = 1; columns < 120; ++columns) {
    for (const std::string& row : EachKindOfRow().Rows({columns, 3}, 31500))
      EXPECT_LE(Columns(row), columns) << row;
  }
}

TEST(BatchRows, WithTooFewLinesThoseUnderWayComeFirstAndTheRestIsCounted) {
  EXPECT_THAT(
      EachKindOfRow().Rows({77, 6}, 31500),
      ElementsAre("A1 ZP00000001 program   [##########----------------]  42 %  0:31, 0:42 left",
                  "A2 ZP00000002 read-back [--------------------------]   0 %  0:31",
                  "A4 ZP00000004 FAIL  uncertain: program crashed, last at 42 %, signal 11",
                  "A5 ZP00000005 waits  0:01  Interface 5 is in use by process 7",
                  "A6 ZP00000006 waits for its hook  0:01", "and 2 more: 1 waiting, 1 PASS"));
  EXPECT_THAT(
      EachKindOfRow().Rows({37, 3}, 31500),
      ElementsAre("A1 program   [###------]  42 %  0:31", "A2 read-back [---------]   0 %  0:31",
                  "and 5 more: 1 FAIL, 2 held up, 1 wait"));
  EXPECT_THAT(EachKindOfRow().Rows({77, 1}, 31500),
              ElementsAre("and 7 more: 2 under way, 1 FAIL, 2 held up, 1 waiting, 1 PASS"));
  EXPECT_EQ(EachKindOfRow().Rows({77, 7}, 31500).size(), 7u);
}

TEST(BatchRows, OnlyUnitsThatHaveEndedHaveAColour) {
  std::vector<Tone> tones;
  for (const TextLine& line : EachKindOfRow().Lines())
    tones.push_back(line.tone);
  EXPECT_THAT(tones, ElementsAre(Tone::kPlain, Tone::kPlain, Tone::kGood, Tone::kBad, Tone::kPlain,
                                 Tone::kPlain, Tone::kPlain));
}

TEST(BatchRows, AUnitThatIsNeverStartedSaysWhy) {
  EXPECT_THAT(Shown(1).Take({RefusalOf(1, 10)}).Rows({77, 23}, 10),
              ElementsAre("A1 ZP00000001 FAIL  untouched: the first article did not pass"));
}

TEST(BatchRows, LongNamesLeaveRoomForTheBar) {
  const BatchUnit unit = {std::string(40, 'p'), std::string(100, 's'), 1};
  BatchRows rows({unit}, 1000000);
  const BatchTable table({unit});
  for (Event event : {Of(1, 0, UnitStartEvent{}), Percent(1, 31500, 42)}) {
    event.where.place = unit.place;
    rows.Follow(event, table);
  }
  EXPECT_EQ(rows.Texts({77, 23}, 1031500)[0].text,
            "pppppppppppppppp ssssssssssssssssssss program   [#####---------]  42 %  0:31");
}

TEST(BatchRows, TheNextStepStartsWithoutPercentageOfTheOneBefore) {
  Shown batch(1);
  batch.Take(StartOf(1, 0)).Take({Percent(1, 5000, 100)});
  Event next = Of(1, 6000, StartEvent{});
  next.where.step = "scaler type";
  batch.Take({next});
  EXPECT_THAT(batch.Rows({77, 23}, 8000), ElementsAre("A1 ZP00000001 scaler type  0:02"));
  batch.Take({Percent(1, 9000, 100)});
  EXPECT_THAT(batch.Rows({77, 23}, 9000)[0], testing::StartsWith("A1 ZP00000001 program   [###"));
}

}  // namespace
}  // namespace line
