// SPDX-License-Identifier: MIT
#include "line/journal/doctor.h"

#include <algorithm>
#include <map>
#include <utility>

#include "line/event/event_json.h"

namespace line {

namespace {

// What the record says of one run that has touched its unit.
struct TouchedRun {
  Where where;
  UnitState state = UnitState::kProgramming;
  std::string since;
  std::uint64_t order = 0;  // of its first state in the record
};

bool IsDoubtful(UnitState state) {
  return state == UnitState::kProgramming || state == UnitState::kUncertain;
}

bool ChangesAState(std::string_view type) {
  return type == "state" || type == "result" || type == "unit_result" || type == "resolved";
}

class Examination {
 public:
  void Read(const RecordLine& line);
  DoctorReport Report(const std::string& data_directory,
                      const std::function<bool(std::uint32_t comm)>& is_free);

 private:
  void Follow(const RecordedEvent& event);
  void Touch(const RecordedEvent& event);
  bool IsUnderWay(const TouchedRun& run,
                  const std::function<bool(std::uint32_t comm)>& is_free) const;

  // Of each unit the runs that touched it and are not overtaken by one that ended well, the oldest
  // first.
  std::map<std::string, std::vector<TouchedRun>> m_units;
  std::map<std::uint32_t, std::string> m_newest_at;  // by interface: the run that began to program
  std::uint64_t m_order = 0;
  DoctorReport m_report;
};

void Examination::Read(const RecordLine& line) {
  const std::string_view type = line.text.empty() ? std::string_view() : TypeOfLine(line.text);
  // An unfinished last line may be in the making.
  if (type.empty() && line.is_ended) {
    m_report.skipped.push_back({std::string(line.file), line.number});
    return;
  }
  // Most lines are messages and progress. Only the few others are worth parsing.
  if (!ChangesAState(type)) return;
  const std::optional<RecordedEvent> event = FromJsonLine(line.text);
  if (event.has_value()) {
    Follow(*event);
  } else if (line.is_ended) {
    m_report.skipped.push_back({std::string(line.file), line.number});
  }
}

void Examination::Follow(const RecordedEvent& event) {
  if (event.type == "resolved") {
    m_units.erase(event.where.unit);
  } else if (event.state.has_value()) {
    Touch(event);
  }
}

void Examination::Touch(const RecordedEvent& event) {
  std::vector<TouchedRun>& runs = m_units[event.where.unit];
  const auto known = std::find_if(runs.begin(), runs.end(), [&event](const TouchedRun& run) {
    return run.where.run == event.where.run;
  });
  // A read-back that differs is not a pass: the doubt about an earlier run stays.
  if (*event.state == UnitState::kUntouched || *event.state == UnitState::kDifferent) {
    if (known != runs.end()) runs.erase(known);
  } else if (!IsDoubtful(*event.state)) {
    runs.clear();
  } else if (known == runs.end()) {
    runs.push_back({event.where, *event.state, event.time, ++m_order});
  } else if (known->state != *event.state) {
    known->state = *event.state;
    known->since = event.time;
  }
  // A unit without doubtful runs is forgotten, so memory does not grow with the record.
  if (runs.empty()) m_units.erase(event.where.unit);
  if (event.type == "state" && *event.state == UnitState::kProgramming) {
    m_newest_at[event.where.comm.value_or(0)] = event.where.run;
  }
}

// An interface is held by one run at a time: any but the newest one there has ended.
bool Examination::IsUnderWay(const TouchedRun& run,
                             const std::function<bool(std::uint32_t comm)>& is_free) const {
  const std::uint32_t comm = run.where.comm.value_or(0);
  const auto newest = m_newest_at.find(comm);
  return run.state == UnitState::kProgramming && newest != m_newest_at.end() &&
         newest->second == run.where.run && !is_free(comm);
}

// The last percentage of each doubtful run: they are few, so the lines of `progress` are only read
// for them.
void AddPercentages(const std::string& data_directory, std::vector<Doubt>& doubts) {
  std::map<std::string, FindingEvent*> by_run;
  for (Doubt& doubt : doubts) {
    by_run[doubt.where.run] = &doubt.finding;
  }
  if (by_run.empty()) return;
  ForEachRecordLine(data_directory, [&by_run](const RecordLine& line) {
    if (TypeOfLine(line.text.empty() ? "{" : line.text) != "progress") return;
    const std::optional<RecordedEvent> event = FromJsonLine(line.text);
    const auto found = event ? by_run.find(event->where.run) : by_run.end();
    if (found != by_run.end()) found->second->last_percent = event->percent;
  });
}

DoctorReport Examination::Report(const std::string& data_directory,
                                 const std::function<bool(std::uint32_t comm)>& is_free) {
  std::vector<std::pair<std::uint64_t, Doubt>> doubts;
  for (const auto& [unit, runs] : m_units) {
    // The newest run that touched the unit decides.
    const TouchedRun& last = runs.back();
    if (IsUnderWay(last, is_free)) continue;
    doubts.emplace_back(last.order, Doubt{last.where, {last.state, {}, last.since}});
  }
  std::sort(doubts.begin(), doubts.end(),
            [](const auto& left, const auto& right) { return left.first < right.first; });
  for (auto& [order, doubt] : doubts) {
    m_report.doubts.push_back(std::move(doubt));
  }
  AddPercentages(data_directory, m_report.doubts);
  return std::move(m_report);
}

}  // namespace

DoctorReport Examine(const std::string& data_directory,
                     const std::function<bool(std::uint32_t comm)>& is_free) {
  Examination examination;
  std::string failure = ForEachRecordLine(
      data_directory, [&examination](const RecordLine& line) { examination.Read(line); });
  DoctorReport report = examination.Report(data_directory, is_free);
  report.failure = std::move(failure);
  return report;
}

}  // namespace line
