// SPDX-License-Identifier: MIT
#ifndef ZVISP_APP_BANNER_H_
#define ZVISP_APP_BANNER_H_

#include <cstdint>

// The tool's version, such as 1, 0, 9; the build hands it in.
extern const unsigned char g_ucszVersion[3];

// Prints the tool's title, version and legal notice in yellow, one line.
void ShowToolVersion();

namespace zvisp {

// Prints the last line of a run. For action 25 the result is the scaler type, printed in green
// whatever its value; otherwise "Success" in green, or the result code in red.
void ShowResult(std::uint32_t action, std::uint32_t result);

}  // namespace zvisp

#endif  // ZVISP_APP_BANNER_H_
