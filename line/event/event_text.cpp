// SPDX-License-Identifier: MIT
#include "line/event/event_text.h"

#include <algorithm>
#include <cstdio>

#include "line/event/check_text.h"
#include "line/event/plan_text.h"
#include "line/event/screen_text.h"
#include "line/event/time_text.h"

namespace line {

namespace {

using Lines = std::vector<TextLine>;

constexpr const char* kHalfWritten =
    "it may be half-written: program it again, or see zvisp-line journal doctor";

std::string Hex(std::uint64_t value, int digits) {
  char text[32];
  std::snprintf(text, sizeof text, "0x%0*llX", digits, static_cast<unsigned long long>(value));
  return text;
}

// "comm-3: ", or nothing.
std::string Front(const Where& where) {
  return where.place.empty() ? "" : CleanText(where.place) + ": ";
}

std::string Named(const Where& where) {
  return CleanText(where.place) + "  " + CleanText(where.unit);
}

Lines Say(const Event& event, const MessageEvent& message) {
  const Tone tone = message.level == Level::kError     ? Tone::kBad
                    : message.level == Level::kWarning ? Tone::kWarning
                                                       : Tone::kPlain;
  Lines lines;
  for (const std::string& text : CleanLines(message.text)) {
    lines.push_back({false, tone, Front(event.where) + text});
  }
  if (message.truncated) {
    lines.push_back({false, tone, Front(event.where) + "(the rest of this output was cut)"});
  }
  return lines;
}

// A hook is asked often and answers soon: only its refusal is worth a line.
Lines Say(const Event& event, const WaitEvent& wait) {
  if (wait.reason == WaitReason::kHook) return {};
  return {{false, Tone::kPlain, Front(event.where) + "waits: " + CleanText(wait.text)}};
}

std::string CodeText(const ResultEvent& result) {
  if (!result.code.has_value()) return "";
  std::string text = ", code " + Hex(*result.code, 1);
  if (!result.meaning.empty()) text += " (" + CleanText(result.meaning) + ")";
  return text;
}

std::string DifferenceText(const Difference& difference) {
  return ", first difference in bank " + std::to_string(difference.bank) + " at " +
         Hex(difference.address, 6) + ": expected " + Hex(difference.expected, 2) + ", read " +
         Hex(difference.actual, 2);
}

Tone ToneOf(Outcome outcome) {
  return outcome == Outcome::kPassed ? Tone::kGood : Tone::kBad;
}

Lines Say(const Event& event, const ResultEvent& result) {
  std::string text = Front(event.where) + CleanText(event.where.step) + " " +
                     WordsOf(result.outcome) + " after " + DurationText(result.duration_ms) + ", " +
                     std::string(NameOf(result.state));
  // The code of a success is always 0, or is shown as the value.
  if (result.outcome != Outcome::kPassed) text += CodeText(result);
  if (result.value) text += ", value " + CleanText(*result.value);
  if (result.expected) text += ", expected " + CleanText(*result.expected);
  if (result.signal) text += ", signal " + std::to_string(*result.signal);
  if (result.outcome != Outcome::kPassed && result.last_percent) {
    text += ", last at " + std::to_string(*result.last_percent) + " %";
  }
  if (result.compared_bytes) {
    text += ", " + std::to_string(*result.compared_bytes) + " bytes compared";
  }
  if (result.difference) text += DifferenceText(*result.difference);
  return {{false, ToneOf(result.outcome), text}};
}

Lines Say(const Event& event, const UnitResultEvent& result) {
  const bool has_passed = result.outcome == Outcome::kPassed;
  std::string text = Named(event.where) + (has_passed ? "  PASS  " : "  FAIL  ") +
                     std::string(NameOf(result.state));
  if (result.state == UnitState::kUncertain) text += std::string(": ") + kHalfWritten;
  if (!result.reason.empty()) text += ": " + CleanText(result.reason);
  if (!result.recorded) text += " (not recorded)";
  return {{true, ToneOf(result.outcome), text}};
}

// "Step program, A1:", above the plan of a step of a job.
std::string StepTitle(const Where& where) {
  const std::string place = where.place.empty() ? "" : ", " + CleanText(where.place);
  return "Step " + CleanText(where.step) + place + ":";
}

Lines Say(const Event& event, const PlanEvent& plan) {
  Lines lines;
  // Within a run the operator has seen the plan, or does not want to.
  if (event.where.run.empty()) {
    const bool is_of_job = !event.where.job_name.empty();
    if (is_of_job) lines.push_back({true, Tone::kPlain, StepTitle(event.where)});
    for (const std::string& text : PlanLines(plan)) {
      lines.push_back({true, Tone::kPlain, text});
    }
    if (is_of_job) lines.push_back({true, Tone::kPlain, ""});
  }
  for (const Warning& warning : plan.warnings) {
    lines.push_back({false, Tone::kWarning, "zvisp-line: warning: " + CleanText(warning.text)});
  }
  return lines;
}

// A mistake in a file begins like the messages of a compiler, "FILE:LINE:COLUMN: ", so that editors
// find it.
Lines Say(const Event& event, const ErrorEvent& error) {
  std::string front = error.file.empty() ? "zvisp-line" : CleanText(error.file);
  if (error.line) front += ":" + std::to_string(*error.line);
  if (error.column) front += ":" + std::to_string(*error.column);
  front += ": ";
  // The words of a run name its interface.
  if (!event.where.job_name.empty()) front += Front(event.where);
  return {{false, Tone::kBad, front + CleanText(error.text)}};
}

Lines Say(const Event& event, const FindingEvent& finding) {
  std::string text = Named(event.where) + "  " + std::string(NameOf(finding.state)) + "  " +
                     CleanText(event.where.step);
  if (finding.last_percent) text += " at " + std::to_string(*finding.last_percent) + " %";
  text += "  " + CleanText(finding.since) + "  run " + CleanText(event.where.run);
  return {{true, Tone::kBad, text}};
}

Lines Say(const Event& event, const ResolvedEvent& resolved) {
  return {{true, Tone::kGood,
           Named(event.where) + "  resolved: " + CleanText(resolved.note) + "  run " +
               CleanText(event.where.run)}};
}

Lines Say(const Event&, const CheckEvent& check) {
  return LinesOfCheck(check);
}

Lines Say(const Event&, const SummaryEvent& summary) {
  std::string text = CountsOfChecks(summary);
  for (const auto& [outcome, count] : summary.outcomes) {
    if (count == 0) continue;
    text += (text.empty() ? "" : ", ") + std::to_string(count) + " " + WordsOf(outcome);
  }
  const char* separator = "; ";
  for (const auto& [state, count] : summary.states) {
    if (count == 0) continue;
    text += separator + std::to_string(count) + " " + std::string(NameOf(state));
    separator = ", ";
  }
  return {{true, Tone::kPlain, text}};
}

// Types that are shown by rows, or not at all.
template <typename Body>
Lines Say(const Event&, const Body&) {
  return {};
}

}  // namespace

std::vector<TextLine> LinesOf(const Event& event) {
  return std::visit([&event](const auto& body) { return Say(event, body); }, event.body);
}

std::string WordsOf(Outcome outcome) {
  std::string words(NameOf(outcome));
  std::replace(words.begin(), words.end(), '_', ' ');
  return words;
}

std::string FailureText(const Where& where, const ResultEvent& result) {
  std::string text = CleanText(where.step) + " " + WordsOf(result.outcome);
  if (result.difference) {
    return text + " in bank " + std::to_string(result.difference->bank) + " at " +
           Hex(result.difference->address, 6);
  }
  // The state says what a code means. A signal is news only when nobody here has sent it.
  if (result.code.value_or(0) != 0) text += ", code " + Hex(*result.code, 1);
  if (result.last_percent) text += ", last at " + std::to_string(*result.last_percent) + " %";
  if (result.signal && result.outcome == Outcome::kCrashed) {
    text += ", signal " + std::to_string(*result.signal);
  }
  if (result.value && result.expected) {
    text += ", value " + CleanText(*result.value) + ", expected " + CleanText(*result.expected);
  }
  return text;
}

std::string ProgressLine(const Event& event) {
  const ProgressEvent& progress = std::get<ProgressEvent>(event.body);
  const std::string doing =
      event.where.phase ? std::string(NameOf(*event.where.phase)) : CleanText(event.where.step);
  return Front(event.where) + doing + " " + std::to_string(progress.percent) + " %, " +
         DurationText(progress.elapsed_ms);
}

std::string Coloured(const TextLine& line) {
  constexpr const char* kColours[] = {"", "\x1b[32m", "\x1b[33m", "\x1b[31m"};
  const std::string colour = kColours[static_cast<int>(line.tone)];
  return colour.empty() ? line.text : colour + line.text + "\x1b[m";
}

}  // namespace line
