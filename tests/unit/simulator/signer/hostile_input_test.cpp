// SPDX-License-Identifier: MIT
//
// Inputs that no honest request has. Each is refused in one line, quickly, and without harm to
// other files.
#include "signer_fixture.h"

#include <signal.h>
#include <sys/resource.h>
#include <unistd.h>

#include <filesystem>

#include "support/unprivileged.h"

namespace {

using testing::EndsWith;
using testing::StartsWith;

class HostileInput : public Signer {
 protected:
  HostileInput() {
    EXPECT_TRUE(Sign(SignRequest()));
    EXPECT_TRUE(Verify(VerifyRequest()));
  }

  // Expects that verifying is refused with each input in turn named by this path.
  void ExpectRefusedEverywhere(const std::string& path, const std::string& problem) {
    for (char(Args::*field)[260] :
         {&Args::szFwFile, &Args::szSignatureFile, &Args::szVerifyKeyFile}) {
      Args args = VerifyRequest();
      Put(args.*field, path);
      EXPECT_FALSE(Verify(args)) << path;
      EXPECT_THAT(Printed(), StartsWith("Reference signer: the "));
      EXPECT_THAT(Printed(), testing::HasSubstr(problem));
      EXPECT_THAT(Printed(), EndsWith("\n"));
    }
    Args args = SignRequest();
    Put(args.szSignKeyFile, path);
    EXPECT_FALSE(Sign(args)) << path;
    EXPECT_THAT(Printed(), testing::HasSubstr(problem));
  }
};

TEST_F(HostileInput, RefusesWhatIsNoRegularFile) {
  ASSERT_EQ(mkfifo((m_directory / "pipe").c_str(), 0600), 0);
  ExpectRefusedEverywhere(m_directory / "pipe", "file is not a regular file: @/pipe");
  ExpectRefusedEverywhere(GivenDirectory(m_directory / "dir"), "file is not a regular file: @/dir");
  ExpectRefusedEverywhere("/dev/zero", "file is not a regular file: /dev/zero");
}

TEST_F(HostileInput, RefusesMissingAndEmptyFiles) {
  ExpectRefusedEverywhere(m_directory / "none",
                          "file cannot be read: @/none: No such file or directory");
  ExpectRefusedEverywhere(GivenFile(m_directory / "empty", ""), "file is empty: @/empty");
}

TEST_F(HostileInput, RefusesFilesThatWouldFillTheMemory) {
  ExpectRefusedEverywhere(GivenSparseFile(m_directory / "huge", 5000000000), "file is larger than");
  Args args = VerifyRequest();
  Put(args.szFwFile, GivenSparseFile(m_directory / "huge", 67108865));
  EXPECT_FALSE(Verify(args));
  EXPECT_EQ(Printed(),
            "Reference signer: the firmware file is larger than 67108864 bytes: @/huge\n");
  Put(args.szFwFile, GivenSparseFile(m_directory / "huge", 67108864));
  EXPECT_FALSE(Verify(args));
  EXPECT_EQ(Printed(),
            "Reference signer: the signature does not belong to this firmware and this key\n");
}

TEST_F(HostileInput, RefusesAFileThatMayNotBeRead) {
  if (geteuid() == 0) GTEST_SKIP() << "the superuser may read every file";
  GivenFile(m_directory / "closed", "x");
  chmod((m_directory / "closed").c_str(), 0);
  ExpectRefusedEverywhere(m_directory / "closed", "file cannot be read: @/closed: Permission");
}

TEST_F(HostileInput, RefusesPemThatIsWrittenInAnotherWay) {
  const std::string good = ReadWholeFile(Key("sign.pub"));
  const std::string digits = good.substr(27, 60);
  const std::string end = "\n-----END PUBLIC KEY-----\n";
  const struct {
    std::string text;
    const char* reason;
  } kCases[] = {
      {"\n" + good, "the verify key is not PEM text \"PUBLIC KEY\""},
      {"key:\n" + good, "the verify key is not PEM text \"PUBLIC KEY\""},
      {good + good, "the verify key is not written in the canonical PEM form"},
      {good + "\n", "the verify key is cut short, or has something after its PEM block"},
      {good.substr(0, 27) + digits.substr(0, 30) + "\n" + digits.substr(30) + end,
       "the verify key is not written in the canonical PEM form"},
      {good.substr(0, 27) + digits + "\r" + end,
       "the verify key is not written in the canonical PEM form"},
      {good.substr(0, 27) + " " + digits.substr(1) + end,
       "the verify key is not written in the canonical PEM form"},
      {good.substr(0, 27) + end, "the verify key is not written in the canonical PEM form"},
      {good.substr(0, 27) + "====" + end,
       "the verify key is not written in the canonical PEM form"},
      {good.substr(0, 25) + end, "the verify key is not PEM text \"PUBLIC KEY\""},
      {"-----BEGIN \033[31mKEY-----\n", "the verify key is not PEM text \"PUBLIC KEY\""},
      {"-----BEGIN " + std::string(60000, 'A'),
       "the verify key is not PEM text \"PUBLIC KEY\" but "
       "\"AAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAA\""},
  };
  for (const auto& [text, reason] : kCases) {
    Args args = VerifyRequest();
    Put(args.szVerifyKeyFile, GivenFile(m_directory / "bad.pub", text));
    EXPECT_FALSE(Verify(args)) << text.substr(0, 200);
    EXPECT_EQ(Printed(), std::string("Reference signer: ") + reason + "\n");
  }
}

TEST_F(HostileInput, ReadsNoFurtherThanTheEndOfAField) {
  Args args = VerifyRequest();
  std::memset(args.szVerifyKeyFile, 'k', sizeof args.szVerifyKeyFile);
  EXPECT_FALSE(Verify(args));
  EXPECT_EQ(Printed(), "Reference signer: the verify key file cannot be read: " +
                           std::string(260, 'k') + ": File name too long\n");
}

TEST_F(HostileInput, NeverOverwritesWhatTheSignatureIsMadeFrom) {
  const std::string firmware = m_directory / "fw.bin";
  ASSERT_EQ(link(firmware.c_str(), (m_directory / "fw.hard").c_str()), 0);
  for (const char* name : {"fw.bin", "fw.hard", "sign.key", "sign.pub", "line.crt", "other.pub"}) {
    Args args = SignRequest();
    Put(args.szVerifyKeyFile, Key("sign.pub"));
    Put(args.szSubCertFile, Key("line.crt"));
    Put(args.szNextVerifyKeyFile, Key("other.pub"));
    Put(args.szSignatureFile, m_directory / name);
    EXPECT_FALSE(Sign(args));
    EXPECT_EQ(Printed(),
              "Reference signer: the signature would overwrite a file that it is made from: @/" +
                  std::string(name) + "\n");
  }
  EXPECT_EQ(ReadWholeFile(firmware), "firmware");
}

TEST_F(HostileInput, NeverWritesThroughASymbolicLink) {
  const std::string old = ReadWholeFile(m_directory / "fw.sig");
  ASSERT_EQ(symlink("fw.sig", (m_directory / "to-a-signature").c_str()), 0);
  ASSERT_EQ(symlink("nowhere", (m_directory / "to-nothing").c_str()), 0);
  GivenFile(m_directory / "fw.bin", "other firmware");
  for (const char* name : {"to-a-signature", "to-nothing"}) {
    Args args = SignRequest();
    Put(args.szSignatureFile, m_directory / name);
    EXPECT_FALSE(Sign(args));
    EXPECT_EQ(Printed(),
              "Reference signer: the signature file is a symbolic link, name the file itself: @/" +
                  std::string(name) + "\n");
  }
  EXPECT_EQ(ReadWholeFile(m_directory / "fw.sig"), old);
  EXPECT_FALSE(FileExists(m_directory / "nowhere"));
}

TEST_F(HostileInput, NeverOverwritesAFileThatIsNoSignature) {
  const std::string title = "Zorvane firmware signature ";
  for (const std::string& content : {std::string("diary"), title.substr(0, 26), "\n" + title + "1",
                                     title + std::string(65536, 'x')}) {
    GivenFile(m_directory / "fw.sig", content);
    EXPECT_FALSE(Sign(SignRequest())) << content.substr(0, 40);
    EXPECT_EQ(Printed(),
              "Reference signer: the signature would overwrite a file that is not a signature: "
              "@/fw.sig\n");
    EXPECT_EQ(ReadWholeFile(m_directory / "fw.sig"), content);
  }
}

TEST_F(HostileInput, AFailureWhileItIsWrittenLeavesTheOldSignatureAndNothingElse) {
  const std::string old = ReadWholeFile(m_directory / "fw.sig");
  GivenFile(m_directory / "fw.bin", "other firmware");
  const auto files = [&] {
    const std::filesystem::directory_iterator all(m_directory.Path());
    return std::distance(begin(all), end(all));
  };
  const auto before = files();
  const Args args = SignRequest();
  EXPECT_EQ(InChild([&] {
              signal(SIGXFSZ, SIG_IGN);
              const rlimit limit = {100, 100};
              setrlimit(RLIMIT_FSIZE, &limit);
              return m_sign(&args);
            }),
            0);
  EXPECT_EQ(ReadWholeFile(m_directory / "fw.sig"), old);
  EXPECT_EQ(files(), before);
}

TEST_F(HostileInput, AProtectedSignatureIsNotReplaced) {
  const std::string old = ReadWholeFile(m_directory / "fw.sig");
  GivenFile(m_directory / "fw.bin", "other firmware");
  Args args = SignRequest();
  chmod(args.szSignKeyFile, 0444);
  SetMode(m_directory / "fw.sig", 0444);
  SetMode(m_directory.Path(), 0777);
  EXPECT_EQ(AsOrdinaryUser([&] { return m_sign(&args); }), 0);
  EXPECT_EQ(ReadWholeFile(m_directory / "fw.sig"), old);
}

TEST_F(HostileInput, TheNameOfTheNewFileIsNotALinkToAnother) {
  GivenFile(m_directory / "victim", "victim");
  const std::string fresh = ".signature-" + std::to_string(getpid()) + ".new";
  ASSERT_EQ(symlink("victim", (m_directory / fresh).c_str()), 0);
  EXPECT_TRUE(Sign(SignRequest()));
  EXPECT_EQ(ReadWholeFile(m_directory / "victim"), "victim");
  EXPECT_FALSE(FileExists(m_directory / fresh));
}

TEST_F(HostileInput, WritesNoSignatureIntoWhatIsNoRegularFile) {
  ASSERT_EQ(mkfifo((m_directory / "pipe").c_str(), 0600), 0);
  GivenDirectory(m_directory / "dir");
  const struct {
    std::string path, reason;
  } kCases[] = {
      {"/dev/null", "the signature file is not a regular file: /dev/null"},
      {m_directory / "pipe", "the signature file is not a regular file: @/pipe"},
      {m_directory / "dir", "the signature file cannot be written: @/dir: Is a directory"},
      {m_directory / "none/fw.sig",
       "the signature file cannot be written: @/none/fw.sig: No such file or directory"},
      {"", "no signature file was given"},
  };
  for (const auto& [path, reason] : kCases) {
    Args args = SignRequest();
    Put(args.szSignatureFile, path);
    EXPECT_FALSE(Sign(args));
    EXPECT_EQ(Printed(), "Reference signer: " + reason + "\n");
  }
}

}  // namespace
