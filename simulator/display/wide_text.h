// SPDX-License-Identifier: MIT
//
// The record's wide text (UTF-32, one character a unit) and the UTF-8 of file names, converted
// without regard to the locale, so that a path names the same file in every environment.
#ifndef ZVISP_SIMULATOR_DISPLAY_WIDE_TEXT_H_
#define ZVISP_SIMULATOR_DISPLAY_WIDE_TEXT_H_

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace simulator {

// The text of a fixed buffer as UTF-8. Nothing when there is no terminating zero within `capacity`
// units, or when a unit is not a character (a surrogate, or above 0x10FFFF).
std::optional<std::string> ToUtf8(const wchar_t* buffer, std::size_t capacity);

// The other way, for messages. A byte that is not part of valid UTF-8 becomes U+FFFD.
std::wstring ToWide(std::string_view utf8);

}  // namespace simulator

#endif  // ZVISP_SIMULATOR_DISPLAY_WIDE_TEXT_H_
