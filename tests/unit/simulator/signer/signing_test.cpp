// SPDX-License-Identifier: MIT
//
// What is signed, and how the file reads. The signatures were computed with another program from
// the documented format.
#include "signer_fixture.h"

namespace {

using testing::HasSubstr;

constexpr const char* kSoftwareLines =
    "Zorvane firmware signature 1\n"
    "type: software\n"
    "next verify key: none\n"
    "signature: ";

class Signing : public Signer {
 protected:
  std::string SignatureFile() const { return ReadWholeFile(m_directory / "fw.sig"); }
};

TEST_F(Signing, WithASignKeyFileWritesTheDocumentedFileInSilence) {
  EXPECT_TRUE(Sign(SignRequest()));
  EXPECT_EQ(Printed(), "");
  EXPECT_EQ(SignatureFile(),
            std::string(kSoftwareLines) +
                "4f9de7fcb511f6624585c9a7521a9f2a928c0a942cbf45ad2eaa5c0201b39699"
                "232aab0d891f98da06b1ce4330e2ce35c1dcda1f74fc92f6159c3fb043b1f803\n");
}

TEST_F(Signing, WithATrainingKeyPairSaysThatItIsNotForProduction) {
  // clang-format off
  constexpr const char* kSignatures[] = {
    "d863ea8060fb317489daf31ba0f76f236121d3a855b8abc579dba286f3ad20e3e60caa56ac206c1bc278a7526b09108874e0a26f5651d27d0dbcf52b2f57fa0d",
    "f5c3bba042186619ce212d4c7faafce5ba3ac422efc36e77cb880ffb2afd36767cc2dd33a4cdde2aed160bc20e921c6f62f4a330559d1c0752ebd5d42e08f30e",
    "6391efd4a66d51c408113defb850e51081a0b34cf28d060caa992823f2c255473dba810201270a968f6b3b097be3f51bcfe8bbe45fb94147220f6cfc735f3203",
    "1988819132be5c7bbbb36bb2fbad4cf16180f607810deda08193e33d5373514200ec25b13e254b7b139a87e73dd5dadc9a575ccd68b5a10d9a84f5e9ad91cb0d",
    "b5f407abf5a94ed9025119da530242fb1a02dac02dfc695a21a629e6c65093d04647d7337157e7c37eed004260ff4e881586c4d284bc9f198fa5d912a198d60c",
  };
  // clang-format on
  for (int index = 0; index < 5; ++index) {
    Args args = Request(1, 2);
    args.nKeyPairIndex = index;
    EXPECT_TRUE(Sign(args));
    EXPECT_EQ(Printed(), "Reference signer: training key pair " + std::to_string(index) +
                             ", never for production\n");
    EXPECT_EQ(SignatureFile(), std::string(kSoftwareLines) + kSignatures[index] + "\n");
  }
}

TEST_F(Signing, WithTheNextVerifyKeyBindsItUnderTheSignature) {
  Args args = Request(1, 4);
  Put(args.szSignKeyFile, Key("sign.key"));
  Put(args.szNextVerifyKeyFile, Key("other.pub"));
  EXPECT_TRUE(Sign(args));
  EXPECT_EQ(Printed(), "");
  EXPECT_EQ(SignatureFile(),
            "Zorvane firmware signature 1\n"
            "type: software\n"
            "next verify key: 8d377ce4d59f0706ffba92e31d9cfa9826cca341685b2c8efd902ae796fdfd14\n"
            "signature: 1b601a79d25272e2670e718b6700007a724a04a6a847f6ad5e25d9d14184bd76"
            "89c9be3c240eed59294e701ceb936da0579b233b028e91507ca13934856a5f05\n");
}

TEST_F(Signing, ForHardwareBindsTheNextVerifyKeyWhateverTheMode) {
  for (const std::uint32_t mode : {0u, 1u, 2u}) {
    Args args = Request(2, mode);
    Put(args.szSignKeyFile, Key("sign.key"));
    Put(args.szNextVerifyKeyFile, Key("other.pub"));
    EXPECT_TRUE(Sign(args));
    EXPECT_EQ(SignatureFile(),
              "Zorvane firmware signature 1\n"
              "type: hardware\n"
              "next verify key: 8d377ce4d59f0706ffba92e31d9cfa9826cca341685b2c8efd902ae796fdfd14\n"
              "signature: 1e19bc4941dec0552f6cde0904ef101664d28a67c213a5fe41c10c6284b45197"
              "5b2a55d976c45d9ddb3fca48a77c16cd54c2732f2b566709854cc4416e55cc0f\n");
  }
}

TEST_F(Signing, ForHardwareWithoutASignKeyTakesATrainingKeyPair) {
  Args args = Request(2, 1);
  args.nKeyPairIndex = 2;
  Put(args.szNextVerifyKeyFile, Key("other.pub"));
  EXPECT_TRUE(Sign(args));
  EXPECT_EQ(Printed(), "Reference signer: training key pair 2, never for production\n");
  EXPECT_THAT(SignatureFile(),
              HasSubstr("signature: 69256369513fa7264f6ec011958975de54e38c3e6a33c6998b1348a06d4b52"
                        "143217e19dd8485621a329bc15e5d9f9dbb2370b4d9c422abe268fc0d0ec35f70f\n"));
}

TEST_F(Signing, ReplacesAnEmptyFileAndAnOlderSignatureAndKeepsItsPermissions) {
  for (const std::string& old :
       {std::string(), "Zorvane firmware signature 0\n" + std::string(5000, 'x')}) {
    GivenFile(m_directory / "fw.sig", old);
    chmod((m_directory / "fw.sig").c_str(), 0640);
    EXPECT_TRUE(Sign(SignRequest()));
    EXPECT_EQ(SignatureFile().size(), std::string(kSoftwareLines).size() + 128 + 1);
    struct stat look = {};
    ASSERT_EQ(stat((m_directory / "fw.sig").c_str(), &look), 0);
    EXPECT_EQ(look.st_mode & 0777u, 0640u);
  }
}

TEST_F(Signing, TakesASignatureNameOfTheGreatestLength) {
  Args args = SignRequest();
  const std::string name = m_directory / "";
  Put(args.szSignatureFile, name + std::string(std::min<std::size_t>(259 - name.size(), 255), 's'));
  EXPECT_TRUE(Sign(args)) << Printed();
}

TEST_F(Signing, WarnsOfAKeyFileThatOthersMayWrite) {
  const struct {
    mode_t sign_key, next_key;
    const char* warning;
  } kCases[] = {
      {0620, 0600,
       "write the sign key file: @/sign.key has mode 0620, a private key should have "
       "0600\n"},
      {0606, 0644,
       "read and write the sign key file: @/sign.key has mode 0606, a private key "
       "should have 0600\n"},
      {0600, 0664,
       "write the next verify key file: @/other.pub has mode 0664, a verify key should "
       "have 0644\n"},
      {0600, 0646,
       "write the next verify key file: @/other.pub has mode 0646, a verify key should "
       "have 0644\n"},
  };
  Args args = Request(1, 4);
  Put(args.szSignKeyFile, Key("sign.key"));
  Put(args.szNextVerifyKeyFile, Key("other.pub"));
  for (const auto& [sign_key, next_key, warning] : kCases) {
    chmod(args.szSignKeyFile, sign_key);
    chmod(args.szNextVerifyKeyFile, next_key);
    EXPECT_TRUE(Sign(args));
    EXPECT_EQ(Printed(), std::string("Reference signer: warning: others may ") + warning);
  }
}

TEST_F(Signing, WarnsOfAPrivateKeyThatOthersMayRead) {
  const Args args = SignRequest();
  for (const auto& [mode, shown] : {std::pair{0640, "0640"}, {0604, "0604"}, {0644, "0644"}}) {
    chmod(args.szSignKeyFile, static_cast<mode_t>(mode));
    EXPECT_TRUE(Sign(args));
    EXPECT_EQ(Printed(),
              "Reference signer: warning: others may read the sign key file: "
              "@/sign.key has mode " +
                  std::string(shown) + ", a private key should have 0600\n");
  }
  chmod(args.szSignKeyFile, 0400);
  EXPECT_TRUE(Sign(args));
  EXPECT_EQ(Printed(), "");
}

TEST_F(Signing, RefusesWithALineThatSaysWhy) {
  constexpr const char* kNoType = "signature type 0 is neither software nor hardware";
  constexpr const char* kNoMode = "software mode 0 is none of 1 to 4";
  const struct {
    std::uint32_t type, mode;
    int key_pair;
    const char *sign_key, *next_verify_key, *reason;
  } kCases[] = {
      {0, 0, 0, "sign.key", "", kNoType},
      {1, 0, 0, "sign.key", "", kNoMode},
      {1, 1, 0, "sign.key", "", "software mode 1 only verifies"},
      {1, 2, 5, "", "", "there is no training key pair 5, only 0 to 4"},
      {1, 2, -1, "", "", "there is no training key pair -1, only 0 to 4"},
      {1, 3, 0, "", "", "no sign key file was given"},
      {1, 3, 0, "sign.pub", "", "the sign key is not PEM text \"PRIVATE KEY\" but \"PUBLIC KEY\""},
      {1, 3, 0, "encrypted.key", "",
       "the sign key is not PEM text \"PRIVATE KEY\" but \"ENCRYPTED PRIVATE KEY\""},
      {1, 3, 0, "rsa.key", "", "the sign key is a key of another kind, not Ed25519"},
      {1, 3, 0, "x25519.key", "", "the sign key is a key of another kind, not Ed25519"},
      {1, 4, 0, "sign.key", "", "no next verify key file was given"},
      {1, 4, 0, "sign.key", "rsa.pub", "the next verify key is a key of another kind, not Ed25519"},
      {1, 4, 0, "sign.key", "x25519.pub",
       "the next verify key is a key of another kind, not Ed25519"},
      {1, 4, 0, "sign.key", "sign.key",
       "the next verify key is not PEM text \"PUBLIC KEY\" but \"PRIVATE KEY\""},
      {2, 1, 0, "sign.key", "", "no next verify key file was given"},
      {2, 1, 0, "rsa.key", "sign.pub", "the sign key is a key of another kind, not Ed25519"},
  };
  for (const auto& row : kCases) {
    Args args = Request(row.type, row.mode);
    args.nKeyPairIndex = row.key_pair;
    if (*row.sign_key != '\0') Put(args.szSignKeyFile, Key(row.sign_key));
    if (*row.next_verify_key != '\0') Put(args.szNextVerifyKeyFile, Key(row.next_verify_key));
    EXPECT_FALSE(Sign(args)) << row.reason;
    EXPECT_EQ(Printed(), std::string("Reference signer: ") + row.reason + "\n");
    EXPECT_FALSE(FileExists(m_directory / "fw.sig")) << row.reason;
  }
}

TEST_F(Signing, RefusesNoRecordAtAll) {
  EXPECT_EQ(m_sign(nullptr), 0);
  EXPECT_EQ(m_verify(nullptr, nullptr), 0);
}

}  // namespace
