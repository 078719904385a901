// SPDX-License-Identifier: MIT
//
// What a piece of code prints on standard output.
#ifndef ZVISP_TESTS_SUPPORT_PRINTED_H_
#define ZVISP_TESTS_SUPPORT_PRINTED_H_

#include <string>
#include <utility>

#include <gtest/gtest.h>

// Calls it and gives back what it printed meanwhile.
template <typename Code>
std::string Printed(Code&& code) {
  testing::internal::CaptureStdout();
  std::forward<Code>(code)();
  return testing::internal::GetCapturedStdout();
}

#endif  // ZVISP_TESTS_SUPPORT_PRINTED_H_
