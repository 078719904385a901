// SPDX-License-Identifier: MIT
#include "display/host.h"

#include <cstdio>

#include "display/wide_text.h"

namespace simulator {

void Host::Say(const std::string& line) const {
  if (message == nullptr) {
    std::printf("%s\n", line.c_str());
    return;
  }
  // The callback takes a pointer to text that it could change, so it gets a copy.
  std::wstring text = ToWide(line);
  message(text.data());
}

Progress::Progress(const Host& host, std::size_t total) : m_host(host), m_total(total) {
  Report(0);
}

void Progress::Advance(std::size_t parts) {
  m_done += parts;
  Report(m_total == 0 ? 100 : static_cast<int>(100 * m_done / m_total));
}

void Progress::Report(int percent) {
  // Many parts may fall on one percentage; the host hears of it once.
  if (m_host.progress == nullptr || percent <= m_reported) return;
  m_reported = percent;
  m_host.progress(percent);
}

}  // namespace simulator
