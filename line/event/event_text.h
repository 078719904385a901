// SPDX-License-Identifier: MIT
//
// Events in words, for people. Lines are whole and cleaned, without newlines; the place is in
// front where there is one.
#ifndef ZVISP_LINE_EVENT_EVENT_TEXT_H_
#define ZVISP_LINE_EVENT_EVENT_TEXT_H_

#include <string>
#include <vector>

#include "line/event/event.h"

namespace line {

enum class Tone { kPlain, kGood, kWarning, kBad };

struct TextLine {
  bool is_result = false;  // for standard output; else for standard error
  Tone tone = Tone::kPlain;
  std::string text;
};

// The lines that an event is worth; none for those that only rows or the record show.
std::vector<TextLine> LinesOf(const Event& event);

// Names of two words, such as "timed_out", without the "_" that scripts want.
std::string WordsOf(Outcome outcome);

// Why a step did not pass, in short: "program crashed, last at 42 %, signal 11".
std::string FailureText(const Where& where, const ResultEvent& result);

// "comm-3: program 42 %, 0:31".
std::string ProgressLine(const Event& event);

// The text in the tone's colour.
std::string Coloured(const TextLine& line);

}  // namespace line

#endif  // ZVISP_LINE_EVENT_EVENT_TEXT_H_
