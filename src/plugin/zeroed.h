// SPDX-License-Identifier: MIT
//
// Construction of wire-format records over zeroed memory, so that no stale byte (padding and the
// fields that the constructors leave alone) ever reaches a plug-in, and the same command always
// gives the same bytes.
//
// The system hands out fresh memory as zeros and makes a page of it real when it is first touched.
// The 256 bank entries of a command setting are 66 pages, of which a run needs one or two; to touch
// them all would take a tenth of a run's start, so construction and copy leave the unused ones be.
#ifndef ZVISP_PLUGIN_ZEROED_H_
#define ZVISP_PLUGIN_ZEROED_H_

#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>
#include <type_traits>

#include "plugin/command_setting.h"

// Constructs a record in memory that is all zero.
template <typename Record>
Record* ConstructOverZeros(void* zeros) {
  return ::new (zeros) Record;
}

// The same bytes as the constructor gives, without a look at the firmware map: it stays zero.
template <>
STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING* ConstructOverZeros(void* zeros);

// Gives a record made by MakeZeroed back to the heap.
struct FreeZeroed {
  void operator()(void* record) const { std::free(record); }
};

template <typename Record>
using ZeroedPtr = std::unique_ptr<Record, FreeZeroed>;

// A record on the heap, owned by the caller; null when memory is exhausted.
template <typename Record>
ZeroedPtr<Record> MakeZeroed() {
  static_assert(std::is_trivially_destructible_v<Record>);
  void* const memory = std::calloc(1, sizeof(Record));
  return ZeroedPtr<Record>(memory == nullptr ? nullptr : ConstructOverZeros<Record>(memory));
}

// A record that belongs to its holder. Memory exhaustion throws std::bad_alloc.
template <typename Record>
class Zeroed {
 public:
  Zeroed() : m_record(MakeZeroed<Record>()) {
    if (m_record == nullptr) throw std::bad_alloc();
  }

  Record& operator*() { return *m_record; }
  const Record& operator*() const { return *m_record; }
  Record* operator->() { return m_record.get(); }
  const Record* operator->() const { return m_record.get(); }

 private:
  ZeroedPtr<Record> m_record;
};

// Copies every byte of a record, padding included.
template <typename Record>
void CopyBytes(Record& to, const Record& from) {
  static_assert(std::is_trivially_copyable_v<Record>);
  std::memcpy(static_cast<void*>(&to), &from, sizeof(Record));
}

// Copies a record's bytes onto a fresh one, all but the bank entries from ulCount on. Of two
// records that come from MakeZeroed and have never had more entries than now, that is every byte.
void CopyOntoFresh(STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING& fresh,
                   const STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING& from);

#endif  // ZVISP_PLUGIN_ZEROED_H_
