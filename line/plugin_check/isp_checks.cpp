// SPDX-License-Identifier: MIT
#include <pthread.h>

#include <cstddef>
#include <cstring>
#include <cwchar>

#include "line/plugin_check/checks.h"
#include "line/plugin_check/isp_calls.h"
#include "line/plugin_check/surroundings.h"
#include "line/worker/library_file.h"
#include "plugin/digital_sign_args.h"

namespace line::checks {

namespace {

using Setting = IspRecord::Setting;

// What the callbacks, which have no argument for it, have seen.
pthread_t g_thread;
std::string g_broken_rule;
volatile std::size_t g_length;  // volatile, so that a text's end is looked for

void OnAnyThread() {
  if (pthread_equal(g_thread, pthread_self()) == 0) {
    g_broken_rule = "a callback came on another thread than that of the call";
  }
}

void OnProgress(int percent) {
  OnAnyThread();
  if (percent >= 0 && percent <= 100) return;
  g_broken_rule = "the progress was " + std::to_string(percent) + " percent";
}

void OnMessage(wchar_t* message) {
  OnAnyThread();
  if (message == nullptr) {
    g_broken_rule = "the text of a message was null";
  } else {
    // A text that is not ended leads into memory that is not there.
    g_length = std::wcslen(message);
  }
}

// The first byte that differs, or the size when none does.
std::size_t FirstDifference(const Setting& before, const Setting& after) {
  const auto* const old_bytes = reinterpret_cast<const unsigned char*>(&before);
  const auto* const new_bytes = reinterpret_cast<const unsigned char*>(&after);
  std::size_t i = 0;
  while (i < sizeof before && old_bytes[i] == new_bytes[i]) {
    ++i;
  }
  return i;
}

Finding JudgeRecord(const MadeCall& call) {
  const std::size_t first = FirstDifference(call.before, *call.record.Get());
  if (first == sizeof(Setting)) return Passed();
  if (call.before.enumActionType != call.record->enumActionType) {
    return Failed(std::string(call.name) +
                  " changed enumActionType, by which zvisp chooses what it prints: leave it.");
  }
  return Warned(std::string(call.name) + " wrote into the record, first at offset " +
                std::to_string(first) + ": no host reads it, keep such data elsewhere.");
}

// The weightier of the two; the first one when they weigh the same.
void Keep(Finding& finding, Finding other) {
  if (other.outcome > finding.outcome) finding = std::move(other);
}

}  // namespace

Finding NullCallbacks(const CheckContext& context) {
  CCpIsp isp;
  if (!LoadIsp(context, isp)) return NotLoaded();
  context.announce("SetUIFunction with null callbacks");
  isp.SetUIFunction(nullptr, nullptr, nullptr);
  MakeCalls(context, isp, Guard::kNone, [](const MadeCall&) {});
  return Passed();
}

Finding SetCallbacks(const CheckContext& context) {
  CCpIsp isp;
  if (!LoadIsp(context, isp)) return NotLoaded();
  g_thread = pthread_self();
  isp.SetUIFunction(OnProgress, OnMessage, nullptr);
  Finding finding;
  MakeCalls(context, isp, Guard::kNone, [&finding](const MadeCall& call) {
    if (g_broken_rule.empty()) return;
    Keep(finding, Failed(std::string("In ") + call.name + ", " + g_broken_rule +
                         ": report 0 to 100 percent and texts that end with a zero, on the "
                         "thread of the call."));
  });
  return finding;
}

Finding EmptyDump(const CheckContext& context) {
  CCpIsp isp;
  if (!LoadIsp(context, isp)) return NotLoaded();
  Finding finding;
  CheckContext without_device = context;
  without_device.with_device = false;
  MakeCalls(without_device, isp, Guard::kNone, [&finding](const MadeCall& call) {
    const std::string why = WhyNoRefusal(call.name, call.code);
    if (!why.empty()) finding = Failed(why);
  });
  return finding;
}

Finding RecordKept(const CheckContext& context) {
  CCpIsp isp;
  if (!LoadIsp(context, isp)) return NotLoaded();
  Finding finding;
  MakeCalls(context, isp, Guard::kNone,
            [&finding](const MadeCall& call) { Keep(finding, JudgeRecord(call)); });
  return finding;
}

Finding RecordBounds(const CheckContext& context) {
  CCpIsp isp;
  if (!LoadIsp(context, isp)) return NotLoaded();
  Finding finding;
  for (const Guard guard : {Guard::kAfter, Guard::kBefore}) {
    MakeCalls(context, isp, guard, [&finding](const MadeCall& call) {
      if (call.record.IsPatternWhole() && call.key.IsPatternWhole()) return;
      Keep(finding,
           Failed(std::string(call.name) + " wrote outside what it was given: a record has " +
                  std::to_string(sizeof(Setting)) + " bytes, a key " +
                  std::to_string(kDeviceKeyCapacity) + "."));
    });
  }
  return finding;
}

Finding CallSurroundings(const CheckContext& context) {
  CCpIsp isp;
  if (!LoadIsp(context, isp)) return NotLoaded();
  Finding finding;
  const Surroundings before;
  MakeCalls(context, isp, Guard::kNone, [&](const MadeCall& call) {
    const std::vector<std::string> differences = before.Differences();
    if (differences.empty()) return;
    Keep(finding, Failed(std::string("After ") + call.name + ", " + Listed(differences) +
                         ": put back what a call changes."));
  });
  return finding;
}

}  // namespace line::checks
