// SPDX-License-Identifier: MIT
//
// Texts with numbers in them, by the rules of printf.
#ifndef ZVISP_SIMULATOR_DISPLAY_FORMAT_H_
#define ZVISP_SIMULATOR_DISPLAY_FORMAT_H_

#include <string>

namespace simulator {

// printf into a string.
[[gnu::format(printf, 1, 2)]] std::string Format(const char* format, ...);

}  // namespace simulator

#endif  // ZVISP_SIMULATOR_DISPLAY_FORMAT_H_
