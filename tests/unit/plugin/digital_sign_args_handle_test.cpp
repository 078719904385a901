// SPDX-License-Identifier: MIT
#include "plugin/digital_sign_args_handle.h"

#include <unistd.h>

#include <cstring>
#include <string>

#include "support/files.h"
#include "support/printed.h"
#include "support/scratch_dir.h"

#include <gtest/gtest.h>

namespace {

using Args = STRUCT_C_STYLE_CP_DIGITAL_SIGN_ARGS;

constexpr auto kSign = CP_DIGITAL_SIGNATURE_ACTION_SIGN;
constexpr auto kVerify = CP_DIGITAL_SIGNATURE_ACTION_VERIFY;

// A request as judgement hands it over: numbers and the texts as typed.
struct Request {
  std::uint32_t action = 1;
  std::uint32_t type = 1;
  std::uint32_t sw_mode = 3;
  const char* fw = "fw.bin";
  const char* sign_file = "fw.sig";
  const char* key_pair = "";
  const char* verify_key = "";
  const char* sign_key = "";
  const char* sub_cert = "";
  const char* next_verify_key = "";
};

// In a current directory that holds "fw.bin", "fw.sig", "v.key", "s.key", "sub.crt" and "n.key".
class DigitalSignArgsHandle : public testing::Test {
 protected:
  DigitalSignArgsHandle() {
    for (const char* name : {"fw.bin", "fw.sig", "v.key", "s.key", "sub.crt", "n.key"}) {
      GivenFile(m_directory / name, name);
    }
    m_handle.SetCurrentDir(m_directory / "");
  }

  Args Record(const Request& request) const {
    Args args;
    args.enumActionType = request.action;
    args.enumSignatureType = request.type;
    args.enumSwMode = request.sw_mode;
    std::strcpy(args.szFwFile, request.fw);
    std::strcpy(args.szSignatureFile, request.sign_file);
    std::strcpy(args.szKeyPair, request.key_pair);
    std::strcpy(args.szVerifyKeyFile, request.verify_key);
    std::strcpy(args.szSignKeyFile, request.sign_key);
    std::strcpy(args.szSubCertFile, request.sub_cert);
    std::strcpy(args.szNextVerifyKeyFile, request.next_verify_key);
    return args;
  }

  // The verdict, with what was printed kept for Printed().
  bool Judge(Args& args) {
    bool accepted = false;
    m_printed = ::Printed([&] { accepted = m_handle.JudgeArgument(&args); });
    return accepted;
  }

  // What was printed, the current directory written as "@".
  std::string Printed() const {
    std::string text = m_printed;
    const std::string directory = m_directory / "";
    for (std::size_t at = text.find(directory); at != std::string::npos; at = text.find(directory))
      text.replace(at, directory.size(), "@");
    return text;
  }

  std::string Full(const char* name) const { return m_directory / name; }

