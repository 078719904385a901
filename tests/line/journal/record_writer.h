// SPDX-License-Identifier: MIT
//
// Records as runs leave them, written line by line.
#ifndef ZVISP_TESTS_LINE_JOURNAL_RECORD_WRITER_H_
#define ZVISP_TESTS_LINE_JOURNAL_RECORD_WRITER_H_

#include <string>
#include <utility>

#include "line/event/event_json.h"
#include "support/files.h"

namespace line {

class RecordWriter {
 public:
  // So many milliseconds after 2026-11-21T12:00:00Z, of a run of a unit at an interface.
  RecordWriter& Add(const std::string& run, const std::string& unit, std::uint32_t comm,
                    EventBody body) {
    Event event;
    event.time_ms = 1795262400000 + m_next_ms++;
    event.session = "s";
    event.where = {run, unit, "comm-" + std::to_string(comm), comm, "program", {}, {}, m_job};
    event.body = std::move(body);
    m_text += ToJsonLine(event);
    return *this;
  }
  RecordWriter& Add(const std::string& text) {
    m_text += text;
    return *this;
  }
  RecordWriter& OfJob(const std::string& name) {
    m_job = name;
    return *this;
  }
  RecordWriter& Programming(const std::string& run, const std::string& unit, std::uint32_t comm) {
    return Add(run, unit, comm,
               StateEvent{UnitState::kProgramming, UnitState::kUntouched, "IspFlash"});
  }
  RecordWriter& Ends(const std::string& run, const std::string& unit, std::uint32_t comm,
                     UnitState state, Outcome outcome = Outcome::kFailed) {
    UnitResultEvent result;
    result.state = state;
    result.outcome = outcome;
    return Add(run, unit, comm, result);
  }

  // As DATA/journal/<day>.jsonl.
  void Save(const std::string& data_directory, const std::string& day = "2026-11-21") const {
    GivenDirectory(data_directory);
    GivenDirectory(data_directory + "/journal");
    GivenFile(data_directory + "/journal/" + day + ".jsonl", m_text);
  }
  const std::string& Text() const { return m_text; }

 private:
  std::string m_text, m_job;
  std::int64_t m_next_ms = 0;
};

}  // namespace line

#endif  // ZVISP_TESTS_LINE_JOURNAL_RECORD_WRITER_H_
