// SPDX-License-Identifier: MIT
//
// The record of a run whose parent is gone, written by the worker that finished it.
#ifndef ZVISP_LINE_WORKER_LAST_WORDS_H_
#define ZVISP_LINE_WORKER_LAST_WORDS_H_

#include <cstdint>
#include <optional>

#include "line/worker/messages.h"
#include "line/worker/verdict.h"

namespace line {

inline constexpr const char* kParentGone = "the program that watched this run is gone";

// Appends the step's result and the unit's to the record, and waits for the disk. Nothing can be
// done about a failure: the record then says that the unit is being programmed, which is on the
// safe side.
void RecordLastWords(const GoMessage& go, const Verdict& verdict,
                     std::optional<std::uint32_t> code);

}  // namespace line

#endif  // ZVISP_LINE_WORKER_LAST_WORDS_H_