  ScratchDir m_directory;
  CCpDigitalSignArgsHandle m_handle;
  std::string m_printed;
};

TEST_F(DigitalSignArgsHandle, RemembersTheCurrentDirectory) {
  EXPECT_EQ(m_handle.GetCurrentDir(), m_directory / "");
  EXPECT_EQ(CCpDigitalSignArgsHandle().GetCurrentDir(), "");
}

TEST_F(DigitalSignArgsHandle, RefusesEachIncompleteRequestWithItsMessage) {
  const struct {
    Request request;
    const char* message;
  } kCases[] = {
      {{.sw_mode = 1, .fw = "none.bin"},
       "Digital signature: Tavero digital signature can not support sign function!\n"},
      {{.action = 2, .type = 2, .fw = "none.bin"},
       "Digital signature: Hw digital signature can not support verify function!\n"},
      {{.fw = "none.bin"}, "Digital signature: fw file is not exist! @none.bin\n"},
      {{.action = 2, .sign_file = ""}, "Digital signature: Signature file is missing!\n"},
      {{.action = 2, .sign_file = "no.sig"},
       "Digital signature: Signature file is not exist! @no.sig\n"},
      {{.action = 0}, "Digital signature: Digital signature action type illegal! 0\n"},
      {{.action = 3}, "Digital signature: Digital signature action type illegal! 3\n"},
      {{.action = 2, .sw_mode = 1},
       "Digital signature: Tavero verify key file should not be empty!\n"},
      {{.action = 2, .sw_mode = 1, .verify_key = "no.key"},
       "Digital signature: Tavero verify key file is not exist! @no.key\n"},
      {{.action = 2, .sw_mode = 1, .verify_key = "v.key"},
       "Digital signature: Tavero subcert file should not be empty!\n"},
      {{.action = 2, .sw_mode = 1, .verify_key = "v.key", .sub_cert = "no.crt"},
       "Digital signature: Tavero subcert file is not exist! @no.crt\n"},
      {{.sw_mode = 2, .key_pair = "two"},
       "Digital signature: Zrv internal key pair value is illegal! --keypair two \n"},
      {{.sw_mode = 2, .key_pair = "5"},
       "Digital signature: Zrv Key Pair out if range! --keypair 5\n"},
      {{.sw_mode = 2, .key_pair = "-1"},
       "Digital signature: Zrv Key Pair out if range! --keypair -1\n"},
      {{.sw_mode = 3}, "Digital signature: Zrv external sign key file should not be empty!\n"},
      {{.sw_mode = 3, .sign_key = "no.key"},
       "Digital signature: Zrv external sign key file is not exist! @no.key\n"},
      {{.action = 2, .sw_mode = 3},
       "Digital signature: Zrv external verify key file should not be empty!\n"},
      {{.action = 2, .sw_mode = 3, .verify_key = "no.key"},
       "Digital signature: Zrv external verify key file is not exist! @no.key\n"},
      {{.sw_mode = 4, .sign_key = "s.key"},
       "Digital signature: Zrv external next verify key file should not be empty!\n"},
      {{.action = 2, .sw_mode = 4, .next_verify_key = "no.key"},
       "Digital signature: Zrv external next verify key file is not exist! @no.key\n"},
      {{.sw_mode = 4, .next_verify_key = "n.key"},
       "Digital signature: Zrv external sign key file should not be empty!\n"},
      {{.sw_mode = 4, .sign_key = "no.key", .next_verify_key = "n.key"},
       "Digital signature: Zrv external sign key file is not exist! @no.key\n"},
      {{.type = 2, .sign_key = "no.key"},
       "Digital signature: Zrv hw sign key file is not exist! @no.key\n"},
      {{.type = 2, .sign_key = "s.key"},
       "Digital signature: Zrv hw next verify key file should not be empty!\n"},
      {{.type = 2, .next_verify_key = "no.key"},
       "Digital signature: Zrv hw next verify key file is not exist! @no.key\n"},
  };
  for (const auto& [request, message] : kCases) {
    Args args = Record(request);
    EXPECT_FALSE(Judge(args)) << message;
    EXPECT_EQ(Printed(), message);
  }
}

TEST_F(DigitalSignArgsHandle, AcceptsEachCompleteRequestWithoutAWord) {
  const Request kCases[] = {
      {.action = 2, .sw_mode = 1, .verify_key = "v.key", .sub_cert = "sub.crt"},
      {.action = 1, .sw_mode = 2},
      {.action = 2, .sw_mode = 2, .key_pair = "4"},
      {.action = 1, .sw_mode = 3, .sign_key = "s.key"},
      {.action = 2, .sw_mode = 3, .verify_key = "v.key"},
      {.action = 1, .sw_mode = 4, .sign_key = "s.key", .next_verify_key = "n.key"},
      {.action = 2, .sw_mode = 4, .next_verify_key = "n.key"},
      {.action = 1, .type = 2, .sw_mode = 1, .sign_key = "s.key", .next_verify_key = "n.key"},
      {.action = 1, .type = 2, .sw_mode = 0, .next_verify_key = "n.key"},
      {.action = 1, .type = 0},
      {.action = 2, .type = 3},
  };
  for (const Request& request : kCases) {
    Args args = Record(request);
    EXPECT_TRUE(Judge(args)) << "type " << request.type << " mode " << request.sw_mode;
    EXPECT_EQ(Printed(), "");
    EXPECT_EQ(args.szFwFile, Full("fw.bin"));
    EXPECT_EQ(args.szSignatureFile, Full("fw.sig"));
  }
}

TEST_F(DigitalSignArgsHandle, LeavesASoftwareTypeWithoutAModeToThePlugIn) {
  for (const std::uint32_t action : {1u, 2u}) {
    Args args = Record({.action = action, .sw_mode = 0});
    EXPECT_TRUE(Judge(args));
    EXPECT_EQ(Printed(), "");
  }
}

TEST_F(DigitalSignArgsHandle, ReplacesOnlyTheFilesThatItNeedsByTheirFullPaths) {
  Args args = Record({.sw_mode = 3, .verify_key = "v.key", .sign_key = "s.key"});
  EXPECT_TRUE(Judge(args));
  EXPECT_EQ(args.szSignKeyFile, Full("s.key"));
  EXPECT_STREQ(args.szVerifyKeyFile, "v.key");

  args = Record({.action = 2, .sw_mode = 1, .verify_key = "v.key", .sub_cert = "sub.crt"});
  EXPECT_TRUE(Judge(args));
  EXPECT_EQ(args.szVerifyKeyFile, Full("v.key"));
  EXPECT_EQ(args.szSubCertFile, Full("sub.crt"));

  args = Record({.type = 2, .sign_key = "s.key", .next_verify_key = "n.key"});
  EXPECT_TRUE(Judge(args));
  EXPECT_EQ(args.szSignKeyFile, Full("s.key"));
  EXPECT_EQ(args.szNextVerifyKeyFile, Full("n.key"));
}

TEST_F(DigitalSignArgsHandle, KeepsAnAbsoluteNameAsItIs) {
  const std::string firmware = m_directory.Path() + "/./fw.bin";
  Args args = Record({.fw = firmware.c_str(), .sign_key = "s.key"});
  EXPECT_TRUE(Judge(args));
  EXPECT_EQ(args.szFwFile, firmware);
}

TEST_F(DigitalSignArgsHandle, SigningWithoutANameAppendsSigToTheFirmware) {
  Args args = Record({.sign_file = "", .sign_key = "s.key"});
  EXPECT_TRUE(Judge(args));
  EXPECT_EQ(args.szSignatureFile, Full("fw.bin.sig"));
}

TEST_F(DigitalSignArgsHandle, SigningNeedsNoExistingSignatureFile) {
  Args args = Record({.sign_file = "new.sig", .sign_key = "s.key"});
  EXPECT_TRUE(Judge(args));
  EXPECT_EQ(args.szSignatureFile, Full("new.sig"));
}

TEST_F(DigitalSignArgsHandle, SigningRefusesANameInADirectoryThatDoesNotExist) {
  for (const char* name : {"none/new.sig", "none/", "fw.bin/new.sig"}) {
    Args args = Record({.sign_file = name, .sign_key = "s.key"});
    EXPECT_FALSE(Judge(args));
    EXPECT_EQ(Printed(),
              "Digital signature: Signature file is in a directory that does not exist! @" +
                  std::string(name) + "\n");
  }
  GivenDirectory(m_directory / "there");
  Args args = Record({.sign_file = "there/new.sig", .sign_key = "s.key"});
  EXPECT_TRUE(Judge(args));
  EXPECT_EQ(args.szSignatureFile, Full("there/new.sig"));
}

TEST_F(DigitalSignArgsHandle, SigningRefusesASymbolicLink) {
  ASSERT_EQ(symlink("fw.sig", (m_directory / "link.sig").c_str()), 0);
  ASSERT_EQ(symlink("nothing", (m_directory / "open.sig").c_str()), 0);
  for (const std::string& name :
       {std::string("link.sig"), std::string("open.sig"), Full("link.sig")}) {
    Args args = Record({.sign_file = name.c_str(), .sign_key = "s.key"});
    EXPECT_FALSE(Judge(args));
    EXPECT_EQ(Printed(),
              "Digital signature: Signature file is a symbolic link, name the file itself! @" +
                  name.substr(name.find_last_of('/') + 1) + "\n");
  }
}

TEST_F(DigitalSignArgsHandle, LooksForAHardwareSignKeyWithANameOfOneCharacter) {
  Args args = Record({.type = 2, .sign_key = "k", .next_verify_key = "n.key"});
  EXPECT_FALSE(Judge(args));
  EXPECT_EQ(Printed(), "Digital signature: Zrv hw sign key file is not exist! @k\n");
  GivenFile(m_directory / "k", "");
  EXPECT_TRUE(Judge(args));
  EXPECT_EQ(args.szSignKeyFile, Full("k"));
}

TEST_F(DigitalSignArgsHandle, TakesADirectoryForAMissingFile) {
  GivenDirectory(m_directory / "keys");
  Args args = Record({.sign_key = "keys"});
  EXPECT_FALSE(Judge(args));
  EXPECT_EQ(Printed(), "Digital signature: Zrv external sign key file is not exist! @keys\n");
}

TEST_F(DigitalSignArgsHandle, ReadsTheKeyPairAsANumberOfAnyBase) {
  const struct {
    const char* text;
    int index;
  } kCases[] = {
      // clang-format off
      {"", 0},
      {"0", 0},
      {"4", 4},
      {" 3", 3},
      {"0x2", 2},
      {"+1", 1},
      // clang-format on
  };
  for (const auto& [text, index] : kCases) {
    int value = -7;
    EXPECT_TRUE(m_handle.CheckZrvInternalKey(text, value)) << text;
    EXPECT_EQ(value, index) << text;
  }
}

TEST_F(DigitalSignArgsHandle, ARefusedKeyPairLeavesIndexZero) {
  for (const char* text : {"5", "-1", "x", "3 "}) {
    int value = -7;
    ::Printed([&] { EXPECT_FALSE(m_handle.CheckZrvInternalKey(text, value)) << text; });
    EXPECT_EQ(value, 0) << text;
  }
}

TEST_F(DigitalSignArgsHandle, TheShortCheckLooksAtNoKeys) {
  Args args = Record({.action = 2, .sw_mode = 4});
  EXPECT_EQ(::Printed([&] { EXPECT_TRUE(m_handle.JudgeArgumentFwFileAndSigFile(&args)); }), "");
  EXPECT_EQ(args.szFwFile, Full("fw.bin"));
  EXPECT_EQ(args.szSignatureFile, Full("fw.sig"));
}

// Full paths of so many bytes, in a directory that names are relative to. Typed, such a name is
// short enough; only the full path is not.
class LongPath : public DigitalSignArgsHandle {
 protected:
  LongPath() { m_handle.SetCurrentDir(m_deep); }

