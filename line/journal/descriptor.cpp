// SPDX-License-Identifier: MIT
#include "line/journal/descriptor.h"

#include <unistd.h>

#include <cerrno>
#include <utility>

namespace line {

Descriptor::~Descriptor() {
  if (m_number >= 0) close(m_number);
}

Descriptor::Descriptor(Descriptor&& other) noexcept : m_number(std::exchange(other.m_number, -1)) {}

Descriptor& Descriptor::operator=(Descriptor&& other) noexcept {
  // The old one is closed by the destructor of `other`.
  std::swap(m_number, other.m_number);
  return *this;
}

bool WriteAll(int descriptor, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t written = write(descriptor, bytes.data(), bytes.size());
    if (written < 0 && errno == EINTR) continue;
    if (written <= 0) return false;
    bytes.remove_prefix(static_cast<std::size_t>(written));
  }
  return true;
}

}  // namespace line
