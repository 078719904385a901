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

  // Shows a line to the host, or prints it on standard output when the host takes no messages.
  // `line` is UTF-8 without a newline.
  void Say(const std::string& line) const;
};

// The progress of one call, reported in percent: 0 when it begins, then each percentage that is
// higher than the one before. The host must outlive it.
class Progress {
 public:
  Progress(const Host& host, std::size_t total);
  // So many parts of the total more are done.
  void Advance(std::size_t parts);

 private:
  void Report(int percent);

  const Host& m_host;
  std::size_t m_total;
  std::size_t m_done = 0;
  int m_reported = -1;
};

}  // namespace simulator

#endif  // ZVISP_SIMULATOR_DISPLAY_HOST_H_
