// SPDX-License-Identifier: MIT
#include "display/faults.h"

#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <thread>

#include "display/flash.h"
#include "display/format.h"
#include "display/key_values.h"

namespace simulator {
namespace {

constexpr std::uint32_t kDefaultSlowMs = 10;
constexpr std::uint32_t kBankBits = kBankBytes * 8;

struct KindRow {
  std::string_view name;
  FaultKind kind;
  std::string_view keys;  // what it takes, each key between blanks
};

// clang-format off
constexpr KindRow kKinds[] = {
  // name       kind                  keys
  {"fail",      FaultKind::kFail,     " call bank at code "},
  {"no-answer", FaultKind::kNoAnswer, " call bank at ms "},
  {"flip",      FaultKind::kFlip,     " call bank bit "},
  {"lie",       FaultKind::kLie,      " call bank bit "},
  {"verify",    FaultKind::kVerify,   " call bank "},
  {"slow",      FaultKind::kSlow,     " call bank ms "},
  {"hang",      FaultKind::kHang,     " call bank at "},
  {"crash",     FaultKind::kCrash,    " call bank at "},
};

struct StepRow { std::string_view name; Step step; };

constexpr StepRow kSteps[] = {
  // name     step
  {"erase",  Step::kErase},
  {"write",  Step::kWrite},
  {"verify", Step::kVerify},
  {"read",   Step::kRead},
};
// clang-format on

template <typename Row, std::size_t kRows>
const Row* FindRow(const Row (&rows)[kRows], std::string_view name) {
  const Row* const row =
      std::find_if(rows, rows + kRows, [name](const Row& r) { return r.name == name; });
  return row == rows + kRows ? nullptr : row;
}

bool Takes(const KindRow& kind, std::string_view key) {
  return kind.keys.find(Format(" %.*s ", static_cast<int>(key.size()), key.data())) !=
         std::string_view::npos;
}

bool ApplyStep(std::string_view value, Fault& fault) {
  const StepRow* const row = FindRow(kSteps, value);
  if (row == nullptr) return false;
  fault.at = row->step;
  return true;
}

bool ApplyNumber(std::string_view key, std::string_view value, Fault& fault) {
  const auto number = ParseNumber(value);
  if (!number) return false;
  if (key == "call") fault.call = *number;
  if (key == "bank") fault.bank = *number;
  if (key == "ms") fault.ms = *number;
  if (key == "bit") fault.bit = *number;
  if (key == "code") fault.code = *number;
  // The exit status of the tool is the low 8 bits of the code: without them, a failure would look
  // like a success.
  return fault.bit < kBankBits && (fault.code & 0xFFU) != 0;
}

// Takes the next word off the front of a line; empty at its end.
std::string_view TakeWord(std::string_view& line) {
  line = Trim(line);
  const std::string_view word = line.substr(0, line.find_first_of(" \t"));
  line.remove_prefix(word.size());
  return word;
}

bool ParseFault(std::string_view line, Fault& fault) {
  const KindRow* const kind = FindRow(kKinds, TakeWord(line));
  if (kind == nullptr) return false;
  fault.kind = kind->kind;
  for (auto word = TakeWord(line); !word.empty(); word = TakeWord(line)) {
    const auto pair = SplitKeyValue(word);
    if (!pair || !Takes(*kind, pair->key)) return false;
    const bool applied = pair->key == "at" ? ApplyStep(pair->value, fault)
                                           : ApplyNumber(pair->key, pair->value, fault);
    if (!applied) return false;
  }
  return true;
}

// A bank is first touched by its erasure, or by a dump that reads it.
bool StrikesAtStep(const Fault& fault, Step step) {
  if (fault.kind == FaultKind::kSlow) return step == Step::kErase || step == Step::kRead;
  if (fault.at) return *fault.at == step;
  if (fault.bank) return step == Step::kErase || step == Step::kRead;
  return step == Step::kCall;
}

void Wait(std::uint32_t ms) {
  std::this_thread::sleep_for(std::chrono::milliseconds(ms));
}

[[noreturn]] void Hang() {
  for (;;) {
    pause();
  }
}

// What happens when a fault strikes. The faults of the data itself are asked for elsewhere.
Outcome Happen(const Fault& fault, Step step, std::uint32_t bank) {
  switch (fault.kind) {
    case FaultKind::kFail:
      return {fault.code, Format("injected failure 0x%X", fault.code)};
    case FaultKind::kNoAnswer:
      Wait(fault.ms.value_or(0));
      // When the call begins nothing is written yet, and an operator may count on that.
      return step == Step::kCall
                 ? Refuse(Code::kNoAnswer, "no answer")
                 : Refuse(Code::kNoAnswerMidway, Format("no answer any more at bank %u", bank));
    case FaultKind::kSlow:
      Wait(fault.ms.value_or(kDefaultSlowMs));
      return Done();
    case FaultKind::kHang:
      Hang();
    case FaultKind::kCrash:
      std::abort();
    case FaultKind::kFlip:
    case FaultKind::kLie:
    case FaultKind::kVerify:
      break;
  }
  return Done();
}

}  // namespace

Faults::Faults(const std::vector<Fault>& faults, std::uint32_t call) {
  for (const Fault& fault : faults) {
    if (fault.call.value_or(call) == call) m_faults.push_back(fault);
  }
}

Outcome Faults::Strike(Step step, std::uint32_t bank) const {
  for (const Fault& fault : m_faults) {
    if (!StrikesAtStep(fault, step) || fault.bank.value_or(bank) != bank) continue;
    Outcome outcome = Happen(fault, step, bank);
    // A `slow` fault lets the call continue, and a later line of the file may still end it.
    if (!outcome.Ok()) return outcome;
  }
  return Done();
}

std::optional<std::uint32_t> Faults::FlippedBit(std::uint32_t bank) const {
  const Fault* const lie = Find(FaultKind::kLie, bank);
  const Fault* const fault = lie != nullptr ? lie : Find(FaultKind::kFlip, bank);
  return fault == nullptr ? std::nullopt : std::optional<std::uint32_t>(fault->bit);
}

bool Faults::VerifyFails(std::uint32_t bank) const {
  return Find(FaultKind::kVerify, bank) != nullptr;
}

bool Faults::VerifyLies(std::uint32_t bank) const {
  return Find(FaultKind::kLie, bank) != nullptr;
}

const Fault* Faults::Find(FaultKind kind, std::uint32_t bank) const {
  const auto found = std::find_if(m_faults.begin(), m_faults.end(), [&](const Fault& fault) {
    return fault.kind == kind && fault.bank.value_or(bank) == bank;
  });
  return found == m_faults.end() ? nullptr : &*found;
}

Outcome ParseFaults(std::string_view text, std::vector<Fault>& faults) {
  for (const TextLine& line : SplitLines(text)) {
    Fault fault;
    if (!ParseFault(line.text, fault)) {
      return Refuse(Code::kSettings, Format("line %u of its faults file is illegal", line.number));
    }
    faults.push_back(fault);
  }
  return Done();
}

}  // namespace simulator
