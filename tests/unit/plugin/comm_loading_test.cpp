// SPDX-License-Identifier: MIT
//
// Loading and freeing a communication library.
#include <gtest/gtest.h>

#include <cstddef>
#include <string>

#include "support/comm_library.h"
#include "support/printed.h"

namespace {

using namespace comm_library;
using comm_expected::kLookUpOrder;

TEST(CommLoading, BindsEveryExportOfAWholeLibrary) {
  CZvComm comm;
  EXPECT_EQ(Load(comm, Path("whole")), 1);
  RecorderOf(Path("whole")).answer = kAnswer;
  EXPECT_EQ(OperationsThatAreBound(comm), 111);  // the other 4 of the 115 have no result
  comm.FreeCommDllFile();
}

TEST(CommLoading, RefusesALibraryThatLacksAnyOneExport) {
  int refused = 0;
  for (const std::string symbol : kLookUpOrder) {
    SCOPED_TRACE(symbol);
    CZvComm comm;
    const std::string path = Path("without_" + symbol);
    EXPECT_EQ(PrintedErrors([&] { EXPECT_EQ(Load(comm, path), 0); }), "");
    EXPECT_FALSE(IsLoaded(path));
    EXPECT_EQ(OperationsThatAreBound(comm), 0);
    ++refused;
  }
  EXPECT_EQ(refused, 115);
}

// A library that could not be opened would be refused too, so it is shown that it can be.
TEST(CommLoading, RefusesThoseLibrariesForTheOneExportAlone) {
  for (const std::string left_out : kLookUpOrder) {
    void* const handle = dlopen(Path("without_" + left_out).c_str(), RTLD_NOW);
    ASSERT_NE(handle, nullptr) << left_out;
    for (const std::string symbol : kLookUpOrder) {
      EXPECT_EQ(dlsym(handle, symbol.c_str()) == nullptr, symbol == left_out) << symbol;
    }
    dlclose(handle);
  }
}

TEST(CommLoading, LooksTheExportsUpInTheirOrder) {
#ifdef __APPLE__
  GTEST_SKIP() << "this platform's loader cannot tell a library that it is looked up";
#endif
  CZvComm comm;
  ASSERT_EQ(Load(comm, Path("looked_up")), 1);
  const CommRecorder& recorder = RecorderOf(Path("looked_up"));
  ASSERT_EQ(recorder.look_ups, 115);
  for (std::size_t place = 0; place < 115; ++place) {
    EXPECT_STREQ(recorder.looked_up[place], kLookUpOrder[place]);
  }
  comm.FreeCommDllFile();
}

TEST(CommLoading, SaysWhyALibraryCannotBeOpened) {
  CZvComm comm;
  const std::string said =
      PrintedErrors([&] { EXPECT_EQ(Load(comm, "/nonexistent/libComm.dylib"), 0); });
  dlopen("/nonexistent/libComm.dylib", RTLD_NOW);
  const std::string reason = dlerror();
  EXPECT_EQ(said, "Failed to open libaray /nonexistent/libComm.dylib error:" + reason + "\n");
  EXPECT_EQ(OperationsThatAreBound(comm), 0);
}

TEST(CommLoading, RefusesAnEmptyAndANullPath) {
  CZvComm comm;
  wchar_t empty[] = L"";
  const std::string said = PrintedErrors([&] {
    EXPECT_EQ(comm.LoadCommDllFile(empty), 0);
    EXPECT_EQ(comm.LoadCommDllFile(nullptr), 0);
  });
  EXPECT_EQ(said.find("Failed to open libaray  error:"), 0U) << said;
}

TEST(CommLoading, ReplacesTheLibraryThatWasLoaded) {
  CZvComm comm;
  ASSERT_EQ(Load(comm, Path("whole")), 1);
  ASSERT_EQ(Load(comm, Path("second")), 1);
  EXPECT_FALSE(IsLoaded(Path("whole")));
  comm.ScalerStop();
  EXPECT_STREQ(RecorderOf(Path("second")).called, "ScalerStop");
  comm.FreeCommDllFile();
}

TEST(CommLoading, LeavesNothingLoadedWhenTheReplacementIsRefused) {
  CZvComm comm;
  ASSERT_EQ(Load(comm, Path("whole")), 1);
  RecorderOf(Path("whole")).answer = kAnswer;
  EXPECT_EQ(Load(comm, Path("without_GetSpecialCommType")), 0);
  EXPECT_FALSE(IsLoaded(Path("whole")));
  EXPECT_EQ(OperationsThatAreBound(comm), 0);
}

TEST(CommLoading, FreesTheLibraryAndUnbindsEveryCall) {
  CZvComm comm;
  ASSERT_EQ(Load(comm, Path("whole")), 1);
  comm.FreeCommDllFile();
  EXPECT_FALSE(IsLoaded(Path("whole")));
  EXPECT_EQ(OperationsThatAreBound(comm), 0);
  comm.FreeCommDllFile();
  EXPECT_EQ(OperationsThatAreBound(comm), 0);
}

TEST(CommLoading, InitForgetsTheLibraryWithoutClosingIt) {
  CZvComm comm;
  ASSERT_EQ(Load(comm, Path("whole")), 1);
  void* const forgotten = dlopen(Path("whole").c_str(), RTLD_NOW | RTLD_NOLOAD);
  comm.Init();
  EXPECT_EQ(OperationsThatAreBound(comm), 0);
  dlclose(forgotten);
  EXPECT_TRUE(IsLoaded(Path("whole")));
  dlclose(forgotten);
}

class CountingFree : public CZvComm {
 public:
  void FreeCommDllFile() override {
    ++frees;
    CZvComm::FreeCommDllFile();
  }
  int frees = 0;
};

TEST(CommLoading, ReachesAnOverriddenFreeOnceForEachLoad) {
  for (const std::string name : {"whole", "without_I2CRead", "nonexistent"}) {
    CountingFree comm;
    PrintedErrors([&] { Load(comm, Path(name)); });
    EXPECT_EQ(comm.frees, 1) << name;
    comm.FreeCommDllFile();
  }
}

}  // namespace
