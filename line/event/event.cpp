// SPDX-License-Identifier: MIT
#include "line/event/event.h"

#include <algorithm>
#include <array>

namespace line {

namespace {

// In the order of the enumerations. The names are in records on disk: change none of them.
constexpr std::array<std::string_view, 6> kStates = {"untouched", "programming", "programmed",
                                                     "identical", "different",   "uncertain"};
constexpr std::array<std::string_view, 8> kOutcomes = {"passed",  "failed",      "different",
                                                       "refused", "unavailable", "timed_out",
                                                       "crashed", "interrupted"};
constexpr std::array<std::string_view, 4> kCheckOutcomes = {"passed", "warning", "failed",
                                                            "not_run"};
constexpr std::array<std::string_view, 5> kPhases = {"prepare", "signature", "boot", "program",
                                                     "read-back"};
constexpr std::array<std::string_view, 2> kWaitReasons = {"interface", "hook"};
constexpr std::array<std::string_view, 3> kLevels = {"info", "warning", "error"};
constexpr std::array<std::string_view, 3> kSources = {"tool", "plug-in", "output"};

template <typename Enum, std::size_t kCount>
std::string_view Name(const std::array<std::string_view, kCount>& names, Enum value) {
  return names[static_cast<std::size_t>(value)];
}

template <typename Enum, std::size_t kCount>
std::optional<Enum> Named(const std::array<std::string_view, kCount>& names,
                          std::string_view name) {
  const auto found = std::find(names.begin(), names.end(), name);
  if (found == names.end()) return std::nullopt;
  return static_cast<Enum>(found - names.begin());
}

}  // namespace

std::string_view NameOf(UnitState state) {
  return Name(kStates, state);
}
std::string_view NameOf(Outcome outcome) {
  return Name(kOutcomes, outcome);
}
std::string_view NameOf(CheckOutcome outcome) {
  return Name(kCheckOutcomes, outcome);
}
std::string_view NameOf(Phase phase) {
  return Name(kPhases, phase);
}
std::string_view NameOf(WaitReason reason) {
  return Name(kWaitReasons, reason);
}
std::string_view NameOf(Level level) {
  return Name(kLevels, level);
}
std::string_view NameOf(Source source) {
  return Name(kSources, source);
}

std::optional<UnitState> StateNamed(std::string_view name) {
  return Named<UnitState>(kStates, name);
}
std::optional<Outcome> OutcomeNamed(std::string_view name) {
  return Named<Outcome>(kOutcomes, name);
}

}  // namespace line
