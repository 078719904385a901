// SPDX-License-Identifier: MIT
//
// The readers of byte lists: the user flag, the merge command and the I2C command.
#include <cstring>
#include <string>
#include <vector>

#include "cmdline/isp_args_parse.h"
#include "support/printed.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using testing::Each;
using testing::ElementsAre;
using Parser = CCpIspArgsParse;

// The item so many times: "1,1,1".
std::string List(std::size_t count, const std::string& delimiter, const std::string& item = "1") {
  std::string list;
  for (std::size_t i = 0; i < count; ++i) {
    list.append(i == 0 ? "" : delimiter).append(item);
  }
  return list;
}

// A sub-record between guards that nothing may touch.
template <typename Record>
struct Guarded {
  unsigned char before[64];
  Record record;
  unsigned char after[4096];

  Guarded() {
    std::memset(before, 0x5A, sizeof before);
    std::memset(after, 0x5A, sizeof after);
  }
  ~Guarded() {
    EXPECT_THAT(before, Each(0x5A));
    EXPECT_THAT(after, Each(0x5A));
  }
};

TEST(IspArgsBytes, AUserFlagWithoutAnAddressIsNotRead) {
  STRUCT_FLAG_SETTING flag;
  int result = -1;
  EXPECT_EQ(Printed([&] { result = Parser::GetUserFlag("", "junk", flag); }), "");
  EXPECT_EQ(result, 1);
  EXPECT_EQ(flag.ulFlagLength, 0u);
  EXPECT_THAT(flag.ucFlagData, Each(0xFF));
}

TEST(IspArgsBytes, AUserFlagIsStoredWithItsAddressAndTheRestIsFF) {
  STRUCT_FLAG_SETTING flag;
  std::memset(flag.ucFlagData, 0x11, sizeof flag.ucFlagData);
  flag.ulFlagLength = 9;
  EXPECT_EQ(Parser::GetUserFlag("0x80000000", "0,255,,0x10, 7,", flag), 1);
  EXPECT_EQ(flag.ulFlagAddr, 0x80000000u);
  EXPECT_EQ(flag.ulFlagLength, 4u);
  EXPECT_EQ(std::vector<int>(flag.ucFlagData, flag.ucFlagData + 6),
            std::vector<int>({0, 255, 16, 7, 0xFF, 0xFF}));
  EXPECT_EQ(flag.ucFlagData[1219], 0xFF);
}

TEST(IspArgsBytes, TheLengthOfAUserFlagIsItsLow8BitsAndNoByteIsWrittenAfterThe1220th) {
  // clang-format off
  constexpr struct {
    std::size_t count;
    std::uint32_t length;
    int last;  // byte 1219
  } kCases[] = {
      {0,    0,    0xFF},
      {1,    1,    0xFF},
      {255,  255,  0xFF},
      {256,  0,    0xFF},
      {257,  1,    0xFF},
      {1219, 0xC3, 0xFF},
      {1220, 0xC4, 1},
      {1221, 0xC5, 1},
      {3000, 0xB8, 1},
  };
  // clang-format on
  for (const auto& test : kCases) {
    Guarded<STRUCT_FLAG_SETTING> flag;
    int result = -1;
    EXPECT_EQ(
        Printed([&] { result = Parser::GetUserFlag("0", List(test.count, ","), flag.record); }),
        "");
    EXPECT_EQ(result, 1);
    EXPECT_EQ(flag.record.ulFlagLength, test.length) << test.count;
    EXPECT_EQ(int{flag.record.ucFlagData[1219]}, test.last) << test.count;
    EXPECT_EQ(flag.record.ulFlagAddr, 0u) << test.count;
    EXPECT_EQ(flag.record.ulReserved, 0u) << test.count;
  }
}

