// SPDX-License-Identifier: MIT
#include "line/event/plan_text.h"

#include <algorithm>
#include <cstdio>

#include "line/event/screen_text.h"

namespace line {

namespace {

constexpr std::size_t kBanksInARow = 16;

// There are at most ten slots, so the letters suffice.
char LetterOf(const PlanEvent& plan, std::uint32_t slot) {
  const auto file = std::find_if(plan.files.begin(), plan.files.end(),
                                 [slot](const PlannedFile& one) { return one.slot == slot; });
  return static_cast<char>('A' + (file - plan.files.begin()));
}

void AddTable(const PlanEvent& plan, std::vector<std::string>& lines) {
  lines.emplace_back("bank  file  bank in file  bytes  SHA-256");
  for (const PlannedBank& bank : plan.banks) {
    char text[64];
    std::snprintf(text, sizeof text, "%4u  %c     %12u  %5u  ", bank.target,
                  LetterOf(plan, bank.slot), bank.file_bank, bank.bytes);
    lines.push_back(text + bank.sha256);
  }
}

void AddFiles(const PlanEvent& plan, std::vector<std::string>& lines) {
  for (const PlannedFile& file : plan.files) {
    lines.push_back(std::string(1, LetterOf(plan, file.slot)) + "  " + CleanText(file.path));
    lines.push_back("   slot " + std::to_string(file.slot) + ", from bank " +
                    std::to_string(file.start_bank) + ", " + std::to_string(file.bytes) +
                    " bytes, SHA-256 " + file.sha256);
  }
}

void AddPicture(const PlanEvent& plan, std::vector<std::string>& lines) {
  // A file that starts at bank 255 can reach above it; most flashes have no such banks.
  const bool is_tall = std::any_of(plan.banks.begin(), plan.banks.end(),
                                   [](const PlannedBank& bank) { return bank.target > 255; });
  std::string picture(is_tall ? 512 : 256, '.');
  for (const PlannedBank& bank : plan.banks) {
    if (bank.target < picture.size()) picture[bank.target] = LetterOf(plan, bank.slot);
  }
  for (std::size_t first = 0; first < picture.size(); first += kBanksInARow) {
    char number[32];
    std::snprintf(number, sizeof number, "%4zu  ", first);
    lines.push_back(number + picture.substr(first, kBanksInARow));
  }
}

std::string Count(std::uint64_t count, const char* one, const char* many) {
  return std::to_string(count) + " " + (count == 1 ? one : many);
}

std::string Totals(const PlanEvent& plan) {
  std::uint64_t bytes = 0;
  for (const PlannedBank& bank : plan.banks) {
    bytes += bank.bytes;
  }
  return Count(plan.banks.size(), "bank", "banks") + ", " + Count(bytes, "byte", "bytes") +
         ", from " + Count(plan.files.size(), "file", "files") + ".";
}

}  // namespace

std::vector<std::string> PlanLines(const PlanEvent& plan) {
  std::vector<std::string> lines = {"Action: --" + CleanText(plan.action)};
  if (plan.files.empty()) {
    lines.emplace_back("No bank of the flash would be written.");
    return lines;
  }
  const auto add_blank = [&lines] { lines.emplace_back(); };
  add_blank();
  AddTable(plan, lines);
  add_blank();
  AddFiles(plan, lines);
  add_blank();
  AddPicture(plan, lines);
  add_blank();
  lines.push_back(Totals(plan));
  return lines;
}

}  // namespace line
