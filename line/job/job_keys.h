// SPDX-License-Identifier: MIT
//
// Tables of keys: which keys a table of a job file may have, and where their values go. The type of
// the member says what the value must be. Everything that is wrong is reported, and what could be
// read is stored.
#ifndef ZVISP_LINE_JOB_JOB_KEYS_H_
#define ZVISP_LINE_JOB_JOB_KEYS_H_

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "line/job/toml_tree.h"

namespace line {

template <class Target>
struct JobKey {
  std::string_view name;
  // A double is a number of seconds. Nothing: the value is read elsewhere.
  std::variant<std::monostate, std::string Target::*, bool Target::*, std::uint32_t Target::*,
               std::uint64_t Target::*, double Target::*, std::optional<std::uint32_t> Target::*,
               std::optional<double> Target::*, std::vector<std::string> Target::*,
               std::vector<std::uint32_t> Target::*>
      member;
};

// Each stores the value of a key; a value of another type, a number that does not fit, or a text
// that is blank or has control characters is an error and is not stored.
void TakeValue(const TomlMember& key, std::string& value, JobErrors& errors);
void TakeValue(const TomlMember& key, bool& value, JobErrors& errors);
void TakeValue(const TomlMember& key, std::uint32_t& value, JobErrors& errors);
void TakeValue(const TomlMember& key, std::uint64_t& value, JobErrors& errors);
void TakeValue(const TomlMember& key, double& value, JobErrors& errors);
void TakeValue(const TomlMember& key, std::vector<std::string>& value, JobErrors& errors);
void TakeValue(const TomlMember& key, std::vector<std::uint32_t>& value, JobErrors& errors);

template <class Value>
void TakeValue(const TomlMember& key, std::optional<Value>& value, JobErrors& errors) {
  Value read = {};
  const std::size_t before = errors.size();
  TakeValue(key, read, errors);
  if (errors.size() == before) value = read;
}

// "NAME needs WANTED, and has ...".
JobError WrongType(const TomlMember& key, std::string_view wanted);
JobError WrongType(std::string_view name, const TomlValue& value, std::string_view wanted);
// `owner` is how the table is called in a sentence: "[line]".
JobError UnknownKey(const TomlMember& key, std::string_view owner,
                    const std::vector<std::string>& names);

template <class Target>
std::vector<std::string> NamesOf(std::span<const JobKey<Target>> keys) {
  std::vector<std::string> names;
  for (const JobKey<Target>& key : keys) {
    names.emplace_back(key.name);
  }
  return names;
}

template <class Target>
const JobKey<Target>* FindKey(std::span<const JobKey<Target>> keys, std::string_view name) {
  for (const JobKey<Target>& key : keys) {
    if (key.name == name) return &key;
  }
  return nullptr;
}

// Reads every key of a table.
template <class Target>
void ReadKeys(const TomlValue& table, std::string_view owner, std::span<const JobKey<Target>> keys,
              Target& target, JobErrors& errors) {
  for (const TomlMember& member : table.members) {
    const JobKey<Target>* const key = FindKey(keys, member.name);
    if (key == nullptr) {
      errors.push_back(UnknownKey(member, owner, NamesOf(keys)));
      continue;
    }
    std::visit(
        [&](const auto place) {
          if constexpr (!std::is_same_v<decltype(place), const std::monostate>) {
            TakeValue(member, target.*place, errors);
          }
        },
        key->member);
  }
}

}  // namespace line

#endif  // ZVISP_LINE_JOB_JOB_KEYS_H_