TEST(IspArgsBytes, AUserFlagThatIsNotBytesIsRefused) {
  const std::string far_off = List(1220, ",") + ",256";
  const struct {
    std::string address;
    std::string data;
    std::string printed;
  } cases[] = {
      {"x", "1", "Parameter illegal! --flagaddr x \n"},
      {"1 ", "junk", "Parameter illegal! --flagaddr 1  \n"},
      {"0", "1,x", "Parameter illegal! --flagdata 1,x \n"},
      {"0", "256", "Parameter illegal! --flagdata 256 \n"},
      {"0", "-1", "Parameter illegal! --flagdata -1 \n"},
      {"0", "1 ,2", "Parameter illegal! --flagdata 1 ,2 \n"},
      {"0", far_off, "Parameter illegal! --flagdata " + far_off + " \n"},
  };
  for (const auto& test : cases) {
    Guarded<STRUCT_FLAG_SETTING> flag;
    int result = -1;
    EXPECT_EQ(Printed([&] { result = Parser::GetUserFlag(test.address, test.data, flag.record); }),
              test.printed);
    EXPECT_EQ(result, 0) << test.data;
  }
}

TEST(IspArgsBytes, AMergeCommandIsStoredAndTheRestCleared) {
  STRUCT_MERGE_FW_INFO_SETTING merge;
  std::memset(merge.ucData, 0x11, sizeof merge.ucData);
  merge.ulLength = 9;
  EXPECT_EQ(Parser::GetMergeFwInfoCmd("1.0xFF..010.", merge), 1);
  EXPECT_EQ(merge.ulLength, 3u);
  EXPECT_THAT(merge.ucData, ElementsAre(1, 255, 8, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0));
}

TEST(IspArgsBytes, NoMergeCommandLeavesTheSettingAlone) {
  STRUCT_MERGE_FW_INFO_SETTING merge;
  merge.ulLength = 9;
  EXPECT_EQ(Parser::GetMergeFwInfoCmd("", merge), 1);
  EXPECT_EQ(merge.ulLength, 9u);
}

TEST(IspArgsBytes, AMergeCommandHoldsSixteenBytes) {
  // clang-format off
  const struct {
    std::size_t count;
    const char* hex;  // null: it fits
  } cases[] = {
      {15,  nullptr},
      {16,  nullptr},
      {17,  "0x11"},
      {20,  "0x14"},
      {256, "0x100"},
      {272, "0x110"},
  };
  // clang-format on
  for (const auto& test : cases) {
    const std::string text = List(test.count, ".");
    const std::string refusal = test.hex == nullptr
                                    ? ""
                                    : "Input Flag Length: " + std::string(test.hex) +
                                          " ,Max Flag Count: 0x10"
                                          "Parameter illegal! --MergeFw --write " +
                                          text + " \n";
    Guarded<STRUCT_MERGE_FW_INFO_SETTING> merge;
    int result = -1;
    EXPECT_EQ(Printed([&] { result = Parser::GetMergeFwInfoCmd(text, merge.record); }), refusal);
    EXPECT_EQ(result, test.hex == nullptr ? 1 : 0) << test.count;
    EXPECT_EQ(merge.record.ulLength, test.hex == nullptr ? test.count : 0) << test.count;
  }
}

TEST(IspArgsBytes, AMergeCommandThatIsNotBytesIsRefused) {
  for (const std::string text : {"1,2", "x", "1.256", "-1", "1.2 "}) {
    STRUCT_MERGE_FW_INFO_SETTING merge;
    int result = -1;
    EXPECT_EQ(Printed([&] { result = Parser::GetMergeFwInfoCmd(text, merge); }),
              "Parameter illegal! --MergeFw --write " + text + " \n");
    EXPECT_EQ(result, 0) << text;
  }
}

TEST(IspArgsBytes, AnI2cCommandHasThreeBytesOrMore) {
  // clang-format off
  constexpr struct {
    const char* text;
    int result;
  } kCases[] = {
      {"",        0},
      {"1",       0},
      {"1,2",     0},
      {"1,2,",    0},
      {"1,2,3",   1},
      {"1,,2,3",  1},
      {"1,2,256", 0},
      {"1,2,-1",  0},
      {"1,2,x",   0},
      {"1,2 ,3",  0},
      {"1, 2, 3", 1},
      {"1.2.3",   0},
  };
  // clang-format on
  for (const auto& test : kCases) {
    std::vector<std::uint8_t> bytes;
    int result = -1;
    EXPECT_EQ(Printed([&] { result = Parser::GetI2CCmdFromString(test.text, bytes); }), "");
    EXPECT_EQ(result, test.result) << test.text;
    if (result == 0) continue;
    EXPECT_THAT(bytes, ElementsAre(1, 2, 3)) << test.text;
  }
}

