// SPDX-License-Identifier: MIT
//
// What the reference signer does to files, and what it makes of others: through the executable.
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <thread>

#include "support/end_to_end.h"

namespace {

class SignerFiles : public testing::Test {
 protected:
  SignerFiles() {
    m_tool.WithIspPlugin(ZVISP_SIMULATOR).WithSignPlugin(ZVISP_SIGNER_FILE);
    for (const char* name : {"sign.key", "sign.pub", "other.key", "other.pub", "line.key",
                             "line.crt", "root.pub", "house.pub", "code.crt", "tls.crt"}) {
      GivenFile(m_tool / name, ReadWholeFile(std::string(ZVISP_SIGNER_DATA_DIR "/") + name));
      chmod((m_tool / name).c_str(), 0600);
    }
    GivenFirmware(m_tool / "fw.bin", 70000);
  }

  static Words SignWith(const std::string& key, const Words& more = {}) {
    Words words = {"--sign", "--sw", "--dsmode", "3", "--fw", "fw.bin", "--skfile", key};
    words.insert(words.end(), more.begin(), more.end());
    return words;
  }
  static Words VerifyWith(const std::string& key) {
    return {"--verify", "--sw",       "--dsmode",   "3",        "--fw",
            "fw.bin",   "--signfile", "fw.bin.sig", "--vkfile", key};
  }

  void ExpectRun(const Words& words, const std::string& out, int status) {
    const RunResult run = m_tool.Run(words);
    EXPECT_EQ(run.out, kBanner + out) << Shown(words);
    EXPECT_EQ(run.err, "");
    EXPECT_EQ(run.status, status);
  }
  void ExpectSuccess(const Words& words, const std::string& lines = "") {
    ExpectRun(words, lines + kSuccess, 0);
  }
  // Expects a command line that is refused before the signer is called.
  void ExpectRejected(const Words& words, const std::string& line) {
    const RunResult run = m_tool.Run(words);
    EXPECT_EQ(run.out, line + "\n" + kRejected) << Shown(words);
    EXPECT_EQ(run.status, 0);
  }
  void ExpectNotSigned(const Words& words, const std::string& line) {
    ExpectRun(words, line + "\n" + FailLine("0x4002"), 2);
  }

