// SPDX-License-Identifier: MIT
//
// What looked_up.dylib has noted, under the symbol "looked_up".
#ifndef ZVISP_TESTS_SUPPORT_LOOKED_UP_PLUGIN_H_
#define ZVISP_TESTS_SUPPORT_LOOKED_UP_PLUGIN_H_

struct LookedUp {
  int count;
  const char* names[64];
};

#endif  // ZVISP_TESTS_SUPPORT_LOOKED_UP_PLUGIN_H_
