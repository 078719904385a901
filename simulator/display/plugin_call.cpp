// SPDX-License-Identifier: MIT
#include "display/plugin_call.h"

#include <cstdio>
#include <memory>
#include <new>

namespace simulator {
namespace {

// The fields of the record that decide what a call does.
std::string Describe(const char* name, std::uint32_t number, const Setting& setting) {
  return Format("call n=%u name=%s action=%u comm=%u slave=%s0x%02X banks=%u mode=%u", number, name,
                setting.enumActionType, setting.enumCommID,
                setting.bAutoSlaveAddr == 0 ? "" : "auto:", setting.ucSlaveAddr,
                setting.stMapFw.ulCount, setting.enumIspMode);
}

template <typename Work>
Outcome WorkOnDisplay(const char* name, const Setting& setting, Work work) {
  std::unique_ptr<Display> display;
  if (Outcome opened = Display::Open(setting.enumCommID, display); !opened.Ok()) return opened;
  const std::uint32_t number = display->GetState().calls;
  if (Outcome noted = display->Note(Describe(name, number, setting)); !noted.Ok()) return noted;

  Outcome outcome = display->GetFaults().Strike(Step::kCall);
  if (outcome.Ok()) outcome = work(*display);
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
    const Outcome outcome = WorkOnDisplay(name, *setting, work);
    if (!outcome.Ok()) {
      host.Say(Format("Display %02u: ", setting->enumCommID) + outcome.why);
    }
    return static_cast<int>(outcome.code);
  } catch (const std::bad_alloc&) {
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
