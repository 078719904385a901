// SPDX-License-Identifier: MIT
//
// Every option into its field: the whole record that reaches the plug-in, byte for byte.
#include <utility>

#include "support/end_to_end.h"
#include "support/record_offsets.h"

namespace {

// 32-bit words at their offsets in the record.
using Fields = std::vector<std::pair<std::size_t, std::uint32_t>>;

struct FieldRow {
  Words words;
  std::uint32_t action;
  Fields fields;  // on top of what the action alone gives
};

// clang-format off
const FieldRow kFieldRows[] = {
  // command line                                                  action  fields
  {{"--resetmcu"},                                                     15, {}},
  {{"--enterispmode"},                                                 21, {}},
  {{"--getscalertype"},                                                25, {}},
  {{"--userdefinedinfo"},                                              19, {}},
  {{"--recordver"},                                                     8, {}},
  // enumCommID
  {{"--resetmcu", "--comm", "1"},                                      15, {{24, 1}}},
  {{"--resetmcu", "--comm=0x10"},                                      15, {{24, 16}}},
  {{"--resetmcu", "--comm", "010"},                                    15, {{24, 8}}},
  {{"--resetmcu", "--comm", " +7"},                                    15, {{24, 7}}},
  {{"--resetmcu", "--comm", "3", "--comm", "4"},                       15, {{24, 4}}},
  {{"--resetmcu", "--comm", ""},                                       15, {}},
  // bAutoSlaveAddr and ucSlaveAddr, with the padding after it
  {{"--resetmcu", "--slave", "0"},                                     15, {}},
  {{"--resetmcu", "--slave", ""},                                      15, {}},
  {{"--resetmcu", "--slave", "1"},                                     15, {{32, 0}, {36, 1}}},
  {{"--resetmcu", "--slave", "254"},                                   15, {{32, 0}, {36, 254}}},
  {{"--resetmcu", "--slave", "0x94"},                                  15, {{32, 0}, {36, 0x94}}},
  // switches
  {{"--resetmcu", "--comparever"},                                     15, {{44, 1}}},
  {{"--resetmcu", "--ispchannel"},                                     15, {{48, 1}}},
  {{"--resetmcu", "--newboot"},                                        15, {{52, 1}}},
  {{"--resetmcu", "--factory"},                                        15, {{56, 2}}},
  // the boot path travels only with a signature type
  {{"--resetmcu", "--boot", "boot.bin"},                               15, {}},
  // enumEdpIspMode
  {{"--edpisp", "--edpmode", "isp"},                                   20, {{28, 1}}},
  {{"--edpisp", "--edpmode", "readver"},                               20, {{28, 2}}},
  {{"--edpisp", "--edpmode", "readver", "--edpmode", "isp"},           20, {{28, 1}}},
  // enumVersionLocationType and enumUserDefinedVersionType
  {{"--recordver", "--reg"},                                            8, {{12, 1}}},
  {{"--recordver", "--ddcci"},                                          8, {{12, 2}}},
  {{"--recordver", "--flash"},                                          8, {{12, 3}}},
  {{"--recordver", "--cmd"},                                            8, {{12, 5}}},
  {{"--recordver", "--copydiffer"},                                     8, {{12, 7}}},
  {{"--recordver", "--userdefined", "1"},                               8, {{12, 8}, {16, 1}}},
  {{"--recordver", "--userdefined=3"},                                  8, {{12, 8}, {16, 3}}},
  {{"--resetmcu", "--fwbin"},                                          15, {{12, 4}}},
  {{"--resetmcu", "--fwbincmd"},                                       15, {{12, 6}}},
  {{"--recordver", "--reg", "--reg"},                                   8, {{12, 1}}},
  // stReadVersionFromFlash: mode, address, total, major and sub length
  {{"--recordver", "--flash", "--veraddr", "0x1000", "--totalverlen", "256", "--majorverlen", "4"},
   8, {{12, 3}, {272672, 2}, {272676, 0x1000}, {272680, 256}, {272684, 4}}},
  {{"--recordver", "--flash", "--veraddr", "0", "--totalverlen", "8", "--majorverlen", "5",
    "--subverlen", "3", "--recordvermode", "0"},
   8, {{12, 3}, {272680, 8}, {272684, 5}, {272688, 3}}},
  {{"--recordver", "--flash", "--veraddr", "0xFFFFF7", "--totalverlen", "8", "--majorverlen", "8",
    "--subverlen", "0", "--recordvermode", "1"},
   8, {{12, 3}, {272672, 1}, {272676, 0xFFFFF7}, {272680, 8}, {272684, 8}}},
  {{"--recordver", "--flash", "--veraddr", "1", "--totalverlen", "1", "--majorverlen", "1",
    "--recordvermode", "x"},
   8, {{12, 3}, {272672, 2}, {272676, 1}, {272680, 1}, {272684, 1}}},
  {{"--recordver", "--flash", "--veraddr", "1", "--totalverlen", "1", "--majorverlen", "1",
    "--recordvermode", "7"},
   8, {{12, 3}, {272672, 2}, {272676, 1}, {272680, 1}, {272684, 1}}},
  // without any of the four the mode stays out, too
  {{"--recordver", "--flash", "--recordvermode", "1"},                  8, {{12, 3}}},
  // another location leaves them out
  {{"--recordver", "--reg", "--veraddr", "1", "--totalverlen", "1", "--majorverlen", "1"},
   8, {{12, 1}}},
  // parameters of an action that is not this one
  {{"--resetmcu", "--dumpaddr", "5", "--dumplen", "6", "--dumpname", "x.bin"},      15, {}},
  {{"--resetmcu", "--flagaddr", "5", "--flagdata", "1,2"},                          15, {}},
  {{"--resetmcu", "--writedata", "1,2,3", "--ddccicmd"},                            15, {}},
  {{"--resetmcu", "--read"},                                                        15, {}},
};
// clang-format on

class Record : public EndToEnd {
 protected:
  RecordBytes Plain(std::uint32_t action) const {
    return PlainCommandSetting(action, m_tool.ToolDir());
  }
};

TEST_F(Record, EveryOptionReachesItsFieldAndNoOther) {
  for (const FieldRow& row : kFieldRows) {
    RecordBytes record = Plain(row.action);
    for (const auto& [offset, value] : row.fields)
      record.PutU32(offset, value);
    Command command = m_tool.Line(row.words);
    const RunResult run = RunCommand(command);
    EXPECT_EQ(run.status, 0) << Shown(row.words);
    EXPECT_TRUE(SameBytes(m_tool.TakeRecord(), record)) << Shown(row.words);
  }
}

TEST_F(Record, RunningTheSameLineAgainGivesTheSameBytes) {
  GivenFirmware(m_tool / "a.bin", 200000);
  const Words line = {"--ispuser", "--fw", "a.bin", "--bank", "3", "--flagaddr", "1"};
  ExpectSuccess(line);
  const RecordBytes first = m_tool.TakeRecord();
  for (int i = 0; i < 20; ++i) {
    ExpectSuccess(line);
    EXPECT_TRUE(SameBytes(m_tool.TakeRecord(), first));
  }
}

TEST_F(Record, MergeInformationNeverReachesAPluginBecauseItsCallIsNeverBound) {
  ExpectRun({"--mergefwinfo", "--write", "1.2"}, kBanner + FailLine("0x6"), 6);
  EXPECT_EQ(m_tool.TakeCallLines(), Words{"SetUIFunction null null null"});
}

// --write sets the direction for every action; its bytes are taken with --mergefwinfo alone.
TEST_F(Record, WriteWithAnotherActionSetsTheDirectionAndNoBytes) {
  ExpectRecord({"--resetmcu", "--write", "1.2"},
               Plain(15).PutU32(setting_at::enumMergeFwInfoType, 1));
}

TEST_F(Record, DumpParametersReachTheirFields) {
  ExpectRecord(
      {"--dumpflash", "--dumpaddr", "0x12345678", "--dumplen", "65536", "--dumpname", "flash.bin"},
      Plain(16)
          .PutU32(setting_at::ulDumpAddr, 0x12345678)
          .PutU32(setting_at::ulDumpLen, 65536)
          .PutWide(setting_at::wszDumpFile, "flash.bin"));
}

TEST_F(Record, ADumpNameIsKeptOnlyWhenItEndsInBinAndHasFiveCharacters) {
  // clang-format off
  const struct { const char* given; const char* kept; } kCases[] = {
    {"a.bin",      "a.bin"},
    {"d/e/x.bin",  "d/e/x.bin"},
    {"/abs/x.bin", "/abs/x.bin"},
    {"\u00FC.bin", "\u00FC.bin"},
    {".bin",       "dumpFile.bin"},
    {"x.txt",      "dumpFile.bin"},
    {"x.BIN",      "dumpFile.bin"},
    {"x.bin ",     "dumpFile.bin"},
    {"",           "dumpFile.bin"},
  };
  // clang-format on
  for (const auto& row : kCases) {
    ExpectRecord(
        {"--dumpflash", "--dumpaddr", "0", "--dumplen", "1", "--dumpname", row.given},
        Plain(16).PutU32(setting_at::ulDumpLen, 1).PutWide(setting_at::wszDumpFile, row.kept));
  }
}

TEST_F(Record, ADumpNameIsCutSoThatItsTerminatorFits) {
  const std::string name = std::string(300, 'd') + ".bin";
  ExpectRecord({"--dumpflash", "--dumpaddr", "0", "--dumplen", "1", "--dumpname", name},
               Plain(16)
                   .PutU32(setting_at::ulDumpLen, 1)
                   .PutWide(setting_at::wszDumpFile, std::string(259, 'd')));
}

class UserFlag : public Record {
 protected:
  UserFlag() { GivenFirmware(m_tool / "a.bin", 1); }

