// SPDX-License-Identifier: MIT
//
// libstdc++ matches by deep recursion, as deep as the expression has states. This bounds it.
// NOLINTNEXTLINE(bugprone-reserved-identifier): the name is the library's.
#define _GLIBCXX_REGEX_STATE_LIMIT 10000

#include "line/job/serial_pattern.h"

#include <regex>
#include <utility>

namespace line {

namespace {

constexpr std::size_t kLongestPattern = 1024;
constexpr std::size_t kLongestSerial = 128;

std::regex::flag_type Flags() {
#ifdef __GLIBCXX__
  // Without it, a pattern like (a+)+ takes time that doubles with each letter of a serial. The
  // other library gives up by itself.
  return std::regex::ECMAScript | std::regex::nosubs | std::regex_constants::__polynomial;
#else
  return std::regex::ECMAScript | std::regex::nosubs;
#endif
}

const char* ReasonOf(std::regex_constants::error_type code) {
  using namespace std::regex_constants;
  if (code == error_brack) return "a \"[\" without \"]\"";
  if (code == error_paren) return "a \"(\" or \")\" without its other";
  if (code == error_brace || code == error_badbrace) return "braces that hold no count";
  if (code == error_range) return "a range that ends before it begins";
  if (code == error_escape) return "a backslash before a wrong character";
  if (code == error_badrepeat) return "a \"*\", \"+\" or \"?\" that follows nothing";
  if (code == error_ctype || code == error_collate) return "a class of characters without a name";
  if (code == error_complexity || code == error_space || code == error_stack) {
    return "counts that are too large, or back-references";
  }
  return "a mistake";
}

}  // namespace

struct SerialPattern::State {
  std::regex expression;
};

SerialPattern::SerialPattern(std::unique_ptr<State> state) : m_state(std::move(state)) {}
SerialPattern::~SerialPattern() = default;

std::unique_ptr<SerialPattern> SerialPattern::Make(const std::string& pattern, std::string& error) {
  if (pattern.size() > kLongestPattern) {
    error = "more than 1024 bytes";
    return nullptr;
  }
  try {
    auto state = std::make_unique<State>();
    state->expression.assign(pattern, Flags());
    return std::unique_ptr<SerialPattern>(new SerialPattern(std::move(state)));
  } catch (const std::regex_error& failure) {
    error = ReasonOf(failure.code());
    return nullptr;
  }
}

bool SerialPattern::Matches(const std::string& serial) const {
  if (serial.size() > kLongestSerial) return false;
  try {
    return std::regex_match(serial, m_state->expression);
  } catch (const std::regex_error&) {
    return false;
  }
}

}  // namespace line
