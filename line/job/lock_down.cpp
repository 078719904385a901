// SPDX-License-Identifier: MIT
#include "line/job/lock_down.h"

#include <unistd.h>

#include <cstdlib>
#include <optional>
#include <sstream>
#include <utility>

#include "base/path.h"
#include "line/job/judged_files.h"
#include "line/job/sha256.h"

namespace line {

namespace {

// What a file really is.
struct FileFacts {
  std::uint64_t bytes = 0;
  std::string sha256;
};

std::optional<FileFacts> FactsOf(const std::string& path) {
  FileFacts facts;
  if (!zvisp::GetRegularFileSize(path, facts.bytes)) return std::nullopt;
  const std::optional<std::string> hash = Sha256OfFile(path);
  if (!hash) return std::nullopt;
  facts.sha256 = *hash;
  return facts;
}

class Check {
 public:
  Check(const UsedFiles& used, const std::function<std::string(const std::string&)>& path_of)
      : m_used(used), m_path_of(path_of) {}

  void Row(const JobFirmware& row);
  void RefuseUnlisted();
  LockDown Take();

 private:
  void Refuse(const char* id, std::string text, JobPosition position) {
    m_result.errors.push_back({id, std::move(text), position});
  }
  void Compare(const JobFirmware& row, const FileFacts& facts);

  const UsedFiles& m_used;
  const std::function<std::string(const std::string&)>& m_path_of;
  std::map<std::string, std::optional<FileFacts>> m_listed;  // by one name
  LockDown m_result;
};

void Check::Row(const JobFirmware& row) {
  const std::string name = OneNameOf(row.path);
  if (!m_used.contains(name)) {
    // What is not used is not read: it may be a file of another line.
    m_result.warnings.push_back(
        {"unused-file", "No step uses the file \"" + row.path + "\" of [firmware].", row.position});
    return;
  }
  const auto [listed, is_new] = m_listed.try_emplace(name);
  if (is_new) listed->second = FactsOf(m_path_of(name));
  if (listed->second) return Compare(row, *listed->second);
  Refuse("file-unreadable",
         "The file \"" + row.path + "\" cannot be read; check its name and its permissions.",
         row.position);
}

void Check::Compare(const JobFirmware& row, const FileFacts& facts) {
  if (facts.bytes != row.bytes) {
    Refuse("locked-bytes",
           "The file \"" + row.path + "\" has " + std::to_string(facts.bytes) +
               " bytes and the SHA-256 " + facts.sha256 + ", and the job allows only one of " +
               std::to_string(row.bytes) + " bytes; put the right file there, or correct the job.",
           row.position);
  } else if (facts.sha256 != row.sha256) {
    Refuse("locked-hash",
           "The file \"" + row.path + "\" has the SHA-256 " + facts.sha256 +
               ", which is not the job's; put the right file there, or correct the job.",
           row.position);
  }
}

void Check::RefuseUnlisted() {
  for (const auto& [name, step] : m_used) {
    if (m_listed.contains(name)) continue;
    Refuse("unlisted-file",
           "The file " + name +
               " is not listed under [firmware]; add it there with its size and SHA-256.",
           step);
  }
}

LockDown Check::Take() {
  SortByPosition(m_result.errors);
  for (const auto& [name, facts] : m_listed) {
    if (facts) m_result.hashes[name] = facts->sha256;
  }
  return std::move(m_result);
}

bool IsProgram(const std::string& path) {
  return IsOrdinaryFile(path) && access(path.c_str(), X_OK) == 0;
}

// Without the variable, each system has directories of its own, which only a start knows.
bool IsInPath(const std::string& program) {
  const char* const path = std::getenv("PATH");
  if (path == nullptr) return true;
  std::istringstream directories(path);
  for (std::string directory; std::getline(directories, directory, ':');) {
    if (IsProgram((directory.empty() ? "." : directory) + "/" + program)) return true;
  }
  return false;
}

void CheckProgram(const std::vector<std::string>& words, const char* key, JobPosition position,
                  JobErrors& errors) {
  if (words.empty()) return;
  const std::string& program = words.front();
  // The unit may be in its name.
  if (program.find('{') != std::string::npos) return;
  const std::string start = "The program " + program + " of \"" + key + "\" ";
  if (program.find('/') == std::string::npos) {
    if (IsInPath(program)) return;
    errors.push_back({"hook-missing",
                      start + "is not found in PATH; write ./" + program +
                          " for a file next to the job, or the full path.",
                      position});
  } else if (!IsProgram(program)) {
    errors.push_back({"hook-missing",
                      start + "is not a file that may be executed; check its name and its "
                              "permissions.",
                      position});
  }
}

}  // namespace

JobErrors CheckHookPrograms(const Job& job) {
  JobErrors errors;
  CheckProgram(job.hook.before_unit, "before_unit", job.hook.before_unit_position, errors);
  CheckProgram(job.hook.on_result, "on_result", job.hook.on_result_position, errors);
  return errors;
}

LockDown CheckLockDown(const Job& job, const UsedFiles& used,
                       const std::function<std::string(const std::string&)>& path_of) {
  Check check(used, path_of);
  for (const JobFirmware& row : job.firmware) {
    check.Row(row);
  }
  check.RefuseUnlisted();
  return check.Take();
}

JobErrors CheckPluginFile(const Job& job, const std::string& path) {
  if (job.plugin_sha256.empty()) return {};
  const std::optional<std::string> hash = Sha256OfFile(path);
  if (!hash) {
    return {{"plugin-unreadable",
             "The plug-in " + path +
                 " cannot be read, so nobody knows whether it is the job's; "
                 "install it, or name its directory with --plugins.",
             job.plugin_position}};
  }
  if (*hash == job.plugin_sha256) return {};
  return {{"locked-plugin",
           "The plug-in " + path + " has the SHA-256 " + *hash +
               ", which is not the job's; install the right one, or correct the job.",
           job.plugin_position}};
}

}  // namespace line
