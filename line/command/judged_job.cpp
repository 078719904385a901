// SPDX-License-Identifier: MIT
#include "line/command/judged_job.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "base/transform.h"
#include "line/command/approval.h"
#include "line/job/job_words.h"
#include "line/job/judged_files.h"
#include "line/job/plan.h"
#include "line/supervise/judge_words.h"

namespace line {

namespace {

// The settings of a read are those of a dump. The engine gives the dump a name of its own.
JobStep DumpOf(const JobRead& read) {
  JobStep step;
  step.words = {"--dumpflash",
                "--dumpaddr",
                std::to_string(read.address),
                "--dumplen",
                std::to_string(read.length),
                "--dumpname",
                "read.bin"};
  return step;
}

std::vector<std::string> WordsFor(const JobStep& step, const JobPlace& place,
                                  const std::string& unit) {
  return WordsOf(step.read ? DumpOf(*step.read) : step, place, unit);
}

// Equal texts: the same bytes at the same places of the flash.
std::string WhatIsWritten(const JudgedWords& words) {
  const CCpTransform transform;
  const STRUCT_C_STYLE_MAP_FW& map = words.setting->stMapFw;
  std::string text;
  for (std::uint32_t i = 0; i < map.ulCount; ++i) {
    text += std::to_string(map.ulTargetBank[i]) + " " + std::to_string(map.stBank[i].ulFileBank) +
            " " + transform.ConvertUnicodeStringToUTF8(map.stBank[i].wszPath) + "\n";
  }
  return text;
}

// Where the refused word is in the job. One with {unit} or {place} in it is not found again, and a
// job that is only being written has no positions.
JobPosition PositionOf(const JobStep& step, const Refusal& refusal) {
  const auto word = std::find(step.words.begin(), step.words.end(), refusal.word);
  const auto index = static_cast<std::size_t>(word - step.words.begin());
  if (refusal.word.empty() || index >= step.word_positions.size()) return step.words_position;
  return step.word_positions[index];
}

bool IsSame(const Refusal& left, const Refusal& right) {
  return left.id == right.id && left.text == right.text;
}

}  // namespace

void JudgedJob::Report(const JobErrors& errors) {
  for (const JobError& error : errors) {
    m_session.Emit({}, At(error.position, error.id, error.text));
  }
}

ErrorEvent JudgedJob::At(JobPosition position, const std::string& id,
                         const std::string& text) const {
  if (position.line == 0) return {id, text, "", {}, {}};
  return {id, text, m_file, position.line, position.column};
}

Where JudgedJob::WhereOf(std::size_t step, const JudgedUnit* unit) const {
  Where where;
  where.job_name = m_job.name;
  where.step = m_job.steps[step].name;
  where.step_index = static_cast<std::uint32_t>(step);
  if (unit == nullptr) return where;
  const JobPlace& place = m_job.places[unit->at.place];
  where.place = place.name;
  where.unit = unit->at.unit;
  where.comm = place.comm;
  return where;
}

std::vector<Refusal> JudgedJob::RefusalsOf(const JobStep& step, const JudgedStep& judged) const {
  std::vector<Refusal> refusals =
      WhyNotApproved({step.allow_unsigned, step.expect}, judged.scan, judged.words);
  if (!refusals.empty() || !step.readback) return refusals;
  std::string why_not = WhyNoReadBack(*judged.words.setting);
  if (why_not.empty()) ReadBack().Plan(*judged.words.setting, m_ignored, why_not);
  if (!why_not.empty()) refusals.push_back({"read-back", why_not});
  return refusals;
}

// What is wrong for every unit is reported once, and the rest names its place.
void JudgedJob::ReportOf(std::size_t step) {
  std::vector<std::pair<const JudgedUnit*, Refusal>> found;
  for (const JudgedUnit& unit : m_units) {
    for (Refusal& refusal : RefusalsOf(m_job.steps[step], unit.steps[step])) {
      found.emplace_back(&unit, std::move(refusal));
    }
  }
  std::vector<Refusal> common;
  for (const auto& [unit, refusal] : found) {
    const auto is_this = [&one = refusal](const Refusal& other) { return IsSame(one, other); };
    const auto count = std::count_if(found.begin(), found.end(), [&is_this](const auto& other) {
      return is_this(other.second);
    });
    const bool is_common = static_cast<std::size_t>(count) >= m_units.size();
    if (is_common && std::any_of(common.begin(), common.end(), is_this)) continue;
    if (is_common) common.push_back(refusal);
    m_session.Emit(WhereOf(step, is_common ? nullptr : unit),
                   At(PositionOf(m_job.steps[step], refusal), refusal.id, refusal.text));
  }
  m_is_approved = m_is_approved && found.empty();
}

ExitStatus JudgedJob::Judge(const std::vector<UnitAtPlace>& units) {
  for (const std::string& range : m_job.ignore) {
    m_ignored.push_back(*ParseAddressRange(range));
  }
  std::vector<std::vector<std::string>> words;
  for (const UnitAtPlace& unit : units) {
    for (const JobStep& step : m_job.steps) {
      words.push_back(WordsFor(step, m_job.places[unit.place], unit.unit));
    }
  }
  std::string error;
  std::optional<std::vector<JudgedWords>> judged = JudgeInWorker(words, error);
  if (!judged) {
    m_session.Emit({}, ErrorEvent{"worker", error, "", {}, {}});
    return kExitUnavailable;
  }
  std::size_t next = 0;
  for (const UnitAtPlace& unit : units) {
    m_units.push_back({unit, {}});
    for (std::size_t step = 0; step < m_job.steps.size(); ++step, ++next) {
      m_units.back().steps.push_back({ScanOptions(words[next]), std::move((*judged)[next])});
    }
  }
  for (std::size_t step = 0; step < m_job.steps.size(); ++step) {
    ReportOf(step);
  }
  return m_is_approved ? kExitPassed : kExitRefused;
}

UsedFiles JudgedJob::Files() const {
  UsedFiles files;
  for (std::size_t step = 0; step < m_job.steps.size(); ++step) {
    for (const JudgedUnit& unit : m_units) {
      for (const std::string& file : FilesOf(unit.steps[step].words)) {
        files.try_emplace(file, m_job.steps[step].words_position);
      }
    }
  }
  return files;
}

bool JudgedJob::EmitPlansOf(std::size_t step, std::string& error) {
  std::vector<std::string> written;
  for (const JudgedUnit& unit : m_units) {
    written.push_back(WhatIsWritten(unit.steps[step].words));
  }
  const bool are_same =
      std::all_of(written.begin(), written.end(),
                  [&written](const std::string& one) { return one == written[0]; });
  for (std::size_t i = 0; i < (are_same ? 1 : m_units.size()); ++i) {
    const JudgedStep& judged = m_units[i].steps[step];
    std::optional<PlanEvent> plan = MakePlan(judged.scan, judged.words, error);
    if (!plan) return false;
    m_session.Emit(WhereOf(step, are_same ? nullptr : &m_units[i]), std::move(*plan));
  }
  return true;
}

ExitStatus JudgedJob::EmitPlans() {
  std::string error;
  for (std::size_t step = 0; step < m_job.steps.size(); ++step) {
    if (EmitPlansOf(step, error)) continue;
    Report({{"file", error, m_job.steps[step].words_position}});
    return kExitRefused;
  }
  return kExitPassed;
}

}  // namespace line
