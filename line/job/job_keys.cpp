// SPDX-License-Identifier: MIT
#include "line/job/job_keys.h"

#include <limits>
#include <type_traits>

#include "line/event/screen_text.h"
#include "line/job/nearest_name.h"

namespace line {

namespace {

using Kind = TomlValue::Kind;

// A limit that every clock here can hold in milliseconds.
constexpr double kMostSeconds = 1e9;

constexpr std::string_view kWord = "a whole number from 0 to 4294967295";
constexpr std::string_view kWords = "a list of whole numbers from 0 to 4294967295";
constexpr std::string_view kTexts = "a list of texts in quotes";

std::string Quoted(std::string_view text) {
  return "\"" + CleanText(text) + "\"";
}

std::string Described(const TomlValue& value) {
  switch (value.kind) {
    case Kind::kText:
      return "a text";
    case Kind::kInteger:
      return std::to_string(value.integer);
    case Kind::kFloat:
      return "a number with a fraction, or one that is out of range";
    case Kind::kTruth:
      return value.truth ? "true" : "false";
    case Kind::kList:
      return "a list with other values in it";
    case Kind::kTable:
      return "a table";
    case Kind::kOther:
      break;
  }
  return "a date or a time";
}

bool IsWord(const TomlValue& value) {
  return value.kind == Kind::kInteger && value.integer >= 0 &&
         value.integer <= std::numeric_limits<std::uint32_t>::max();
}

bool HasControlCharacters(const TomlMember& key, const TomlValue& value, JobErrors& errors) {
  if (CleanText(value.text) == value.text) return false;
  errors.push_back({"control-character",
                    "The text of " + Quoted(key.name) + " has control characters; remove them.",
                    value.position});
  return true;
}

}  // namespace

JobError WrongType(std::string_view name, const TomlValue& value, std::string_view wanted) {
  return {"wrong-type",
          "The key " + Quoted(name) + " needs " + std::string(wanted) + ", and has " +
              Described(value) + "; correct the value.",
          value.position};
}

JobError WrongType(const TomlMember& key, std::string_view wanted) {
  return WrongType(key.name, key.value, wanted);
}

JobError UnknownKey(const TomlMember& key, std::string_view owner,
                    const std::vector<std::string>& names) {
  std::string text = Quoted(key.name) + " is not a key of " + std::string(owner) + "; ";
  const std::string nearest = NearestName(key.name, names);
  if (!nearest.empty()) {
    text += "did you mean " + Quoted(nearest) + "?";
  } else {
    text += names.size() == 1 ? "the only one is" : "its keys are";
    for (std::size_t i = 0; i < names.size(); ++i) {
      text += (i == 0 ? " " : ", ") + names[i];
    }
    text += ".";
  }
  return {"unknown-key", text, key.position};
}

void TakeValue(const TomlMember& key, std::string& value, JobErrors& errors) {
  if (key.value.kind != Kind::kText) {
    errors.push_back(WrongType(key, "a text in quotes"));
  } else if (key.value.text.find_first_not_of(' ') == std::string::npos) {
    errors.push_back({"blank", "The text of " + Quoted(key.name) + " is blank; fill it in.",
                      key.value.position});
  } else if (!HasControlCharacters(key, key.value, errors)) {
    value = key.value.text;
  }
}

void TakeValue(const TomlMember& key, bool& value, JobErrors& errors) {
  if (key.value.kind == Kind::kText) {
    return errors.push_back(WrongType(key, "true or false without quotes"));
  }
  if (key.value.kind != Kind::kTruth) return errors.push_back(WrongType(key, "true or false"));
  value = key.value.truth;
}

void TakeValue(const TomlMember& key, std::uint32_t& value, JobErrors& errors) {
  if (key.value.kind == Kind::kText) {
    return errors.push_back(WrongType(key, "a whole number without quotes"));
  }
  if (!IsWord(key.value)) return errors.push_back(WrongType(key, kWord));
  value = static_cast<std::uint32_t>(key.value.integer);
}

void TakeValue(const TomlMember& key, std::uint64_t& value, JobErrors& errors) {
  if (key.value.kind != Kind::kInteger || key.value.integer < 0) {
    return errors.push_back(WrongType(key, "a whole number, 0 or more"));
  }
  value = static_cast<std::uint64_t>(key.value.integer);
}

void TakeValue(const TomlMember& key, double& value, JobErrors& errors) {
  const double seconds = key.value.kind == Kind::kInteger ? static_cast<double>(key.value.integer)
                         : key.value.kind == Kind::kFloat ? key.value.number
                                                          : -1;
  // Not true of what is not a number either.
  if (!(seconds >= 0 && seconds <= kMostSeconds)) {
    return errors.push_back(WrongType(key, "a number of seconds, 0 or more"));
  }
  value = seconds;
}

void TakeValue(const TomlMember& key, std::vector<std::string>& value, JobErrors& errors) {
  if (key.value.kind != Kind::kList) return errors.push_back(WrongType(key, kTexts));
  for (const TomlValue& item : key.value.items) {
    if (item.kind != Kind::kText) {
      errors.push_back(WrongType(key.name, item, kTexts));
    } else if (!HasControlCharacters(key, item, errors)) {
      value.push_back(item.text);
    }
  }
}

void TakeValue(const TomlMember& key, std::vector<std::uint32_t>& value, JobErrors& errors) {
  if (key.value.kind != Kind::kList) return errors.push_back(WrongType(key, kWords));
  for (const TomlValue& item : key.value.items) {
    if (!IsWord(item)) {
      errors.push_back(WrongType(key.name, item, kWords));
    } else {
      value.push_back(static_cast<std::uint32_t>(item.integer));
    }
  }
}

}  // namespace line
