// SPDX-License-Identifier: MIT
#include "line/job/job_rules.h"

#include <algorithm>
#include <cctype>
#include <map>
#include <string>

#include "base/path.h"
#include "line/job/address_range.h"
#include "line/job/option_scan.h"
#include "line/job/serial_pattern.h"

namespace line {

namespace {

constexpr std::uint32_t kMostReadBytes = 4096;
constexpr std::size_t kLongestName = 128;
// Each step is judged for each place before anything starts, and each verdict is a large record.
constexpr std::size_t kMostSteps = 100;

using Kind = TomlValue::Kind;

// Where the value of a key is; the table when it has no such key.
JobPosition PositionOf(const TomlValue& table, std::string_view key) {
  const TomlValue* const value = table.Find(key);
  return value == nullptr ? table.position : value->position;
}

void RequireKey(const TomlValue& table, const std::string& owner, const char* key, const char* todo,
                JobErrors& errors) {
  if (table.Find(key) != nullptr) return;
  errors.push_back({"missing-key", owner + " has no \"" + key + "\"; " + todo, table.position});
}

bool IsHash(const std::string& text) {
  return text.size() == 64 &&
         std::all_of(text.begin(), text.end(), [](unsigned char c) { return std::isxdigit(c); });
}

void CheckHash(const TomlValue& table, std::string& hash, JobErrors& errors) {
  std::transform(hash.begin(), hash.end(), hash.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  if (hash.empty() || IsHash(hash)) return;
  errors.push_back({"bad-hash",
                    "\"sha256\" needs 64 hexadecimal digits, and has other text; copy what "
                    "sha256sum prints.",
                    PositionOf(table, "sha256")});
}

void CheckNameLength(const TomlValue& table, const std::string& name, JobErrors& errors) {
  if (name.size() <= kLongestName) return;
  errors.push_back(
      {"long-name",
       "The name has " + std::to_string(name.size()) + " bytes, more than 128; shorten it.",
       PositionOf(table, "name")});
}

// The word of `list` by which an option is given, whole or cut; the list when it is not found.
JobPosition PositionOfOption(const TomlValue& list, std::string_view name) {
  for (const TomlValue& word : list.items) {
    const std::string_view text = word.text;
    if (!text.starts_with("--") || text.size() < 3) continue;
    if (name.starts_with(text.substr(2, text.find('=') - 2))) return word.position;
  }
  return list.position;
}

bool HasPlaceholder(const std::string& text) {
  return text.find("{unit}") != std::string::npos || text.find("{place}") != std::string::npos;
}

// The display is named by its place.
void RefusePlaceOptions(const TomlValue& words, const OptionScan& scan, JobErrors& errors) {
  for (const char* const name : {"comm", "slave"}) {
    if (!scan.Has(name)) continue;
    errors.push_back({"place-option",
                      std::string("The option --") + name + " belongs to the place; move it to \"" +
                          name + "\" of each [[place]].",
                      PositionOfOption(words, name)});
  }
}

void CheckWords(const TomlValue& words, const JobStep& step, JobErrors& errors) {
  const OptionScan scan = ScanOptions(step.words);
  RefusePlaceOptions(words, scan, errors);
  const std::string* const settings = scan.ValueOf("settingfile");
  if (settings != nullptr && !IsAbsolutePath(*settings)) {
    errors.push_back({"relative-settings",
                      "The settings file " + *settings +
                          " would be looked for next to the executable; give its full path.",
                      PositionOfOption(words, "settingfile")});
  }
  const std::string* const dump = scan.ValueOf("dumpname");
  if (dump != nullptr && !HasPlaceholder(*dump)) {
    errors.push_back(
        {"shared-dump",
         "Every display would be dumped into " + *dump + "; put {unit} or {place} into its name.",
         PositionOfOption(words, "dumpname")});
  }
  // Without a name it is zvisp's own, which all places share.
  if (dump == nullptr && scan.Has("dumpflash")) {
    errors.push_back({"shared-dump",
                      "Every display would be dumped into one file; add --dumpname with {unit} or "
                      "{place} in it.",
                      PositionOfOption(words, "dumpflash")});
  }
}

int DigitOf(char c) {
  return std::isdigit(static_cast<unsigned char>(c)) ? c - '0' : std::tolower(c) - 'a' + 10;
}

// "52 34" as two bytes; false for other text.
bool BytesIn(const std::string& text, std::string& bytes) {
  std::string digits;
  for (const char character : text) {
    if (character != ' ') {
      digits += character;
    } else if (digits.size() % 2 != 0) {
      return false;
    }
  }
  const bool good =
      digits.size() % 2 == 0 &&
      std::all_of(digits.begin(), digits.end(), [](unsigned char c) { return std::isxdigit(c); });
  bytes.clear();
  for (std::size_t i = 0; good && i < digits.size(); i += 2) {
    bytes += static_cast<char>(DigitOf(digits[i]) * 16 + DigitOf(digits[i + 1]));
  }
  return good;
}

// Turns the digits into the bytes.
void CheckEquals(const TomlValue& table, bool length_is_known, JobRead& read, JobErrors& errors) {
  std::string bytes;
  if (!BytesIn(read.equals, bytes)) {
    errors.push_back({"bad-bytes",
                      "\"equals\" needs bytes of two hexadecimal digits, as \"52 34 2E 31\"; "
                      "correct it.",
                      PositionOf(table, "equals")});
  } else if (length_is_known && bytes.size() != read.length) {
    errors.push_back({"bad-bytes",
                      "\"equals\" has " + std::to_string(bytes.size()) + " bytes and \"len\" is " +
                          std::to_string(read.length) + "; make them agree.",
                      PositionOf(table, "equals")});
  }
  read.equals = bytes;
}

template <class Named>
void RefuseDoubledNames(const std::vector<Named>& list, const char* what, JobErrors& errors) {
  std::map<std::string, std::uint32_t> lines;
  for (const Named& one : list) {
    const auto [first, is_new] = lines.try_emplace(one.name, one.position.line);
    if (is_new || one.name.empty()) continue;
    errors.push_back({"doubled-name",
                      std::string("Two ") + what + " are called \"" + one.name +
                          "\", the first at line " + std::to_string(first->second) +
                          "; rename one.",
                      one.position});
  }
}

}  // namespace

void CheckPattern(const TomlValue& table, const Job& job, JobErrors& errors) {
  RequireKey(table, "[unit]", "pattern", "give what a serial looks like, as \"^ZP[0-9]{8}$\".",
             errors);
  if (job.pattern.empty()) return;
  std::string reason;
  if (SerialPattern::Make(job.pattern, reason) != nullptr) return;
  errors.push_back(
      {"bad-pattern",
       "The pattern of a serial is not a regular expression that can be used: it has " + reason +
           "; correct it.",
       PositionOf(table, "pattern")});
}

void CheckLine(const TomlValue& table, const JobLine& line, JobErrors& errors) {
  if (line.jobs_at_once > 0) return;
  errors.push_back({"no-jobs", "With \"jobs_at_once\" = 0 nothing would start; give at least 1.",
                    PositionOf(table, "jobs_at_once")});
}

void CheckFirmware(const TomlValue& table, JobFirmware& file, JobErrors& errors) {
  const std::string owner = "The file \"" + file.path + "\" of [firmware]";
  RequireKey(table, owner, "sha256", "give its hash, as sha256sum prints it.", errors);
  RequireKey(table, owner, "bytes", "give its size in bytes.", errors);
  CheckHash(table, file.sha256, errors);
}

void CheckPlugin(const TomlValue& table, Job& job, JobErrors& errors) {
  job.plugin_position = PositionOf(table, "sha256");
  CheckHash(table, job.plugin_sha256, errors);
}

void CheckReadBack(const TomlValue& table, const Job& job, JobErrors& errors) {
  for (const std::string& range : job.ignore) {
    if (ParseAddressRange(range)) continue;
    errors.push_back({"bad-range",
                      "\"" + range + "\" is not a range; give FIRST-LAST, as 0x1F0000-0x1FFFFF.",
                      PositionOf(table, "ignore")});
  }
}

void CheckHook(const TomlValue& table, JobHook& hook, JobErrors& errors) {
  hook.before_unit_position = PositionOf(table, "before_unit");
  hook.on_result_position = PositionOf(table, "on_result");
  for (const auto& [key, words] :
       {std::pair("before_unit", &hook.before_unit), std::pair("on_result", &hook.on_result)}) {
    const TomlValue* const value = table.Find(key);
    if (value == nullptr || value->kind != Kind::kList) continue;
    const bool no_program = value->items.empty() || (!words->empty() && words->front().empty());
    if (!no_program) continue;
    errors.push_back({"no-program",
                      std::string("\"") + key +
                          "\" names no program; give it as the first text, "
                          "or remove the key.",
                      value->position});
  }
  if (hook.timeout_s > 0) return;
  errors.push_back({"no-timeout",
                    "A hook needs a time-out, or it could stop the line; give more than 0 seconds.",
                    PositionOf(table, "timeout_s")});
}

void CheckStep(const TomlValue& table, const JobStep& step, JobErrors& errors) {
  RequireKey(table, "This [[step]]", "name", "give it one.", errors);
  CheckNameLength(table, step.name, errors);
  const TomlValue* const words = table.Find("zvisp");
  const TomlValue* const read = table.Find("read");
  if ((words == nullptr) == (read == nullptr)) {
    errors.push_back({"step-action",
                      words == nullptr
                          ? "This [[step]] does nothing; give it \"zvisp\" or \"read\"."
                          : "This [[step]] has both \"zvisp\" and \"read\"; make two "
                            "steps of it.",
                      table.position});
  }
  if (words != nullptr && words->kind == Kind::kList) {
    if (words->items.empty()) {
      errors.push_back({"no-words", "\"zvisp\" has no words; give those of a zvisp command line.",
                        words->position});
    }
    CheckWords(*words, step, errors);
  }
  if (read == nullptr || words != nullptr) return;
  for (const char* const key : {"readback", "allow_unsigned", "expect"}) {
    if (table.Find(key) == nullptr) continue;
    errors.push_back({"no-effect",
                      std::string("\"") + key + "\" has no effect on a \"read\"; remove it.",
                      PositionOf(table, key)});
  }
}

void CheckRead(const TomlValue& table, JobRead& read, JobErrors& errors) {
  RequireKey(table, "\"read\"", "addr", "give the address in flash, in bytes.", errors);
  RequireKey(table, "\"read\"", "len", "give the number of bytes.", errors);
  RequireKey(table, "\"read\"", "equals", "give the bytes, as \"52 34 2E 31\".", errors);
  const TomlValue* const length = table.Find("len");
  const bool has_length = length != nullptr && length->kind == Kind::kInteger;
  const bool fits = read.length > 0 && read.length <= kMostReadBytes;
  if (has_length && !fits) {
    errors.push_back(
        {"bad-length", "\"read\" reads 1 to 4096 bytes; correct \"len\".", length->position});
  } else if (std::uint64_t{read.address} + read.length > std::uint64_t{1} << 32) {
    errors.push_back({"bad-length", "\"read\" ends after the last address of a flash; correct it.",
                      PositionOf(table, "len")});
  }
  if (!read.equals.empty()) CheckEquals(table, has_length && fits, read, errors);
}

void CheckPlace(const TomlValue& table, const JobPlace& place, JobErrors& errors) {
  RequireKey(table, "This [[place]]", "name", "give it one.", errors);
  CheckNameLength(table, place.name, errors);
  // {place} may be part of a file's name, and --unit separates the place by "=".
  if (place.name.find_first_of("/=") != std::string::npos || place.name.starts_with("..")) {
    errors.push_back({"bad-name",
                      "The name of a place has no \"/\", no \"=\", and no \"..\" at its start; "
                      "rename it.",
                      PositionOf(table, "name")});
  }
  RequireKey(table, "This [[place]]", "comm", "give the number of its interface, 1 to 16.", errors);
  const TomlValue* const comm = table.Find("comm");
  if (comm == nullptr || comm->kind != Kind::kInteger || (place.comm >= 1 && place.comm <= 16)) {
    return;
  }
  // What does not fit a number at all was reported with its type.
  if (comm->integer < 0 || comm->integer > 0xFFFFFFFF) return;
  errors.push_back({"bad-comm",
                    "\"comm\" is the number of an interface, 1 to 16, and has " +
                        std::to_string(comm->integer) + "; correct it.",
                    comm->position});
}

void CheckNamesOfSteps(const Job& job, JobErrors& errors) {
  RefuseDoubledNames(job.steps, "steps", errors);
  if (job.steps.size() <= kMostSteps) return;
  errors.push_back({"many-steps",
                    "A job has at most 100 steps, and this one has " +
                        std::to_string(job.steps.size()) + "; divide it into several jobs.",
                    job.steps[kMostSteps].position});
}

void CheckPlaces(const Job& job, JobErrors& errors) {
  RefuseDoubledNames(job.places, "places", errors);
  if (job.line.serialise) return;
  std::map<std::uint32_t, std::string> names;
  for (const JobPlace& place : job.places) {
    const auto [first, is_new] = names.try_emplace(place.comm, place.name);
    if (is_new || place.comm == 0) continue;
    errors.push_back({"shared-interface",
                      "The places \"" + first->second + "\" and \"" + place.name +
                          "\" have the interface " + std::to_string(place.comm) +
                          " both; correct one, or write serialise = true under [line].",
                      place.position});
  }
}

}  // namespace line
