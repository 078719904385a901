// SPDX-License-Identifier: MIT
//
// What the operations of the communication proxy answer, with and without a library.
#include "plugin/comm_plugin.h"

#include <gtest/gtest.h>

#include "support/comm_library.h"

namespace {

using namespace comm_library;
using comm_expected::kOperations;
using comm_expected::Operation;

// kAnswer as a result of so many bytes.
long long CutAnswer(int bytes) {
  constexpr struct {
    int bytes;
    long long answer;
  } kCuts[] = {
      // clang-format off
      {0, 0},
      {1, 0x18},
      {2, 0x0718},
      {4, -0x1A09F8E8},  // 0xE5F60718, signed
      // clang-format on
  };
  for (const auto& cut : kCuts) {
    if (cut.bytes == bytes) return cut.answer;
  }
  ADD_FAILURE() << "no operation has a result of " << bytes << " bytes";
  return 0;
}

TEST(CommOperations, AnswerTheirUnloadedValueWithoutALibrary) {
  CZvComm comm;
  for (const Operation& operation : kOperations) {
    EXPECT_EQ(operation.call(comm), operation.unloaded) << operation.name;
  }
  EXPECT_EQ(OperationsThatAreBound(comm), 0);
}

TEST(CommOperations, AnswerTheLibrarysResultCutToTheirWidth) {
  CZvComm comm;
  ASSERT_EQ(Load(comm, Path("whole")), 1);
  RecorderOf(Path("whole")).answer = kAnswer;
  for (const Operation& operation : kOperations) {
    const bool bound = ExportOf(operation) != nullptr;
    const long long expected = bound ? CutAnswer(operation.result) : operation.unloaded;
    EXPECT_EQ(operation.call(comm), expected) << operation.name;
  }
  comm.FreeCommDllFile();
}

TEST(CommOperations, WithoutAnExportLeaveALoadedLibraryAlone) {
  CZvComm comm;
  ASSERT_EQ(Load(comm, Path("whole")), 1);
  int without = 0;
  for (const Operation& operation : kOperations) {
    if (ExportOf(operation) != nullptr) continue;
    operation.call(comm);
    ++without;
  }
  EXPECT_EQ(without, 33);
  EXPECT_EQ(RecorderOf(Path("whole")).calls, 0);
  comm.FreeCommDllFile();
}

TEST(CommOperations, WithoutAResultStillReachTheLibrary) {
  CZvComm comm;
  ASSERT_EQ(Load(comm, Path("whole")), 1);
  comm.SetDebugSlave(0x94);
  EXPECT_STREQ(RecorderOf(Path("whole")).called, "SetDebugSlave");
  EXPECT_EQ(RecorderOf(Path("whole")).arguments[0] & 0xFF, 0x94U);
  comm.FreeCommDllFile();
}

}  // namespace
