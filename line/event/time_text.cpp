// SPDX-License-Identifier: MIT
#include "line/event/time_text.h"

#include <time.h>

#include <cstdio>

namespace line {

std::string TimeText(std::int64_t time_ms) {
  const time_t seconds = static_cast<time_t>(time_ms / 1000);
  tm utc = {};
  // UTC: the clock of a summer time would show an hour twice.
  gmtime_r(&seconds, &utc);
  char date[32];
  const std::size_t length = strftime(date, sizeof date, "%Y-%m-%dT%H:%M:%S", &utc);
  char milliseconds[16];
  std::snprintf(milliseconds, sizeof milliseconds, ".%03dZ", static_cast<int>(time_ms % 1000));
  return std::string(date, length) + milliseconds;
}

std::string DurationText(std::uint64_t duration_ms) {
  const auto seconds = static_cast<unsigned long long>(duration_ms / 1000);
  char text[48];
  if (seconds >= 3600) {
    std::snprintf(text, sizeof text, "%llu:%02llu:%02llu", seconds / 3600, seconds / 60 % 60,
                  seconds % 60);
  } else {
    std::snprintf(text, sizeof text, "%llu:%02llu", seconds / 60, seconds % 60);
  }
  return text;
}

}  // namespace line
