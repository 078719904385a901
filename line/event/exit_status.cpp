// SPDX-License-Identifier: MIT
#include "line/event/exit_status.h"

#include <algorithm>
#include <iterator>

namespace line {

namespace {

// The first that applies counts.
constexpr ExitStatus kByWeight[] = {
    kExitUncertain, kExitNotRecorded, kExitHangUp, kExitInterrupt, kExitTerminate,
    kExitRefused,   kExitUnavailable, kExitFailed, kExitPassed,
};

}  // namespace

ExitStatus Weightier(ExitStatus left, ExitStatus right) {
  return *std::find_if(std::begin(kByWeight), std::end(kByWeight),
                       [&](ExitStatus status) { return status == left || status == right; });
}

}  // namespace line
