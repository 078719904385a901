// SPDX-License-Identifier: MIT
#include "plugin/comm_plugin.h"

#include <cstddef>
#include <cstdio>

#include "plugin/dynamic_library.h"

namespace {

using Exports = CZvComm::Exports;

constexpr int kFirstListedSlot = 5;

struct ListedOperation {
  int slot;
  int look_up;
  ExportRow<Exports> row;
};

// clang-format off
constexpr ListedOperation kOperations[] = {
#define OPERATION(slot, look_up, Returns, unloaded, Method, Types) \
    OPERATION_AS(slot, look_up, Returns, unloaded, Method, Types, #Method)
#define OPERATION_AS(slot, look_up, Returns, unloaded, Method, Types, symbol) \
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

// Each export at its place. A place outside the table is no constant expression.
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

static_assert(SlotsCountUp(), "the list must stand in slot order, without a gap");
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

// The list gives types only. These number the parameters: `u8, u16` becomes `u8 a, u16 b`, and
// `a, b` where they are handed on. The comma after __VA_ARGS__ keeps the last `...` from being
// absent, which is not the same as empty.
// clang-format off
#define PARAMETERS(...) __VA_OPT__(PARAMETER_1(__VA_ARGS__, ))
#define PARAMETER_1(Type, ...) Type a __VA_OPT__(, PARAMETER_2(__VA_ARGS__))
#define PARAMETER_2(Type, ...) Type b __VA_OPT__(, PARAMETER_3(__VA_ARGS__))
#define PARAMETER_3(Type, ...) Type c __VA_OPT__(, PARAMETER_4(__VA_ARGS__))
#define PARAMETER_4(Type, ...) Type d __VA_OPT__(, PARAMETER_5(__VA_ARGS__))
#define PARAMETER_5(Type, ...) Type e __VA_OPT__(, PARAMETER_6(__VA_ARGS__))
#define PARAMETER_6(Type, ...) Type f __VA_OPT__(, PARAMETER_7(__VA_ARGS__))
#define PARAMETER_7(Type, ...) Type g

#define ARGUMENTS(...) __VA_OPT__(ARGUMENT_1(__VA_ARGS__, ))
#define ARGUMENT_1(Type, ...) a __VA_OPT__(, ARGUMENT_2(__VA_ARGS__))
#define ARGUMENT_2(Type, ...) b __VA_OPT__(, ARGUMENT_3(__VA_ARGS__))
#define ARGUMENT_3(Type, ...) c __VA_OPT__(, ARGUMENT_4(__VA_ARGS__))
#define ARGUMENT_4(Type, ...) d __VA_OPT__(, ARGUMENT_5(__VA_ARGS__))
#define ARGUMENT_5(Type, ...) e __VA_OPT__(, ARGUMENT_6(__VA_ARGS__))
#define ARGUMENT_6(Type, ...) f __VA_OPT__(, ARGUMENT_7(__VA_ARGS__))
#define ARGUMENT_7(Type, ...) g

#define OPERATION(slot, look_up, Returns, unloaded, Method, Types) \
  auto CZvComm::Method(PARAMETERS Types) -> Returns { \
    return static_cast<Returns>(m_exports.Method(ARGUMENTS Types)); \
  }
#include "plugin/comm_operations.inc"
// clang-format on
