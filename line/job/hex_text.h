// SPDX-License-Identifier: MIT
//
// Bytes as hexadecimal digits.
#ifndef ZVISP_LINE_JOB_HEX_TEXT_H_
#define ZVISP_LINE_JOB_HEX_TEXT_H_

#include <cstddef>
#include <string>

namespace line {

// Two lower-case digits a byte.
inline std::string HexText(const unsigned char* bytes, std::size_t count) {
  std::string text;
  text.reserve(2 * count);
  for (std::size_t i = 0; i < count; ++i) {
    text += "0123456789abcdef"[bytes[i] >> 4];
    text += "0123456789abcdef"[bytes[i] & 15];
  }
  return text;
}

}  // namespace line

#endif  // ZVISP_LINE_JOB_HEX_TEXT_H_
