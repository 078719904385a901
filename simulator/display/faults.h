// SPDX-License-Identifier: MIT
//
// Faults that a display shows on purpose, so that an operator's script can be tried against them.
//
// The file has one fault a line: its kind, then "key=value" words.
//
//   fail       [call=N] [bank=N] [at=STEP] [code=N]  the call ends with the code (0x5A2E)
//   no-answer  [call=N] [bank=N] [at=STEP] [ms=N]    after ms (0) the call ends with 0x5A29 when it
//                                                    begins, with 0x5A30 at a bank
//   flip       [call=N] [bank=N] [bit=N]             bit N (0) of the bank turns over when written
//   lie        [call=N] [bank=N] [bit=N]             the same, and the comparison passes
//   verify     [call=N] [bank=N]                     the bank compares as different after writing
//   slow       [call=N] [bank=N] [ms=N]              each bank takes ms (10) longer
//   hang       [call=N] [bank=N] [at=STEP]           the call never returns
//   crash      [call=N] [bank=N] [at=STEP]           the process aborts
//
// call: only in the display's N-th call, counted as in its state file. bank: only at bank N.
// at: just before that step of a bank: erase, write, verify or read (of a dump). A fault with
// neither bank nor at strikes when the call begins; one with a bank but no at, when the call first
// touches the bank (erase or read).
#ifndef ZVISP_SIMULATOR_DISPLAY_FAULTS_H_
#define ZVISP_SIMULATOR_DISPLAY_FAULTS_H_

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include "display/outcome.h"

namespace simulator {

enum class FaultKind { kFail, kNoAnswer, kFlip, kLie, kVerify, kSlow, kHang, kCrash };

// The points of a call where a fault can strike.
enum class Step { kCall, kErase, kWrite, kVerify, kRead };

struct Fault {
  FaultKind kind = FaultKind::kFail;
  std::optional<std::uint32_t> call;  // every call when not given
  std::optional<std::uint32_t> bank;  // every bank when not given
  std::optional<Step> at;             // see above when not given
  std::uint32_t code = static_cast<std::uint32_t>(Code::kInjectedFailure);
  std::optional<std::uint32_t> ms;
  std::uint32_t bit = 0;
};

// The faults of one call.
class Faults {
 public:
  Faults() = default;
  // Keeps those that hold in this call.
  Faults(const std::vector<Fault>& faults, std::uint32_t call);

  // Lets the faults of this point strike; kCall has no bank. Waits, hangs, aborts, or
  // returns the outcome that ends the call.
  Outcome Strike(Step step, std::uint32_t bank = 0) const;

  // The bit that turns over when the bank is written.
  std::optional<std::uint32_t> FlippedBit(std::uint32_t bank) const;
  bool VerifyFails(std::uint32_t bank) const;
  // Whether the display reports that the bank is right, whatever it holds.
  bool VerifyLies(std::uint32_t bank) const;

 private:
  const Fault* Find(FaultKind kind, std::uint32_t bank) const;

  std::vector<Fault> m_faults;
};

// Reads the file's text. Refuses an unknown kind or key, a key that the kind does not take and a
// value that cannot be read, with the line's number; a code with no low 8 bits too, because the
// tool would then exit with 0.
Outcome ParseFaults(std::string_view text, std::vector<Fault>& faults);

}  // namespace simulator

#endif  // ZVISP_SIMULATOR_DISPLAY_FAULTS_H_
