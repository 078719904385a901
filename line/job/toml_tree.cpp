// SPDX-License-Identifier: MIT
#include "line/job/toml_tree.h"

#include <algorithm>
#include <utility>

// Input such as "[.a]" breaks a condition that the library asserts, and then reports. With NDEBUG,
// some compilers take the condition for granted; so it is neither asserted nor assumed here.
#undef NDEBUG
#define TOML_ASSERT(condition) static_assert(true)
#define TOML_EXCEPTIONS 0
#define TOML_ENABLE_FORMATTERS 0
#include <toml++/toml.h>

#include "line/event/screen_text.h"

namespace line {

namespace {

// The library reads keys with dots, and frees their tables, without a limit of their depth, which
// the length of a line gives them. A job needs a fraction of either.
constexpr std::size_t kMostBytes = std::size_t{256} * 1024;
constexpr std::size_t kLongestLine = 4096;

JobPosition Begin(const toml::source_region& region) {
  return {region.begin.line, region.begin.column};
}

bool HasItsLimits(std::string_view text, JobError& error) {
  if (text.size() > kMostBytes) {
    error = {"job-too-large", "A job has at most 262144 bytes; give a job file.", {1, 1}};
    return false;
  }
  std::uint32_t line = 1;
  for (std::size_t begin = 0; begin <= text.size(); ++line) {
    const std::size_t end = std::min(text.find('\n', begin), text.size());
    if (end - begin > kLongestLine) {
      error = {"line-too-long", "A line of a job has at most 4096 bytes; break it.", {line, 1}};
      return false;
    }
    begin = end + 1;
  }
  return true;
}

struct Mistake {
  std::string_view part;  // of the library's description
  const char* todo;
};

// The mistakes that are made most often.
constexpr Mistake kMistakes[] = {
    {"could not determine value type",
     "write a text in straight quotes, and true or false in small letters."},
    {"control characters", "end the text by the quote that it begins with, in the same line."},
    {"unknown escape sequence", "write each \\ twice, or the text in single quotes."},
    {"cannot redefine existing table",
     "write the table once, and each of several as [[step]] and [[place]] are."},
};

std::string WhatToDo(std::string_view description) {
  for (const Mistake& mistake : kMistakes) {
    if (description.find(mistake.part) != std::string_view::npos) return mistake.todo;
  }
  return "correct the line.";
}

TomlValue Converted(const toml::node& node);

TomlValue Converted(const toml::table& table) {
  TomlValue value;
  value.kind = TomlValue::Kind::kTable;
  for (const auto& [key, node] : table) {
    value.members.push_back({std::string(key.str()), Begin(key.source()), Converted(node)});
  }
  // The library sorts them by name.
  std::sort(value.members.begin(), value.members.end(),
            [](const TomlMember& left, const TomlMember& right) {
              return std::pair(left.position.line, left.position.column) <
                     std::pair(right.position.line, right.position.column);
            });
  return value;
}

TomlValue Converted(const toml::array& array) {
  TomlValue value;
  value.kind = TomlValue::Kind::kList;
  for (const toml::node& node : array) {
    value.items.push_back(Converted(node));
  }
  return value;
}

TomlValue ConvertedScalar(const toml::node& node) {
  TomlValue value;
  value.kind = TomlValue::Kind::kOther;
  if (const auto* const text = node.as_string()) {
    value.kind = TomlValue::Kind::kText;
    value.text = text->get();
  } else if (const auto* const integer = node.as_integer()) {
    value.kind = TomlValue::Kind::kInteger;
    value.integer = integer->get();
  } else if (const auto* const number = node.as_floating_point()) {
    value.kind = TomlValue::Kind::kFloat;
    value.number = number->get();
  } else if (const auto* const truth = node.as_boolean()) {
    value.kind = TomlValue::Kind::kTruth;
    value.truth = truth->get();
  }
  return value;
}

TomlValue Converted(const toml::node& node) {
  TomlValue value = node.is_table()   ? Converted(*node.as_table())
                    : node.is_array() ? Converted(*node.as_array())
                                      : ConvertedScalar(node);
  value.position = Begin(node.source());
  return value;
}

}  // namespace

const TomlValue* TomlValue::Find(std::string_view name) const {
  const auto found = std::find_if(members.begin(), members.end(),
                                  [name](const TomlMember& member) { return member.name == name; });
  return found == members.end() ? nullptr : &found->value;
}

bool ParseToml(std::string_view text, TomlValue& root, JobError& error) {
  if (!HasItsLimits(text, error)) return false;
  const toml::parse_result result = toml::parse(text);
  if (!result) {
    const toml::parse_error& failure = result.error();
    error = {"toml", CleanText(failure.description()) + "; " + WhatToDo(failure.description()),
             Begin(failure.source())};
    return false;
  }
  root = Converted(static_cast<const toml::node&>(result.table()));
  return true;
}

}  // namespace line
