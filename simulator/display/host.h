// SPDX-License-Identifier: MIT
//
// The way back to the host that loaded the plug-in.
#ifndef ZVISP_SIMULATOR_DISPLAY_HOST_H_
#define ZVISP_SIMULATOR_DISPLAY_HOST_H_

#include <cstddef>
#include <string>

#include "plugin/zvisp_plugin.h"

namespace simulator {

// The host's callbacks as SetUIFunction handed them over; each may be null.
struct Host {
  ZvReturnProgress progress = nullptr;
  ZvShowMessage message = nullptr;

  // Reports `done` of `total` parts, in percent.
  void Progress(std::size_t done, std::size_t total) const;
  // Prints a line on standard output, and shows the same text to the host. `line` is UTF-8 without
  // a line end.
  void Say(const std::string& line) const;
};

}  // namespace simulator

#endif  // ZVISP_SIMULATOR_DISPLAY_HOST_H_
