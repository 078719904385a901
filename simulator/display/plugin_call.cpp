// SPDX-License-Identifier: MIT
#include "display/plugin_call.h"
#include "display/format.h"

#include <cstdio>
#include <memory>
#include <new>

namespace simulator {
namespace {

// The fields that only one action uses.
std::string DescribeAction(const Setting& setting) {
  switch (setting.enumActionType) {
    case CP_ISPTOOL_ACTION_ISP_USER:
      return Format(" flag_addr=0x%X flag_len=%u", setting.stFlagSetting.ulFlagAddr,
                    setting.stFlagSetting.ulFlagLength);
    case CP_ISPTOOL_ACTION_RECORD_VERSION:
      return Format(" version_location=%u", setting.enumVersionLocationType);
    case CP_ISPTOOL_ACTION_DUMP_FLASH:
      return Format(" dump_addr=0x%X dump_len=0x%X", setting.stDumpFlash.ulDumpAddr,
                    setting.stDumpFlash.ulDumpLen);
    case CP_ISPTOOL_ACTION_EDP_ISP:
      return Format(" edp_mode=%u", setting.enumEdpIspMode);
    default:
      return "";
  }
}

// The journal's line for a call.
std::string Describe(const char* name, std::uint32_t number, const Setting& setting) {
  const std::string slave =
      setting.bAutoSlaveAddr == 0 ? Format("0x%02X", setting.ucSlaveAddr) : "auto";
  return Format("call n=%u name=%s action=%u comm=%u slave=%s isp_mode=%u banks=%u", number, name,
                setting.enumActionType, setting.enumCommID, slave.c_str(), setting.enumIspMode,
                setting.stMapFw.ulCount) +
         DescribeAction(setting);
}

// How a line to the operator begins; one on success says what kind of display it was.
std::string NameOf(const Setting& setting, bool simulated) {
  return Format("Display %02u%s: ", setting.enumCommID, simulated ? " (simulated)" : "");
}

template <typename Work>
Outcome WorkOnDisplay(const char* name, const Setting& setting, const Host& host, Work work) {
  std::unique_ptr<Display> display;
  if (Outcome opened = Display::Open(setting.enumCommID, display); !opened.Ok()) return opened;
  if (!display->Warning().empty()) host.Say(NameOf(setting, false) + display->Warning());
  const std::uint32_t number = display->GetState().calls;
  if (Outcome noted = display->Note(Describe(name, number, setting)); !noted.Ok()) return noted;

  Outcome outcome = display->GetFaults().Strike(Step::kCall);
  if (outcome.Ok()) outcome = work(*display);
  // A call that was refused is ended in the journal, too. Its own reason is worth more to the
  // operator than a journal that cannot be written.
  if (Outcome noted = display->Note(Format("end n=%u code=0x%X", number, outcome.code));
      outcome.Ok() && !noted.Ok()) {
    return noted;
  }
  return outcome;
}

template <typename Work>
int Call(const char* name, const Setting* setting, const Host& host, Work work) noexcept {
  try {
    if (setting == nullptr) return static_cast<int>(Code::kIllegalRecord);
    const Outcome outcome = WorkOnDisplay(name, *setting, host, work);
    if (!outcome.Ok()) host.Say(NameOf(*setting, false) + outcome.why);
    if (!outcome.done.empty()) host.Say(NameOf(*setting, true) + outcome.done);
    return static_cast<int>(outcome.code);
  } catch (const std::bad_alloc&) {
    // The host may be built with another compiler, so no exception may cross the edge.
    std::puts("Display: out of memory");
    return static_cast<int>(Code::kOutOfMemory);
  }
}

}  // namespace

int CallDisplay(const char* name, const Setting* setting, const Host& host,
                Command command) noexcept {
  return Call(name, setting, host,
              [&](Display& display) { return command(display, *setting, host); });
}

int CallReadVerifyKey(const Setting* setting, unsigned char* key, const Host& host) noexcept {
  return Call("GetKeyFromFlash", setting, host,
              [&](Display& display) { return ReadVerifyKey(display, key); });
}

}  // namespace simulator
