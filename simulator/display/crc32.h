// SPDX-License-Identifier: MIT
//
// The CRC-32 of zip, gzip and PNG files, used as the version of a firmware file.
#ifndef ZVISP_SIMULATOR_DISPLAY_CRC32_H_
#define ZVISP_SIMULATOR_DISPLAY_CRC32_H_

#include <cstddef>
#include <cstdint>

namespace simulator {

// Continues from `crc`, the value of the bytes before; 0 to begin.
std::uint32_t Crc32(const std::uint8_t* bytes, std::size_t length, std::uint32_t crc = 0);

}  // namespace simulator

#endif  // ZVISP_SIMULATOR_DISPLAY_CRC32_H_
