// SPDX-License-Identifier: MIT
#include "display/host.h"

#include <cstdio>

#include "display/wide_text.h"

namespace simulator {

void Host::Progress(std::size_t done, std::size_t total) const {
  if (progress == nullptr) return;
  progress(total == 0 ? 100 : static_cast<int>(100 * done / total));
}

void Host::Say(const std::string& line) const {
  std::printf("%s\n", line.c_str());
  if (message == nullptr) return;
  std::wstring text = ToWide(line);
  message(text.data());
}

}  // namespace simulator
