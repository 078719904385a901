// SPDX-License-Identifier: MIT
//
// The whole chain: the executable, the reference signer and the simulated display. Nothing that is
// not genuine reaches the flash.
#include <sys/stat.h>

#include "support/end_to_end.h"

namespace {

constexpr const char* kNotGenuine =
    "Reference signer: the signature does not belong to this firmware and this key\n";
constexpr const char* kReadKey = "Get Key From Flash ...\n";
constexpr const char* kKeyRead = "Display 01 (simulated): verify key of 113 bytes read\n";
constexpr const char* kProgrammed = "Display 01 (simulated): 2 banks programmed and verified\n";

class ReferenceSigner : public testing::Test {
 protected:
  ReferenceSigner() {
    m_tool.WithIspPlugin(ZVISP_SIMULATOR).WithSignPlugin(ZVISP_SIGNER_FILE);
    for (const char* name : {"sign.key", "sign.pub", "other.key", "other.pub", "root.pub",
                             "line.key", "line.crt", "foreign.crt"}) {
      GivenFile(m_tool / name, ReadWholeFile(std::string(ZVISP_SIGNER_DATA_DIR "/") + name));
      chmod((m_tool / name).c_str(), 0600);
    }
    GivenFirmware(m_tool / "fw.bin", kFirmwareBytes);
  }

  void ExpectRun(const Words& words, const std::string& out, int status) {
    SCOPED_TRACE(Shown(words));
    Command command = m_tool.Line(words);
    command.environment["ZVISP_SIM_DIR"] = m_tool.Elsewhere("displays");
    const RunResult run = RunCommand(command);
    EXPECT_EQ(run.out, kBanner + out);
    EXPECT_EQ(run.err, "");
    EXPECT_EQ(run.status, status);
  }
  void ExpectSuccess(const Words& words, const std::string& lines = "") {
    ExpectRun(words, lines + kSuccess, 0);
  }
  void ExpectNotVerified(const Words& words, const std::string& lines) {
    ExpectRun(words, lines + FailLine("0x4003"), 3);
  }

  // Programming display 01 with what else is given.
  static Words Isp(Words words) {
    const Words start = {"--isp", "--comm", "1", "--bank", "0", "--sw", "--dsmode"};
    words.insert(words.begin(), start.begin(), start.end());
    return words;
  }

  std::string Display(const std::string& file) const {
    return m_tool.Elsewhere("displays") + "/display-" + file;
  }
  bool IsProgrammed() const {
    return FileExists(Display("01.flash")) && !ReadWholeFile(Display("01.flash")).empty();
  }
  bool HoldsTheFirmware() const {
    return IsProgrammed() && ReadWholeFile(Display("01.flash")).substr(0, kFirmwareBytes) ==
                                 ReadWholeFile(m_tool / "fw.bin");
  }

