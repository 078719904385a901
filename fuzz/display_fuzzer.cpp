// SPDX-License-Identifier: MIT
//
// The files of the simulated display, each as an operator, a killed run or a full disk may leave
// it. Input: a line with the kind of the file, and, after a blank, how many more bytes "x" it ends
// with (0 to 99999); then the file.
//
// Promises: a display opens whatever its state, counters, journal and key hold, and opens again;
// only its identity and its faults can refuse, by naming a line that the file has; a state that is
// written is read back; a count goes up by one and no other count changes; the journal keeps what
// it had; and a key is given whole or not at all.
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "display/display.h"
#include "plugin/zvisp_plugin.h"
#include "support/fuzzing.h"

namespace {

using simulator::Display;
using simulator::Outcome;
using simulator::State;

constexpr unsigned kCommId = 1;
constexpr std::size_t kCounterLine = 26;
constexpr std::uint32_t kBank = 7;
// A longer state file counts as a new display's.
constexpr std::size_t kLongestState = 65536;
constexpr const char* kKinds[] = {"state", "counters", "identity", "faults", "journal", "key"};

std::string PathOf(const std::string& kind) {
  return FuzzDirectory() + "display-01." + kind;
}

std::unique_ptr<Display> OpenDisplay() {
  std::unique_ptr<Display> display;
  const Outcome opened = Display::Open(kCommId, display);
  PROMISE(opened.Ok() && display != nullptr);
  return display;
}

bool IsSame(const State& left, const State& right) {
  return left.calls == right.calls && left.resets == right.resets &&
         left.eeprom_version == right.eeprom_version && left.isp_mode == right.isp_mode &&
         left.recorded_version == right.recorded_version;
}

void CheckState(const std::string& content) {
  const bool is_read = content.size() <= kLongestState;
  State expected = simulator::ParseState(is_read ? content : "");
  ++expected.calls;
  PROMISE(IsSame(OpenDisplay()->GetState(), expected));
  const std::string written = ReadFile(PathOf("state"));
  PROMISE(written.size() <= kLongestState);
  PROMISE(IsSame(simulator::ParseState(written), expected));
  ++expected.calls;
  PROMISE(IsSame(OpenDisplay()->GetState(), expected));
}

std::string WithoutLine(std::string text, std::uint32_t line) {
  return text.erase(line * kCounterLine, kCounterLine);
}

// The two counts of a bank's line.
std::pair<unsigned, unsigned> CountsIn(const std::string& text, std::uint32_t bank) {
  unsigned number = 0;
  unsigned erases = 0;
  unsigned writes = 0;
  const std::string line = text.substr(bank * kCounterLine, kCounterLine);
  PROMISE(std::sscanf(line.c_str(), "%u %u %u\n", &number, &erases, &writes) == 3);
  PROMISE(number == bank);
  return {erases, writes};
}

void CheckCounters() {
  OpenDisplay();
  const std::string before = ReadFile(PathOf("counters"));
  PROMISE(before.size() >= kCounterLine * simulator::kBankCount);
  simulator::Counters counters;
  PROMISE(counters.Open(PathOf("counters")));
  PROMISE(ReadFile(PathOf("counters")) == before);
  PROMISE(counters.CountErase(kBank) && counters.CountWrite(kBank) && counters.CountWrite(kBank));
  const std::string after = ReadFile(PathOf("counters"));
  PROMISE(WithoutLine(after, kBank) == WithoutLine(before, kBank));
  const auto [erases, writes] = CountsIn(before, kBank);
  PROMISE(CountsIn(after, kBank) == std::pair(erases + 1, writes + 2));
}

// A file that is refused is refused by its line; everything else opens the display.
void CheckRefusal(const Outcome& parsed, const std::string& content) {
  std::unique_ptr<Display> display;
  const Outcome opened = Display::Open(kCommId, display);
  PROMISE(opened.Ok() == parsed.Ok());
  PROMISE(opened.Ok() == (display != nullptr));
  if (parsed.Ok()) return;
  PROMISE(opened.why.find(parsed.why) != std::string::npos);
  const unsigned long line = std::strtoul(parsed.why.c_str() + std::strlen("line "), nullptr, 10);
  const auto newlines = std::count(content.begin(), content.end(), '\n');
  PROMISE(line >= 1 && line <= static_cast<unsigned long>(newlines) + 1);
}

void CheckIdentity(const std::string& content) {
  simulator::Identity identity;
  CheckRefusal(simulator::ParseIdentity(content, identity), content);
}

void CheckFaults(const std::string& content) {
  std::vector<simulator::Fault> faults;
  CheckRefusal(simulator::ParseFaults(content, faults), content);
  for (const simulator::Fault& fault : faults) {
    PROMISE((fault.code & 0xFF) != 0);
    PROMISE(fault.bit < simulator::kBankBytes * 8);
  }
}

// A line that was cut short is ended first.
void CheckJournal(const std::string& content) {
  PROMISE(OpenDisplay()->Note("a line").Ok());
  const bool is_cut = !content.empty() && content.back() != '\n';
  PROMISE(ReadFile(PathOf("journal")) == content + (is_cut ? "\n" : "") + "a line\n");
}

void CheckKey(const std::string& content) {
  std::string key;
  const Outcome read = OpenDisplay()->ReadKey(kDeviceKeyCapacity, key);
  PROMISE(read.Ok() == (!content.empty() && content.size() <= kDeviceKeyCapacity));
  PROMISE(!read.Ok() || key == content);
}

void Check(const std::string& kind, const std::string& content) {
  if (kind == "state") CheckState(content);
  if (kind == "counters") CheckCounters();
  if (kind == "identity") CheckIdentity(content);
  if (kind == "faults") CheckFaults(content);
  if (kind == "journal") CheckJournal(content);
  if (kind == "key") CheckKey(content);
}

}  // namespace

void PrepareTarget() {
  setenv("ZVISP_SIM_DIR", FuzzDirectory().substr(0, FuzzDirectory().size() - 1).c_str(), 1);
  OpenDisplay();
}

void FuzzInput(const std::uint8_t* data, std::size_t size) {
  InputLines lines(data, size);
  const std::string head(lines.Next());
  const std::string kind = head.substr(0, head.find(' '));
  if (std::find(std::begin(kKinds), std::end(kKinds), kind) == std::end(kKinds)) return;
  const std::string more = head.substr(std::min(kind.size() + 1, head.size()), 5);
  std::string content(lines.Rest());
  content.append(std::strtoul(more.c_str(), nullptr, 10) % 100000, 'x');
  WriteFile(PathOf(kind), content);
  Check(kind, content);
  PROMISE(unlink(PathOf(kind).c_str()) == 0);
}
