// SPDX-License-Identifier: MIT
#include "line/command/batch_units.h"

#include <algorithm>
#include <utility>

#include "line/command/paths.h"
#include "line/event/session.h"
#include "line/job/job_words.h"
#include "line/job/judged_files.h"
#include "line/job/strictness.h"

namespace line {

std::vector<FileFacts> BatchUnits::CheckedFiles(const JudgedWords& words) const {
  std::vector<FileFacts> files;
  for (const std::string& file : FilesOf(words)) {
    const auto hash = hashes.find(file);
    // One that led elsewhere a moment ago has changed, and so has no hash that it fits.
    files.push_back({file, hash == hashes.end() ? "" : hash->second});
  }
  // Each worker loads the plug-in anew.
  if (!job.plugin_sha256.empty()) {
    files.push_back({IspPluginIn(plugin_directory), job.plugin_sha256});
  }
  return files;
}

StepRequest BatchUnits::StepFor(const JobStep& step, JudgedStep& judged) const {
  StepRequest request;
  request.name = step.name;
  request.plugin_directory = plugin_directory;
  request.data_directory = data_directory;
  request.timeout_s = step.timeout_s;
  request.wanted = {job.nothing_written, step.expect};
  request.reads_back = step.readback;
  request.ignored = ignored;
  request.copies_lock = copies.LockDescriptor();
  request.dump_prefix = copies.PathFor("dump-");
  if (step.read) {
    request.read = FlashRead{step.read->address, step.read->length, step.read->equals};
  }
  request.checked_files = CheckedFiles(judged.words);
  request.judged = std::move(judged.words);
  return request;
}

UnitRequest BatchUnits::RequestFor(JudgedUnit& unit) const {
  const JobPlace& place = job.places[unit.at.place];
  UnitRequest request;
  request.where.run = NewUuid();
  request.where.unit = unit.at.unit;
  request.where.place = place.name;
  request.where.comm = place.comm;
  request.where.job_name = job.name;
  request.attempt = unit.at.attempt;
  request.wait_ms = wait_ms;
  request.before_words = Expanded(job.hook.before_unit, unit.at.unit, place.name);
  request.after_words = Expanded(job.hook.on_result, unit.at.unit, place.name);
  request.hook_directory = job.directory;
  // 0 would be no time-out at all.
  request.hook_timeout_ms =
      std::max<std::uint64_t>(static_cast<std::uint64_t>(job.hook.timeout_s * 1000), 1);
  for (std::size_t i = 0; i < job.steps.size(); ++i) {
    JudgedStep& judged = unit.steps[i];
    request.is_unsigned |= ProgramsUnsignedFiles(judged.scan, judged.words);
    request.steps.push_back(StepFor(job.steps[i], judged));
  }
  return request;
}

}  // namespace line
