// SPDX-License-Identifier: MIT
//
// Construction of wire-format records over zeroed memory, so that no stale byte (padding and the
// fields that the constructors leave alone) ever reaches a plug-in, and the same command always
// gives the same bytes.
#ifndef ZVISP_PLUGIN_ZEROED_H_
#define ZVISP_PLUGIN_ZEROED_H_

#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>
#include <type_traits>

// A record held by value. Copying copies every byte, padding included.
template <typename Record>
class Zeroed {
  static_assert(std::is_standard_layout_v<Record> && std::is_trivially_copyable_v<Record>);

 public:
  Zeroed() { ::new (static_cast<void*>(m_bytes)) Record; }

  Record& operator*() { return *std::launder(reinterpret_cast<Record*>(m_bytes)); }
  const Record& operator*() const {
    return *std::launder(reinterpret_cast<const Record*>(m_bytes));
  }
  Record* operator->() { return &**this; }
  const Record* operator->() const { return &**this; }

 private:
  alignas(Record) unsigned char m_bytes[sizeof(Record)] = {};
};

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
  return ZeroedPtr<Record>(memory == nullptr ? nullptr : ::new (memory) Record);
}

// Copies every byte of a record, padding included.
template <typename Record>
void CopyBytes(Record& to, const Record& from) {
  static_assert(std::is_trivially_copyable_v<Record>);
  std::memcpy(static_cast<void*>(&to), &from, sizeof(Record));
}

#endif  // ZVISP_PLUGIN_ZEROED_H_
