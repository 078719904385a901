// SPDX-License-Identifier: MIT
#include "app/banner.h"

#include <cstdio>

#include "plugin/command_setting.h"

using namespace zvisp;

namespace {

// The sequence that ends a colour comes after the newline, so the line buffer still holds it: a
// crash must not leave the operator's terminal in colour.
void FlushColour() {
  std::fflush(stdout);
}

}  // namespace

const unsigned char g_ucszVersion[3] = {ZVISP_VERSION};

void ShowToolVersion() {
  std::printf(
      "\033[33mZorvane Unix ISP Utility V%d.%d.%d"
      ", Copyright (c) 2026 the authors, MIT License, without warranty of any kind\r\n\033[m",
      g_ucszVersion[0], g_ucszVersion[1], g_ucszVersion[2]);
  FlushColour();
}

void zvisp::ShowResult(std::uint32_t action, std::uint32_t result) {
  if (action == CP_ISPTOOL_ACTION_GET_SCALER_TYPE) {
    std::printf("\033[32mCurrent ScalerType:%d!!\n\033[m", static_cast<int>(result));
  } else if (result != 0) {
    std::printf("\033[31mFail! Error Code: 0x%X\n\033[m", result);
  } else {
    std::printf("\033[32mSuccess\n\033[m");
  }
  FlushColour();
}
