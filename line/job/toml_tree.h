// SPDX-License-Identifier: MIT
//
// A TOML text as a tree that knows the line and the column of each key and value. Its source is
// the only one that knows the TOML library.
#ifndef ZVISP_LINE_JOB_TOML_TREE_H_
#define ZVISP_LINE_JOB_TOML_TREE_H_

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "line/job/job_error.h"

namespace line {

struct TomlMember;

struct TomlValue {
  // kOther: a date or a time.
  enum class Kind { kText, kInteger, kFloat, kTruth, kList, kTable, kOther };
  Kind kind = Kind::kTable;
  JobPosition position;
  // What the kind says; the others are empty.
  std::string text;
  std::int64_t integer = 0;
  double number = 0;
  bool truth = false;
  std::vector<TomlValue> items;
  std::vector<TomlMember> members;  // in the order of the file

  // Null when this is not a table or has no such key.
  const TomlValue* Find(std::string_view name) const;
};

struct TomlMember {
  std::string name;
  JobPosition position;  // of the key
  TomlValue value;
};

// Reads the whole text into `root`. False, with the first mistake in `error`, when it is not TOML,
// or is larger or deeper than any job.
bool ParseToml(std::string_view text, TomlValue& root, JobError& error);

}  // namespace line

#endif  // ZVISP_LINE_JOB_TOML_TREE_H_
