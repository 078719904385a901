// SPDX-License-Identifier: MIT
#include "line/job/value_rules.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <iterator>
#include <string_view>

#include "base/path.h"
#include "base/process_path.h"
#include "base/string_util.h"
#include "base/transform.h"

namespace line {

namespace {

enum class Form {
  kNumber,
  kNumbers,       // separated by commas
  kText,          // at most 259 bytes
  kSettingsFile,  // at most 259 characters
  kBinName,       // the same, and ends in ".bin"
  kVersionMode,   // 0, 1 or 2
};

// The options whose values zvisp changes without a word. Firmware files and start banks are checked
// apart: their options fill slots.
struct ValueRow {
  std::string_view name;
  Form form;
};

// clang-format off
constexpr ValueRow kValues[] = {
  // name           form
  {"boot",          Form::kText},
  {"dsmode",        Form::kNumber},
  {"userdefined",   Form::kNumber},
  {"veraddr",       Form::kNumber},
  {"totalverlen",   Form::kNumber},
  {"majorverlen",   Form::kNumber},
  {"subverlen",     Form::kNumber},
  {"recordvermode", Form::kVersionMode},
  {"dumpaddr",      Form::kNumber},
  {"dumplen",       Form::kNumber},
  {"dumpname",      Form::kBinName},
  {"comm",          Form::kNumber},
  {"signfile",      Form::kText},
  {"keypair",       Form::kNumber},
  {"vkfile",        Form::kText},
  {"skfile",        Form::kText},
  {"subcert",       Form::kText},
  {"nextvkfile",    Form::kText},
  {"settingfile",   Form::kSettingsFile},
  {"flagaddr",      Form::kNumber},
  {"flagdata",      Form::kNumbers},
  {"slave",         Form::kNumber},
  {"writedata",     Form::kNumbers},
};
// clang-format on

constexpr std::size_t kLongestText = kPathCapacity - 1;
constexpr std::size_t kLongestBankPath = 256;  // wide units of a bank entry's path

std::size_t Characters(const std::string& text) {
  return CCpTransform().ConvertUTF8StringToUnicode(text).size();
}

// Whether a number keeps its value in 32 bits. A text that is not a number is zvisp's to refuse.
bool FitsAWord(const std::string& text) {
  char* end = nullptr;
  errno = 0;
  // zvisp reads by strtol as well and keeps 32 bits of the result.
  const long number = std::strtol(text.c_str(), &end, 0);
  if (*end != '\0') return true;
  return errno == 0 && number >= 0 && number <= 0xFFFFFFFFL;
}

Refusal NoWord(const std::string& name, const std::string& value) {
  return {"value-cut", "The value " + value + " of --" + name +
                           " does not fit its field of 32 bits; give a number from 0 to "
                           "0xFFFFFFFF."};
}

Refusal TooLong(const std::string& name, std::size_t length, std::size_t at_most,
                const char* units) {
  return {"value-cut", "The value of --" + name + " has " + std::to_string(length) + " " + units +
                           ", more than the " + std::to_string(at_most) +
                           " that fit its field; use a shorter path."};
}

bool IsBinName(const std::string& name) {
  return name.size() >= 5 && name.compare(name.size() - 4, 4, ".bin") == 0;
}

// One function for each form.
void CheckNumbers(const std::string& name, const std::string& value, const char* separators,
                  std::vector<Refusal>& refusals) {
  for (const std::string& piece : StringSplit(value, separators, 0)) {
    if (!FitsAWord(piece)) refusals.push_back(NoWord(name, piece));
  }
}

void CheckLength(const std::string& name, std::size_t length, const char* units,
                 std::vector<Refusal>& refusals) {
  if (length > kLongestText) refusals.push_back(TooLong(name, length, kLongestText, units));
}

void CheckBinName(const std::string& value, std::vector<Refusal>& refusals) {
  if (IsBinName(value)) return CheckLength("dumpname", Characters(value), "characters", refusals);
  refusals.push_back({"value-replaced", "The value " + value +
                                            " of --dumpname would be replaced by dumpFile.bin; "
                                            "give a name that ends in .bin."});
}

void CheckVersionMode(const std::string& value, std::vector<Refusal>& refusals) {
  if (value == "0" || value == "1" || value == "2") return;
  refusals.push_back({"value-replaced", "The value " + value +
                                            " of --recordvermode would be taken as 2; give 0, 1 "
                                            "or 2."});
}

void CheckValue(const ValueRow& row, const std::string& value, std::vector<Refusal>& refusals) {
  const std::string name(row.name);
  switch (row.form) {
    case Form::kNumber:
      return CheckNumbers(name, value, "", refusals);
    case Form::kNumbers:
      return CheckNumbers(name, value, ",", refusals);
    case Form::kText:
      return CheckLength(name, value.size(), "bytes", refusals);
    case Form::kSettingsFile:
      return CheckLength(
          name, Characters(GetFileFullPath(value, GetCurrentProcessDir(nullptr).GetUtf8String())),
          "characters", refusals);
    case Form::kBinName:
      return CheckBinName(value, refusals);
    case Form::kVersionMode:
      return CheckVersionMode(value, refusals);
  }
}

void CheckSlots(const JudgedWords& judged, std::vector<Refusal>& refusals) {
  for (const auto& [slot, entry] : judged.slots) {
    const std::string path = GetFileFullPath(entry.strFwPath.GetUtf8String(), "./");
    const std::size_t length = Characters(path);
    if (length > kLongestBankPath) {
      refusals.push_back(
          TooLong("fw" + std::to_string(slot), length, kLongestBankPath, "characters"));
    }
  }
}

// --bank and --bank1 to --bank9.
bool IsStartBank(const zvisp::OptionRow& row) {
  return std::holds_alternative<zvisp::InsertStartBank>(row.effect);
}

}  // namespace

void RefuseChangedValues(const OptionScan& scan, const JudgedWords& judged,
                         std::vector<Refusal>& refusals) {
  for (const GivenOption& option : scan.options) {
    const auto row = std::find_if(
        std::begin(kValues), std::end(kValues),
        [&option](const ValueRow& candidate) { return candidate.name == option.row->name; });
    if (row != std::end(kValues)) CheckValue(*row, option.value, refusals);
    if (IsStartBank(*option.row)) CheckNumbers(option.row->name, option.value, "", refusals);
  }
  CheckSlots(judged, refusals);
}

}  // namespace line
