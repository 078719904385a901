// SPDX-License-Identifier: MIT
#include "plugin/zeroed.h"

#include <algorithm>

void CopyOntoFresh(STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING& fresh,
                   const STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING& from) {
  using Setting = STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING;
  constexpr std::size_t kBanks =
      offsetof(Setting, stMapFw) + offsetof(STRUCT_C_STYLE_MAP_FW, stBank);
  constexpr std::size_t kBehindBanks = offsetof(Setting, stFlagSetting);
  const auto used = std::min<std::size_t>(from.stMapFw.ulCount, kMapFwCapacity);
  auto* const target = reinterpret_cast<unsigned char*>(&fresh);
  const auto* const source = reinterpret_cast<const unsigned char*>(&from);
  std::memcpy(target, source, kBanks + used * sizeof(STRUCT_C_STYLE_FW_BANK_SETTING));
  std::memcpy(target + kBehindBanks, source + kBehindBanks, sizeof(Setting) - kBehindBanks);
}
