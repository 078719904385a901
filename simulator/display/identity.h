// SPDX-License-Identifier: MIT
//
// What a display answers when it is asked about itself. An operator sets it in a file of
// "key = value" lines; without the file, or for a key that it lacks, the defaults hold.
#ifndef ZVISP_SIMULATOR_DISPLAY_IDENTITY_H_
#define ZVISP_SIMULATOR_DISPLAY_IDENTITY_H_

#include <cstdint>
#include <string>
#include <string_view>

#include "display/outcome.h"

namespace simulator {

struct Identity {
  std::string version = "1.0";                  // "version": the firmware version it reports
  std::string user_info = "simulated display";  // "user_info": its user-defined information
  std::uint32_t scaler_type = 1;                // "scaler_type"
};

// Reads the file's text. Refuses a line that is not a pair, an unknown key and a scaler type that
// is not a number, with the line's number: a slip must not pass for a default.
Outcome ParseIdentity(std::string_view text, Identity& identity);

}  // namespace simulator

#endif  // ZVISP_SIMULATOR_DISPLAY_IDENTITY_H_
