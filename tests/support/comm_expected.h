// SPDX-License-Identifier: MIT
//
// The communication interface as libraries and plug-ins built elsewhere know it, written out in
// comm_expected.cpp a second time: nothing there comes from the list of the product.
#ifndef ZVISP_SUPPORT_COMM_EXPECTED_H_
#define ZVISP_SUPPORT_COMM_EXPECTED_H_

#include <array>

#include "plugin/comm_plugin.h"

namespace comm_expected {

// Sizes in bytes of the words that an operation's arguments travel in; ends with a 0.
using WordSizes = std::array<int, 8>;

struct Operation {
  int slot;      // place in the virtual table, counted from 1
  int unloaded;  // answer without a library, 0 for void
  const char* name;
  long long (*call)(CZvComm&);  // by name, with zeros; the result widened, 0 for void
  WordSizes arguments;
  int result;  // size in bytes, 0 for void
};

extern const std::array<Operation, 148> kOperations;     // from slot 5 on
extern const std::array<const char*, 115> kLookUpOrder;  // the exports

// The export that an operation calls; null when it has none.
const char* ExportOf(const Operation& operation);

}  // namespace comm_expected

#endif  // ZVISP_SUPPORT_COMM_EXPECTED_H_
