// SPDX-License-Identifier: MIT
//
// The calls of a plug-in as callable members of its proxy, and the tables that bind them.
#ifndef ZVISP_PLUGIN_EXPORT_H_
#define ZVISP_PLUGIN_EXPORT_H_

#include <dlfcn.h>

#include <cstddef>
#include <type_traits>
#include <vector>

namespace zvisp {

// What binding needs to know of an export: its address in the loaded library, null when unbound,
// and the symbol that it was found by.
class ExportSlot {
 public:
  bool IsBound() const { return m_address != nullptr; }
  const char* Symbol() const { return m_symbol; }
  void Bind(void* address, const char* symbol) {
    m_address = address;
    m_symbol = symbol;
  }

 protected:
  void* m_address = nullptr;
  const char* m_symbol = "";
};

// An export with its C signature. Calling it calls the plug-in; unbound it answers kUnbound, or
// does nothing when the export gives no result.
template <typename Signature, int kUnbound = 0>
class Export;

template <typename Result, typename... Arguments, int kUnbound>
class Export<Result(Arguments...), kUnbound> : public ExportSlot {
 public:
  Result operator()(Arguments... arguments) const {
    if (IsBound()) return reinterpret_cast<Result (*)(Arguments...)>(m_address)(arguments...);
    if constexpr (!std::is_void_v<Result>) {
      return static_cast<Result>(kUnbound);
    }
  }
};

// kNeverLookedUp: no library gets it bound; it is in the table for what concerns every call.
enum class ExportNeed { kRequired, kOptional, kNeverLookedUp };

// One row of a proxy's table: the symbol, whether the library must have it, and its member.
template <typename Proxy>
struct ExportRow {
  const char* symbol;
  ExportNeed need;
  ExportSlot& (*slot)(Proxy&);
};

// A row for those who only ask what a library has to export.
struct ExportName {
  const char* symbol;
  ExportNeed need;
};

// The symbols of a table, in its order.
template <typename Proxy, std::size_t kRows>
std::vector<ExportName> NamesOfExports(const ExportRow<Proxy> (&table)[kRows]) {
  std::vector<ExportName> names;
  names.reserve(kRows);
  for (const ExportRow<Proxy>& row : table)
    names.push_back({row.symbol, row.need});
  return names;
}

// Names a member in a row: `Slot<&CCpIsp::IspFlash>`.
template <auto kMember, typename Proxy>
ExportSlot& Slot(Proxy& proxy) {
  return proxy.*kMember;
}

// Sets every member of the table to unbound.
template <typename Proxy, std::size_t kRows>
void UnbindExports(Proxy& proxy, const ExportRow<Proxy> (&table)[kRows]) {
  for (const ExportRow<Proxy>& row : table)
    row.slot(proxy).Bind(nullptr, row.symbol);
}

// Looks the table's symbols up in row order. Stops at the first required one that the library
// lacks and returns false; dlerror() then names it.
template <typename Proxy, std::size_t kRows>
bool BindExports(void* library, Proxy& proxy, const ExportRow<Proxy> (&table)[kRows]) {
  for (const ExportRow<Proxy>& row : table) {
    if (row.need == ExportNeed::kNeverLookedUp) continue;
    void* const address = dlsym(library, row.symbol);
    if (address == nullptr && row.need == ExportNeed::kRequired) return false;
    row.slot(proxy).Bind(address, row.symbol);
  }
  return true;
}

}  // namespace zvisp

#endif  // ZVISP_PLUGIN_EXPORT_H_
