// SPDX-License-Identifier: MIT
#include "support/comm_recorder.h"

typedef CommWord (*Entry)(void*, CommWord, CommWord, CommWord, CommWord, CommWord, CommWord,
                          CommWord);

// The Itanium C++ ABI: an object begins with the address of its table of entries.
CommWord CallCommSlot(void* object, int slot, const CommWord* arguments) {
  const Entry* const table = *(const Entry**)object;
  return table[slot - 1](object, arguments[0], arguments[1], arguments[2], arguments[3],
                         arguments[4], arguments[5], arguments[6]);
}
