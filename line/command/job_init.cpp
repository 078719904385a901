// SPDX-License-Identifier: MIT
//
// job init: writes a job of zvisp's words, which batch --check accepts as it is.
#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <iterator>
#include <optional>
#include <string_view>
#include <utility>

#include "base/path.h"
#include "line/command/approval.h"
#include "line/command/commands.h"
#include "line/command/judged_job.h"
#include "line/command/paths.h"
#include "line/event/screen_text.h"
#include "line/job/job_file.h"
#include "line/job/job_text.h"
#include "line/job/judged_files.h"
#include "line/job/sha256.h"
#include "line/job/step_name.h"
#include "line/journal/descriptor.h"

namespace line {

namespace {

namespace fs = std::filesystem;

constexpr const char* kAnySerial = "^[0-9A-Za-z._-]+$";
constexpr std::uint32_t kStopAfter = 3;
// Options whose values are paths, and are looked for in the working directory.
constexpr std::string_view kPathOptions[] = {
    "fw",  "fw1", "fw2",      "fw3",    "fw4",    "fw5",     "fw6",        "fw7",
    "fw8", "fw9", "signfile", "vkfile", "skfile", "subcert", "nextvkfile", "dumpname"};

bool TakesPath(const GivenOption& option) {
  return std::find(std::begin(kPathOptions), std::end(kPathOptions), option.row->name) !=
         std::end(kPathOptions);
}

std::optional<std::uint32_t> NumberIn(const std::string& text) {
  char* end = nullptr;
  errno = 0;
  const unsigned long long number = std::strtoull(text.c_str(), &end, 0);
  const bool is_number = !text.empty() && text[0] != '-' && *end == '\0' && errno == 0;
  if (!is_number || number > 0xFFFFFFFF) return std::nullopt;
  return static_cast<std::uint32_t>(number);
}

class JobInit {
 public:
  JobInit(const Options& options, Session& session)
      : m_options(options),
        m_scan(ScanOptions(options.words)),
        m_plugins(PluginDirectory(options.plugins)),
        m_output(options.output.empty() ? "" : AbsolutePath(options.output)),
        m_directory(m_output.empty() ? fs::current_path().string()
                                     : fs::path(m_output).parent_path().string()),
        m_judged(m_job, m_no_file, session) {}

  ExitStatus Run();

 private:
  ExitStatus Describe();
  ExitStatus Judge();
  ExitStatus LockDown();
  ExitStatus Write();

  bool AddPlaces(JobErrors& errors);
  void AddPlace(const std::string& text, JobErrors& errors);
  std::vector<std::string> StepWords() const;
  std::string FromJob(const std::string& path) const;
  std::string ListedName(const std::string& file) const;
  std::string Text() const { return JobText(m_job, m_options.output.empty() ? "JOB" : FileName()); }
  std::string FileName() const { return fs::path(m_output).filename().string(); }
  ExitStatus Refuse(JobErrors errors);

