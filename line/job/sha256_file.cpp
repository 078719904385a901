// SPDX-License-Identifier: MIT
#include <fcntl.h>
#include <unistd.h>

#include <vector>

#include "base/path.h"
#include "line/job/sha256.h"
#include "line/journal/descriptor.h"

namespace line {

std::optional<std::string> Sha256OfFile(const std::string& path) {
  std::uint64_t bytes = 0;
  // A FIFO or a device would never end.
  if (!zvisp::GetRegularFileSize(path, bytes)) return std::nullopt;
  const Descriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
  if (!file.IsOpen()) return std::nullopt;
  Sha256 hash;
  std::vector<char> buffer(65536);
  ssize_t count = 0;
  while ((count = read(file.Number(), buffer.data(), buffer.size())) > 0) {
    hash.Add(buffer.data(), static_cast<std::size_t>(count));
  }
  if (count < 0) return std::nullopt;
  return hash.Take();
}

}  // namespace line
