// SPDX-License-Identifier: MIT
#include "line/job/job_file.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <system_error>

#include "base/path.h"
#include "line/job/job_keys.h"
#include "line/job/job_rules.h"
#include "line/job/sha256.h"

namespace line {

namespace {

using Kind = TomlValue::Kind;

constexpr std::int64_t kSchema = 1;
constexpr std::uint64_t kMostBytes = std::uint64_t{256} * 1024;

// clang-format off
constexpr JobKey<Job> kUnitKeys[] = {
  {"pattern",         &Job::pattern},
  {"once",            &Job::once},
};
constexpr JobKey<JobLine> kLineKeys[] = {
  {"jobs_at_once",    &JobLine::jobs_at_once},
  {"stagger_ms",      &JobLine::stagger_ms},
  {"first_article",   &JobLine::first_article},
  {"stop_after",      &JobLine::stop_after},
  {"serialise",       &JobLine::serialise},
  {"copy",            &JobLine::copy},
};
constexpr JobKey<JobFirmware> kFirmwareKeys[] = {
  {"sha256",          &JobFirmware::sha256},
  {"bytes",           &JobFirmware::bytes},
};
constexpr JobKey<Job> kPluginKeys[] = {
  {"sha256",          &Job::plugin_sha256},
  {"nothing_written", &Job::nothing_written},
};
constexpr JobKey<Job> kReadBackKeys[] = {
  {"ignore",          &Job::ignore},
};
constexpr JobKey<JobHook> kHookKeys[] = {
  {"before_unit",     &JobHook::before_unit},
  {"on_result",       &JobHook::on_result},
  {"required",        &JobHook::required},
  {"timeout_s",       &JobHook::timeout_s},
};
constexpr JobKey<JobStep> kStepKeys[] = {
  {"name",            &JobStep::name},
  {"zvisp",           &JobStep::words},
  {"read",            {}},
  {"timeout_s",       &JobStep::timeout_s},
  {"readback",        &JobStep::readback},
  {"allow_unsigned",  &JobStep::allow_unsigned},
  {"expect",          &JobStep::expect},
};
constexpr JobKey<JobRead> kReadKeys[] = {
  {"addr",            &JobRead::address},
  {"len",             &JobRead::length},
  {"equals",          &JobRead::equals},
};
constexpr JobKey<JobPlace> kPlaceKeys[] = {
  {"name",            &JobPlace::name},
  {"comm",            &JobPlace::comm},
  {"slave",           &JobPlace::slave},
};
// clang-format on

// Reads one table of the job.
template <class Target, std::size_t kCount>
void Read(const TomlValue& table, std::string_view owner, const JobKey<Target> (&keys)[kCount],
          Target& target, JobErrors& errors) {
  ReadKeys(table, owner, std::span<const JobKey<Target>>(keys), target, errors);
}

bool IsTable(const TomlMember& key, JobErrors& errors) {
  if (key.value.kind == Kind::kTable) return true;
  errors.push_back(WrongType(key, "a table"));
  return false;
}

bool IsListOfTables(const TomlMember& key, JobErrors& errors) {
  const auto is_table = [](const TomlValue& item) { return item.kind == Kind::kTable; };
  const TomlValue& list = key.value;
  if (list.kind == Kind::kList && std::all_of(list.items.begin(), list.items.end(), is_table)) {
    return true;
  }
  errors.push_back(WrongType(key, "tables, each under [[" + key.name + "]]"));
  return false;
}

void ReadSchema(const TomlMember& key, Job& /*job*/, JobErrors& errors) {
  if (key.value.kind != Kind::kInteger) {
    return errors.push_back(WrongType(key, "the number 1"));
  }
  if (key.value.integer == kSchema) return;
  errors.push_back({"other-schema",
                    "This job has schema " + std::to_string(key.value.integer) +
                        ", and this zvisp-line reads schema 1; use the release that reads it.",
                    key.value.position});
}

void ReadName(const TomlMember& key, Job& job, JobErrors& errors) {
  TakeValue(key, job.name, errors);
}

void ReadUnit(const TomlMember& key, Job& job, JobErrors& errors) {
  if (!IsTable(key, errors)) return;
  Read(key.value, "[unit]", kUnitKeys, job, errors);
  CheckPattern(key.value, job, errors);
}

void ReadLine(const TomlMember& key, Job& job, JobErrors& errors) {
  if (!IsTable(key, errors)) return;
  Read(key.value, "[line]", kLineKeys, job.line, errors);
  CheckLine(key.value, job.line, errors);
}

void ReadFirmware(const TomlMember& key, Job& job, JobErrors& errors) {
  if (!IsTable(key, errors)) return;
  for (const TomlMember& row : key.value.members) {
    if (!IsTable(row, errors)) continue;
    JobFirmware file;
    file.path = row.name;
    file.position = row.position;
    Read(row.value, "a file of [firmware]", kFirmwareKeys, file, errors);
    CheckFirmware(row.value, file, errors);
    job.firmware.push_back(file);
  }
}

void ReadPlugin(const TomlMember& key, Job& job, JobErrors& errors) {
  if (!IsTable(key, errors)) return;
  Read(key.value, "[plugin]", kPluginKeys, job, errors);
  CheckPlugin(key.value, job, errors);
}

void ReadReadBack(const TomlMember& key, Job& job, JobErrors& errors) {
  if (!IsTable(key, errors)) return;
  Read(key.value, "[readback]", kReadBackKeys, job, errors);
  CheckReadBack(key.value, job, errors);
}

void ReadHook(const TomlMember& key, Job& job, JobErrors& errors) {
  if (!IsTable(key, errors)) return;
  Read(key.value, "[hook]", kHookKeys, job.hook, errors);
  CheckHook(key.value, job.hook, errors);
}

void ReadRead(const TomlValue& step, JobStep& read, JobErrors& errors) {
  const TomlValue* const value = step.Find("read");
  if (value == nullptr) return;
  if (value->kind != Kind::kTable) return errors.push_back(WrongType("read", *value, "a table"));
  read.read = JobRead();
  Read(*value, "\"read\"", kReadKeys, *read.read, errors);
  CheckRead(*value, *read.read, errors);
}

// Where a message about the words leads to.
void FindWords(const TomlValue& table, JobStep& step) {
  const TomlValue* const words = table.Find("zvisp");
  step.words_position = words != nullptr ? words->position : step.position;
  if (words == nullptr) return;
  for (const TomlValue& word : words->items) {
    step.word_positions.push_back(word.position);
  }
}

void ReadSteps(const TomlMember& key, Job& job, JobErrors& errors) {
  if (!IsListOfTables(key, errors)) return;
  for (const TomlValue& table : key.value.items) {
    JobStep step;
    step.position = table.position;
    Read(table, "[[step]]", kStepKeys, step, errors);
    FindWords(table, step);
    ReadRead(table, step, errors);
    CheckStep(table, step, errors);
    job.steps.push_back(step);
  }
}

void ReadPlaces(const TomlMember& key, Job& job, JobErrors& errors) {
  if (!IsListOfTables(key, errors)) return;
  for (const TomlValue& table : key.value.items) {
    JobPlace place;
    place.position = table.position;
    Read(table, "[[place]]", kPlaceKeys, place, errors);
    CheckPlace(table, place, errors);
    job.places.push_back(place);
  }
}

struct Section {
  std::string_view name;
  void (*read)(const TomlMember& key, Job& job, JobErrors& errors);
  const char* missing;  // what to do without it; null when a job may lack it
};

// clang-format off
constexpr Section kSections[] = {
  // name       read          without it
  {"schema",   ReadSchema,   "write schema = 1 at its top."},
  {"name",     ReadName,     "write name = \"...\" at its top."},
  {"unit",     ReadUnit,     "write [unit] with the pattern of a serial."},
  {"line",     ReadLine,     nullptr},
  {"firmware", ReadFirmware, nullptr},
  {"plugin",   ReadPlugin,   nullptr},
  {"readback", ReadReadBack, nullptr},
  {"hook",     ReadHook,     nullptr},
  {"step",     ReadSteps,    "write a [[step]] with what is done to a display."},
  {"place",    ReadPlaces,   "write a [[place]] for each interface."},
};
// clang-format on

std::vector<std::string> SectionNames() {
  std::vector<std::string> names;
  for (const Section& section : kSections) {
    names.emplace_back(section.name);
  }
  return names;
}

void ReadSections(const TomlValue& root, Job& job, JobErrors& errors) {
  for (const TomlMember& member : root.members) {
    const Section* const section =
        std::find_if(std::begin(kSections), std::end(kSections),
                     [&member](const Section& one) { return one.name == member.name; });
    if (section == std::end(kSections)) {
      errors.push_back(UnknownKey(member, "a job", SectionNames()));
    } else {
      section->read(member, job, errors);
    }
  }
  for (const Section& section : kSections) {
    const TomlValue* const value = root.Find(section.name);
    const bool is_empty_list =
        value != nullptr && value->kind == Kind::kList && value->items.empty();
    if (section.missing == nullptr || (value != nullptr && !is_empty_list)) continue;
    errors.push_back({"missing-key",
                      "The job has no \"" + std::string(section.name) + "\"; " + section.missing,
                      value != nullptr ? value->position : JobPosition{1, 1}});
  }
}

JobReading CannotRead(const std::string& path) {
  JobReading reading;
  reading.errors.push_back({"job-unreadable",
                            "The job " + path +
                                " is not an ordinary file that can be read; check its name and "
                                "its permissions.",
                            {}});
  return reading;
}

template <class Target, std::size_t kCount>
void AddNames(const std::string& owner, const JobKey<Target> (&keys)[kCount],
              std::vector<std::string>& names) {
  for (const JobKey<Target>& key : keys) {
    names.push_back(owner + "." + std::string(key.name));
  }
}

}  // namespace

JobReading ReadJobText(std::string_view text) {
  JobReading reading;
  TomlValue root;
  JobError error;
  if (!ParseToml(text, root, error)) {
    reading.errors.push_back(error);
    return reading;
  }
  ReadSections(root, reading.job, reading.errors);
  CheckNamesOfSteps(reading.job, reading.errors);
  CheckPlaces(reading.job, reading.errors);
  SortByPosition(reading.errors);
  return reading;
}

JobReading ReadJobFile(const std::string& path) {
  namespace fs = std::filesystem;
  std::uint64_t bytes = 0;
  // A FIFO or a device would never end.
  if (!zvisp::GetRegularFileSize(path, bytes)) return CannotRead(path);
  std::string text(std::min(bytes, kMostBytes + 1), '\0');
  std::ifstream file(path, std::ios::binary);
  file.read(text.data(), static_cast<std::streamsize>(text.size()));
  if (file.bad()) return CannotRead(path);
  text.resize(static_cast<std::size_t>(file.gcount()));
  JobReading reading = ReadJobText(text);
  std::error_code failure;
  const fs::path full = fs::absolute(path, failure);
  if (failure) return CannotRead(path);
  reading.job.path = full.string();
  reading.job.directory = full.parent_path().string();
  if (!reading.job.directory.ends_with('/')) reading.job.directory += '/';
  Sha256 hash;
  hash.Add(text.data(), text.size());
  reading.job.sha256 = hash.Take();
  return reading;
}

std::vector<std::string> JobKeyNames() {
  std::vector<std::string> names = {"schema", "name"};
  AddNames("unit", kUnitKeys, names);
  AddNames("line", kLineKeys, names);
  AddNames("firmware.FILE", kFirmwareKeys, names);
  AddNames("plugin", kPluginKeys, names);
  AddNames("readback", kReadBackKeys, names);
  AddNames("hook", kHookKeys, names);
  AddNames("step", kStepKeys, names);
  AddNames("step.read", kReadKeys, names);
  AddNames("place", kPlaceKeys, names);
  return names;
}

}  // namespace line
