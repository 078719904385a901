// SPDX-License-Identifier: MIT
#include "plugin/fresh_setting.h"

#include <algorithm>
#include <cstring>
#include <new>

#include "plugin/setting_defaults.h"

namespace zvisp {

namespace {

using Setting = STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING;

// A record of this kind begins to live with its memory, so no constructor has to run over it all.
ZeroedPtr<Setting> MakeZeros() {
  return ZeroedPtr<Setting>(static_cast<Setting*>(std::calloc(1, sizeof(Setting))));
}

}  // namespace

ZeroedPtr<Setting> MakeFreshSetting() {
  ZeroedPtr<Setting> setting = MakeZeros();
  if (setting == nullptr) return nullptr;
  SetScalarDefaults(*setting);
  // The other sub-records are all zero by default.
  ::new (&setting->stFlagSetting) STRUCT_FLAG_SETTING;
  ::new (&setting->stI2CWriteAction) STRUCT_I2C_WRITE_ACTION_TYPE_SETTING;
  return setting;
}

ZeroedPtr<Setting> MakeFreshCopy(const Setting& from) {
  constexpr std::size_t kBanks =
      offsetof(Setting, stMapFw) + offsetof(STRUCT_C_STYLE_MAP_FW, stBank);
  constexpr std::size_t kAfterBanks = offsetof(Setting, stFlagSetting);
  ZeroedPtr<Setting> copy = MakeZeros();
  if (copy == nullptr) return nullptr;
  const auto used = std::min<std::size_t>(from.stMapFw.ulCount, kMapFwCapacity);
  auto* const target = reinterpret_cast<unsigned char*>(copy.get());
  const auto* const source = reinterpret_cast<const unsigned char*>(&from);
  std::memcpy(target, source, kBanks + used * sizeof(STRUCT_C_STYLE_FW_BANK_SETTING));
  std::memcpy(target + kAfterBanks, source + kAfterBanks, sizeof(Setting) - kAfterBanks);
  return copy;
}

}  // namespace zvisp