  Installation m_tool;
};

TEST_F(SignerFiles, NoFileOfTheRequestIsOverwritten) {
  const Words files = {"--vkfile", "sign.pub",     "--subcert",
                       "line.crt", "--nextvkfile", "other.pub"};
  for (const char* target : {"fw.bin", "sign.key", "sign.pub", "line.crt", "other.pub"}) {
    const std::string before = ReadWholeFile(m_tool / target);
    Words words = SignWith("sign.key", files);
    words.insert(words.end(), {"--signfile", target});
    ExpectNotSigned(
        words, "Reference signer: the signature would overwrite a file that it is made from: " +
                   (m_tool / target));
    EXPECT_EQ(ReadWholeFile(m_tool / target), before);
  }
}

TEST_F(SignerFiles, AFileThatIsNoSignatureIsNotOverwritten) {
  GivenFile(m_tool / "diary.txt", "dear diary");
  ExpectNotSigned(
      SignWith("sign.key", {"--signfile", "diary.txt"}),
      "Reference signer: the signature would overwrite a file that is not a signature: " +
          (m_tool / "diary.txt"));
  EXPECT_EQ(ReadWholeFile(m_tool / "diary.txt"), "dear diary");
}

TEST_F(SignerFiles, ASymbolicLinkIsNotFollowed) {
  ExpectSuccess(SignWith("other.key", {"--signfile", "other.sig"}));
  const std::string before = ReadWholeFile(m_tool / "other.sig");
  for (const char* name : {"named.sig", "fw.bin.sig"})
    ASSERT_EQ(symlink("other.sig", (m_tool / name).c_str()), 0);
  ExpectRejected(SignWith("sign.key", {"--signfile", "named.sig"}),
                 "Digital signature: Signature file is a symbolic link, name the file itself! "
                 "named.sig");
  // The name that the tool makes itself is the plug-in's to judge.
  ExpectNotSigned(
      SignWith("sign.key"),
      "Reference signer: the signature file is a symbolic link, name the file itself: " +
          (m_tool / "fw.bin.sig"));
  EXPECT_EQ(ReadWholeFile(m_tool / "other.sig"), before);
}

TEST_F(SignerFiles, ADirectoryThatDoesNotExistIsNotMadeAFile) {
  for (const char* name : {"none/fw.sig", "none/", "none/below/fw.sig"}) {
    ExpectRejected(SignWith("sign.key", {"--signfile", name}),
                   "Digital signature: Signature file is in a directory that does not exist! " +
                       std::string(name));
  }
  EXPECT_FALSE(FileExists(m_tool / "none"));
}

TEST_F(SignerFiles, AKillAtAnyMomentLeavesTheOldSignatureOrTheNewOne) {
  ExpectSuccess(SignWith("sign.key"));
  for (int round = 0; round < 40; ++round) {
    StartedRun run(m_tool.Line(SignWith(round % 2 == 0 ? "other.key" : "sign.key")));
    std::this_thread::sleep_for(std::chrono::microseconds(150 * round));
    run.Kill(SIGKILL);
    run.Wait();
    const bool by_sign = m_tool.Run(VerifyWith("sign.pub")).status == 0;
    const bool by_other = m_tool.Run(VerifyWith("other.pub")).status == 0;
    EXPECT_NE(by_sign, by_other) << "round " << round;
  }
}

TEST_F(SignerFiles, ASubCertificateForOtherPurposesThanCodeProvesNothing) {
  ExpectSuccess(SignWith("line.key"));
  Words words = {"--verify",   "--sw",       "--dsmode", "1",         "--fw",     "fw.bin",
                 "--signfile", "fw.bin.sig", "--vkfile", "house.pub", "--subcert"};
  words.push_back("code.crt");
  ExpectSuccess(words);
  words.back() = "tls.crt";
  ExpectRun(words,
            "Reference signer: the sub-certificate may not be used for code signing: its extended "
            "key usage names other purposes\n" +
                FailLine("0x4003"),
            3);
}

TEST_F(SignerFiles, AKeyFileThatOthersMayWriteIsWarnedOf) {
  chmod((m_tool / "sign.key").c_str(), 0622);
  ExpectSuccess(SignWith("sign.key"),
                "Reference signer: warning: others may write the sign key file: " +
                    (m_tool / "sign.key") + " has mode 0622, a private key should have 0600\n");
}

#ifdef ZVISP_FAILING_LIBCRYPTO

// Allocations of libcrypto fail one after another: the run ends by a verdict and never by a crash.
TEST_F(SignerFiles, MemoryThatIsExhaustedInLibcryptoNeverEndsInACrash) {
  ExpectSuccess(SignWith("line.key"));
  const Words modes[] = {{"3", "--vkfile", "sign.pub"},
                         {"1", "--vkfile", "root.pub", "--subcert", "line.crt"}};
  for (const Words& mode : modes) {
    Words words = {"--verify", "--fw", "fw.bin", "--signfile", "fw.bin.sig", "--sw", "--dsmode"};
    words.insert(words.end(), mode.begin(), mode.end());
    Command command = m_tool.Line(words);
    command.environment["LD_PRELOAD"] = ZVISP_FAILING_LIBCRYPTO;
    int refused = 0;
    for (int at = 1; at < 1800; at += at < 80 ? 1 : 37) {
      command.environment["ZVISP_FAIL_LIBCRYPTO_AT"] = std::to_string(at);
      const RunResult run = RunCommand(command);
      EXPECT_EQ(run.signal, 0) << "allocation " << at << " in mode " << mode[0];
      refused += run.status == 3 ? 1 : 0;
    }
    EXPECT_GT(refused, 50) << "mode " << mode[0];
  }
}

#endif

}  // namespace
