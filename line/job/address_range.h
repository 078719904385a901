// SPDX-License-Identifier: MIT
#ifndef ZVISP_LINE_JOB_ADDRESS_RANGE_H_
#define ZVISP_LINE_JOB_ADDRESS_RANGE_H_

#include <cstdint>
#include <optional>
#include <string_view>

namespace line {

// A range of flash addresses in bytes, both ends in it.
struct AddressRange {
  std::uint64_t first = 0, last = 0;
};

// Reads "FIRST-LAST", decimal or 0x hexadecimal; nothing for other text, or an end before its
// begin.
std::optional<AddressRange> ParseAddressRange(std::string_view text);

}  // namespace line

#endif  // ZVISP_LINE_JOB_ADDRESS_RANGE_H_
