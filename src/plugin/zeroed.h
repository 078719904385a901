// SPDX-License-Identifier: MIT
//
// Construction of wire-format records over zeroed memory, so that no stale byte (padding and the
// fields that the constructors leave alone) ever reaches a plug-in, and the same command always
// gives the same bytes.
#ifndef ZVISP_PLUGIN_ZEROED_H_
#define ZVISP_PLUGIN_ZEROED_H_

#ifdef ZVISP_PLAIN_RECORDS
#error "plugin/zeroed.h constructs records, and zvisp_plugin.h left their constructors out"
#endif

#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>
#include <type_traits>
#include <utility>

namespace zvisp {

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

// A record that belongs to its holder. Memory exhaustion throws std::bad_alloc.
template <typename Record>
class Zeroed {
 public:
  Zeroed() : Zeroed(MakeZeroed<Record>()) {}
  // Takes over a record that was just made; null counts as memory exhaustion.
  explicit Zeroed(ZeroedPtr<Record> record) : m_record(std::move(record)) {
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

}  // namespace zvisp

#endif  // ZVISP_PLUGIN_ZEROED_H_
