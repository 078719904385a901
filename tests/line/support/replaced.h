// SPDX-License-Identifier: MIT
#ifndef ZVISP_TESTS_LINE_SUPPORT_REPLACED_H_
#define ZVISP_TESTS_LINE_SUPPORT_REPLACED_H_

#include <string>

#include <gtest/gtest.h>

// The text with the first `what` in it replaced. A text without it fails the test.
inline std::string Replaced(std::string text, const std::string& what, const std::string& by) {
  const std::size_t at = text.find(what);
  EXPECT_NE(at, std::string::npos) << what;
  return text.replace(at, what.size(), by);
}

#endif  // ZVISP_TESTS_LINE_SUPPORT_REPLACED_H_
