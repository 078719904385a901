// SPDX-License-Identifier: MIT
#include "plugin/setting_defaults.h"

#include <algorithm>
#include <iterator>

namespace zvisp {

namespace {

// Neither of the two that judgement sets, so a plug-in can see that nobody judged the record.
constexpr std::int32_t kNotYetJudged = -1;
// Only seen in a record that was not judged, such as the boot code's.
constexpr std::uint8_t kDefaultSlaveAddress = 0x94;

}  // namespace

void SetScalarDefaults(STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING& setting) {
  setting.enumActionType = CP_ISPTOOL_ACTION_UNDEFINED;
  setting.enumDigitalSignatureType = 0;
  setting.enumVersionLocationType = VERSION_LOCATION_NONE;
  setting.enumUserDefinedVersionType = USER_DEFINED_VERSION_NONE;
  setting.enumCommID = 0;
  setting.enumEdpIspMode = EDP_ISP_MODE_NONE;
  setting.bAutoSlaveAddr = kNotYetJudged;
  setting.ucSlaveAddr = kDefaultSlaveAddress;
  setting.bSearchFw = 0;
  setting.bCompareVer = 0;
  setting.bIspChannel = 0;
  setting.enumBootCodeType = 0;
  setting.enumIspMode = ISP_MODE_NONE;
  setting.ulReserved = 0;
  setting.ulProgStartBank = 0;
  std::fill(std::begin(setting.szBootFwPath), std::end(setting.szBootFwPath), '\0');
  std::fill(std::begin(setting.wszSettingFilePath), std::end(setting.wszSettingFilePath), L'\0');
}

}  // namespace zvisp