  std::string PathOf(std::size_t bytes) const {
    return GivenFile(m_deep + std::string(bytes - m_deep.size(), 'f'), "");
  }
  std::string NameOf(const std::string& path) const { return path.substr(m_deep.size()); }

  const std::string m_deep = GivenDirectory(m_directory / std::string(150, 'd')) + "/";
};

TEST_F(LongPath, CountsAsMissingWhenItDoesNotFit) {
  for (const std::size_t bytes : {259u, 260u, 300u}) {
    const std::string path = PathOf(bytes);
    char verify_key[260] = "";
    char sign_key[260] = "";
    NameOf(path).copy(sign_key, 259);
    bool accepted = false;
    const std::string printed = ::Printed(
        [&] { accepted = m_handle.CheckZrvExternalKeyFile(kSign, verify_key, sign_key); });
    EXPECT_EQ(accepted, bytes == 259) << bytes;
    EXPECT_EQ(printed, accepted ? ""
                                : "Digital signature: Zrv external sign key file is not exist! " +
                                      path + "\n");
    EXPECT_EQ(sign_key, accepted ? path : NameOf(path)) << bytes;
  }
}

TEST_F(LongPath, OfASignatureIsRefusedAndNotWritten) {
  for (const std::size_t bytes : {259u, 260u, 263u}) {
    for (const bool is_default : {true, false}) {
      const std::string signature = PathOf(bytes - 4) + ".sig";
      GivenFile(signature, "");
      char file[260] = "";
      if (!is_default) NameOf(signature).copy(file, 259);
      const std::string before = file;
      bool accepted = false;
      const std::string printed =
          ::Printed([&] { accepted = m_handle.GetSignatureFile(kSign, PathOf(bytes - 4), file); });
      EXPECT_EQ(accepted, bytes == 259) << bytes << is_default;
      EXPECT_EQ(
          printed,
          accepted ? "" : "Digital signature: Signature file is not exist! " + signature + "\n");
      EXPECT_EQ(file, accepted ? signature : before) << bytes << is_default;
    }
  }
}

TEST_F(DigitalSignArgsHandle, AShorterPathLeavesNoTailOfTheNameBefore) {
  char sign_key[260];
  std::memset(sign_key, 'x', sizeof sign_key);
  std::strcpy(sign_key, "s.key");
  char verify_key[260] = "";
  ASSERT_TRUE(m_handle.CheckZrvExternalKeyFile(kSign, verify_key, sign_key));
  const std::string path = Full("s.key");
  EXPECT_EQ(std::string(sign_key, 260), path + std::string(260 - path.size(), '\0'));
}

TEST_F(DigitalSignArgsHandle, ChecksTheTypeOnItsOwn) {
  const auto kNoMode = CP_DIGITAL_SIGNATURE_SW_MODE_NONE;
  const auto kTavero = CP_DIGITAL_SIGNATURE_SW_MODE_TAVERO;
  const auto kSoftware = CP_DIGITAL_SIGNATURE_SW;
  const auto kHardware = CP_DIGITAL_SIGNATURE_HW;
  const std::string printed = ::Printed([&] {
    EXPECT_FALSE(m_handle.CheckDigitalSignatureType(kSign, kSoftware, kTavero));
    EXPECT_TRUE(m_handle.CheckDigitalSignatureType(kVerify, kSoftware, kTavero));
    EXPECT_TRUE(m_handle.CheckDigitalSignatureType(kSign, kSoftware, kNoMode));
    EXPECT_TRUE(m_handle.CheckDigitalSignatureType(kSign, kHardware, kTavero));
    EXPECT_FALSE(m_handle.CheckDigitalSignatureType(kVerify, kHardware, kNoMode));
  });
  EXPECT_EQ(printed,
            "Digital signature: Tavero digital signature can not support sign function!\n"
            "Digital signature: Hw digital signature can not support verify function!\n");
}

}  // namespace
