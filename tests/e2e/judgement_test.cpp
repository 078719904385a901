// SPDX-License-Identifier: MIT
//
// Every refusal of a command line after scanning: its message to the byte, status 0, no call.
#include "support/end_to_end.h"

namespace {

struct RefusalRow {
  Words words;
  const char* message;
};

constexpr const char* kTwoActions = "Action type undefined or more than one type!\n";
constexpr const char* kNoAction = "Action type undefined or illegal!\n";
constexpr const char* kTwoSignatures =
    "Digital signature type is undefined or more than one type!\n";
constexpr const char* kNoFirmwarePath = "Program fw path is undefined!\n";
constexpr const char* kNotForSignature =
    "Digital signature type should not be defined only when program fw!\n";
constexpr const char* kTwoLocations =
    "Get version location type undefined or more than one type!\n";
constexpr const char* kFlashLocation = "Version location type flash setting is illegal\n";

// clang-format off
const RefusalRow kRefusals[] = {
  // actions
  {{"--verify", "--sign"},                                kTwoActions},
  {{"--isp", "--erase", "--fw", "a.bin"},                 kTwoActions},
  {{"--factoryisp", "--isp"},                             kTwoActions},
  {{"--factoryisp"},                                      kNoAction},
  {{"--comm", "3"},                                       kNoAction},
  // the action comes before everything else
  {{"--comm", "99", "--slave", "999", "--reg", "--cmd"},  kNoAction},
  // communication
  {{"--resetmcu", "--comm", "x"},      "Parameter illegal! --comm x \n"},
  {{"--resetmcu", "--comm", "1 "},     "Parameter illegal! --comm 1  \n"},
  {{"--resetmcu", "--comm", "0x"},     "Parameter illegal! --comm 0x \n"},
  {{"--resetmcu", "--comm", "0"},      "Parameter out of range! --comm 0\n"},
  {{"--resetmcu", "--comm", "-1"},     "Parameter out of range! --comm -1\n"},
  {{"--resetmcu", "--comm", "17"},     "Parameter out of range! --comm 17\n"},
  {{"--resetmcu", "--comm", "0x11"},   "Parameter out of range! --comm 0x11\n"},
  // slave address
  {{"--resetmcu", "--slave", "0y94"},  "Parameter illegal! --slave 0y94 \n"},
  {{"--resetmcu", "--slave", "-1"},    "Parameter out of range! --slave -1 \n"},
  {{"--resetmcu", "--slave", "255"},   "Parameter out of range! --slave 255 \n"},
  {{"--resetmcu", "--slave", "256"},   "Parameter out of range! --slave 256 \n"},
  // the communication number comes before the slave address
  {{"--resetmcu", "--slave", "256", "--comm", "17"},      "Parameter out of range! --comm 17\n"},
  // version locations
  {{"--recordver", "--reg", "--ddcci"},                   kTwoLocations},
  {{"--resetmcu", "--flash", "--fwbin"},                  kTwoLocations},
  {{"--recordver", "--userdefined", "0"},
   "Get user defined version mode fail, mode is: 0\nGet version type fail\n"},
  {{"--recordver", "--userdefined", "4"},
   "Get user defined version mode fail, mode is: 4\nGet version type fail\n"},
  {{"--recordver", "--userdefined", "two"},
   "User defined version mode illegal, mode is: two\nGet version type fail\n"},
  // an option that only sets a bit takes the number away again
  {{"--userdefined", "2", "--recordver"},
   "Get user defined version mode fail, mode is: \nGet version type fail\n"},
  // version in flash: address, total and major length belong together
  {{"--recordver", "--flash", "--veraddr", "1"},          kFlashLocation},
  {{"--recordver", "--flash", "--veraddr", "1", "--totalverlen", "4"},      kFlashLocation},
  {{"--recordver", "--flash", "--totalverlen", "4", "--majorverlen", "4"},  kFlashLocation},
  {{"--recordver", "--flash", "--subverlen", "1"},        kFlashLocation},
  {{"--recordver", "--flash", "--veraddr", "x", "--totalverlen", "4", "--majorverlen", "4"},
   kFlashLocation},
  {{"--recordver", "--flash", "--veraddr", "1", "--totalverlen", "x", "--majorverlen", "4"},
   kFlashLocation},
  {{"--recordver", "--flash", "--veraddr", "1", "--totalverlen", "4", "--majorverlen", "x"},
   kFlashLocation},
  {{"--recordver", "--flash", "--veraddr", "1", "--totalverlen", "4", "--majorverlen", "4",
    "--subverlen", "x"},                                  kFlashLocation},
  {{"--recordver", "--flash", "--veraddr", "1", "--totalverlen", "257", "--majorverlen", "4"},
   kFlashLocation},
  {{"--recordver", "--flash", "--veraddr", "1", "--totalverlen", "4", "--majorverlen", "0"},
   kFlashLocation},
  {{"--recordver", "--flash", "--veraddr", "1", "--totalverlen", "4", "--majorverlen", "3",
    "--subverlen", "2"},                                  kFlashLocation},
  {{"--recordver", "--flash", "--veraddr", "0xFFFFF8", "--totalverlen", "8", "--majorverlen",
    "8"},                                                 kFlashLocation},
  {{"--recordver", "--flash", "--veraddr", "-1", "--totalverlen", "2", "--majorverlen", "1"},
   kFlashLocation},
  // sums do not wrap around
  {{"--recordver", "--flash", "--veraddr", "1", "--totalverlen", "4", "--majorverlen", "-1",
    "--subverlen", "3"},                                  kFlashLocation},
  // dump: no message of its own
  {{"--dumpflash"},                                       ""},
  {{"--dumpflash", "--dumpaddr", "0"},                    ""},
  {{"--dumpflash", "--dumpaddr", "0", "--dumplen", "0"},  ""},
  {{"--dumpflash", "--dumpaddr", "0", "--dumplen", "x"},  ""},
  {{"--dumpflash", "--dumpaddr", "x", "--dumplen", "1"},  ""},
  {{"--dumpflash", "--dumpname", "a.bin"},                ""},
  // I2C: no message of its own
  {{"--i2cwrite"},                                        ""},
  {{"--i2cwrite", "--writedata", "1,2"},                  ""},
  {{"--i2cwrite", "--writedata", "1,,2,"},                ""},
  {{"--i2cwrite", "--writedata", "1,2,x"},                ""},
  {{"--i2cwrite", "--writedata", "1,2,256"},              ""},
  {{"--i2cwrite", "--writedata", "1,2,-1"},               ""},
  {{"--i2cwrite", "--ddccicmd", "--writedata", "0x6E,0x51,0x82,1"},      ""},
  {{"--i2cwrite", "--ddccicmd", "--writedata", "0x6E,0x51,0x81,1,2"},    ""},
  // merge information
  {{"--mergefwinfo", "--write", "1.x"},  "Parameter illegal! --MergeFw --write 1.x \n"},
  {{"--mergefwinfo", "--write", "256"},  "Parameter illegal! --MergeFw --write 256 \n"},
  {{"--mergefwinfo", "--write", "1.-1"}, "Parameter illegal! --MergeFw --write 1.-1 \n"},
  {{"--mergefwinfo", "--write", "1.2.3.4.5.6.7.8.9.10.11.12.13.14.15.16.17"},
   "Input Flag Length: 0x11 ,Max Flag Count: 0x10Parameter illegal! --MergeFw --write "
   "1.2.3.4.5.6.7.8.9.10.11.12.13.14.15.16.17 \n"},
  // user flag
  {{"--ispuser", "--fw", "a.bin", "--flagaddr", "x"},     "Parameter illegal! --flagaddr x \n"},
  {{"--ispuser", "--fw", "a.bin", "--flagaddr", "1", "--flagdata", "1,x"},
   "Parameter illegal! --flagdata 1,x \n"},
  {{"--ispuser", "--fw", "a.bin", "--flagaddr", "1", "--flagdata", "1,256"},
   "Parameter illegal! --flagdata 1,256 \n"},
  {{"--ispuser", "--fw", "a.bin", "--flagaddr", "1", "--flagdata", "-1"},
   "Parameter illegal! --flagdata -1 \n"},
  // signature type, mode and file
  {{"--isp", "--sw", "--hw", "--fw", "a.bin"},            kTwoSignatures},
  {{"--isp", "--sw", "--dsmode", "x", "--fw", "a.bin"},
   "Parameter illegal! --dsmode x \nDigital signature mode is illegal!\n"},
  {{"--isp", "--sw", "--dsmode", "0", "--fw", "a.bin"},
   "Parameter out of range! --dsmode 0 \nDigital signature mode is illegal!\n"},
  {{"--isp", "--sw", "--dsmode", "5", "--fw", "a.bin"},
   "Parameter out of range! --dsmode 5 \nDigital signature mode is illegal!\n"},
  {{"--isp", "--hw", "--dsmode", "3", "--fw", "a.bin"},
   "Parameter out of range! --dsmode 3 \nDigital signature mode is illegal!\n"},
  {{"--isp", "--hw", "--dsmode", "1x", "--fw", "a.bin"},
   "Parameter illegal! --dsmode 1x \nDigital signature mode is illegal!\n"},
  {{"--isp", "--sw", "--dsmode", "2"},                    kNoFirmwarePath},
  {{"--isp", "--sw", "--fw1", "a.bin"},                   kNoFirmwarePath},
  {{"--sign", "--hw"},                                    kNoFirmwarePath},
  {{"--resetmcu", "--sw", "--fw", "a.bin"},               kNotForSignature},
  {{"--recordver", "--hw", "--fw", "a.bin"},              kNotForSignature},
  {{"--erase", "--sw", "--fw", "a.bin"},                  kNotForSignature},
};
// clang-format on

class Judgement : public EndToEnd {
 protected:
  Judgement() { GivenFirmware(m_tool / "a.bin", 1); }
};

TEST_F(Judgement, EveryRefusalSaysItsReasonAndCallsNoPlugin) {
  for (const RefusalRow& row : kRefusals)
    ExpectRejected(row.words, row.message);
}

TEST_F(Judgement, SixteenMergeBytesAndTheLongestI2cListAreAccepted) {
  ExpectRun({"--mergefwinfo", "--write", "1.2.3.4.5.6.7.8.9.10.11.12.13.14.15.16"},
            kBanner + FailLine("0x6"), 6);
  std::string bytes = "0";
  for (int i = 1; i < 258; ++i)
    bytes += ",0xFF";
  ExpectRun({"--i2cwrite", "--writedata", bytes}, kBanner + FailLine("0x6"), 6);
  m_tool.TakeCalls();
  ExpectRejected({"--i2cwrite", "--writedata", bytes + ",1"}, "");
}

// The bytes of --write are taken only where --mergefwinfo comes before it.
TEST_F(Judgement, MergeBytesBeforeTheirActionAreNotLookedAt) {
  ExpectRun({"--write", "nonsense", "--mergefwinfo"}, kBanner + FailLine("0x6"), 6);
}

TEST_F(Judgement, ARefusedLineEndsWithStatusZeroAndNoBanner) {
  const RunResult run = m_tool.Run({"--factoryisp"});
  EXPECT_EQ(run.out, "Action type undefined or illegal!\nargument is illegal.\n");
  EXPECT_EQ(run.status, 0);
}

}  // namespace
