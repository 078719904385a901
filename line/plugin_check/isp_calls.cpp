// SPDX-License-Identifier: MIT
#include "line/plugin_check/isp_calls.h"

#include <cstdio>
#include <cstring>
#include <new>

#include "base/string_util.h"
#include "base/transform.h"
#include "plugin/digital_sign_args.h"
#include "plugin/fresh_setting.h"

using namespace zvisp;

namespace line {

namespace {

using Setting = IspRecord::Setting;

struct CallRow {
  const char* name;
  bool needs_device;
  void (*fill)(const CheckContext& context, const IspRecord& record);
  int (*make)(CCpIsp& isp, Setting* setting, unsigned char* key);
};

void FillDump(const CheckContext& context, const IspRecord& record, std::uint32_t length) {
  record->enumActionType = CP_ISPTOOL_ACTION_DUMP_FLASH;
  record->stDumpFlash.ulDumpLen = length;
  const std::wstring file =
      CCpTransform().ConvertUTF8StringToUnicode(context.directory + "/dump.bin");
  CopyWideToBuffer(file, kPathCapacity - 1, record->stDumpFlash.wszDumpFile, kPathCapacity);
}

void FillEmptyDump(const CheckContext& context, const IspRecord& record) {
  FillDump(context, record, 0);
}

void FillRealDump(const CheckContext& context, const IspRecord& record) {
  FillDump(context, record, 256);
}

void FillMissingFile(const CheckContext& context, const IspRecord& record) {
  record.AddBank(0, 0, context.directory + "/missing.bin");
}

void FillNothing(const CheckContext& /*context*/, const IspRecord& /*record*/) {}

int MakeDump(CCpIsp& isp, Setting* setting, unsigned char* /*key*/) {
  return isp.DumpFlash(setting);
}

int MakeFlash(CCpIsp& isp, Setting* setting, unsigned char* /*key*/) {
  return isp.IspFlash(setting);
}

int MakeKey(CCpIsp& isp, Setting* setting, unsigned char* key) {
  return isp.GetKeyFromFlash(setting, key);
}

// clang-format off
constexpr CallRow kCalls[] = {
  // name                        device fill             make
  {"DumpFlash of 0 bytes",       false, FillEmptyDump,   MakeDump},
  {"DumpFlash of 256 bytes",     true,  FillRealDump,    MakeDump},
  {"IspFlash of a missing file", true,  FillMissingFile, MakeFlash},
  {"GetKeyFromFlash",            true,  FillNothing,     MakeKey},
};
// clang-format on

const char* Placed(Guard guard) {
  switch (guard) {
    case Guard::kBefore:
      return ", with a forbidden page in front of the record";
    case Guard::kAfter:
      return ", with a forbidden page after the record";
    default:
      return "";
  }
}

void IgnoreProgress(int /*percent*/) {}

void IgnoreMessage(wchar_t* /*message*/) {}

}  // namespace

IspRecord::IspRecord(Guard guard) : m_bytes(sizeof(Setting), guard) {
  const ZeroedPtr<Setting> fresh = MakeFreshSetting();
  if (fresh == nullptr) throw std::bad_alloc();
  std::memcpy(m_bytes.Begin(), static_cast<const void*>(fresh.get()), sizeof(Setting));
  // What judgement adds.
  Get()->enumActionType = CP_ISPTOOL_ACTION_ISP;
  Get()->enumIspMode = ISP_MODE_NORMAL;
  Get()->bAutoSlaveAddr = 1;
  Get()->ucSlaveAddr = 0;
}

Setting* IspRecord::Get() const {
  return static_cast<Setting*>(static_cast<void*>(m_bytes.Begin()));
}

void IspRecord::AddBank(std::uint32_t target, std::uint32_t file_bank,
                        const std::string& path) const {
  STRUCT_C_STYLE_MAP_FW& map = Get()->stMapFw;
  const std::uint32_t i = map.ulCount++;
  map.ulTargetBank[i] = target;
  map.stBank[i].ulFileBank = file_bank;
  CopyWideToBuffer(CCpTransform().ConvertUTF8StringToUnicode(path), kPathCapacity - 1,
                   map.stBank[i].wszPath, kPathCapacity);
}

bool LoadIsp(const CheckContext& context, CCpIsp& isp) {
  context.announce("loading");
  const std::wstring path = CCpTransform().ConvertUTF8StringToUnicode(context.file);
  if (!isp.LoadIspDllFile(path.c_str())) return false;
  context.announce("SetUIFunction");
  isp.SetUIFunction(IgnoreProgress, IgnoreMessage, nullptr);
  return true;
}

void MakeCalls(const CheckContext& context, CCpIsp& isp, Guard guard,
               const std::function<void(const MadeCall& call)>& after) {
  for (const CallRow& row : kCalls) {
    if (row.needs_device && !context.with_device) continue;
    const IspRecord record(guard);
    row.fill(context, record);
    const GuardedBytes key(kDeviceKeyCapacity, guard);
    const Setting before = *record.Get();
    context.announce(row.name + std::string(Placed(guard)));
    const int code = row.make(isp, record.Get(), key.Begin());
    after({row.name, code, before, record, key});
  }
}

std::string WhyNoRefusal(const std::string& call, int code) {
  constexpr unsigned kExitStatus = 0xFF;
  const auto word = static_cast<unsigned>(code);
  if ((word & kExitStatus) != 0) return "";
  if (word == 0) {
    return call +
           " returned 0, which is success: check the record first, and return a code of "
           "your own.";
  }
  char hex[16];
  std::snprintf(hex, sizeof hex, "0x%X", word);
  return call + " returned " + hex +
         ", which zvisp ends with exit status 0: use a code whose low 8 bits are not 0.";
}

}  // namespace line
