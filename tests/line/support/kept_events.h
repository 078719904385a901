// SPDX-License-Identifier: MIT
//
// Events that tests have seen, kept for the check against the schema.
#ifndef ZVISP_TESTS_LINE_SUPPORT_KEPT_EVENTS_H_
#define ZVISP_TESTS_LINE_SUPPORT_KEPT_EVENTS_H_

#include <fstream>
#include <set>
#include <string>

#include <gtest/gtest.h>

// Adds the text's lines to the file of the running test, once; a run of the test starts it anew.
inline void KeepForSchema(const std::string& json_lines) {
  static std::set<std::string> kept;
  const testing::TestInfo* const test = testing::UnitTest::GetInstance()->current_test_info();
  if (test == nullptr || !kept.insert(json_lines).second) return;
  const std::string name = std::string(test->test_suite_name()) + "." + test->name() + ".jsonl";
  static std::set<std::string> begun;
  const bool is_new = begun.insert(name).second;
  std::ofstream file(std::string(ZVISP_EVENTS_DIR) + "/" + name,
                     is_new ? std::ios::trunc : std::ios::app);
  file << json_lines;
}

#endif  // ZVISP_TESTS_LINE_SUPPORT_KEPT_EVENTS_H_
