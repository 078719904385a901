// SPDX-License-Identifier: MIT
//
// Prints the directory of the image that holds its own main, which some loaders name as the program
// was called.
#include <cstdio>

#include "base/path.h"

int main() {
  static char inside_this_image;
  std::fputs(GetCurrentProcessDir(&inside_this_image).GetUtf8StringBuffer(), stdout);
}
