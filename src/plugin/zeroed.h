// SPDX-License-Identifier: MIT
//
// Construction of wire-format records over zeroed memory, so that no stale byte (padding and the
// fields that the constructors leave alone) ever reaches a plug-in, and the same command always
// gives the same bytes.
#ifndef ZVISP_PLUGIN_ZEROED_H_
#define ZVISP_PLUGIN_ZEROED_H_

#include <cstddef>
#include <cstdlib>
#include <memory>
#include <new>
#include <type_traits>

// Zeroes memory, and only reads what is zero already: the system hands out fresh pages as zeros
// and gives them real memory at the first write, which for two records of 67 pages each takes
// longer than all the rest of a run's start.
void ZeroBytes(void* memory, std::size_t bytes);

// Copies memory, block by block, and only reads the blocks that are the same already.
void CopyDifferingBytes(void* to, const void* from, std::size_t bytes);

// Copies onto memory that is all zero, and does not even read it where the copy is zero too.
void CopyBytesOntoZeros(void* to, const void* from, std::size_t bytes);

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

// A byte copy of a record on the heap, owned by the caller; null when memory is exhausted.
template <typename Record>
ZeroedPtr<Record> MakeCopy(const Record& from) {
  static_assert(std::is_trivially_copyable_v<Record>);
  void* const memory = std::calloc(1, sizeof(Record));
  if (memory != nullptr) CopyBytesOntoZeros(memory, &from, sizeof(Record));
  return ZeroedPtr<Record>(static_cast<Record*>(memory));
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

// Copies every byte of a record, padding included. Blocks that are the same already are only
// read, for the reason given at ZeroBytes.
template <typename Record>
void CopyBytes(Record& to, const Record& from) {
  static_assert(std::is_trivially_copyable_v<Record>);
  CopyDifferingBytes(&to, &from, sizeof(Record));
}

#endif  // ZVISP_PLUGIN_ZEROED_H_
