// SPDX-License-Identifier: MIT
//
// The signature plug-in's place in a run: signing, verifying, and the check before programming.
#include "support/end_to_end.h"
#include "support/record_offsets.h"

namespace {

using namespace std::string_literals;
using testing::ElementsAre;

constexpr const char* kCallbacks = "SetUIFunction null null null";

class SignatureCheck : public EndToEnd {
 protected:
  SignatureCheck() {
    m_tool.WithSignPlugin(TestPlugin("recording_sign"));
    GivenFirmware(m_tool / "a.bin", 65537);
    GivenFile(m_tool / "a.sig", "signature");
    GivenFile(m_tool / "key", "key");
  }

  // A run in which a call of a plug-in gives this result.
  RunResult RunWithResult(const Words& words, const std::string& call, const std::string& result) {
    Command command = m_tool.Line(words);
    command.environment["ZVISP_RECORD_RESULT_" + call] = result;
    return RunCommand(command);
  }

  // The 1840-byte record of a request on a.bin.
  RecordBytes SignArgs(std::uint32_t action, std::uint32_t mode) const {
    return RecordBytes(sign_at::kRecordBytes)
        .PutU32(sign_at::enumActionType, action)
        .PutU32(sign_at::enumSignatureType, 1)
        .PutU32(sign_at::enumSwMode, mode)
        .PutNarrow(sign_at::szFwFile, m_tool / "a.bin")
        .PutNarrow(sign_at::szSignatureFile, m_tool / "a.sig");
  }

  // The command-setting record of --isp on the two banks of a.bin with a software signature.
  RecordBytes SignedSetting(std::uint32_t mode) const {
    return PlainCommandSetting(4, m_tool.ToolDir())
        .PutU32(setting_at::enumDigitalSignatureType, 1)
        .PutU32(setting_at::enumSWDigitalSignatureMode, mode)
        .PutU32(setting_at::ulCount, 2)
        .PutU32(setting_at::ulTargetBank + 4, 1)
        .PutWide(setting_at::wszPath, m_tool / "a.bin")
        .PutU32(setting_at::ulFileBank + setting_at::kEntryBytes, 1)
        .PutWide(setting_at::wszPath + setting_at::kEntryBytes, m_tool / "a.bin");
  }

