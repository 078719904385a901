// SPDX-License-Identifier: MIT
#include "line/job/serials.h"

#include <algorithm>
#include <map>
#include <optional>

#include "line/event/screen_text.h"
#include "line/job/job_words.h"
#include "line/job/nearest_name.h"
#include "line/job/serial_pattern.h"
#include "line/job/strictness.h"
#include "line/journal/history.h"

namespace line {

namespace {

std::string NoSerialAt(const std::string& place) {
  return "The place \"" + place + "\" has no serial; give --unit " + place +
         "=SERIAL, or leave it out with --skip " + place + ".";
}

// The places of a job, each with what the options say of it.
class Reading {
 public:
  explicit Reading(const Job& job) : m_job(job), m_places(job.places.size()) {}

  void Skip(const std::string& name);
  void Give(const std::string& unit);
  void RequireAll();
  void RefuseDoubled();
  Serials Take(bool by_place);

 private:
  struct Place {
    bool skipped = false;
    std::optional<std::string> unit;
  };

  void Refuse(const char* id, std::string text) {
    m_serials.errors.push_back({id, std::move(text), {}});
  }
  // Null, and refused, when the job has no such place.
  Place* Find(const std::string& name, const std::string& option);
  void Check(const std::string& place, const std::string& serial);

  const Job& m_job;
  std::vector<Place> m_places;
  Serials m_serials;
};

Reading::Place* Reading::Find(const std::string& name, const std::string& option) {
  std::vector<std::string> names;
  for (std::size_t i = 0; i < m_places.size(); ++i) {
    if (m_job.places[i].name == name) return &m_places[i];
    names.push_back(m_job.places[i].name);
  }
  const std::string nearest = NearestName(name, names);
  Refuse("unknown-place", option + ": the job has no place \"" + CleanText(name) + "\"; " +
                              (nearest.empty() ? "give one of its [[place]]s."
                                               : "did you mean \"" + nearest + "\"?"));
  return nullptr;
}

void Reading::Skip(const std::string& name) {
  Place* const place = Find(name, "--skip " + CleanText(name));
  if (place != nullptr) place->skipped = true;
}

void Reading::Give(const std::string& unit) {
  const std::size_t equals = unit.find('=');
  if (equals == std::string::npos) {
    return Refuse("serial", "--unit " + CleanText(unit) + " names no place; give PLACE=SERIAL.");
  }
  const std::string name = unit.substr(0, equals);
  Place* const place = Find(name, "--unit " + CleanText(unit));
  if (place == nullptr) return;
  if (place->unit) {
    return Refuse("serial", "The place \"" + name + "\" has two serials; give --unit once for it.");
  }
  place->unit = unit.substr(equals + 1);
  if (!place->skipped) return Check(name, *place->unit);
  Refuse("serial", "The place \"" + name +
                       "\" has a serial and is skipped; leave out --unit or "
                       "--skip.");
}

void Reading::Check(const std::string& place, const std::string& serial) {
  const std::string at_place = "Place \"" + place + "\": ";
  const std::string why_not = WhyNoSerial(serial);
  if (!why_not.empty()) return Refuse("serial", at_place + why_not);
  std::string ignored;
  const auto pattern = SerialPattern::Make(m_job.pattern, ignored);
  if (pattern == nullptr || !pattern->Matches(serial)) {
    return Refuse("serial-pattern", at_place + "the serial " + serial +
                                        " does not match the job's pattern " + m_job.pattern +
                                        "; read it again.");
  }
  for (const JobStep& step : m_job.steps) {
    const std::string why = WhyNotInWords(step, serial);
    if (!why.empty()) Refuse("serial-in-path", at_place + why);
  }
}

void Reading::RequireAll() {
  for (std::size_t i = 0; i < m_places.size(); ++i) {
    if (m_places[i].skipped || m_places[i].unit) continue;
    Refuse("serial-missing", NoSerialAt(m_job.places[i].name));
  }
}

void Reading::RefuseDoubled() {
  std::map<std::string, std::string> places;
  for (std::size_t i = 0; i < m_places.size(); ++i) {
    if (!m_places[i].unit) continue;
    const std::string& name = m_job.places[i].name;
    const auto [first, is_new] = places.try_emplace(*m_places[i].unit, name);
    if (is_new) continue;
    Refuse("serial-doubled", "The serial " + CleanText(*m_places[i].unit) +
                                 " is at two places, \"" + first->second + "\" and \"" + name +
                                 "\"; read both again.");
  }
}

Serials Reading::Take(bool by_place) {
  for (std::size_t i = 0; i < m_places.size(); ++i) {
    if (m_places[i].skipped) continue;
    m_serials.units.push_back(
        {i, by_place ? m_job.places[i].name : m_places[i].unit.value_or(""), 1});
  }
  if (m_serials.units.empty() && m_serials.errors.empty()) {
    Refuse("no-place", "Every place is skipped, so there is nothing to do; leave out one --skip.");
  }
  return std::move(m_serials);
}

}  // namespace

Serials ReadSerials(const Job& job, const std::vector<std::string>& units,
                    const std::vector<std::string>& skipped) {
  Reading reading(job);
  for (const std::string& place : skipped) {
    reading.Skip(place);
  }
  for (const std::string& unit : units) {
    reading.Give(unit);
  }
  reading.RequireAll();
  reading.RefuseDoubled();
  return reading.Take(false);
}

Serials PlacesInsteadOfSerials(const Job& job, const std::vector<std::string>& skipped) {
  Reading reading(job);
  for (const std::string& place : skipped) {
    reading.Skip(place);
  }
  return reading.Take(true);
}

void AskRecord(const Job& job, const std::string& data_directory, Serials& serials) {
  std::vector<std::string> units;
  for (const UnitAtPlace& one : serials.units) {
    units.push_back(one.unit);
  }
  const std::vector<UnitHistory> histories = HistoriesOf(data_directory, units, job.name);
  for (std::size_t i = 0; i < units.size(); ++i) {
    serials.units[i].attempt = histories[i].attempts + 1;
    if (!job.once || !histories[i].last_has_passed) continue;
    serials.errors.push_back({"serial-passed",
                              "Place \"" + job.places[serials.units[i].place].name +
                                  "\": the serial " + units[i] +
                                  " has passed this job already; take another display, or write "
                                  "once = false under [unit].",
                              {}});
  }
}

}  // namespace line
