// SPDX-License-Identifier: MIT
//
// Events as JSON, and back. The only source that knows the JSON library.
#ifndef ZVISP_LINE_EVENT_EVENT_JSON_H_
#define ZVISP_LINE_EVENT_EVENT_JSON_H_

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "line/event/event.h"

namespace line {

// One object in one line, its newline included. Bytes that are not UTF-8 become U+FFFD.
std::string ToJsonLine(const Event& event);

// What the record's readers need of a line. Texts are empty where the line has no such field.
struct RecordedEvent {
  std::string type, time, session;
  Where where;  // without step_index and phase
  std::optional<UnitState> state;
  std::optional<Outcome> outcome;
  std::optional<int> percent;  // of progress; last_percent of a result
  std::string note, text, reason;
};

// Nothing for a line that is not a JSON object or has no type.
std::optional<RecordedEvent> FromJsonLine(std::string_view line);

}  // namespace line

#endif  // ZVISP_LINE_EVENT_EVENT_JSON_H_