  static constexpr std::size_t kFirmwareBytes = 70000;
  Installation m_tool;
};

TEST_F(ReferenceSigner, ProgramsWhatAnExternalKeySigned) {
  ExpectSuccess({"--sign", "--sw", "--dsmode", "3", "--fw", "fw.bin", "--skfile", "sign.key"});
  ExpectSuccess(Isp({"3", "--fw", "fw.bin", "--signfile", "fw.bin.sig", "--vkfile", "sign.pub"}),
                kProgrammed);
  EXPECT_TRUE(HoldsTheFirmware());
}

TEST_F(ReferenceSigner, ProgramsNothingThatAnotherKeySigned) {
  ExpectSuccess({"--sign", "--sw", "--dsmode", "3", "--fw", "fw.bin", "--skfile", "other.key"});
  ExpectNotVerified(
      Isp({"3", "--fw", "fw.bin", "--signfile", "fw.bin.sig", "--vkfile", "sign.pub"}),
      kNotGenuine);
  EXPECT_FALSE(IsProgrammed());
}

TEST_F(ReferenceSigner, ProgramsNothingThatWasChangedAfterSigning) {
  ExpectSuccess({"--sign", "--sw", "--dsmode", "3", "--fw", "fw.bin", "--skfile", "sign.key"});
  std::string firmware = ReadWholeFile(m_tool / "fw.bin");
  firmware[65536] = static_cast<char>(firmware[65536] ^ 1);
  GivenFile(m_tool / "fw.bin", firmware);
  ExpectNotVerified(
      Isp({"3", "--fw", "fw.bin", "--signfile", "fw.bin.sig", "--vkfile", "sign.pub"}),
      kNotGenuine);
  EXPECT_FALSE(IsProgrammed());
}

TEST_F(ReferenceSigner, ProgramsUnderASubCertificateOfTheVerifyKeyOnly) {
  ExpectSuccess({"--sign", "--sw", "--dsmode", "3", "--fw", "fw.bin", "--skfile", "line.key"});
  const Words words = {"1",          "--fw",     "fw.bin",   "--signfile",
                       "fw.bin.sig", "--vkfile", "root.pub", "--subcert"};
  Words foreign = words, genuine = words;
  foreign.push_back("foreign.crt");
  genuine.push_back("line.crt");
  ExpectNotVerified(Isp(foreign),
                    "Reference signer: the sub-certificate is not signed by the verify key\n");
  EXPECT_FALSE(IsProgrammed());
  ExpectSuccess(Isp(genuine), kProgrammed);
  EXPECT_TRUE(HoldsTheFirmware());
}

TEST_F(ReferenceSigner, ProgramsWithATrainingKeyPairAndSaysSo) {
  const std::string line = "Reference signer: training key pair 4, never for production\n";
  const Words sign = {"--sign", "--sw", "--dsmode", "2", "--keypair", "4", "--fw", "fw.bin"};
  ExpectSuccess(sign, line);
  ExpectSuccess(Isp({"2", "--keypair", "4", "--fw", "fw.bin", "--signfile", "fw.bin.sig"}),
                line + kProgrammed);
  EXPECT_TRUE(HoldsTheFirmware());
}

TEST_F(ReferenceSigner, ProgramsWithTheKeyThatTheDeviceGives) {
  ExpectSuccess({"--sign", "--sw", "--dsmode", "4", "--fw", "fw.bin", "--skfile", "sign.key",
                 "--nextvkfile", "other.pub"});
  GivenFile(Display("01.key"), ReadWholeFile(m_tool / "sign.pub"));
  ExpectSuccess(Isp({"4", "--fw", "fw.bin", "--signfile", "fw.bin.sig"}),
                std::string(kReadKey) + kKeyRead + kProgrammed);
  EXPECT_TRUE(HoldsTheFirmware());
}

TEST_F(ReferenceSigner, ProgramsNothingWithoutTheRightKeyOnTheDevice) {
  const Words isp = Isp({"4", "--fw", "fw.bin", "--signfile", "fw.bin.sig"});
  ExpectSuccess({"--sign", "--sw", "--dsmode", "4", "--fw", "fw.bin", "--skfile", "sign.key",
                 "--nextvkfile", "other.pub"});
  ExpectRun(isp,
            kReadKey + ("Display 01: " + Display("01.key")) + " holds no verify key\n" +
                FailLine("0x5A2A"),
            42);
  GivenFile(Display("01.key"), ReadWholeFile(m_tool / "other.pub"));
  ExpectNotVerified(isp, kReadKey + std::string(kKeyRead) + kNotGenuine);
  EXPECT_FALSE(IsProgrammed());
}

TEST_F(ReferenceSigner, DoesNotCheckHardwareSignaturesOrFactoryProgramming) {
  ExpectSuccess({"--isp", "--comm", "1", "--bank", "0", "--hw", "--fw", "fw.bin"}, kProgrammed);
  EXPECT_TRUE(HoldsTheFirmware());
  ExpectSuccess({"--isp", "--comm", "2", "--bank", "0", "--factory", "--sw", "--fw", "fw.bin"},
                "Display 02 (simulated): 2 banks programmed and verified\n");
}

TEST_F(ReferenceSigner, ProgramsTheBootCodeFirstInTheFactory) {
  const std::string boot = GivenFirmware(m_tool / "boot.bin", 100, 2);
  ExpectSuccess(
      {"--isp", "--comm", "1", "--bank", "0", "--newboot", "--factory", "--boot", boot, "--sw",
       "--fw", "fw.bin"},
      "Display 00 (simulated): 1 bank programmed and verified\n" + std::string(kProgrammed));
  EXPECT_TRUE(HoldsTheFirmware());
  EXPECT_EQ(ReadWholeFile(Display("00.flash")).substr(0, 100), ReadWholeFile(boot));
}

TEST_F(ReferenceSigner, RefusesASoftwareTypeWithoutAMode) {
  const std::string line = "Reference signer: software mode 0 is none of 1 to 4\n";
  ExpectRun({"--sign", "--sw", "--fw", "fw.bin"}, line + FailLine("0x4002"), 2);
  GivenFile(m_tool / "fw.sig", "x");
  ExpectNotVerified({"--verify", "--sw", "--fw", "fw.bin", "--signfile", "fw.sig"}, line);
}

TEST_F(ReferenceSigner, SigningIsRefusedWhenTheSignaturePathWouldBeCutToThatOfTheFirmware) {
  // The working directory, "/" and this name have 259 bytes; ".sig" does not fit after them.
  const std::string name(259 - (m_tool / "").size(), 'f');
  GivenFile(m_tool / name, "firmware");
  const RunResult run =
      m_tool.Run({"--sign", "--sw", "--dsmode", "3", "--fw", name, "--skfile", "sign.key"});
  EXPECT_EQ(run.out,
            "Path is too long for a signed run: " + (m_tool / name) + ".sig\n" + kRejected);
  EXPECT_EQ(ReadWholeFile(m_tool / name), "firmware");
}

}  // namespace
