// SPDX-License-Identifier: MIT
#include "display/state.h"

#include "display/format.h"
#include "display/key_values.h"
#include "display/outcome.h"

namespace simulator {

std::string FormatState(const State& state) {
  return Format("calls = %u\nresets = %u\neeprom_version = %u\nmode = %s\n", state.calls,
                state.resets, state.eeprom_version, state.isp_mode ? "isp" : "normal") +
         "recorded_version = " + state.recorded_version + "\n";
}

State ParseState(std::string_view text) {
  State state;
  for (const TextLine& line : SplitLines(text)) {
    const auto pair = SplitKeyValue(line.text);
    // Not refused: a damaged line must not make the display unusable.
    if (!pair) continue;
    if (pair->key == "calls") state.calls = ParseNumber(pair->value).value_or(0);
    if (pair->key == "resets") state.resets = ParseNumber(pair->value).value_or(0);
    if (pair->key == "eeprom_version") state.eeprom_version = ParseNumber(pair->value).value_or(0);
    if (pair->key == "mode") state.isp_mode = pair->value == "isp";
    if (pair->key == "recorded_version" && pair->value.size() <= kRecordedVersionLimit) {
      state.recorded_version = pair->value;
    }
  }
  return state;
}

}  // namespace simulator
