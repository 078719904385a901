// SPDX-License-Identifier: MIT
//
// How a call on a simulated display ends: a result code for the tool, and for a refusal the one
// line that tells the operator why. Nothing in the simulator throws but memory exhaustion.
#ifndef ZVISP_SIMULATOR_DISPLAY_OUTCOME_H_
#define ZVISP_SIMULATOR_DISPLAY_OUTCOME_H_

#include <cstdint>
#include <string>
#include <utility>

namespace simulator {

// The result codes. Scripts match them and the README lists them: never renumber. All of them
// differ from the tool's own codes, in the low 8 bits (the exit status) too.
enum class Code : std::uint32_t {
  kUnsupportedAction = 0x5A21,  // the call is not made for the record's action
  kIllegalRecord = 0x5A22,      // the record breaks its own rules
  kOutsideFlash = 0x5A23,       // a target bank or an address range beyond the last bank
  kFileUnreadable = 0x5A24,     // a firmware file is missing, unreadable or no ordinary file
  kFileTooShort = 0x5A25,       // a firmware file ends before the bank asked for
  kBusy = 0x5A26,               // another run is using the display
  kStorage = 0x5A27,            // the files that hold the display cannot be used
  kVerifyMismatch = 0x5A28,     // a bank read back differs from what was written
  kNoAnswer = 0x5A29,           // injected: no answer when the call begins; nothing is written
  kNoKey = 0x5A2A,              // the display holds no verify key
  kDumpFile = 0x5A2B,           // the dump file cannot be written
  kNothingToProgram = 0x5A2C,   // the firmware map is empty
  kSettings = 0x5A2D,           // the identity or faults file has a line that cannot be read
  kInjectedFailure = 0x5A2E,    // injected: a failure without a code of its own
  kOutOfMemory = 0x5A2F,        // memory is exhausted
  kNoAnswerMidway = 0x5A30,     // injected: no answer at a bank, which may be half written
  kFileChanged = 0x5A31,        // a firmware file changed while it was read
};

struct [[nodiscard]] Outcome {
  std::uint32_t code = 0;  // 0 for success, or the scaler type
  std::string why = {};    // why a call was refused, without newline; empty for success
  std::string done = {};   // what a call that worked did, without newline; empty: nothing to say

  bool Ok() const { return why.empty(); }
};

inline Outcome Done() {
  return {};
}
inline Outcome Done(std::string done) {
  return {0, {}, std::move(done)};
}
inline Outcome Refuse(Code code, std::string why) {
  return {static_cast<std::uint32_t>(code), std::move(why)};
}

}  // namespace simulator

#endif  // ZVISP_SIMULATOR_DISPLAY_OUTCOME_H_
