// SPDX-License-Identifier: MIT
#include "plugin/zeroed.h"

#include <cstring>

#include "plugin/command_setting.h"
#include "plugin/digital_sign_args.h"
#include "support/record_offsets.h"

#include <gtest/gtest.h>

using namespace zvisp;

namespace {

using Setting = STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING;
using SignArgs = STRUCT_C_STYLE_CP_DIGITAL_SIGN_ARGS;

ZeroedPtr<Setting> SettingFullOf(int byte, std::uint32_t entries) {
  auto setting = MakeZeroed<Setting>();
  std::memset(static_cast<void*>(setting.get()), byte, setting_at::kRecordBytes);
  setting->stMapFw.ulCount = entries;
  return setting;
}

TEST(Zeroed, CopyBytesCopiesEveryByte) {
  const auto from = SettingFullOf(0x5A, 0x5A5A5A5A);
  const auto to = MakeZeroed<Setting>();
  CopyBytes(*to, *from);
  EXPECT_EQ(std::memcmp(to.get(), from.get(), setting_at::kRecordBytes), 0);
}

TEST(Zeroed, AHolderConstructsASignatureRecordWithoutAStaleByte) {
  const Zeroed<SignArgs> args;
  const auto* const bytes = reinterpret_cast<const unsigned char*>(&*args);
  for (std::size_t at = 0; at < sign_at::kRecordBytes; ++at)
    ASSERT_EQ(bytes[at], 0) << at;
}

TEST(Zeroed, AHolderTakesOverARecordAndRefusesNone) {
  ZeroedPtr<SignArgs> made = MakeZeroed<SignArgs>();
  const SignArgs* const address = made.get();
  const Zeroed<SignArgs> holder(std::move(made));
  EXPECT_EQ(&*holder, address);
  EXPECT_THROW(Zeroed<SignArgs>(ZeroedPtr<SignArgs>()), std::bad_alloc);
}

}  // namespace
