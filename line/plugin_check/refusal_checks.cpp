// SPDX-License-Identifier: MIT
//
// Records that IspFlash must refuse. Each is wrong in one point alone, or a plug-in could refuse it
// for another reason than the one that is checked.
#include <cstring>
#include <fstream>

#include "line/plugin_check/checks.h"
#include "line/plugin_check/isp_calls.h"

namespace line::checks {

namespace {

constexpr std::uint32_t kBanksOfFile = 2;

std::string MakeFile(const std::string& path, std::size_t bytes) {
  std::ofstream file(path, std::ios::binary);
  // As erased cells are, should a faulty plug-in program it.
  file << std::string(bytes, '\xFF');
  return path;
}

std::string MakeFirmware(const CheckContext& context) {
  return MakeFile(context.directory + "/firmware.bin", kBanksOfFile * std::size_t{kFwBankBytes});
}

// Hands the record to IspFlash; fails unless that refuses it. `what` continues "IspFlash".
Finding Refuses(const CheckContext& context, CCpIsp& isp, const IspRecord& record,
                const std::string& what) {
  const std::string call = "IspFlash " + what;
  context.announce(call);
  const std::string why = WhyNoRefusal(call, isp.IspFlash(record.Get()));
  return why.empty() ? Passed() : Failed(why);
}

Finding Refuses(const CheckContext& context, const IspRecord& record, const std::string& what) {
  CCpIsp isp;
  if (!LoadIsp(context, isp)) return NotLoaded();
  return Refuses(context, isp, record, what);
}

}  // namespace

Finding UnknownAction(const CheckContext& context) {
  CCpIsp isp;
  if (!LoadIsp(context, isp)) return NotLoaded();
  const std::string firmware = MakeFirmware(context);
  // No action, one without a call, that of DumpFlash, and one that there is not.
  for (const std::uint32_t action : {0U, 3U, 16U, 99U}) {
    const IspRecord record;
    record.AddBank(0, 0, firmware);
    record->enumActionType = action;
    Finding finding = Refuses(context, isp, record, "with action " + std::to_string(action));
    if (finding.outcome != CheckOutcome::kPassed) return finding;
  }
  return Passed();
}

Finding EmptyMap(const CheckContext& context) {
  return Refuses(context, IspRecord(), "without a bank");
}

Finding FullMap(const CheckContext& context) {
  const IspRecord record;
  for (std::uint32_t bank = 0; bank < kMapFwCapacity; ++bank) {
    record.AddBank(bank, bank, context.directory + "/missing.bin");
  }
  return Refuses(context, record, "with 256 banks of a missing file");
}

Finding TooManyEntries(const CheckContext& context) {
  const std::string firmware = MakeFirmware(context);
  const IspRecord record;
  for (std::uint32_t bank = 0; bank < kMapFwCapacity; ++bank) {
    record.AddBank(bank, bank % kBanksOfFile, firmware);
  }
  // What follows the map in the record gets the bytes of a good entry: the count alone is wrong.
  STRUCT_C_STYLE_MAP_FW& map = record->stMapFw;
  std::memcpy(static_cast<void*>(&record->stFlagSetting), &map.stBank[0], sizeof map.stBank[0]);
  std::memcpy(map.ulTargetBank + kMapFwCapacity, &map.ulCount, sizeof map.ulCount);
  map.ulCount = kMapFwCapacity + 1;
  return Refuses(context, record, "with a map that claims 257 banks");
}

Finding TargetOrder(const CheckContext& context) {
  CCpIsp isp;
  if (!LoadIsp(context, isp)) return NotLoaded();
  const std::string firmware = MakeFirmware(context);
  for (const std::uint32_t second : {0U, 1U}) {
    const IspRecord record;
    record.AddBank(1, 0, firmware);
    record.AddBank(second, 1, firmware);
    Finding finding =
        Refuses(context, isp, record, "with the targets 1 and " + std::to_string(second));
    if (finding.outcome != CheckOutcome::kPassed) return finding;
  }
  return Passed();
}

// The path's first 259 units are those of a good file: a plug-in that cuts the path programs it.
Finding EndlessPath(const CheckContext& context) {
  const std::string front = context.directory + "/";
  const std::string path =
      MakeFile(front + std::string(kPathCapacity - 1 - front.size(), 'x'), kFwBankBytes);
  const IspRecord record;
  record.AddBank(0, 0, path);
  wchar_t* const begin = record->stMapFw.stBank[0].wszPath;
  begin[kPathCapacity - 1] = L'x';
  return Refuses(context, record, "with a path of 260 units and no zero");
}

Finding MissingFile(const CheckContext& context) {
  const IspRecord record;
  record.AddBank(0, 0, context.directory + "/missing.bin");
  return Refuses(context, record, "with a file that is missing");
}

Finding ShortFile(const CheckContext& context) {
  const IspRecord record;
  record.AddBank(0, kBanksOfFile, MakeFirmware(context));
  return Refuses(context, record, "with bank 2 of a file that has banks 0 and 1");
}

}  // namespace line::checks