  const Words m_signed_isp = {"--isp", "--sw",  "--dsmode",   "2",
                              "--fw",  "a.bin", "--signfile", "a.sig"};
  const Words m_key_on_device = {"--isp", "--sw",  "--dsmode",   "4",
                                 "--fw",  "a.bin", "--signfile", "a.sig"};
};

TEST_F(SignatureCheck, SigningHandsTheWholeRecordToTheSignaturePluginAlone) {
  ExpectSuccess({"--sign", "--sw", "--dsmode", "2", "--keypair", "0x3", "--fw", "a.bin"});
  const std::vector<Call> calls = m_tool.TakeCalls();
  ASSERT_EQ(calls.size(), 1u);
  EXPECT_EQ(calls[0].line, "SignFwExport");
  EXPECT_TRUE(SameBytes(RecordBytes(calls[0].record),
                        SignArgs(1, 2)
                            .PutU32(sign_at::nKeyPairIndex, 3)
                            .PutNarrow(sign_at::szSignatureFile, m_tool / "a.bin.sig")
                            .PutNarrow(sign_at::szKeyPair, "0x3")));
}

TEST_F(SignatureCheck, VerifyingHandsTheWholeRecordToTheSignaturePluginAlone) {
  ExpectSuccess({"--verify", "--sw", "--dsmode", "3", "--vkfile", "key", "--fw", "a.bin",
                 "--signfile", "a.sig"});
  const std::vector<Call> calls = m_tool.TakeCalls();
  ASSERT_EQ(calls.size(), 1u);
  EXPECT_EQ(calls[0].line, "VerifySignatureExport null");
  EXPECT_TRUE(SameBytes(RecordBytes(calls[0].record),
                        SignArgs(2, 3).PutNarrow(sign_at::szVerifyKeyFile, m_tool / "key")));
}

TEST_F(SignatureCheck, AFailedSigningAndAFailedVerificationHaveTheirCodes) {
  const RunResult sign =
      RunWithResult({"--sign", "--sw", "--dsmode", "2", "--fw", "a.bin"}, "SignFwExport", "0");
  EXPECT_EQ(sign.out, kBanner + FailLine("0x4002"));
  EXPECT_EQ(sign.status, 2);
  const RunResult verify =
      RunWithResult({"--verify", "--sw", "--dsmode", "2", "--fw", "a.bin", "--signfile", "a.sig"},
                    "VerifySignatureExport", "0");
  EXPECT_EQ(verify.out, kBanner + FailLine("0x4003"));
  EXPECT_EQ(verify.status, 3);
}

TEST_F(SignatureCheck, AnyAnswerButZeroOfTheSignaturePluginIsSuccess) {
  for (const char* answer : {"1", "6", "-1", "256"}) {
    const RunResult run =
        RunWithResult({"--sign", "--sw", "--dsmode", "2", "--fw", "a.bin"}, "SignFwExport", answer);
    EXPECT_EQ(run.out, kBanner + std::string(kSuccess)) << answer;
    EXPECT_EQ(run.status, 0) << answer;
  }
}

// Without a signature type the files are not judged; the plug-in gets an empty request.
TEST_F(SignatureCheck, SigningWithoutATypeHandsOverAnEmptyRequest) {
  ExpectSuccess({"--sign"});
  EXPECT_TRUE(SameBytes(m_tool.TakeRecord(), RecordBytes(sign_at::kRecordBytes)));
}

TEST_F(SignatureCheck, SignedFirmwareIsVerifiedBeforeItIsProgrammed) {
  ExpectSuccess(m_signed_isp);
  const std::vector<Call> calls = m_tool.TakeCalls();
  ASSERT_EQ(calls.size(), 3u);
  EXPECT_EQ(calls[0].line, kCallbacks);
  EXPECT_EQ(calls[1].line, "VerifySignatureExport null");
  EXPECT_TRUE(SameBytes(RecordBytes(calls[1].record), SignArgs(2, 2)));
  EXPECT_EQ(calls[2].line, "IspFlash");
  EXPECT_TRUE(SameBytes(RecordBytes(calls[2].record), SignedSetting(2)));
}

TEST_F(SignatureCheck, FirmwareThatFailsVerificationIsNotProgrammed) {
  const RunResult run = RunWithResult(m_signed_isp, "VerifySignatureExport", "0");
  EXPECT_EQ(run.out, kBanner + FailLine("0x4003"));
  EXPECT_EQ(run.status, 3);
  EXPECT_THAT(m_tool.TakeCallLines(), ElementsAre(kCallbacks, "VerifySignatureExport null"));
}

TEST_F(SignatureCheck, WithoutTheSignaturePluginSignedFirmwareIsNotProgrammed) {
  m_tool.WithSignPlugin(TestPlugin("recording_sign_lacks_SignFwExport"));
  const RunResult run = m_tool.Run(m_signed_isp);
  EXPECT_THAT(run.out, testing::StartsWith(kBanner + "dlsym - "s));
  EXPECT_THAT(run.out, testing::EndsWith("\n" + FailLine("0x4004")));
  EXPECT_EQ(run.status, 4);
  EXPECT_THAT(m_tool.TakeCallLines(), ElementsAre(kCallbacks));
}

TEST_F(SignatureCheck, TheDevicesKeyIsReadIntoAZeroedBufferAndHandedOn) {
  ExpectRun(m_key_on_device, kBanner + "Get Key From Flash ...\n"s + kSuccess, 0);
  const std::vector<Call> calls = m_tool.TakeCalls();
  ASSERT_EQ(calls.size(), 4u);
  EXPECT_EQ(calls[1].line, "GetKeyFromFlash set");
  EXPECT_TRUE(SameBytes(calls[1].key, std::string(1220, '\0')));
  EXPECT_EQ(calls[2].line, "VerifySignatureExport set");
  std::string key(1220, '\0');
  for (std::size_t i = 0; i < key.size(); ++i)
    key[i] = static_cast<char>(i);
  EXPECT_TRUE(SameBytes(calls[2].key, key));
  EXPECT_TRUE(SameBytes(RecordBytes(calls[2].record), SignArgs(2, 4)));
  EXPECT_EQ(calls[3].line, "IspFlash");
  EXPECT_TRUE(SameBytes(RecordBytes(calls[3].record), SignedSetting(4)));
}

// The map is emptied, but only its first entry loses bank and path: plug-ins know it so.
TEST_F(SignatureCheck, TheKeyIsReadWithACopyOfTheRecordWhoseMapIsEmpty) {
  m_tool.Run(m_key_on_device);
  const RecordBytes expected = SignedSetting(4)
                                   .PutU32(setting_at::ulCount, 0)
                                   .PutU32(setting_at::ulTargetBank + 4, 0)
                                   .Fill(setting_at::stBank, 1056, 0);
  EXPECT_TRUE(SameBytes(RecordBytes(m_tool.TakeCalls().at(1).record), expected));
}

TEST_F(SignatureCheck, AKeyThatCannotBeReadEndsTheRunWithItsCode) {
  const RunResult run = RunWithResult(m_key_on_device, "GetKeyFromFlash", "0x1234");
  EXPECT_EQ(run.out, kBanner + "Get Key From Flash ...\n"s + FailLine("0x1234"));
  EXPECT_EQ(run.status, 0x34);
  EXPECT_THAT(m_tool.TakeCallLines(), ElementsAre(kCallbacks, "GetKeyFromFlash set"));
}

TEST_F(SignatureCheck, WithTheKeyOnTheDeviceTheFilesAreJudgedByThePlugin) {
  ExpectRun({"--isp", "--sw", "--dsmode", "4", "--fw", "a.bin"},
            "Digital signature: Signature file is missing!\n"s + kBanner +
                "Get Key From Flash ...\n" + kSuccess,
            0);
}

TEST_F(SignatureCheck, FactoryProgrammingAndHardwareSignaturesAreNotChecked) {
  ExpectSuccess({"--isp", "--factory", "--sw", "--dsmode", "2", "--fw", "a.bin"});
  EXPECT_THAT(m_tool.TakeCallLines(), ElementsAre(kCallbacks, "IspFlash"));
  ExpectSuccess({"--isp", "--hw", "--dsmode", "1", "--fw", "a.bin"});
  EXPECT_THAT(m_tool.TakeCallLines(), ElementsAre(kCallbacks, "IspFlash"));
}

TEST_F(SignatureCheck, AHardwareSignatureReachesTheRecordWithoutASoftwareMode) {
  GivenFirmware(m_tool / "one.bin", 1);
  ExpectRecord({"--isp", "--hw", "--dsmode", "2", "--fw", "one.bin"},
               PlainCommandSetting(4, m_tool.ToolDir())
                   .PutU32(setting_at::enumDigitalSignatureType, 2)
                   .PutU32(setting_at::ulCount, 1)
                   .PutWide(setting_at::wszPath, m_tool / "one.bin"));
}

TEST_F(SignatureCheck, TheSignaturePluginStaysLoadedUntilTheProcessEnds) {
  Command command = m_tool.Line(m_signed_isp);
  command.environment["ZVISP_RECORD_UNLOAD"] = "unloaded\n";
  EXPECT_EQ(RunCommand(command).out, kBanner + "unloaded\n"s + kSuccess + "unloaded\n");
}

TEST_F(SignatureCheck, ARunThatEndsEarlyLeavesBothPluginsLoadedUntilTheProcessEnds) {
  Command command = m_tool.Line(m_signed_isp);
  command.environment["ZVISP_RECORD_UNLOAD"] = "unloaded\n";
  command.environment["ZVISP_RECORD_RESULT_VerifySignatureExport"] = "0";
  EXPECT_EQ(RunCommand(command).out, kBanner + FailLine("0x4003") + "unloaded\nunloaded\n");
}

}  // namespace
