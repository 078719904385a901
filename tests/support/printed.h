// SPDX-License-Identifier: MIT
//
// What a piece of code prints on standard output or on standard error. To catch both, nest the two
// calls.
#ifndef ZVISP_TESTS_SUPPORT_PRINTED_H_
#define ZVISP_TESTS_SUPPORT_PRINTED_H_

#include <string>
#include <utility>

#include <gtest/gtest.h>

// Calls it and returns what it printed on standard output.
template <typename Code>
std::string Printed(Code&& code) {
  testing::internal::CaptureStdout();
  std::forward<Code>(code)();
  return testing::internal::GetCapturedStdout();
}

// Calls it and returns what it printed on standard error.
template <typename Code>
std::string PrintedErrors(Code&& code) {
  testing::internal::CaptureStderr();
  std::forward<Code>(code)();
  return testing::internal::GetCapturedStderr();
}

#endif  // ZVISP_TESTS_SUPPORT_PRINTED_H_
