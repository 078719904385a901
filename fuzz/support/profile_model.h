// SPDX-License-Identifier: MIT
//
// A small model of the profile reader, for files and names of plain 7-bit text.
#ifndef ZVISP_FUZZ_SUPPORT_PROFILE_MODEL_H_
#define ZVISP_FUZZ_SUPPORT_PROFILE_MODEL_H_

#include <string>
#include <string_view>

// The value of the key, blanks at both ends removed; empty without one.
std::string ModelProfileValue(std::string_view section, std::string_view key,
                              std::string_view content);

// Whether all bytes are 7-bit text, for which the model holds.
bool IsSevenBit(std::string_view text);

#endif  // ZVISP_FUZZ_SUPPORT_PROFILE_MODEL_H_
