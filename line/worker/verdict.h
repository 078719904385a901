// SPDX-License-Identifier: MIT
//
// From what is known of a run's calls to its outcome and the state of its display. The parent
// judges by this, and so does a worker that has lost its parent.
#ifndef ZVISP_LINE_WORKER_VERDICT_H_
#define ZVISP_LINE_WORKER_VERDICT_H_

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "line/event/event.h"
#include "line/worker/messages.h"

namespace line {

// The calls into the ISP plug-in that were begun.
struct CallTrace {
  std::string last;            // name of the newest one
  unsigned writing = 0;        // how many of them write to the display
  std::uint32_t edp_mode = 0;  // ENUM_EDP_ISP_MODE of the record

  // Notes a call; true when it is one that writes.
  bool Begin(std::string_view name);
};

// What a run was asked for, as far as its verdict depends on it.
struct Wanted {
  std::vector<std::uint32_t> nothing_written;  // codes that promise it
  std::optional<std::uint32_t> scaler_type;
};

struct Verdict {
  Outcome outcome = Outcome::kFailed;
  UnitState state = UnitState::kUntouched;
  std::string code_source;  // "tool" or "plug-in"
  std::string meaning;      // without a full stop
};

// A result arrived. A call that ended well while a file changed that it used in place has failed.
Verdict JudgeResult(const CallTrace& trace, const ResultMessage& result, const Wanted& wanted);

// The worker ended without a result, for the reason that `outcome` names.
Verdict JudgeMissingResult(const CallTrace& trace, Outcome outcome, std::string meaning);

// The state after a step: a step that has written nothing leaves what it was before.
UnitState StateAfter(UnitState before, UnitState of_step);

}  // namespace line

#endif  // ZVISP_LINE_WORKER_VERDICT_H_
