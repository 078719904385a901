// SPDX-License-Identifier: MIT
//
// Points in time as text.
#ifndef ZVISP_LINE_EVENT_TIME_TEXT_H_
#define ZVISP_LINE_EVENT_TIME_TEXT_H_

#include <cstdint>
#include <string>

namespace line {

// Milliseconds since 1970 (UTC) as RFC 3339 with milliseconds: "2026-11-21T18:00:00.123Z".
std::string TimeText(std::int64_t time_ms);

// How long something takes, for people: "0:07", "12:34", "1:02:03". Rounded down.
std::string DurationText(std::uint64_t duration_ms);

}  // namespace line

#endif  // ZVISP_LINE_EVENT_TIME_TEXT_H_
