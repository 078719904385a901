// SPDX-License-Identifier: MIT
#include "line/job/strictness.h"

#include <algorithm>
#include <iterator>
#include <string_view>

#include "base/path.h"
#include "base/string_util.h"
#include "line/event/screen_text.h"
#include "line/job/value_rules.h"

namespace line {

namespace {

constexpr std::size_t kMostFlagBytes = 255;  // the record keeps 8 bits of their number
constexpr std::size_t kLongestSerial = 128;

// What every rule may use, and where it reports.
struct Question {
  const OptionScan& scan;
  const JudgedWords& judged;
  const Strictness& strictness;
  std::vector<Refusal>& refusals;

  void Refuse(const char* id, std::string text) const { refusals.push_back({id, std::move(text)}); }
  std::uint32_t Action() const { return judged.setting->enumActionType; }
};

void RefuseRepeatedValues(const Question& question) {
  std::vector<std::string_view> seen, reported;
  for (const GivenOption& option : question.scan.options) {
    const std::string_view name = option.row->name;
    const auto is_in = [name](const auto& list) {
      return std::find(list.begin(), list.end(), name) != list.end();
    };
    // A repeated switch changes nothing. Of repeated values, zvisp mostly keeps the last one and
    // says nothing.
    if (option.row->argument != zvisp::kRequiredArgument) continue;
    if (is_in(seen) && !is_in(reported)) {
      reported.push_back(name);
      question.Refuse("repeated", "The option --" + std::string(name) +
                                      " is given more than once; give it once.");
    }
    seen.push_back(name);
  }
}

// Options that mean nothing without a type of signature.
constexpr std::string_view kSignatureOptions[] = {"dsmode", "signfile", "keypair",    "vkfile",
                                                  "skfile", "subcert",  "nextvkfile", "boot"};

void RefuseSignatureOptionsWithoutType(const Question& question) {
  if (question.judged.args.ulSignatureTypeBits != 0) return;
  for (const std::string_view name : kSignatureOptions) {
    if (!question.scan.Has(name)) continue;
    question.Refuse("no-signature-type", "The option --" + std::string(name) +
                                             " has no effect without --sw or --hw; add one of "
                                             "them, or remove it.");
  }
}

// An operator who names a signature expects it to be checked.
void RefuseSignatureInFactory(const Question& question) {
  if (!question.scan.Has("sw") || !question.scan.Has("factory")) return;
  question.Refuse("signature-not-checked",
                  "With --factory the signature of --sw is not checked; remove one of the two.");
}

void RefuseUnsignedFiles(const Question& question) {
  if (question.strictness.allow_unsigned) return;
  if (!ProgramsUnsignedFiles(question.scan, question.judged)) return;
  question.Refuse("unsigned",
                  "The signature covers the file of --fw alone, and other files are programmed as "
                  "well; program each alone as --fw, or let them through with --allow-unsigned.");
}

// zvisp ignores the bytes without an address, and counts them modulo 256.
void RefuseLostFlag(const Question& question) {
  const std::string* const data = question.scan.ValueOf("flagdata");
  if (data == nullptr) return;
  if (question.judged.args.strFlagAddr.empty()) {
    question.Refuse("flag-lost",
                    "The bytes of --flagdata are not written without --flagaddr; add the address, "
                    "or remove them.");
  }
  const std::size_t count = StringSplit(*data, ",", 0).size();
  if (count > kMostFlagBytes) {
    question.Refuse("flag-cut", "The option --flagdata has " + std::to_string(count) +
                                    " bytes, more than the 255 that can be counted; give at most "
                                    "255.");
  }
}

// REQUIRES: zvisp has accepted the words, so the file can be opened and is an ordinary one.
void RefuseEmptyFiles(const Question& question) {
  for (const auto& [slot, entry] : question.judged.slots) {
    const std::string path = GetFileFullPath(entry.strFwPath.GetUtf8String(), "./");
    std::uint64_t bytes = 0;
    if (!zvisp::GetRegularFileSize(path, bytes)) {
      question.Refuse("not-a-file", "The firmware " + path +
                                        " is not an ordinary file that can be read; give one.");
    } else if (bytes == 0) {
      question.Refuse("empty-file",
                      "The firmware file " + path + " is empty; give one that has bytes.");
    }
  }
}

// zvisp resolves this name against the directory of the executable. When nothing is there, it calls
// the plug-in with an empty map.
void RefuseBootPath(const Question& question) {
  const std::string* const path = question.scan.ValueOf("boot");
  std::uint64_t bytes = 0;
  if (path == nullptr) return;
  if (!IsAbsolutePath(*path)) {
    question.Refuse("boot-relative", "The boot file " + *path +
                                         " would be looked for next to the executable; give its "
                                         "full path.");
  } else if (!zvisp::GetRegularFileSize(*path, bytes)) {
    question.Refuse("boot-missing",
                    "The boot file " + *path + " cannot be opened; give one that can be read.");
  } else if (bytes == 0) {
    question.Refuse("empty-file", "The boot file " + *path + " is empty; give one that has bytes.");
  }
}

bool IsSigning(std::uint32_t action) {
  return action == CP_ISPTOOL_ACTION_SIGN || action == CP_ISPTOOL_ACTION_VERIFY;
}

// Actions that answer code 6 whatever the plug-in is, or succeed without touching the display.
bool IsFutile(std::uint32_t action) {
  constexpr std::uint32_t kFutile[] = {
      CP_ISPTOOL_ACTION_ERASE,           CP_ISPTOOL_ACTION_SR_STATUS,
      CP_ISPTOOL_ACTION_FLASH_TYPE,      CP_ISPTOOL_ACTION_READ_SR,
      CP_ISPTOOL_ACTION_WRITE_SR,        CP_ISPTOOL_ACTION_READ_SAFEGUARD,
      CP_ISPTOOL_ACTION_WRITE_SAFEGUARD, CP_ISPTOOL_ACTION_GET_STATUS,
      CP_ISPTOOL_ACTION_MERGE_FW_INFO,   CP_ISPTOOL_ACTION_SEND_USER_DEFINED_INFO,
      CP_ISPTOOL_ACTION_I2C_WRITE};
  return std::find(std::begin(kFutile), std::end(kFutile), action) != std::end(kFutile);
}

void RefuseActions(const Question& question) {
  const std::string name = ActionNameOf(question.scan);
  if (IsSigning(question.Action())) {
    question.Refuse("no-display",
                    "The action --" + name + " concerns files and no display; use zvisp for it.");
  } else if (IsFutile(question.Action())) {
    question.Refuse(
        "futile", "The action --" + name + " never reaches the display; there is nothing to run.");
  }
}

// Every type is a success for zvisp, so only an expected one can make the step fail.
void RefuseExpectation(const Question& question) {
  const bool reads_type = question.Action() == CP_ISPTOOL_ACTION_GET_SCALER_TYPE;
  if (reads_type && !question.strictness.expect) {
    question.Refuse("expect-missing",
                    "The action --getscalertype needs the type that is right; give it with "
                    "--expect before \"--\".");
  } else if (!reads_type && question.strictness.expect) {
    question.Refuse("expect-lost", "The option --expect is for --getscalertype alone; remove it.");
  }
}

using Rule = void (*)(const Question&);

// In the order in which they are reported.
constexpr Rule kRules[] = {
    RefuseActions,
    RefuseRepeatedValues,
    RefuseSignatureOptionsWithoutType,
    RefuseSignatureInFactory,
    RefuseUnsignedFiles,
    RefuseLostFlag,
    RefuseEmptyFiles,
    RefuseBootPath,
    RefuseExpectation,
};

}  // namespace

bool ProgramsUnsignedFiles(const OptionScan& scan, const JudgedWords& judged) {
  // The check covers the file of --fw, which is slot 0.
  return scan.Has("sw") && std::any_of(judged.slots.begin(), judged.slots.end(),
                                       [](const auto& slot) { return slot.first != 0; });
}

std::vector<Refusal> FindRefusals(const OptionScan& scan, const JudgedWords& judged,
                                  const Strictness& strictness) {
  std::vector<Refusal> refusals = scan.refusals;
  const Question question = {scan, judged, strictness, refusals};
  for (const Rule rule : kRules) {
    rule(question);
  }
  RefuseChangedValues(scan, judged, refusals);
  return refusals;
}

namespace {

// Of characters that show nothing, whatever their width.
bool IsBlank(std::string_view text) {
  constexpr std::string_view kBlanks[] = {
      " ",      "\u00A0", "\u1680", "\u2000", "\u2001", "\u2002", "\u2003", "\u2004",
      "\u2005", "\u2006", "\u2007", "\u2008", "\u2009", "\u200A", "\u200B", "\u2028",
      "\u2029", "\u202F", "\u205F", "\u2060", "\u3000", "\uFEFF"};
  while (!text.empty()) {
    const auto* const blank =
        std::find_if(std::begin(kBlanks), std::end(kBlanks),
                     [text](std::string_view one) { return text.starts_with(one); });
    if (blank == std::end(kBlanks)) return false;
    text.remove_prefix(blank->size());
  }
  return true;
}

}  // namespace

std::string WhyNoSerial(const std::string& serial) {
  const std::string clean = CleanText(serial);
  if (clean != serial) {
    return "The serial of --unit has control characters, or is not UTF-8; give it as it is "
           "printed on the display.";
  }
  if (IsBlank(serial)) {
    return "The serial of --unit is blank; give the display's, or leave --unit out.";
  }
  if (serial.size() > kLongestSerial) {
    return "The serial of --unit has " + std::to_string(serial.size()) +
           " bytes, more than 128; give the display's own.";
  }
  return "";
}

}  // namespace line
