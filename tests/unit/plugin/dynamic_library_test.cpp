// SPDX-License-Identifier: MIT
#include "plugin/dynamic_library.h"

#include <gtest/gtest.h>

using namespace zvisp;

namespace {

TEST(DynamicLibrary, TheLastErrorIsReportedOnceAndNeverNull) {
  EXPECT_EQ(OpenLibrary(L"/no/such/library").handle, nullptr);
  LastLoaderError();
  EXPECT_STREQ(LastLoaderError(), "");
}

TEST(DynamicLibrary, AFailureTellsPathAndReason) {
  const OpenedLibrary library = OpenLibrary(L"/no/such/library");
  EXPECT_EQ(library.handle, nullptr);
  EXPECT_EQ(library.path, "/no/such/library");
  EXPECT_NE(library.reason.find("/no/such/library"), std::string::npos);
}

TEST(DynamicLibrary, AnEmptyPathDoesNotReachTheLoader) {
  const OpenedLibrary library = OpenLibrary(L"");
  EXPECT_EQ(library.handle, nullptr);
  EXPECT_EQ(library.path, "");
}

TEST(DynamicLibrary, ClosingTakesTheHandleOnce) {
  void* handle = OpenLibrary(L"libc.so.6").handle;
  if (handle == nullptr) GTEST_SKIP() << "this platform has no libc.so.6";
  EXPECT_TRUE(CloseLibrary(handle));
  EXPECT_EQ(handle, nullptr);
  EXPECT_FALSE(CloseLibrary(handle));
}

}  // namespace
