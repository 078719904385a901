// SPDX-License-Identifier: MIT
#include "plugin/digital_sign_args.h"

#include <cstring>

// Out of line for the same reason as the constructors of the command-setting record.
STRUCT_C_STYLE_CP_DIGITAL_SIGN_ARGS::STRUCT_C_STYLE_CP_DIGITAL_SIGN_ARGS() {
  std::memset(static_cast<void*>(this), 0, sizeof *this);
}