STRUCT_CP_ISP_CMD_ARGS I2cArgs(const std::string& data, int is_ddcci) {
  STRUCT_CP_ISP_CMD_ARGS args;
  args.strWriteData = data;
  args.bDdcciCmd = is_ddcci;
  return args;
}

TEST(IspArgsBytes, ARawI2cCommandIsSlaveSubAddressAndData) {
  STRUCT_I2C_WRITE_ACTION_TYPE_SETTING i2c;
  EXPECT_EQ(Parser::GetI2CWriteActionTypeSetting(I2cArgs("0x94,0x55,7,0", 0), i2c), 1);
  EXPECT_EQ(i2c.ucSlave, 0x94);
  EXPECT_EQ(i2c.ucSubAddr, 0x55);
  EXPECT_EQ(i2c.ucDataLen, 2);
  EXPECT_EQ(i2c.ucData[0], 7);
  EXPECT_EQ(i2c.ucData[1], 0);
  EXPECT_EQ(i2c.ucData[2], 0xFF);
  EXPECT_EQ(i2c.bDdcciCmd, 0u);
}

TEST(IspArgsBytes, ARawI2cCommandHasUpTo258Bytes) {
  // clang-format off
  constexpr struct {
    std::size_t count;
    int result;
    int length;
  } kCases[] = {
      {2,    0, 0},
      {3,    1, 1},
      {257,  1, 255},
      {258,  1, 0},
      {259,  0, 0},
      {1000, 0, 0},
  };
  // clang-format on
  for (const auto& test : kCases) {
    Guarded<STRUCT_I2C_WRITE_ACTION_TYPE_SETTING> i2c;
    EXPECT_EQ(Parser::GetI2CWriteActionTypeSetting(I2cArgs(List(test.count, ","), 0), i2c.record),
              test.result)
        << test.count;
    EXPECT_EQ(int{i2c.record.ucData[255]}, test.count == 258 ? 1 : 0xFF) << test.count;
    EXPECT_EQ(i2c.record.bDdcciCmd, 0u) << test.count;
    if (test.result == 0) continue;
    EXPECT_EQ(int{i2c.record.ucDataLen}, test.length) << test.count;
  }
}

TEST(IspArgsBytes, ADdcciCommandHasItsLengthInTheThirdByte) {
  const struct {
    std::string text;
    int result;
    int length;
  } cases[] = {
      {"0x6E,0x51,0x80", 1, 0},
      {"0x6E,0x51,0", 1, 0},
      {"0x6E,0x51,0x82,1,2", 1, 2},
      {"0x6E,0x51,2,1,2", 1, 2},
      {"0x6E,0x51,0x82,1", 0, 0},
      {"0x6E,0x51,0x82,1,2,3", 0, 0},
      {"0x6E,0x51,0x80,1", 0, 0},
      {"0x6E,0x51", 0, 0},
      {"0x6E,0x51,0xFF," + List(127, ","), 1, 127},
      {"0x6E,0x51,0xFF," + List(128, ","), 0, 0},
      {"0x6E,0x51,0xFF," + List(255, ","), 0, 0},
  };
  for (const auto& test : cases) {
    STRUCT_I2C_WRITE_ACTION_TYPE_SETTING i2c;
    EXPECT_EQ(Parser::GetI2CWriteActionTypeSetting(I2cArgs(test.text, 1), i2c), test.result)
        << test.text;
    if (test.result == 0) continue;
    EXPECT_EQ(int{i2c.ucDataLen}, test.length) << test.text;
    EXPECT_EQ(i2c.bDdcciCmd, 1u) << test.text;
    EXPECT_EQ(int{i2c.ucData[0]}, test.length == 0 ? 0xFF : 1) << test.text;
    EXPECT_EQ(int{i2c.ucData[test.length]}, 0xFF) << test.text;
  }
}

}  // namespace
