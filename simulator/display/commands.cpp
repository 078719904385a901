// SPDX-License-Identifier: MIT
#include "display/commands.h"

#include <algorithm>

#include "display/crc32.h"
#include "display/format.h"
#include "display/program_plan.h"
#include "display/programmer.h"

namespace simulator {
namespace {

// The tool calls IspFlash for these actions only. Any other record is a mistake of its host, and a
// display must not be written by mistake.
bool IsProgramming(std::uint32_t action) {
  return (action >= CP_ISPTOOL_ACTION_ISP && action <= CP_ISPTOOL_ACTION_ISP_COPY) ||
         action == CP_ISPTOOL_ACTION_FACTORY_ISP;
}

// A longer text would make a state file that the next run cannot read.
Outcome TooLong(std::size_t length) {
  return Refuse(Code::kIllegalRecord,
                Format("a version of %zu characters is too long to record, at most %zu fit", length,
                       kRecordedVersionLimit));
}

Outcome VersionInFlash(const Display& display, const STRUCT_READ_VERSION_FROM_FLASH_SETTING& where,
                       std::string& version) {
  if (where.ulVerAddr > kFlashBytes || where.ulTotalVerLen > kFlashBytes - where.ulVerAddr) {
    return Refuse(Code::kOutsideFlash,
                  Format("the version at 0x%X is outside its flash", where.ulVerAddr));
  }
  // Checked before the bytes are read, because their text is three characters for each byte.
  // RecordVersion checks the whole text.
  if (where.ulTotalVerLen > kRecordedVersionLimit) return TooLong(where.ulTotalVerLen);
  BankBytes bytes(where.ulTotalVerLen);
  Outcome read = display.Read(where.ulVerAddr, where.ulTotalVerLen, bytes.data());
  version = Format("flash 0x%06X", where.ulVerAddr);
  for (const std::uint8_t byte : bytes) {
    version += Format(" %02X", byte);
  }
  return read;
}

// A firmware file of the simulator carries no version, so its checksum serves as one.
Outcome VersionOfFirmware(const STRUCT_C_STYLE_MAP_FW& map, std::string& version) {
  ProgramPlan plan;
  if (Outcome planned = PlanFirmware(map, plan); !planned.Ok()) return planned;
  std::uint32_t crc = 0;
  for (const BankJob& job : plan) {
    crc = Crc32(job.bytes.data(), job.bytes.size(), crc);
  }
  version = Format("firmware crc32 %08X", crc);
  return Done();
}

// The other places (a register, DDC/CI, a command) are ways to ask a real chip. A simulated one has
// the same answer for all of them.
Outcome ChooseVersion(const Display& display, const Setting& setting, std::string& version) {
  switch (setting.enumVersionLocationType) {
    case VERSION_LOCATION_FLASH:
      return VersionInFlash(display, setting.stReadVersionFromFlash, version);
    case VERSION_LOCATION_FW_BIN:
    case VERSION_LOCATION_FW_BIN_CMD:
      return VersionOfFirmware(setting.stMapFw, version);
    default:
      version = "display " + display.GetIdentity().version;
      return Done();
  }
}

// Notes a step in the journal and stores the state that it leads to; `done` is what to say then.
// Noted first, so that the journal of a killed run misses no change.
Outcome Store(Display& display, const char* step, std::string done) {
  if (Outcome noted = display.Note(step); !noted.Ok()) return noted;
  if (Outcome saved = display.SaveState(); !saved.Ok()) return saved;
  return Done(std::move(done));
}

}  // namespace

Outcome ProgramFlash(Display& display, const Setting& setting, const Host& host) {
  if (!IsProgramming(setting.enumActionType)) {
    return Refuse(Code::kUnsupportedAction,
                  Format("action %u programs no flash", setting.enumActionType));
  }
  // Everything that can be refused is refused here, before the first bank is erased.
  ProgramPlan plan;
  if (Outcome planned = PlanProgramming(display, setting, plan); !planned.Ok()) return planned;
  std::size_t programmed = 0;
  Outcome done = RunPlan(display, plan, host, programmed);
  if (!done.Ok()) return done;
  // Only this action skips banks, so only here does the number of all banks say something.
  if (setting.enumActionType == CP_ISPTOOL_ACTION_ISP_DIFF) {
    return Done(Format("%zu of %zu banks rewritten", programmed, plan.size()));
  }
  return Done(
      Format("%zu %s programmed and verified", programmed, programmed == 1 ? "bank" : "banks"));
}

Outcome RecordVersion(Display& display, const Setting& setting, const Host&) {
  std::string version;
  if (Outcome chosen = ChooseVersion(display, setting, version); !chosen.Ok()) return chosen;
  if (version.size() > kRecordedVersionLimit) return TooLong(version.size());
  display.GetState().recorded_version = version;
  return Store(display, "write version", "version recorded: " + version);
}

Outcome ReadVerifyKey(Display& display, unsigned char* key) {
  if (key == nullptr) return Refuse(Code::kIllegalRecord, "no buffer for the verify key");
  std::string stored;
  if (Outcome read = display.ReadKey(kDeviceKeyCapacity, stored); !read.Ok()) return read;
  // The signer takes the text up to the first zero and refuses anything after it.
  std::fill(std::copy(stored.begin(), stored.end(), key), key + kDeviceKeyCapacity, 0);
  return Done(Format("verify key of %zu bytes read", stored.size()));
}

Outcome SayUserInfo(Display& display, const Setting&, const Host&) {
  return Done("User-defined information: " + display.GetIdentity().user_info);
}

Outcome ProgramEeprom(Display& display, const Setting& setting, const Host&) {
  State& state = display.GetState();
  switch (setting.enumEdpIspMode) {
    case EDP_ISP_MODE_ISP:
      // The tool has no file for the EEPROM, so the version is all that programming can change.
      ++state.eeprom_version;
      return Store(display, "write eeprom",
                   Format("e-DP EEPROM programmed, version %u", state.eeprom_version));
    case EDP_ISP_MODE_READ_VERSION:
      return Done(Format("e-DP EEPROM version: %u", state.eeprom_version));
    default:
      return Refuse(Code::kUnsupportedAction,
                    Format("there is no e-DP mode %u", setting.enumEdpIspMode));
  }
}

Outcome EnterIspMode(Display& display, const Setting&, const Host&) {
  display.GetState().isp_mode = true;
  return Store(display, "enter isp mode", "in ISP mode");
}

Outcome ResetMcu(Display& display, const Setting&, const Host&) {
  State& state = display.GetState();
  state.isp_mode = false;
  ++state.resets;
  return Store(display, "reset", "MCU reset");
}

Outcome ReadScalerType(Display& display, const Setting&, const Host&) {
  const std::uint32_t type = display.GetIdentity().scaler_type;
  // A type is not a failure: `why` is empty, so the outcome counts as success whatever the code.
  return {type, "", Format("scaler type %u", type)};
}

}  // namespace simulator
