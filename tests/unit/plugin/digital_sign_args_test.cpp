// SPDX-License-Identifier: MIT
#include "plugin/digital_sign_args.h"

#include <algorithm>
#include <cstring>
#include <new>

#include "support/record_offsets.h"

#include <gtest/gtest.h>

namespace {

TEST(DigitalSignArgs, ConstructionZeroesEveryByteOfTheMemory) {
  using Args = STRUCT_C_STYLE_CP_DIGITAL_SIGN_ARGS;
  alignas(Args) unsigned char memory[sign_at::kRecordBytes];
  std::memset(memory, 0xEE, sizeof memory);
  ::new (static_cast<void*>(memory)) Args;
  EXPECT_EQ(std::count(std::begin(memory), std::end(memory), 0), sign_at::kRecordBytes);
}

}  // namespace
