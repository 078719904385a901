// SPDX-License-Identifier: MIT
//
// Lets a worker judge words of zvisp, and touches nothing: for `plan` and `batch`.
#ifndef ZVISP_LINE_SUPERVISE_JUDGE_WORDS_H_
#define ZVISP_LINE_SUPERVISE_JUDGE_WORDS_H_

#include <optional>
#include <string>
#include <vector>

#include "line/job/judged_words.h"

namespace line {

// Judges each list of words (without a program's name) as zvisp does, all of them in one worker.
// Waits for the verdicts, one for each list in the same order, each with what zvisp said of its
// own list. Nothing, with a sentence in `error`, when the worker could not be started or ended
// without all of them.
std::optional<std::vector<JudgedWords>> JudgeInWorker(
    const std::vector<std::vector<std::string>>& words, std::string& error);

}  // namespace line

#endif  // ZVISP_LINE_SUPERVISE_JUDGE_WORDS_H_
