// SPDX-License-Identifier: MIT
//
// The judgement of raw arguments: its messages in their order, and what it leaves in the records.
#include <string>
#include <vector>

#include "base/path.h"
#include "cmdline/isp_args_parse.h"
#include "support/command_line_fixture.h"
#include "support/record_offsets.h"

#include <gtest/gtest.h>

namespace {

constexpr std::uint32_t kSign = 0x2;
constexpr std::uint32_t kVerify = 0x1;
constexpr std::uint32_t kErase = 0x4;
constexpr std::uint32_t kIsp = 0x8;

class IspArgsJudge : public CommandLineTest {
 protected:
  static STRUCT_CP_ISP_CMD_ARGS Action(std::uint32_t bits) {
    STRUCT_CP_ISP_CMD_ARGS args;
    args.ulActionBits = bits;
    return args;
  }
  static STRUCT_CP_ISP_CMD_ARGS Signature(std::uint32_t action, std::uint32_t type,
                                          const std::string& mode) {
    STRUCT_CP_ISP_CMD_ARGS args = Action(action);
    args.ulSignatureTypeBits = type;
    args.strSignatureMode = mode;
    args.strFw = "a.bin";
    return args;
  }
  void ExpectRefused(const STRUCT_CP_ISP_CMD_ARGS& args, const std::string& message) {
    EXPECT_EQ(Judge(args), 0) << message;
    EXPECT_EQ(m_out, message);
  }
  void GivenSlot(const std::string& name) {
    GivenFw(name);
    ASSERT_EQ(m_parser->InsertCommandFwFile(0, name), 1);
  }
  void ExpectSettingFile(const std::string& text, const std::string& path) {
    GivenFreshParser();
    STRUCT_CP_ISP_CMD_ARGS args = Action(kErase);
    args.strSettingFile = text;
    EXPECT_EQ(Judge(args), 1);
    EXPECT_EQ(Setting().Wide(setting_at::wszSettingFilePath), path);
    EXPECT_EQ(Setting().U32(setting_at::wszSettingFilePath + 4 * 259), 0u) << "the last unit";
  }
};

// Everything is wrong at first. Each round repairs the first fault and finds the next.
TEST_F(IspArgsJudge, JudgesInItsOrderAndReportsTheFirstFault) {
  STRUCT_CP_ISP_CMD_ARGS args = Action(3);
  args.ulReadWriteBits = 2;
  args.strMergeCommand = "x";
  args.ulSignatureTypeBits = 3;
  args.strSignatureMode = "x";
  args.ulInformationBits = 3;
  args.strUserDefined = "x";
  args.strComm = "x";
  args.strSlave = "x";
  args.strFlagAddr = "x";
  ExpectRefused(args, "Action type undefined or more than one type!\n");
  args.ulActionBits = 0x10000;
  ExpectRefused(args, "Action type undefined or illegal!\n");
  args.ulActionBits = 0;
  ExpectRefused(args, "Action type undefined or illegal!\n");
  args.ulActionBits = kErase;
  ExpectRefused(args, "Parameter illegal! --MergeFw --write x \n");
  args.strMergeCommand = "1";
  ExpectRefused(args, "Digital signature type is undefined or more than one type!\n");
  args.ulSignatureTypeBits = 4;
  ExpectRefused(args, "Digital signature type is illegal!\n");
  args.ulSignatureTypeBits = 1;
  ExpectRefused(args, "Parameter illegal! --dsmode x \nDigital signature mode is illegal!\n");
  args.strSignatureMode = "4";
  ExpectRefused(args, "Program fw path is undefined!\n");
  args.strFw = "a.bin";
  ExpectRefused(args, "Digital signature type should not be defined only when program fw!\n");
  args.ulActionBits = 0x10;
  args.nIspMode = 2;
  ExpectRefused(args, "Get version location type undefined or more than one type!\n");
  args.ulInformationBits = 0x80;
  ExpectRefused(args, "User defined version mode illegal, mode is: x\nGet version type fail\n");
  args.ulInformationBits = 0x100;
  ExpectRefused(args, "Version location type is illegal!\n");
  args.ulInformationBits = 0x4;
  args.strVerAddr = "1";
  ExpectRefused(args, "Version location type flash setting is illegal\n");
  args.ulInformationBits = 0x1;
  ExpectRefused(args, "Parameter illegal! --comm x \n");
  args.strComm = "";
  ExpectRefused(args, "Parameter illegal! --slave x \n");
  args.strSlave = "";
  ExpectRefused(args, "Program fw bin path should not be empty!\n");
  GivenSlot("a.bin");
  ExpectRefused(args, "Parameter illegal! --flagaddr x \n");
  args.strFlagAddr = "1";
  EXPECT_EQ(Judge(args), 1);
  EXPECT_EQ(m_out, "");
}

TEST_F(IspArgsJudge, OnlyReadOrWriteSetsTheMergeType) {
  constexpr std::size_t kMergeType = 20;
  auto setting = m_parser->GetISPCmdSetting();
  setting.enumMergeFwInfoType = 7;
  m_parser->SetISPCmdSetting(setting);
  STRUCT_CP_ISP_CMD_ARGS args = Action(0x200000);
  EXPECT_EQ(Judge(args), 1);
  EXPECT_EQ(Setting().U32(kMergeType), 7u);
  args.ulReadWriteBits = 1;
  EXPECT_EQ(Judge(args), 1);
  EXPECT_EQ(Setting().U32(kMergeType), 0u);
}

TEST_F(IspArgsJudge, AHardwareModeHasItsOwnRangeAndField) {
  ExpectRefused(Signature(kIsp, 2, "3"),
                "Parameter out of range! --dsmode 3 \nDigital signature mode is illegal!\n");
  GivenSlot("a.bin");
  EXPECT_EQ(Judge(Signature(kIsp, 2, "2")), 1);
  EXPECT_EQ(SignArgs().U32(sign_at::enumHwMode), 2u);
  EXPECT_EQ(SignArgs().U32(sign_at::enumSwMode), 0u);
  EXPECT_EQ(SignArgs().U32(sign_at::enumSignatureType), 2u);
  EXPECT_EQ(SignArgs().U32(sign_at::enumActionType), 0u)
      << "a hardware signature is not verified here";
  EXPECT_EQ(Setting().U32(setting_at::enumDigitalSignatureType), 2u);
  EXPECT_EQ(m_out, "");
}

TEST_F(IspArgsJudge, SigningReturnsTheVerdictAndJudgesNothingElse) {
  GivenFw("a.bin");
  STRUCT_CP_ISP_CMD_ARGS args = Signature(kSign, 1, "2");
  args.ulInformationBits = 3;
  args.strComm = "junk";
  args.strSlave = "junk";
  EXPECT_EQ(Judge(args), 1);
  EXPECT_EQ(m_out, "");
  EXPECT_EQ(SignArgs().U32(sign_at::enumActionType), 1u);
  EXPECT_EQ(SignArgs().U32(sign_at::enumSwMode), 2u);
  EXPECT_EQ(SignArgs().Narrow(sign_at::szFwFile), m_scratch / "a.bin");
  EXPECT_EQ(SignArgs().Narrow(sign_at::szSignatureFile), m_scratch / "a.bin.sig");
  EXPECT_EQ(Setting().U32(setting_at::enumSWDigitalSignatureMode), 2u);
  EXPECT_EQ(Setting().I32(setting_at::bAutoSlaveAddr), -1) << "the slave address is not judged";
  EXPECT_EQ(Setting().Wide(setting_at::wszSettingFilePath), "");
}

TEST_F(IspArgsJudge, ARefusalToSignIsTheResult) {
  ExpectRefused(Signature(kSign, 1, "1"),
                "Digital signature: Tavero digital signature can not support sign function!\n");
  ExpectRefused(Signature(kSign, 1, "2"),
                "Digital signature: fw file is not exist! " + (m_scratch / "a.bin") + "\n");
}

TEST_F(IspArgsJudge, VerifyingReturnsTheVerdict) {
  ExpectRefused(Signature(kVerify, 2, "1"),
                "Digital signature: Hw digital signature can not support verify function!\n");
  GivenFw("a.bin");
  ExpectRefused(Signature(kVerify, 1, "2"), "Digital signature: Signature file is missing!\n");
  EXPECT_EQ(SignArgs().U32(sign_at::enumActionType), 2u);
  GivenFile(m_scratch / "a.sig", "s");
  STRUCT_CP_ISP_CMD_ARGS args = Signature(kVerify, 1, "2");
  args.strSignFile = "a.sig";
  args.strKeyPair = "4";
  EXPECT_EQ(Judge(args), 1);
  EXPECT_EQ(SignArgs().Narrow(sign_at::szSignatureFile), m_scratch / "a.sig");
  EXPECT_EQ(SignArgs().U32(sign_at::nKeyPairIndex), 4u);
}

TEST_F(IspArgsJudge, SigningWithoutATypeIsJudgedLikeEveryOtherAction) {
  STRUCT_CP_ISP_CMD_ARGS args = Action(kSign);
  args.strComm = "17";
  ExpectRefused(args, "Parameter out of range! --comm 17\n");
  args.strComm = "16";
  EXPECT_EQ(Judge(args), 1);
  EXPECT_EQ(SignArgs().U32(sign_at::enumActionType), 0u);
}

TEST_F(IspArgsJudge, ProgrammingWithASoftwareSignatureVerifiesTheFiles) {
  for (const std::uint32_t action : {0x8u, 0x10u, 0x20u, 0x40u}) {
    GivenFreshParser();
    GivenSlot("a.bin");
    ExpectRefused(Signature(action, 1, "2"), "Digital signature: Signature file is missing!\n");
    EXPECT_EQ(SignArgs().U32(sign_at::enumActionType), 2u);
  }
}

TEST_F(IspArgsJudge, ProgrammingWithTheKeyOnTheDeviceLeavesTheVerdictToThePlugIn) {
  GivenSlot("a.bin");
  EXPECT_EQ(Judge(Signature(kIsp, 1, "4")), 1);
  EXPECT_EQ(m_out, "Digital signature: Signature file is missing!\n");
  EXPECT_EQ(SignArgs().U32(sign_at::enumActionType), 2u);
  EXPECT_EQ(SignArgs().Narrow(sign_at::szFwFile), m_scratch / "a.bin")
      << "resolved before the refusal";
  EXPECT_EQ(Setting().U32(setting_at::enumSWDigitalSignatureMode), 4u);
}

TEST_F(IspArgsJudge, ProgrammingInFactoryModeSkipsTheVerdict) {
  GivenSlot("a.bin");
  STRUCT_CP_ISP_CMD_ARGS args = Signature(kIsp, 1, "2");
  args.nIspMode = 2;
  EXPECT_EQ(Judge(args), 1);
  EXPECT_EQ(m_out, "");
  EXPECT_EQ(SignArgs().U32(sign_at::enumActionType), 2u);
  EXPECT_EQ(SignArgs().Narrow(sign_at::szFwFile), "a.bin") << "as typed";
}

TEST_F(IspArgsJudge, TheSignatureTextsReachTheirFields) {
  GivenSlot("a.bin");
  STRUCT_CP_ISP_CMD_ARGS args = Signature(kIsp, 2, "");
  args.strSignFile = "sign";
  args.strKeyPair = "pair";
  args.strVerifyKeyFile = "verify";
  args.strSignKeyFile = "signkey";
  args.strSubCertFile = "cert";
  args.strNextVerifyKeyFile = "next";
  EXPECT_EQ(Judge(args), 1);
  const char* const texts[] = {"a.bin", "sign", "pair", "verify", "signkey", "cert", "next"};
  for (std::size_t i = 0; i < 7; ++i) {
    EXPECT_EQ(SignArgs().Narrow(sign_at::szFwFile + 260 * i), texts[i]);
  }
}

constexpr std::string STRUCT_CP_ISP_CMD_ARGS::*kSignatureTexts[] = {
    &STRUCT_CP_ISP_CMD_ARGS::strBoot,          &STRUCT_CP_ISP_CMD_ARGS::strFw,
    &STRUCT_CP_ISP_CMD_ARGS::strSignFile,      &STRUCT_CP_ISP_CMD_ARGS::strKeyPair,
    &STRUCT_CP_ISP_CMD_ARGS::strVerifyKeyFile, &STRUCT_CP_ISP_CMD_ARGS::strSignKeyFile,
    &STRUCT_CP_ISP_CMD_ARGS::strSubCertFile,   &STRUCT_CP_ISP_CMD_ARGS::strNextVerifyKeyFile,
};

// The hardware type checks no file before programming, so that nothing else refuses.
TEST_F(IspArgsJudge, ASignatureTextThatDoesNotFitRefusesTheCommandLine) {
  GivenSlot("a.bin");
  for (std::string STRUCT_CP_ISP_CMD_ARGS::*const text : kSignatureTexts) {
    STRUCT_CP_ISP_CMD_ARGS args = Signature(kIsp, 2, "");
    args.*text = std::string(259, 't');
    EXPECT_EQ(Judge(args), 1);
    EXPECT_EQ(m_out, "");
    args.*text += 't';
    EXPECT_EQ(Judge(args), 0);
    EXPECT_EQ(m_out, "Path is too long for a signed run: " + std::string(260, 't') + "\n");
  }
}

TEST_F(IspArgsJudge, WithoutASignatureTypeNoTextIsTooLong) {
  GivenSlot("a.bin");
  for (std::string STRUCT_CP_ISP_CMD_ARGS::*const text : kSignatureTexts) {
    STRUCT_CP_ISP_CMD_ARGS args = Signature(kIsp, 0, "");
    args.*text = std::string(3000, 't');
    EXPECT_EQ(Judge(args), 1);
    EXPECT_EQ(m_out, "");
  }
}

// It was cut to the firmware's own path, and a signer would have written over the firmware.
TEST_F(IspArgsJudge, ADefaultSignaturePathThatDoesNotFitRefusesToSign) {
  const std::string directory = GivenDirectory(m_scratch / std::string(150, 'd')) + "/";
  for (const std::size_t bytes : {255u, 256u, 259u}) {
    const std::string fw = GivenFile(directory + std::string(bytes - directory.size(), 'f'), "");
    STRUCT_CP_ISP_CMD_ARGS args = Signature(kSign, 1, "2");
    args.strFw = fw;
    EXPECT_EQ(Judge(args), bytes == 255 ? 1 : 0) << bytes;
    EXPECT_EQ(m_out, bytes == 255 ? "" : "Path is too long for a signed run: " + fw + ".sig\n");
    args.strSignFile = "a.sig";
    EXPECT_EQ(Judge(args), 1) << "a signature path of its own";
  }
}

TEST_F(IspArgsJudge, TheBootCodeIsTakenOnlyWithASignatureType) {
  GivenSlot("a.bin");
  STRUCT_CP_ISP_CMD_ARGS args = Signature(kIsp, 0, "");
  args.strBoot = "boot.bin";
  EXPECT_EQ(Judge(args), 1);
  EXPECT_EQ(Setting().Narrow(setting_at::szBootFwPath), "");
  args.ulSignatureTypeBits = 2;
  EXPECT_EQ(Judge(args), 1);
  EXPECT_EQ(Setting().Narrow(setting_at::szBootFwPath), "boot.bin");
}

TEST_F(IspArgsJudge, FirmwareIsNeededOnlyByActionsThatProgram) {
  ExpectRefused(Action(kIsp), "Program fw bin path should not be empty!\n");
  STRUCT_CP_ISP_CMD_ARGS version = Action(0x80);
  version.ulInformationBits = 0x8;
  ExpectRefused(version, "Program fw bin path should not be empty!\n");
  version.ulInformationBits = 0x1;
  EXPECT_EQ(Judge(version), 1);
  STRUCT_CP_ISP_CMD_ARGS searched = Action(kIsp);
  searched.bSearchFw = 1;
  EXPECT_EQ(Judge(searched), 1);
  EXPECT_EQ(Setting().U32(setting_at::ulCount), 0u);
}

TEST_F(IspArgsJudge, AMissingFirmwareFileIsRefusedByItsFullPath) {
  ASSERT_EQ(m_parser->InsertCommandFwFile(0, "none.bin"), 1);
  ExpectRefused(Action(kIsp), "File open fail! " + (m_scratch / "none.bin") + "\n");
}

TEST_F(IspArgsJudge, ParametersOfAnActionAreJudgedOnlyForIt) {
  STRUCT_CP_ISP_CMD_ARGS args = Action(kErase);
  args.strFlagAddr = "junk";
  args.strWriteData = "junk";
  args.strDumpAddr = "junk";
  EXPECT_EQ(Judge(args), 1);
  args.ulActionBits = 0x8000;
  ExpectRefused(args, "");
  args.ulActionBits = 0x800000;
  ExpectRefused(args, "");
}

TEST_F(IspArgsJudge, TheSettingsFileIsNextToTheExecutableUnlessNamed) {
  const std::string directory = GetCurrentProcessDir(nullptr).GetUtf8String();
  ExpectSettingFile("", directory + "IspSetting.ini");
  ExpectSettingFile("/etc/x.ini", "/etc/x.ini");
  ExpectSettingFile("x.ini", directory + "x.ini");
}

TEST_F(IspArgsJudge, AnOverlongSettingsFileIsCutAt259Units) {
  const std::string name = "/" + std::string(300, 'x');
  ExpectSettingFile(name, name.substr(0, 259));
}

TEST_F(IspArgsJudge, AShorterSettingsFileLeavesNoTailOfTheFirst) {
  STRUCT_CP_ISP_CMD_ARGS args = Action(kErase);
  args.strSettingFile = "/long/path/of/settings.ini";
  EXPECT_EQ(Judge(args), 1);
  args.strSettingFile = "/a.ini";
  EXPECT_EQ(Judge(args), 1);
  EXPECT_EQ(Setting().Wide(setting_at::wszSettingFilePath), "/a.ini");
  for (std::size_t unit = 6; unit < 260; ++unit) {
    EXPECT_EQ(Setting().U32(setting_at::wszSettingFilePath + 4 * unit), 0u) << unit;
  }
}

}  // namespace
