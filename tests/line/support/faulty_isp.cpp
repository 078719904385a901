// SPDX-License-Identifier: MIT
//
// An ISP plug-in that keeps every rule of the header, but for the fault of fault.h. It has no
// display: programming does nothing. LACKS_CALLS leaves two required calls out.
#include <cstdint>
#include <thread>

#include "plugin/zvisp_plugin.h"
#include "support/fault.h"

namespace {

using Setting = STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING;
using Map = STRUCT_C_STYLE_MAP_FW;

enum Code {
  kDone = 0,
  kWrongAction = 0x5B01,
  kWrongMap = 0x5B02,
  kWrongPath = 0x5B03,
  kWrongFile = 0x5B04,
  kWrongDump = 0x5B05,
};

ZvReturnProgress g_progress = nullptr;
ZvShowMessage g_message = nullptr;

void Report(int percent) {
  if (g_progress != nullptr || Has("null-progress")) g_progress(percent);
}

// What a call does wrong apart from its work.
void DoWrong(Setting* setting) {
  auto* const bytes = reinterpret_cast<volatile unsigned char*>(setting);
  ChangeProcess("call");
  if (Has("null-message") && g_message != nullptr) g_message(nullptr);
  if (Has("progress-101")) Report(101);
  if (Has("other-thread")) std::thread(Report, 1).join();
  if (Has("writes-action")) setting->enumActionType = 25;
  if (Has("writes-record")) setting->ulReserved = 1;
  if (Has("overrun")) bytes[sizeof *setting] = 1;
  if (Has("far-overrun")) bytes[sizeof *setting + 4000] = 1;
  if (Has("underrun")) bytes[-1] = 1;
  if (Has("reads-past-end")) static_cast<void>(bytes[sizeof *setting]);
}

bool Programs(std::uint32_t action) {
  return (action >= 4 && action <= 7) || action == 17 || Has("any-action");
}

bool IsGoodMap(const Map& map) {
  if (map.ulCount == 0) return Has("empty-map");
  if (map.ulCount > kMapFwCapacity && !Has("trusts-count")) return false;
  if (map.ulCount == kMapFwCapacity && Has("small-table")) std::abort();
  // By a pointer, for a sanitizer would end a plug-in that trusts the count.
  const std::uint32_t* const targets = map.ulTargetBank;
  for (std::uint32_t i = 1; i < map.ulCount; ++i) {
    const bool equal = targets[i] == targets[i - 1];
    const bool descends = targets[i] < targets[i - 1];
    if ((equal && !Has("equal-targets")) || (descends && !Has("any-order"))) return false;
  }
  return true;
}

std::string PathOf(const wchar_t* wide) {
  std::wstring text(wide, kPathCapacity);
  // A plug-in that cuts a text that is not ended programs another file.
  if (Has("cuts-path")) text.back() = L'\0';
  char path[kPathUtf8Capacity] = {};
  return ZvWideToUtf8(text.data(), kPathCapacity, path, sizeof path) != 0 ? path : "";
}

int CheckFile(const STRUCT_C_STYLE_FW_BANK_SETTING& bank, bool is_only_one) {
  const std::string path = PathOf(bank.wszPath);
  if (path.empty()) return kWrongPath;
  std::FILE* const file = std::fopen(path.c_str(), "rb");
  if (file == nullptr) {
    if (is_only_one) EndBadly("missing-file");
    if (is_only_one && Has("missing-file")) return kDone;
    return is_only_one && Has("missing-file-256") ? 256 : kWrongFile;
  }
  std::fseek(file, 0, SEEK_END);
  const long size = std::ftell(file);
  std::fclose(file);
  const bool is_inside = static_cast<long>(bank.ulFileBank) * kFwBankBytes < size;
  return is_inside || Has("short-file") ? kDone : kWrongFile;
}

}  // namespace

int IspFlash(Setting* setting) {
  if (!Programs(setting->enumActionType)) return kWrongAction;
  const Map& map = setting->stMapFw;
  if (!IsGoodMap(map)) return kWrongMap;
  const STRUCT_C_STYLE_FW_BANK_SETTING* const banks = map.stBank;
  for (std::uint32_t i = 0; i < map.ulCount; ++i) {
    const int code = CheckFile(banks[i], map.ulCount == 1);
    if (code != kDone) return code;
  }
  Report(100);
  return kDone;
}

int DumpFlash(Setting* setting) {
  DoWrong(setting);
  const bool is_empty = setting->stDumpFlash.ulDumpLen == 0;
  if (is_empty) EndBadly("dump");
  if (is_empty && Has("empty-dump")) return kDone;
  if (is_empty && Has("empty-dump-256")) return 256;
  if (Has("null-progress")) Report(0);
  return is_empty ? kWrongDump : kDone;
}

int GetKeyFromFlash(Setting*, unsigned char* key) {
  std::memset(key, 1, kDeviceKeyCapacity + (Has("key-overrun") ? 1 : 0));
  return kDone;
}

#ifndef LACKS_CALLS
int RecordFWVersion(Setting*) {
  return kDone;
}

void SetCommInterface(CZvComm*) {}
#endif

void SetUIFunction(ZvReturnProgress progress, ZvShowMessage message, ZvGetHubDevice) {
  g_progress = progress;
  g_message = message;
}

int ResetMCUExport(Setting*) {
  return kDone;
}

// zvisp never looks this one up.
ZVISP_PLUGIN_EXPORT int ChipEraseFlash(Setting*) {
  return kDone;
}