  // The record of --ispuser with the one bank of a.bin.
  RecordBytes Plain() const {
    return Record::Plain(5)
        .PutU32(setting_at::ulCount, 1)
        .PutWide(setting_at::wszPath, m_tool / "a.bin");
  }
  static Words Line(Words flag) {
    flag.insert(flag.begin(), {"--ispuser", "--fw", "a.bin"});
    return flag;
  }
};

TEST_F(UserFlag, AddressAndDataReachTheirFields) {
  ExpectRecord(Line({"--flagaddr", "0x20", "--flagdata", "0,1,0xFE,,010"}),
               Plain()
                   .PutU32(setting_at::ulFlagLength, 4)
                   .PutU8(setting_at::ucFlagData, 0)
                   .PutU8(setting_at::ucFlagData + 1, 1)
                   .PutU8(setting_at::ucFlagData + 2, 0xFE)
                   .PutU8(setting_at::ucFlagData + 3, 8)
                   .PutU32(setting_at::ulFlagAddr, 0x20));
}

TEST_F(UserFlag, WithoutAnAddressTheDataIsNotLookedAt) {
  ExpectRecord(Line({"--flagdata", "nonsense"}), Plain());
}

TEST_F(UserFlag, AnAddressWithoutDataGivesNoBytes) {
  ExpectRecord(Line({"--flagaddr", "7"}), Plain().PutU32(setting_at::ulFlagAddr, 7));
}

TEST_F(UserFlag, TheLengthKeepsItsLowEightBits) {
  std::string data = "1";
  for (int i = 1; i < 300; ++i)
    data += ",1";
  ExpectRecord(Line({"--flagaddr", "7", "--flagdata", data}),
               Plain()
                   .PutU32(setting_at::ulFlagLength, 44)
                   .Fill(setting_at::ucFlagData, 300, 1)
                   .PutU32(setting_at::ulFlagAddr, 7));
}

TEST_F(UserFlag, BytesThatDoNotFitAreLeftOutAndNothingBehindThemIsTouched) {
  std::string data = "1";
  for (int i = 1; i < 1300; ++i)
    data += ",1";
  ExpectRecord(Line({"--flagaddr", "7", "--flagdata", data}),
               Plain()
                   .PutU32(setting_at::ulFlagLength, 20)
                   .Fill(setting_at::ucFlagData, 1220, 1)
                   .PutU32(setting_at::ulFlagAddr, 7));
}

TEST_F(Record, TheSettingFileIsResolvedAgainstTheToolsDirectory) {
  GivenFile(m_tool.ToolDir() + "line/a.ini", "");
  ExpectRecord({"--resetmcu", "--settingfile", "line/../line/a.ini"},
               RecordBytes(Plain(15))
                   .Fill(setting_at::wszSettingFilePath, 1040, 0)
                   .PutWide(setting_at::wszSettingFilePath, m_tool.ToolDir() + "line/a.ini"));
}

TEST_F(Record, AnAbsoluteSettingFileIsKeptAsItIs) {
  ExpectRecord({"--resetmcu", "--settingfile", "/nowhere/../a.ini"},
               Plain(15)
                   .Fill(setting_at::wszSettingFilePath, 1040, 0)
                   .PutWide(setting_at::wszSettingFilePath, "/nowhere/../a.ini"));
}

TEST_F(Record, ASettingFilePathIsCutSoThatItsTerminatorFits) {
  const std::string path = "/" + std::string(400, 's');
  ExpectRecord({"--resetmcu", "--settingfile", path},
               Plain(15)
                   .PutWide(setting_at::wszSettingFilePath, path.substr(0, 259))
                   .PutU32(setting_at::wszSettingFilePath + 4 * 259, 0));
}

TEST_F(Record, ASecondShorterSettingFileLeavesNoTailOfTheFirst) {
  ExpectRecord({"--resetmcu", "--settingfile", "/first/and/long.ini", "--settingfile", "/b.ini"},
               Plain(15)
                   .Fill(setting_at::wszSettingFilePath, 1040, 0)
                   .PutWide(setting_at::wszSettingFilePath, "/b.ini"));
}

}  // namespace
