// SPDX-License-Identifier: MIT
#ifndef ZVISP_TESTS_LINE_EVENT_PRINTED_BY_H_
#define ZVISP_TESTS_LINE_EVENT_PRINTED_BY_H_

#include <functional>
#include <string>

#include <gtest/gtest.h>

namespace line {

struct Printed {
  std::string out, err;
};

// What it prints on standard output and on standard error.
inline Printed PrintedBy(const std::function<void()>& work) {
  testing::internal::CaptureStdout();
  testing::internal::CaptureStderr();
  work();
  return {testing::internal::GetCapturedStdout(), testing::internal::GetCapturedStderr()};
}

}  // namespace line

#endif  // ZVISP_TESTS_LINE_EVENT_PRINTED_BY_H_
