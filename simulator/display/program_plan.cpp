// SPDX-License-Identifier: MIT
#include "display/program_plan.h"

#include <algorithm>
#include <functional>
#include <string>

#include "display/firmware_file.h"
#include "display/format.h"
#include "display/wide_text.h"

namespace simulator {
namespace {

Outcome CheckTargets(const STRUCT_C_STYLE_MAP_FW& map) {
  if (map.ulCount > kMapFwCapacity) {
    return Refuse(Code::kIllegalRecord, Format("the firmware map claims %u banks", map.ulCount));
  }
  if (map.ulCount == 0) {
    return Refuse(Code::kNothingToProgram, "the firmware map is empty, nothing to program");
  }
  // The count has been checked: the array has as many entries.
  const std::uint32_t* const end = map.ulTargetBank + map.ulCount;
  const std::uint32_t* const outside =
      std::find_if(map.ulTargetBank, end, [](std::uint32_t bank) { return bank >= kBankCount; });
  if (outside != end) {
    return Refuse(Code::kOutsideFlash, Format("bank %u is outside its %u banks", *outside,
                                              static_cast<unsigned>(kBankCount)));
  }
  // Two equal targets would erase a bank that was just programmed.
  const bool ascending =
      std::adjacent_find(map.ulTargetBank, end, std::greater_equal<std::uint32_t>()) == end;
  return ascending ? Done() : Refuse(Code::kIllegalRecord, "the firmware map does not ascend");
}

Outcome AddCopies(ProgramPlan& plan) {
  // The banks ascend, so the last one is the highest.
  if (plan.back().bank >= kCopyDistance) {
    return Refuse(Code::kOutsideFlash,
                  Format("bank %u leaves no room for its copy", plan.back().bank));
  }
  // The loop below lengthens the plan, so it counts to the length before.
  const std::size_t originals = plan.size();
  plan.reserve(2 * originals);
  for (std::size_t i = 0; i < originals; ++i) {
    BankJob copy = plan[i];
    copy.bank += kCopyDistance;
    plan.push_back(std::move(copy));
  }
  return Done();
}

// The job of a bank; one that keeps what the display holds there when the firmware has none.
Outcome FindOrAddJob(const Display& display, std::uint32_t bank, ProgramPlan& plan,
                     ProgramPlan::iterator& job) {
  // The first job at or above the bank: the place where a new one keeps the order.
  job = std::find_if(plan.begin(), plan.end(), [bank](const BankJob& j) { return j.bank >= bank; });
  if (job != plan.end() && job->bank == bank) return Done();
  job = plan.insert(job, BankJob{bank, BankBytes(kBankBytes), true});
  return display.Read(bank * kBankBytes, kBankBytes, job->bytes.data());
}

Outcome AddUserFlag(const Display& display, const STRUCT_FLAG_SETTING& flag, ProgramPlan& plan) {
  if (flag.ulFlagLength > kUserFlagCapacity) {
    return Refuse(Code::kIllegalRecord, Format("the user flag claims %u bytes", flag.ulFlagLength));
  }
  if (flag.ulFlagAddr > kFlashBytes || flag.ulFlagLength > kFlashBytes - flag.ulFlagAddr) {
    return Refuse(Code::kOutsideFlash,
                  Format("the user flag at 0x%X is outside its flash", flag.ulFlagAddr));
  }
  // Byte by byte, because a flag may lie across two banks.
  for (std::uint32_t i = 0; i < flag.ulFlagLength; ++i) {
    const std::uint32_t address = flag.ulFlagAddr + i;
    ProgramPlan::iterator job;
    if (Outcome found = FindOrAddJob(display, address / kBankBytes, plan, job); !found.Ok()) {
      return found;
    }
    job->bytes[address % kBankBytes] = flag.ucFlagData[i];
  }
  return Done();
}

Outcome ReadPaths(const STRUCT_C_STYLE_MAP_FW& map, std::vector<std::string>& paths) {
  for (std::uint32_t i = 0; i < map.ulCount; ++i) {
    const auto path = ToUtf8(map.stBank[i].wszPath, kPathCapacity);
    if (!path) return Refuse(Code::kIllegalRecord, Format("the path of entry %u is not a text", i));
    paths.push_back(*path);
  }
  return Done();
}

// Reads what the map takes from the file of its entry `first`, also further on in the map, so that
// all of it is of one version of the file.
Outcome ReadFile(const STRUCT_C_STYLE_MAP_FW& map, const std::vector<std::string>& paths,
                 std::uint32_t first, ProgramPlan& plan) {
  FirmwareFile file;
  if (Outcome opened = file.Open(paths[first]); !opened.Ok()) return opened;
  for (std::uint32_t i = first; i < map.ulCount; ++i) {
    if (paths[i] != paths[first]) continue;
    Outcome read = file.ReadBank(map.stBank[i].ulFileBank, plan[i].bytes);
    if (!read.Ok()) return read;
  }
  return file.CheckUnchanged();
}

}  // namespace

Outcome PlanFirmware(const STRUCT_C_STYLE_MAP_FW& map, ProgramPlan& plan) {
  if (Outcome checked = CheckTargets(map); !checked.Ok()) return checked;
  std::vector<std::string> paths;
  if (Outcome read = ReadPaths(map, paths); !read.Ok()) return read;
  plan = ProgramPlan(map.ulCount);
  for (std::uint32_t i = 0; i < map.ulCount; ++i) {
    plan[i].bank = map.ulTargetBank[i];
    // Read together with an earlier entry of the same file.
    if (!plan[i].bytes.empty()) continue;
    if (Outcome read = ReadFile(map, paths, i, plan); !read.Ok()) return read;
  }
  return Done();
}

Outcome PlanProgramming(const Display& display,
                        const STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING& setting, ProgramPlan& plan) {
  if (Outcome planned = PlanFirmware(setting.stMapFw, plan); !planned.Ok()) return planned;
  switch (setting.enumActionType) {
    case CP_ISPTOOL_ACTION_ISP_USER:
      return AddUserFlag(display, setting.stFlagSetting, plan);
    case CP_ISPTOOL_ACTION_ISP_DIFF:
      for (BankJob& job : plan) {
        job.only_if_different = true;
      }
      return Done();
    case CP_ISPTOOL_ACTION_ISP_COPY:
      return AddCopies(plan);
    default:
      return Done();
  }
}

}  // namespace simulator
