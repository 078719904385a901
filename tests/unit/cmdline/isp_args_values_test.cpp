// SPDX-License-Identifier: MIT
//
// The readers of numbers and names. The readers of byte lists are in isp_args_bytes_test.cpp.
#include <cwchar>
#include <iterator>
#include <string>

#include "cmdline/isp_args_parse.h"
#include "support/printed.h"

#include <gtest/gtest.h>

namespace {

using Parser = CCpIspArgsParse;

constexpr std::uint32_t kUntouched = 77;

TEST(IspArgsValues, ASingleBitIsUnique) {
  // clang-format off
  constexpr struct {
    std::uint32_t bits;
    int unique;
  } kCases[] = {
      {0,          0},
      {1,          1},
      {0x10000,    1},
      {0x80000000, 1},
      {3,          0},
      {0x80000001, 0},
      {7,          0},
      {0xFFFFFFFF, 0},
  };
  // clang-format on
  for (const auto& test : kCases) {
    EXPECT_EQ(Parser::JudgeUniqueAttribute(test.bits), test.unique) << test.bits;
  }
}

TEST(IspArgsValues, AnActionBitGivesTheActionsNumber) {
  // clang-format off
  constexpr struct {
    std::uint32_t bits;
    std::uint32_t action;
  } kCases[] = {
      {0x1,       1},
      {0x2,       2},
      {0x4,       3},
      {0x8,       4},
      {0x10,      5},
      {0x20,      6},
      {0x40,      7},
      {0x80,      8},
      {0x100,     9},
      {0x200,     10},
      {0x400,     11},
      {0x800,     12},
      {0x1000,    13},
      {0x2000,    14},
      {0x4000,    15},
      {0x8000,    16},
      {0x20000,   18},
      {0x40000,   19},
      {0x80000,   20},
      {0x100000,  21},
      {0x200000,  22},
      {0x400000,  23},
      {0x800000,  24},
      {0x1000000, 25},
      {0x10000,   0},  // --factoryisp
      {0,         0},
      {3,         0},  // two bits
      {0x2000000, 0},  // a bit without an option
  };
  // clang-format on
  for (const auto& test : kCases) {
    std::uint32_t action = kUntouched;
    Parser::GetActionType(test.bits, action);
    EXPECT_EQ(action, test.action) << std::hex << test.bits;
  }
}

TEST(IspArgsValues, ASignatureBitGivesTheTypesNumber) {
  constexpr std::uint32_t kTypes[] = {0, 1, 2, 0, 0};
  for (std::uint32_t bits = 0; bits < std::size(kTypes); ++bits) {
    std::uint32_t type = kUntouched;
    Parser::GetDigitalSignatureType(bits, type);
    EXPECT_EQ(type, kTypes[bits]) << bits;
  }
}

TEST(IspArgsValues, OnlyTheWriteBitAloneGivesTheMergeTypeWrite) {
  constexpr std::uint32_t kTypes[] = {0, 0, 1, 0, 0};
  for (std::uint32_t bits = 0; bits < std::size(kTypes); ++bits) {
    std::uint32_t type = kUntouched;
    Parser::GetMergeFwInfoType(bits, type);
    EXPECT_EQ(type, kTypes[bits]) << bits;
  }
}

TEST(IspArgsValues, AnInformationBitGivesTheVersionLocation) {
  // clang-format off
  constexpr struct {
    std::uint32_t bits;
    std::uint32_t location;
  } kCases[] = {
      {1,     1},
      {2,     2},
      {4,     3},
      {8,     4},
      {0x10,  5},
      {0x20,  6},
      {0x40,  7},
      {0x100, 0},
      {3,     0},
      {0,     0},
  };
  // clang-format on
  for (const auto& test : kCases) {
    std::uint32_t location = kUntouched;
    std::uint32_t version = kUntouched;
    EXPECT_EQ(Parser::GetVersionType(test.bits, "junk", location, version), 1) << test.bits;
    EXPECT_EQ(location, test.location) << test.bits;
    EXPECT_EQ(version, kUntouched) << test.bits;
  }
}

TEST(IspArgsValues, AUserDefinedVersionIsOneToThree) {
  struct Case {
    std::string text;
    int result;
    std::uint32_t version;
    std::string printed;
  };
  const Case cases[] = {
      {"1", 1, 1, ""},
      {"3", 1, 3, ""},
      {"0x2", 1, 2, ""},
      {"x", 0, kUntouched, "User defined version mode illegal, mode is: x\n"},
      {"2 ", 0, kUntouched, "User defined version mode illegal, mode is: 2 \n"},
      {"", 0, kUntouched, "Get user defined version mode fail, mode is: \n"},
      {"0", 0, kUntouched, "Get user defined version mode fail, mode is: 0\n"},
      {"4", 0, kUntouched, "Get user defined version mode fail, mode is: 4\n"},
      {"-1", 0, kUntouched, "Get user defined version mode fail, mode is: -1\n"},
  };
  for (const Case& test : cases) {
    std::uint32_t location = 0;
    std::uint32_t version = kUntouched;
    int result = -1;
    EXPECT_EQ(Printed([&] { result = Parser::GetVersionType(0x80, test.text, location, version); }),
              test.printed);
    EXPECT_EQ(result, test.result) << test.text;
    EXPECT_EQ(location, 8u) << test.text;
    EXPECT_EQ(version, test.version) << test.text;
  }
}

TEST(IspArgsValues, ACommunicationNumberIsOneToSixteen) {
  struct Case {
    std::string text;
    int result;
    std::uint32_t comm;
    std::string printed;
  };
  const Case cases[] = {
      {"", 1, 0, ""},
      {"1", 1, 1, ""},
      {"16", 1, 16, ""},
      {"0x10", 1, 16, ""},
      {"010", 1, 8, ""},
      {" 7", 1, 7, ""},
      {"7 ", 0, 0, "Parameter illegal! --comm 7  \n"},
      {"abc", 0, 0, "Parameter illegal! --comm abc \n"},
      {"08", 0, 0, "Parameter illegal! --comm 08 \n"},
      {"0", 0, 0, "Parameter out of range! --comm 0\n"},
      {"-1", 0, 0, "Parameter out of range! --comm -1\n"},
      {"17", 0, 0, "Parameter out of range! --comm 17\n"},
      {"%s%n", 0, 0, "Parameter illegal! --comm %s%n \n"},
  };
  for (const Case& test : cases) {
    std::uint32_t comm = kUntouched;
    int result = -1;
    EXPECT_EQ(Printed([&] { result = Parser::GetCommID(test.text, comm); }), test.printed);
    EXPECT_EQ(result, test.result) << test.text;
    EXPECT_EQ(comm, test.comm) << test.text;
  }
}

TEST(IspArgsValues, ASlaveAddressIsOneTo254AndNoneOrZeroIsAutomatic) {
  struct Case {
    std::string text;
    int result;
    std::int32_t is_auto;
    int slave;
    std::string printed;
  };
  const Case cases[] = {
      {"", 1, 1, 0, ""},
      {"0", 1, 1, 0, ""},
      {"0x0", 1, 1, 0, ""},
      {"1", 1, 0, 1, ""},
      {"0x94", 1, 0, 0x94, ""},
      {"254", 1, 0, 254, ""},
      {"255", 0, 0, 0, "Parameter out of range! --slave 255 \n"},
      {"-1", 0, 0, 0, "Parameter out of range! --slave -1 \n"},
      {"256", 0, 0, 0, "Parameter out of range! --slave 256 \n"},
      {"0x94h", 0, 1, 0, "Parameter illegal! --slave 0x94h \n"},
  };
  for (const Case& test : cases) {
    std::int32_t is_auto = -1;
    std::uint8_t slave = 0x94;
    int result = -1;
    EXPECT_EQ(Printed([&] { result = Parser::GetSlaveAddress(test.text, is_auto, slave); }),
              test.printed);
    EXPECT_EQ(result, test.result) << test.text;
    EXPECT_EQ(is_auto, test.is_auto) << test.text;
    EXPECT_EQ(int{slave}, test.slave) << test.text;
  }
}

struct ModeCase {
  std::string text;
  int result;
  std::uint32_t mode;
  std::string printed;
};

// Both readers of --dsmode agree on these.
const ModeCase kModeCases[] = {
    {"", 1, kUntouched, ""},
    {"1", 1, 1, ""},
    {"2", 1, 2, ""},
    {"0x2", 1, 2, ""},
    {"0", 0, kUntouched, "Parameter out of range! --dsmode 0 \n"},
    {"5", 0, kUntouched, "Parameter out of range! --dsmode 5 \n"},
    {"-1", 0, kUntouched, "Parameter out of range! --dsmode -1 \n"},
    {"two", 0, kUntouched, "Parameter illegal! --dsmode two \n"},
};

void ExpectMode(int (*read)(const std::string&, std::uint32_t&), const ModeCase& test) {
  std::uint32_t mode = kUntouched;
  int result = -1;
  EXPECT_EQ(Printed([&] { result = read(test.text, mode); }), test.printed);
  EXPECT_EQ(result, test.result) << test.text;
  EXPECT_EQ(mode, test.mode) << test.text;
}

TEST(IspArgsValues, ASoftwareSignatureModeIsOneToFour) {
  for (const ModeCase& test : kModeCases) {
    ExpectMode(Parser::GetDigitalSignatureSwMode, test);
  }
  ExpectMode(Parser::GetDigitalSignatureSwMode, {"3", 1, 3, ""});
  ExpectMode(Parser::GetDigitalSignatureSwMode, {"4", 1, 4, ""});
}

TEST(IspArgsValues, AHardwareSignatureModeIsOneOrTwo) {
  for (const ModeCase& test : kModeCases) {
    ExpectMode(Parser::GetDigitalSignatureHwMode, test);
  }
  ExpectMode(Parser::GetDigitalSignatureHwMode,
             {"3", 0, kUntouched, "Parameter out of range! --dsmode 3 \n"});
}

// The texts of --veraddr, --totalverlen, --majorverlen and --subverlen.
struct PlaceCase {
  const char* address;
  const char* total;
  const char* major;
  const char* sub;
};

STRUCT_CP_ISP_CMD_ARGS Place(const PlaceCase& test) {
  STRUCT_CP_ISP_CMD_ARGS args;
  args.strVerAddr = test.address;
  args.strTotalVerLen = test.total;
  args.strMajorVerLen = test.major;
  args.strSubVerLen = test.sub;
  return args;
}

TEST(IspArgsValues, AVersionPlaceInFlashWithinTheLimitsIsAccepted) {
  // clang-format off
  constexpr PlaceCase kLegal[] = {
      {"0x1000",   "8",   "4",   "4"},
      {"0x1000",   "8",   "4",   ""},
      {"0",        "1",   "1",   "0"},
      {"0",        "256", "256", "0"},
      {"0",        "256", "1",   "255"},
      {"0xFFFEFF", "256", "1",   ""},
      {"0xFFFFFE", "1",   "1",   ""},
  };
  // clang-format on
  for (const PlaceCase& test : kLegal) {
    STRUCT_READ_VERSION_FROM_FLASH_SETTING setting;
    int result = -1;
    EXPECT_EQ(
        Printed([&] { result = Parser::GetReadVersionFromFlashSetting(Place(test), setting); }),
        "");
    EXPECT_EQ(result, 1) << test.address << " " << test.total << " " << test.major;
  }
}

TEST(IspArgsValues, AVersionPlaceInFlashOutsideALimitIsRefusedSilently) {
  // clang-format off
  constexpr PlaceCase kIllegal[] = {
      {"",           "8",   "4",          "4"},
      {"0",          "",    "4",          "4"},
      {"0",          "8",   "",           "4"},
      {"",           "",    "",           "4"},
      {"x",          "8",   "4",          "4"},
      {"0",          "x",   "4",          "4"},
      {"0",          "8",   "x",          "4"},
      {"0",          "8",   "4",          "x"},
      {"0",          "257", "1",          ""},
      {"0",          "8",   "0",          "8"},
      {"0",          "8",   "5",          "4"},
      {"0",          "8",   "9",          ""},
      {"0xFFFF00",   "256", "1",          ""},
      {"0xFFFFFF",   "1",   "1",          ""},
      {"0",          "-1",  "1",          ""},
      {"-1",         "1",   "1",          ""},
      {"0",          "8",   "0xFFFFFFFF", "1"},
      {"0xFFFFFFFF", "8",   "1",          ""},
      {"0",          "8",   "1",          "-1"},
  };
  // clang-format on
  for (const PlaceCase& test : kIllegal) {
    STRUCT_READ_VERSION_FROM_FLASH_SETTING setting;
    int result = -1;
    EXPECT_EQ(
        Printed([&] { result = Parser::GetReadVersionFromFlashSetting(Place(test), setting); }),
        "");
    EXPECT_EQ(result, 0) << test.address << " " << test.total << " " << test.major << " "
                         << test.sub;
  }
}

TEST(IspArgsValues, AVersionPlaceInFlashIsStored) {
  STRUCT_READ_VERSION_FROM_FLASH_SETTING setting;
  setting.ulSubVerLen = kUntouched;
  EXPECT_EQ(Parser::GetReadVersionFromFlashSetting(Place({"0x1234", "010", "3", "5"}), setting), 1);
  EXPECT_EQ(setting.ulVerAddr, 0x1234u);
  EXPECT_EQ(setting.ulTotalVerLen, 8u);
  EXPECT_EQ(setting.ulMajorVerLen, 3u);
  EXPECT_EQ(setting.ulSubVerLen, 5u);
  EXPECT_EQ(Parser::GetReadVersionFromFlashSetting(Place({"1", "8", "3", ""}), setting), 1);
  EXPECT_EQ(setting.ulSubVerLen, 0u);
}

TEST(IspArgsValues, NoVersionPlaceInFlashLeavesTheSettingZero) {
  STRUCT_READ_VERSION_FROM_FLASH_SETTING setting;
  STRUCT_CP_ISP_CMD_ARGS args;
  args.strRecordVerMode = "1";
  EXPECT_EQ(Parser::GetReadVersionFromFlashSetting(args, setting), 1);
  EXPECT_EQ(setting.enumRecordVerMode, 0u);
  EXPECT_EQ(setting.ulTotalVerLen, 0u);
}

TEST(IspArgsValues, ARecordVersionModeThatIsNeitherZeroNorOneIsTwo) {
  // clang-format off
  constexpr struct {
    const char* text;
    std::uint32_t mode;
  } kCases[] = {
      {"",    2},
      {"0",   0},
      {"1",   1},
      {"0x1", 1},
      {"2",   2},
      {"3",   2},
      {"x",   2},
      {"-1",  2},
      {"1 ",  2},
  };
  // clang-format on
  for (const auto& test : kCases) {
    STRUCT_CP_ISP_CMD_ARGS args = Place({"0", "8", "4", "4"});
    args.strRecordVerMode = test.text;
    STRUCT_READ_VERSION_FROM_FLASH_SETTING setting;
    EXPECT_EQ(Parser::GetReadVersionFromFlashSetting(args, setting), 1) << test.text;
    EXPECT_EQ(setting.enumRecordVerMode, test.mode) << test.text;
  }
}

STRUCT_CP_ISP_CMD_ARGS Dump(const char* address, const char* length, const std::string& name) {
  STRUCT_CP_ISP_CMD_ARGS args;
  args.strDumpAddr = address;
  args.strDumpLen = length;
  args.strDumpName = name;
  return args;
}

TEST(IspArgsValues, ADumpNeedsALengthThatIsNotZero) {
  constexpr struct {
    const char* address;
    const char* length;
    int result;
    std::uint32_t stored_address;
    std::uint32_t stored_length;
  } kCases[] = {
      {"", "", 0, 0, 0},
      {"0x100", "", 0, 0, 0},
      {"", "16", 1, 0, 16},
      {"0", "0", 0, 0, 0},
      {"x", "16", 0, 0, 0},
      {"0", "x", 0, 0, 0},
      {"0x100", "0x20", 1, 0x100, 0x20},
      {"0xFFFFFFFF", "0x80000000", 1, 0xFFFFFFFF, 0x80000000},
  };
  for (const auto& test : kCases) {
    STRUCT_DUMP_FLASH_SETTING dump;
    int result = -1;
    EXPECT_EQ(Printed([&] {
                result = Parser::GetDumpFlashSetting(Dump(test.address, test.length, ""), dump);
              }),
              "");
    EXPECT_EQ(result, test.result) << test.address << " " << test.length;
    if (result == 0) continue;
    EXPECT_EQ(dump.ulDumpAddr, test.stored_address);
    EXPECT_EQ(dump.ulDumpLen, test.stored_length);
  }
}

TEST(IspArgsValues, ADumpNameThatDoesNotEndInBinIsReplaced) {
  constexpr struct {
    const char* name;
    const wchar_t* stored;
  } kCases[] = {
      {"", L"dumpFile.bin"},
      {"x.txt", L"dumpFile.bin"},
      {".bin", L"dumpFile.bin"},
      {"x.BIN", L"dumpFile.bin"},
      {"x.bin ", L"dumpFile.bin"},
      {"x.bin", L"x.bin"},
      {"sub/dir/x.bin", L"sub/dir/x.bin"},
      {"/tmp/x.bin", L"/tmp/x.bin"},
      {"\u00e4\U0001F4BE.bin", L"\u00e4\U0001F4BE.bin"},
  };
  for (const auto& test : kCases) {
    STRUCT_DUMP_FLASH_SETTING dump;
    EXPECT_EQ(Parser::GetDumpFlashSetting(Dump("0", "1", test.name), dump), 1) << test.name;
    EXPECT_STREQ(dump.wszDumpFile, test.stored) << test.name;
  }
}

TEST(IspArgsValues, AnOverlongDumpNameIsCutAt259Units) {
  // clang-format off
  const struct {
    std::size_t units;
    std::size_t kept;
  } cases[] = {
      {258,  258},
      {259,  259},
      {260,  259},
      {3000, 259},
  };
  // clang-format on
  for (const auto& test : cases) {
    std::string name;
    for (std::size_t i = 4; i < test.units; ++i) {
      name += "\u00e4";
    }
    STRUCT_DUMP_FLASH_SETTING dump;
    std::wmemset(dump.wszDumpFile, L'?', std::size(dump.wszDumpFile));
    EXPECT_EQ(Parser::GetDumpFlashSetting(Dump("0", "1", name + ".bin"), dump), 1);
    EXPECT_EQ(dump.wszDumpFile[259], L'\0') << test.units;
    EXPECT_EQ(std::wcslen(dump.wszDumpFile), test.kept) << test.units;
  }
}

}  // namespace
