// SPDX-License-Identifier: MIT
//
// What a display remembers between runs, apart from its flash.
#ifndef ZVISP_SIMULATOR_DISPLAY_STATE_H_
#define ZVISP_SIMULATOR_DISPLAY_STATE_H_

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace simulator {

// The longest recorded version, so that no run can make a state that the next cannot read.
inline constexpr std::size_t kRecordedVersionLimit = 1024;

struct State {
  std::uint32_t calls = 0;           // plug-in calls that reached the display
  std::uint32_t resets = 0;          // resets of its MCU
  std::uint32_t eeprom_version = 0;  // raised by each programming of its e-DP EEPROM
  bool isp_mode = false;             // put into ISP mode and not reset since
  std::string recorded_version;      // what the last version recording stored; empty before
};

// The file's text: one "key = value" line for each field.
std::string FormatState(const State& state);
// Reads it back. A line that cannot be read, or is too long, leaves its field at the default, so
// that a damaged file never locks an operator out of a display.
State ParseState(std::string_view text);

}  // namespace simulator

#endif  // ZVISP_SIMULATOR_DISPLAY_STATE_H_
