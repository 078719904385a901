// SPDX-License-Identifier: MIT
//
// The order of the virtual table, by calling its entries by number as a plug-in does.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <iterator>
#include <new>
#include <string>
#include <tuple>

#include "support/comm_library.h"

namespace {

using namespace comm_library;
using comm_expected::kOperations;
using comm_expected::Operation;

std::string g_called;

// Every virtual function says its own name.
class Namesake : public CZvComm {
 public:
  ~Namesake() override { g_called = "destructor"; }
  static void operator delete(void* memory) {
    g_called += ", delete";
    std::free(memory);
  }
  static void* operator new(std::size_t size) { return std::malloc(size); }
  static void* operator new(std::size_t, void* place) { return place; }

  int LoadCommDllFile(wchar_t*) override {
    g_called = "LoadCommDllFile";
    return 0;
  }
  void FreeCommDllFile() override { g_called = "FreeCommDllFile"; }

#define OPERATION(slot, look_up, Returns, unloaded, Method, Parameters, Arguments) \
  Returns Method Parameters override {                                             \
    static_cast<void>(std::tie Arguments);                                         \
    g_called = #Method;                                                            \
    return Returns();                                                              \
  }
#include "plugin/comm_operations.inc"

  virtual void FirstOfADerivedClass() {
    g_called = "FirstOfADerivedClass";
  }
};

// The arguments are never read, but a reference needs something to refer to.
std::string NameInSlot(int slot) {
  std::uint64_t unread = 0;
  CommWord words[kCommArguments];
  std::fill(std::begin(words), std::end(words), reinterpret_cast<CommWord>(&unread));
  Namesake namesake;
  g_called.clear();
  CallCommSlot(&namesake, slot, words);
  return g_called;
}

TEST(CommSlots, TheFirstTwoDestroyAndDelete) {
  alignas(Namesake) unsigned char place[sizeof(Namesake)];
  CallCommSlot(new (place) Namesake, 1, kZeros);
  EXPECT_EQ(g_called, "destructor");
  CallCommSlot(new Namesake, 2, kZeros);
  EXPECT_EQ(g_called, "destructor, delete");
}

TEST(CommSlots, ThirdAndFourthLoadAndFree) {
  EXPECT_EQ(NameInSlot(3), "LoadCommDllFile");
  EXPECT_EQ(NameInSlot(4), "FreeCommDllFile");
}

TEST(CommSlots, EachReachesTheOperationOfItsNumber) {
  int slot = 5;
  for (const Operation& operation : kOperations) {
    ASSERT_EQ(operation.slot, slot++);
    EXPECT_EQ(NameInSlot(operation.slot), operation.name);
  }
}

TEST(CommSlots, EndAfterTheHundredAndFiftySecond) {
  EXPECT_EQ(NameInSlot(152), "CheckSnifferBoardCustomerId");
  EXPECT_EQ(NameInSlot(153), "FirstOfADerivedClass");
}

// A different word for each argument, cut to its type so that it is what a caller passes.
void FillArguments(const Operation& operation, CommWord (&words)[kCommArguments]) {
  for (std::size_t i = 0; operation.arguments[i] != 0; ++i) {
    words[i] = Cut(0x1112131415161718 * (i + 1), operation.arguments[i]);
  }
}

void ExpectExportCalledBySlot(CZvComm& comm, CommRecorder& recorder, const Operation& operation) {
  SCOPED_TRACE(operation.name);
  CommWord sent[kCommArguments] = {};
  FillArguments(operation, sent);
  recorder.called = "nothing";
  CallCommSlot(&comm, operation.slot, sent);
  EXPECT_STREQ(recorder.called, ExportOf(operation));
  for (std::size_t i = 0; operation.arguments[i] != 0; ++i) {
    EXPECT_EQ(Cut(recorder.arguments[i], operation.arguments[i]), sent[i]) << "argument " << i;
  }
}

TEST(CommSlots, ThatHaveAnExportCallItWithTheirArguments) {
  CZvComm comm;
  ASSERT_EQ(Load(comm, Path("whole")), 1);
  CommRecorder& recorder = RecorderOf(Path("whole"));
  int called = 0;
  for (const Operation& operation : kOperations) {
    if (ExportOf(operation) == nullptr) continue;
    ExpectExportCalledBySlot(comm, recorder, operation);
    ++called;
  }
  EXPECT_EQ(called, 115);
  EXPECT_EQ(recorder.calls, 115);
  comm.FreeCommDllFile();
}

TEST(CommSlots, LoadAndFreeALibrary) {
  CZvComm comm;
  const std::string path = Path("whole");
  std::wstring wide(path.begin(), path.end());
  const CommWord arguments[kCommArguments] = {reinterpret_cast<CommWord>(wide.data())};
  EXPECT_EQ(Cut(CallCommSlot(&comm, 3, arguments), 4), 1U);
  EXPECT_TRUE(IsLoaded(path));
  CallCommSlot(&comm, 4, kZeros);
  EXPECT_FALSE(IsLoaded(path));
}

}  // namespace
