// SPDX-License-Identifier: MIT
//
// What the tool prints around its messages, to the byte.
#ifndef ZVISP_TESTS_SUPPORT_CONSOLE_H_
#define ZVISP_TESTS_SUPPORT_CONSOLE_H_

#include <string>

inline constexpr const char* kBanner =
    "\033[33mZorvane Unix ISP Utility V1.0.9, Copyright (c) 2026 the authors, MIT License, "
    "without warranty of any kind\r\n\033[m";

inline constexpr const char* kSuccess = "\033[32mSuccess\n\033[m";

inline constexpr const char* kRejected = "argument is illegal.\n";

// The line of a failure, for a code such as "0x6".
inline std::string FailLine(const std::string& code) {
  return "\033[31mFail! Error Code: " + code + "\n\033[m";
}

// The line of --getscalertype.
inline std::string ScalerTypeLine(const std::string& type) {
  return "\033[32mCurrent ScalerType:" + type + "!!\n\033[m";
}

#endif  // ZVISP_TESTS_SUPPORT_CONSOLE_H_
