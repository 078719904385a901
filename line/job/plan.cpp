// SPDX-License-Identifier: MIT
#include "line/job/plan.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <map>
#include <vector>

#include "base/path.h"
#include "base/transform.h"
#include "line/job/sha256.h"
#include "line/job/strictness.h"
#include "line/journal/descriptor.h"

namespace line {

namespace {

constexpr std::uint32_t kLastLowBank = 255;

// Reads a file bank after bank.
class BankReader {
 public:
  explicit BankReader(const std::string& path)
      : m_file(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK)), m_bank(kFwBankBytes) {}

  // The bytes of the next bank; 0 at the end; -1 on failure.
  ssize_t Next() {
    std::size_t filled = 0;
    while (filled < m_bank.size()) {
      const ssize_t count = read(m_file.Number(), m_bank.data() + filled, m_bank.size() - filled);
      if (count < 0) return -1;
      if (count == 0) break;
      filled += static_cast<std::size_t>(count);
    }
    return static_cast<ssize_t>(filled);
  }
  const char* Bytes() const { return m_bank.data(); }

 private:
  Descriptor m_file;
  std::vector<char> m_bank;
};

std::string NarrowPath(const wchar_t* path) {
  return CCpTransform().ConvertUnicodeStringToUTF8(path);
}

class Planner {
 public:
  Planner(const JudgedWords& judged, PlanEvent& plan) : m_judged(judged), m_plan(plan) {}

  bool Add(std::string& error);

 private:
  bool AddFile(std::uint32_t slot, std::uint32_t first_entry, std::string& error);

  const JudgedWords& m_judged;
  PlanEvent& m_plan;
};

// The map does not name the slots. Slots never share banks, so an entry for the first bank of a
// file belongs to the slot that starts at its target bank.
bool Planner::Add(std::string& error) {
  const STRUCT_C_STYLE_MAP_FW& map = m_judged.setting->stMapFw;
  for (const auto& [slot, entry] : m_judged.slots) {
    for (std::uint32_t i = 0; i < std::min<std::uint32_t>(map.ulCount, kMapFwCapacity); ++i) {
      if (map.stBank[i].ulFileBank != 0 || map.ulTargetBank[i] != entry.ulBank) continue;
      if (!AddFile(slot, i, error)) return false;
    }
  }
  std::sort(
      m_plan.banks.begin(), m_plan.banks.end(),
      [](const PlannedBank& left, const PlannedBank& right) { return left.target < right.target; });
  return true;
}

bool Planner::AddFile(std::uint32_t slot, std::uint32_t first_entry, std::string& error) {
  const STRUCT_FW_BANK_SETTING& typed = m_judged.slots.at(slot);
  const std::string path = NarrowPath(m_judged.setting->stMapFw.stBank[first_entry].wszPath);
  PlannedFile file;
  file.slot = slot;
  // The name that the operator knows, and not that of a private copy.
  file.path = GetFileFullPath(typed.strFwPath.GetUtf8String(), "./");
  file.start_bank = typed.ulBank;
  BankReader reader(path);
  Sha256 whole, part;
  std::uint32_t bank = 0;
  ssize_t count = 0;
  while ((count = reader.Next()) > 0) {
    const auto bytes = static_cast<std::uint32_t>(count);
    whole.Add(reader.Bytes(), bytes);
    part.Add(reader.Bytes(), bytes);
    m_plan.banks.push_back({typed.ulBank + bank, slot, bank, bytes, part.Take()});
    file.bytes += bytes;
    ++bank;
  }
  // It was readable when the words were judged, so it was changed or taken away since.
  if (count < 0 || bank == 0) {
    error = "The firmware file " + file.path + " cannot be read any more; check it and try again.";
    return false;
  }
  file.sha256 = whole.Take();
  m_plan.files.push_back(file);
  return true;
}

void AddWarnings(const OptionScan& scan, const JudgedWords& judged, PlanEvent& plan) {
  if (ProgramsUnsignedFiles(scan, judged)) {
    plan.warnings.push_back({"unsigned", "No signature is checked of any file but that of --fw."});
  }
  if (!plan.banks.empty() && plan.banks.back().target > kLastLowBank) {
    plan.warnings.push_back(
        {"high-bank", "Banks above 255 are written; make sure that the flash has them."});
  }
  std::map<std::string, std::uint32_t> seen;
  for (const PlannedFile& file : plan.files) {
    const auto [first, is_new] = seen.try_emplace(file.sha256, file.slot);
    if (is_new) continue;
    plan.warnings.push_back({"same-content", "The files of slots " + std::to_string(first->second) +
                                                 " and " + std::to_string(file.slot) +
                                                 " have the same content."});
  }
}

}  // namespace

std::optional<PlanEvent> MakePlan(const OptionScan& scan, const JudgedWords& judged,
                                  std::string& error) {
  PlanEvent plan;
  plan.action = ActionNameOf(scan);
  if (!Planner(judged, plan).Add(error)) return std::nullopt;
  AddWarnings(scan, judged, plan);
  return plan;
}

}  // namespace line
