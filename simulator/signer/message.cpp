// SPDX-License-Identifier: MIT
#include "signer/message.h"

#include <algorithm>

#include "signer/input_file.h"

namespace signer {

bool ReadMessage(const std::string& lines, const std::string& firmware, WipedBytes& message) {
  InputFile file("firmware", firmware);
  if (!file.Open(kFirmwareLimit)) return false;
  message = WipedBytes(lines.size() + file.Size());
  std::copy(lines.begin(), lines.end(), message.Data());
  return file.ReadInto(message.Data() + lines.size());
}

}  // namespace signer
