// SPDX-License-Identifier: MIT
#include "plugin/comm_plugin.h"

#include <cstddef>
#include <cstdio>

#include "plugin/dynamic_library.h"

using namespace zvisp;

namespace {

using Exports = CZvComm::Exports;

// The slots before it are the destructor's and those of loading, which comm_plugin.h declares.
constexpr int kFirstListedSlot = 5;

struct ListedOperation {
  int slot;
  int look_up;
  ExportRow<Exports> row;
};

// clang-format off
constexpr ListedOperation kOperations[] = {
#define OPERATION(slot, look_up, Returns, unloaded, Method, Parameters, Arguments) \
    OPERATION_AS(slot, look_up, Returns, unloaded, Method, Parameters, Arguments, #Method)
#define OPERATION_AS(slot, look_up, Returns, unloaded, Method, Parameters, Arguments, symbol) \
    {slot, look_up, {symbol, ExportNeed::kRequired, Slot<&Exports::Method>}},
#include "plugin/comm_operations.inc"
};
// clang-format on

constexpr bool SlotsCountUp() {
  int slot = kFirstListedSlot;
  for (const ListedOperation& operation : kOperations) {
    if (operation.slot != slot++) return false;
  }
  return true;
}

constexpr std::size_t CountExports() {
  std::size_t count = 0;
  for (const ListedOperation& operation : kOperations) {
    if (operation.look_up != 0) ++count;
  }
  return count;
}

struct LookUp {
  ExportRow<Exports> rows[CountExports()];
};

// Each export at its place. A place outside the table does not compile.
constexpr LookUp InLookUpOrder() {
  LookUp table = {};
  for (const ListedOperation& operation : kOperations) {
    if (operation.look_up != 0) table.rows[operation.look_up - 1] = operation.row;
  }
  return table;
}

constexpr LookUp kLookUp = InLookUpOrder();

constexpr bool EveryPlaceIsTaken() {
  for (const ExportRow<Exports>& row : kLookUp.rows) {
    if (row.symbol == nullptr) return false;
  }
  return true;
}

static_assert(SlotsCountUp(), "the list must be in slot order, without a gap");
static_assert(EveryPlaceIsTaken(), "two operations have the same place in the look-up");

}  // namespace

CZvComm::~CZvComm() = default;

void CZvComm::Init() {
  m_library = nullptr;
  m_exports = {};
}

int CZvComm::LoadCommDllFile(wchar_t* path) {
  FreeCommDllFile();
  const OpenedLibrary opened = OpenLibrary(path);
  if (opened.handle == nullptr) {
    // "libaray" is how the line has always been spelled: scripts match this text.
    std::fprintf(stderr, "Failed to open libaray %s error:%s\n", opened.path.c_str(),
                 opened.reason.c_str());
    return 0;
  }
  m_library = opened.handle;
  if (BindExports(m_library, m_exports, kLookUp.rows)) return 1;
  CZvComm::FreeCommDllFile();  // an override is called once for each load, not again here
  return 0;
}

void CZvComm::FreeCommDllFile() {
  CloseLibrary(m_library);
  Init();
}

// clang-format off
#define OPERATION(slot, look_up, Returns, unloaded, Method, Parameters, Arguments) \
  auto CZvComm::Method Parameters -> Returns { \
    return static_cast<Returns>(m_exports.Method Arguments); \
  }
#include "plugin/comm_operations.inc"
// clang-format on
