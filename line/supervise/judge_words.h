// SPDX-License-Identifier: MIT
//
// Lets a worker judge words of zvisp, and touches nothing: for `plan`.
#ifndef ZVISP_LINE_SUPERVISE_JUDGE_WORDS_H_
#define ZVISP_LINE_SUPERVISE_JUDGE_WORDS_H_

#include <optional>
#include <string>
#include <vector>

#include "line/job/judged_words.h"

namespace line {

// `words` without a program's name. Waits for the verdict; nothing, with a sentence in `error`,
// when the worker could not be started or ended without one.
std::optional<JudgedWords> JudgeInWorker(const std::vector<std::string>& words, std::string& error);

}  // namespace line

#endif  // ZVISP_LINE_SUPERVISE_JUDGE_WORDS_H_
