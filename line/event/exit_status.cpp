// SPDX-License-Identifier: MIT
#include "line/event/exit_status.h"

#include <algorithm>
#include <iterator>

namespace line {

namespace {

// The first that applies counts: what puts a display in doubt before what only failed.
constexpr ExitStatus kByWeight[] = {
    kExitUncertain, kExitNotRecorded, kExitHangUp, kExitInterrupt, kExitTerminate,
    kExitRefused,   kExitUnavailable, kExitFailed, kExitPassed,
};

}  // namespace

ExitStatus Weightier(ExitStatus left, ExitStatus right) {
  const auto rank = [](ExitStatus status) {
    return std::find(std::begin(kByWeight), std::end(kByWeight), status);
  };
  return rank(left) <= rank(right) ? left : right;
}

}  // namespace line