  const Options& m_options;
  OptionScan m_scan;
  std::string m_plugins, m_output, m_directory;
  std::string m_no_file;
  Job m_job;
  JudgedJob m_judged;
};

// The text is not yet written, so nobody could look up a line of it.
ExitStatus JobInit::Refuse(JobErrors errors) {
  for (JobError& error : errors) {
    error.position = {};
  }
  m_judged.Report(errors);
  return errors.empty() ? kExitPassed : kExitRefused;
}

// The path as a job in m_directory has to write it.
std::string JobInit::FromJob(const std::string& path) const {
  std::error_code failure;
  const fs::path here = fs::current_path(failure);
  if (failure || IsAbsolutePath(path) || here == fs::path(m_directory)) return path;
  const fs::path full = (here / path).lexically_normal();
  const fs::path relative = full.lexically_relative(fs::path(m_directory).lexically_normal());
  const bool is_below = !relative.empty() && *relative.begin() != "..";
  return is_below ? relative.string() : full.string();
}

// The words again, with whole names, without what the places say.
std::vector<std::string> JobInit::StepWords() const {
  if (!m_scan.refusals.empty()) return m_options.words;
  std::vector<std::string> words;
  for (const GivenOption& option : m_scan.options) {
    const std::string name = option.row->name;
    if (name == "comm" || name == "slave") continue;
    words.push_back("--" + name);
    if (option.row->argument != zvisp::kRequiredArgument) continue;
    std::string value = TakesPath(option) ? FromJob(option.value) : option.value;
    // Apart, it could be taken for an option.
    if (value.empty() || value[0] == '-') {
      words.back() += "=" + value;
    } else {
      words.push_back(std::move(value));
    }
  }
  return words;
}

void JobInit::AddPlace(const std::string& text, JobErrors& errors) {
  const std::size_t equals = text.rfind('=');
  const auto comm = equals == std::string::npos ? std::nullopt : NumberIn(text.substr(equals + 1));
  if (!comm) {
    errors.push_back(
        {"place", "--place " + CleanText(text) + " is not a place; give NAME=COMM, as A1=1.", {}});
    return;
  }
  m_job.places.push_back({text.substr(0, equals), *comm, {}, {}});
}

// False for an interface that is given twice.
bool JobInit::AddPlaces(JobErrors& errors) {
  const std::string* const comm = m_scan.ValueOf("comm");
  if (comm != nullptr && !m_options.places.empty()) {
    errors.push_back({"place",
                      "The option --comm names one interface and --place others; leave one of the "
                      "two out.",
                      {}});
    return false;
  }
  for (const std::string& place : m_options.places) {
    AddPlace(place, errors);
  }
  if (m_options.places.empty()) AddPlace("A1=" + (comm == nullptr ? "1" : *comm), errors);
  const std::string* const slave = m_scan.ValueOf("slave");
  for (JobPlace& place : m_job.places) {
    if (slave != nullptr) place.slave = NumberIn(*slave);
  }
  return errors.empty();
}

ExitStatus JobInit::Describe() {
  JobErrors errors;
  if (m_options.json && m_output.empty()) {
    errors.push_back({"output",
                      "With --json, standard output is for events; give --output FILE for the job.",
                      {}});
  }
  if (m_options.words.empty()) {
    errors.push_back({"no-words", kNoWords, {}});
  }
  for (const std::string& word : m_options.words) {
    if (CleanText(word) == word) continue;
    errors.push_back({"word",
                      "The word " + CleanText(word) +
                          " has control characters, or is not UTF-8, so a job cannot hold it; "
                          "rename the file.",
                      {}});
  }
  AddPlaces(errors);
  JobStep step;
  step.words = StepWords();
  step.timeout_s = m_options.timeout_s;
  step.readback = m_options.readback;
  step.allow_unsigned = m_options.allow_unsigned;
  step.expect = m_options.expect;
  const std::string action = ActionNameOf(m_scan);
  step.name = action.empty() || action.starts_with("isp") ? "program" : action;
  m_job.steps = {step};
  m_job.name = !m_options.name.empty() ? m_options.name
               : !m_output.empty()     ? fs::path(m_output).stem().string()
                                       : step.name;
  m_job.pattern = m_options.pattern.empty() ? kAnySerial : m_options.pattern;
  m_job.line.stop_after = kStopAfter;
  if (!errors.empty()) return Refuse(errors);
  // What the reader refuses is refused here, by the same rules.
  return Refuse(ReadJobText(Text()).errors);
}

// As batch will do it, in the directory of the job.
ExitStatus JobInit::Judge() {
  if (chdir(m_directory.c_str()) != 0) {
    return Refuse({{"output",
                    "Cannot enter " + m_directory + ": " + std::strerror(errno) +
                        "; give --output in a directory that exists.",
                    {}}});
  }
  return m_judged.Judge(PlacesInsteadOfSerials(m_job, {}).units);
}

// How the words call a file that is used.
std::string JobInit::ListedName(const std::string& file) const {
  for (const std::string& word : m_job.steps.front().words) {
    const std::size_t equals = word.starts_with("--") ? word.find('=') : std::string::npos;
    std::string value = equals == std::string::npos ? word : word.substr(equals + 1);
    if (IsOrdinaryFile(value) && OneNameOf(value) == file) return value;
  }
  const std::string base = OneNameOf(m_directory) + "/";
  return file.starts_with(base) ? file.substr(base.size()) : file;
}

ExitStatus JobInit::LockDown() {
  for (const auto& [file, position] : m_judged.Files()) {
    std::uint64_t bytes = 0;
    const std::optional<std::string> hash = Sha256OfFile(file);
    if (!hash || !zvisp::GetRegularFileSize(file, bytes)) {
      return Refuse({{"file", "The file " + file + " cannot be read any more; check it.", {}}});
    }
    m_job.firmware.push_back({ListedName(file), *hash, bytes, {}});
  }
  m_job.plugin_sha256 = Sha256OfFile(IspPluginIn(m_plugins)).value_or("");
  return kExitPassed;
}

ExitStatus JobInit::Write() {
  const std::string text = Text();
  // With the hashes, lines are longer.
  const ExitStatus readable = Refuse(ReadJobText(text).errors);
  if (readable != kExitPassed) return readable;
  if (m_output.empty()) {
    const bool written = std::fputs(text.c_str(), stdout) >= 0 && std::fflush(stdout) == 0;
    return written ? kExitPassed
                   : Refuse({{"output", "Cannot write to standard output; make room there.", {}}});
  }
  // Never over a file that somebody may need.
  const Descriptor file(open(m_output.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666));
  if (file.IsOpen() && WriteAll(file.Number(), text)) return kExitPassed;
  const std::string why = std::strerror(errno);
  // Half a job is none.
  if (file.IsOpen()) unlink(m_output.c_str());
  return Refuse({{"output",
                  "Cannot write " + m_options.output + ": " + why +
                      "; give --output a name that is not taken yet, where there is room.",
                  {}}});
}

ExitStatus JobInit::Run() {
  using Part = ExitStatus (JobInit::*)();
  for (const Part part :
       {&JobInit::Describe, &JobInit::Judge, &JobInit::LockDown, &JobInit::Write}) {
    const ExitStatus status = (this->*part)();
    if (status != kExitPassed) return status;
  }
  return kExitPassed;
}

}  // namespace

ExitStatus RunJobInit(const Options& options, Session& session) {
  return JobInit(options, session).Run();
}

}  // namespace line
