// SPDX-License-Identifier: MIT
//
// Factory programming of the boot code in front of the action itself.
#include "support/end_to_end.h"
#include "support/record_offsets.h"

namespace {

using namespace std::string_literals;
using testing::ElementsAre;

constexpr const char* kCallbacks = "SetUIFunction null null null";

class BootCode : public EndToEnd {
 protected:
  BootCode() {
    GivenFirmware(m_tool / "a.bin", 1);
    GivenFirmware(m_tool.ToolDir() + "boot.bin", 65537);
  }

  // A record as it is constructed, before any judgement: the boot code's communication settings.
  RecordBytes Constructed() const {
    return PlainCommandSetting(4, m_tool.ToolDir())
        .PutU32(setting_at::bAutoSlaveAddr, 0xFFFFFFFF)
        .PutU8(setting_at::ucSlaveAddr, 0x94)
        .PutU32(setting_at::enumIspMode, 0)
        .Fill(setting_at::wszSettingFilePath, 1040, 0);
  }

  // The main action's record.
  RecordBytes Main(const std::string& boot) const {
    return PlainCommandSetting(4, m_tool.ToolDir())
        .PutU32(setting_at::enumDigitalSignatureType, 2)
        .PutU32(setting_at::enumCommID, 3)
        .PutU32(setting_at::enumBootCodeType, 1)
        .PutU32(setting_at::enumIspMode, 2)
        .PutU32(setting_at::ulCount, 1)
        .PutWide(setting_at::wszPath, m_tool / "a.bin")
        .PutNarrow(setting_at::szBootFwPath, boot);
  }

  static Words Line(const std::string& boot) {
    return {"--isp", "--newboot", "--factory", "--hw", "--comm",
            "3",     "--boot",    boot,        "--fw", "a.bin"};
  }
};

TEST_F(BootCode, IsProgrammedFirstWithDefaultCommunicationSettings) {
  ExpectSuccess(Line("boot.bin"));
  const std::vector<Call> calls = m_tool.TakeCalls();
  ASSERT_EQ(calls.size(), 3u);
  EXPECT_EQ(calls[0].line, kCallbacks);
  EXPECT_EQ(calls[1].line, "IspFlash");
  const std::string boot_path = m_tool.ToolDir() + "boot.bin";
  EXPECT_TRUE(SameBytes(RecordBytes(calls[1].record),
                        Constructed()
                            .PutU32(setting_at::ulCount, 2)
                            .PutU32(setting_at::ulTargetBank + 4, 1)
                            .PutWide(setting_at::wszPath, boot_path)
                            .PutU32(setting_at::ulFileBank + setting_at::kEntryBytes, 1)
                            .PutWide(setting_at::wszPath + setting_at::kEntryBytes, boot_path)));
  EXPECT_EQ(calls[2].line, "IspFlash");
  EXPECT_TRUE(SameBytes(RecordBytes(calls[2].record), Main("boot.bin")));
}

TEST_F(BootCode, AFileThatCannotBeOpenedIsToldAndGivesAnEmptyMap) {
  ExpectRun(Line("/missing/boot.bin"), kBanner + "File open fail! /missing/boot.bin\n"s + kSuccess,
            0);
  const std::vector<Call> calls = m_tool.TakeCalls();
  ASSERT_EQ(calls.size(), 3u);
  EXPECT_TRUE(SameBytes(RecordBytes(calls[1].record), Constructed()));
}

TEST_F(BootCode, AFailureEndsTheRunBeforeTheMainAction) {
  Command command = m_tool.Line(Line("boot.bin"));
  command.environment["ZVISP_RECORD_RESULT_IspFlash"] = "0x55";
  const RunResult run = RunCommand(command);
  EXPECT_EQ(run.out, kBanner + FailLine("0x55"));
  EXPECT_EQ(run.status, 0x55);
  EXPECT_THAT(m_tool.TakeCallLines(), ElementsAre(kCallbacks, "IspFlash"));
}

TEST_F(BootCode, IsLeftAloneUnlessNewAndFactoryAndASignatureTypeAreGiven) {
  const Words lines[] = {
      {"--isp", "--factory", "--hw", "--boot", "boot.bin", "--fw", "a.bin"},
      {"--isp", "--newboot", "--hw", "--boot", "boot.bin", "--fw", "a.bin"},
      {"--isp", "--newboot", "--factory", "--boot", "boot.bin", "--fw", "a.bin"},
      {"--isp", "--newboot", "--factory", "--hw", "--fw", "a.bin"},
  };
  for (const Words& line : lines) {
    ExpectSuccess(line);
    EXPECT_THAT(m_tool.TakeCallLines(), ElementsAre(kCallbacks, "IspFlash")) << Shown(line);
  }
}

TEST_F(BootCode, APathHasAsManyBytesAsFitWithTheirTerminator) {
  const std::string path = "/" + std::string(258, 'b');
  ExpectRun(Line(path), kBanner + "File open fail! "s + path + "\n" + kSuccess, 0);
  const std::vector<Call> calls = m_tool.TakeCalls();
  ASSERT_EQ(calls.size(), 3u);
  EXPECT_TRUE(SameBytes(RecordBytes(calls[2].record), Main(path)));
  ExpectRejected(Line(path + "b"), "Path is too long for a signed run: " + path + "b\n");
}

TEST_F(BootCode, AHardwareSignatureWithBootCodeIsProgrammedForEveryProgrammingAction) {
  for (const char* action : {"--isp", "--ispuser", "--ispdiff", "--ispcopy"}) {
    Words line = Line("boot.bin");
    line[0] = action;
    ExpectSuccess(line);
    EXPECT_THAT(m_tool.TakeCallLines(), ElementsAre(kCallbacks, "IspFlash", "IspFlash")) << action;
  }
}

}  // namespace
