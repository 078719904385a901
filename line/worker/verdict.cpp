// SPDX-License-Identifier: MIT
#include "line/worker/verdict.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "app/execute_process.h"
#include "plugin/isp_plugin.h"

using namespace zvisp;

namespace line {

namespace {

constexpr const char* kTool = "tool";
constexpr const char* kPlugIn = "plug-in";

struct ToolCode {
  std::uint32_t code;
  Outcome outcome;
  const char* meaning;
};

// Results of zvisp itself; each of them comes before a writing call.
// clang-format off
constexpr ToolCode kToolCodes[] = {
  // code                outcome                meaning
  {kIspPluginNotLoaded,  Outcome::kUnavailable, "the ISP plug-in could not be loaded"},
  {kSignPluginNotLoaded, Outcome::kUnavailable, "the signature plug-in could not be loaded"},
  {kExportNotBound,      Outcome::kUnavailable, "the plug-in has no such call"},
  {kVerificationFailed,  Outcome::kFailed,      "the signature is not genuine"},
  {kRecordNotAllocated,  Outcome::kFailed,      "memory is exhausted"},
};
// clang-format on

bool Contains(const std::vector<std::uint32_t>& codes, std::uint32_t code) {
  return std::find(codes.begin(), codes.end(), code) != codes.end();
}

Verdict OfScalerType(std::uint32_t type, const Wanted& wanted) {
  const bool passed = !wanted.scaler_type || *wanted.scaler_type == type;
  return {passed ? Outcome::kPassed : Outcome::kFailed, UnitState::kUntouched, kPlugIn,
          passed ? "the scaler type was read" : "the scaler type is not the expected one"};
}

Verdict BeforeAnyCall(std::uint32_t code) {
  const auto* const row = std::find_if(std::begin(kToolCodes), std::end(kToolCodes),
                                       [code](const ToolCode& tool) { return tool.code == code; });
  if (row == std::end(kToolCodes)) {
    return {Outcome::kFailed, UnitState::kUntouched, kTool, "the run ended before its call"};
  }
  return {row->outcome, UnitState::kUntouched, kTool, row->meaning};
}

Verdict AfterReadingCall(std::uint32_t code, const Wanted& wanted) {
  // The key was read, and the check of the signature failed.
  if (code == kVerificationFailed || code == kSignPluginNotLoaded) return BeforeAnyCall(code);
  const bool promised = Contains(wanted.nothing_written, code);
  return {promised ? Outcome::kUnavailable : Outcome::kFailed, UnitState::kUntouched, kPlugIn,
          "the plug-in reports a failure"};
}

Verdict JudgeCode(const CallTrace& trace, std::uint32_t code, const Wanted& wanted) {
  if (trace.last == "GetScalerType") return OfScalerType(code, wanted);
  const bool wrote = trace.writing > 0;
  if (code == 0) {
    return {Outcome::kPassed, wrote ? UnitState::kProgrammed : UnitState::kUntouched, kPlugIn,
            "success"};
  }
  if (trace.last.empty()) return BeforeAnyCall(code);
  if (!wrote) return AfterReadingCall(code, wanted);
  // After the boot code, a promise about the second call says nothing about the display.
  if (trace.writing == 1 && Contains(wanted.nothing_written, code)) {
    return {Outcome::kUnavailable, UnitState::kUntouched, kPlugIn,
            "the plug-in promises that nothing was written"};
  }
  return {Outcome::kFailed, UnitState::kUncertain, kPlugIn,
          "the plug-in reports a failure, and the display may be half-written"};
}

Verdict OfChangedFile(const CallTrace& trace, const std::string& path) {
  const bool wrote = trace.writing > 0;
  return {Outcome::kFailed, wrote ? UnitState::kUncertain : UnitState::kUntouched, kTool,
          path + (wrote ? " changed while it was used"
                        : " is not what was checked, so nothing is done")};
}

}  // namespace

bool CallTrace::Begin(std::string_view name) {
  constexpr std::uint32_t kProgramsEeprom = EDP_ISP_MODE_ISP;
  last = name;
  // Entering ISP mode and a reset leave the firmware as it is.
  const bool writes = name == "IspFlash" || name == "RecordFWVersion" ||
                      (name == "IspEeprom" && edp_mode == kProgramsEeprom);
  writing += writes ? 1 : 0;
  return writes;
}

Verdict JudgeResult(const CallTrace& trace, const ResultMessage& result, const Wanted& wanted) {
  Verdict verdict = JudgeCode(trace, result.code, wanted);
  if (!result.missing.empty()) verdict.meaning = result.missing;
  if (verdict.outcome != Outcome::kPassed || result.changed_file.empty()) return verdict;
  return OfChangedFile(trace, result.changed_file);
}

Verdict JudgeMissingResult(const CallTrace& trace, Outcome outcome, std::string meaning) {
  const bool wrote = trace.writing > 0;
  return {outcome, wrote ? UnitState::kUncertain : UnitState::kUntouched, "", std::move(meaning)};
}

UnitState StateAfter(UnitState before, UnitState of_step) {
  return of_step == UnitState::kUntouched ? before : of_step;
}

}  // namespace line
