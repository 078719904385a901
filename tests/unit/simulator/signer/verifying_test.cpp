// SPDX-License-Identifier: MIT
#include "signer_fixture.h"

namespace {

constexpr const char* kNotGenuine =
    "Reference signer: the signature does not belong to this firmware and this key\n";

class Verifying : public Signer {
 protected:
  // Signs "fw.bin" with "<name>.key" and without a next verify key.
  void GivenSignatureOf(const std::string& name) {
    Args args = SignRequest();
    Put(args.szSignKeyFile, Key(name + ".key"));
    ASSERT_TRUE(Sign(args)) << Printed();
  }
  // Signs with "sign.key" and binds "other.pub".
  void GivenSignatureWithNextKey(std::uint32_t type = 1) {
    Args args = Request(type, type == 1 ? 4 : 1);
    Put(args.szSignKeyFile, Key("sign.key"));
    Put(args.szNextVerifyKeyFile, Key("other.pub"));
    ASSERT_TRUE(Sign(args)) << Printed();
  }
  Args CertifiedRequest(const std::string& certificate, const char* issuer = "root.pub") const {
    Args args = Request(1, 1);
    Put(args.szVerifyKeyFile, Key(issuer));
    Put(args.szSubCertFile, Key(certificate));
    return args;
  }
  void ExpectRefusal(const Args& args, const std::string& reason, char* device_key = nullptr) {
    EXPECT_FALSE(Verify(args, device_key)) << reason;
    EXPECT_EQ(Printed(), "Reference signer: " + reason + "\n");
  }
};

TEST_F(Verifying, AcceptsWhatTheMatchingKeySigned) {
  GivenSignatureOf("sign");
  EXPECT_TRUE(Verify(VerifyRequest()));
  EXPECT_EQ(Printed(), "");
}

TEST_F(Verifying, RefusesAnotherKey) {
  GivenSignatureOf("other");
  EXPECT_FALSE(Verify(VerifyRequest()));
  EXPECT_EQ(Printed(), kNotGenuine);
}

TEST_F(Verifying, RefusesVerifyKeysOfAnotherKind) {
  GivenSignatureOf("sign");
  for (const char* name : {"rsa.pub", "ec.pub", "x25519.pub"}) {
    Args args = VerifyRequest();
    Put(args.szVerifyKeyFile, Key(name));
    ExpectRefusal(args, "the verify key is a key of another kind, not Ed25519");
  }
  Args args = VerifyRequest();
  Put(args.szVerifyKeyFile, Key("sign.key"));
  ExpectRefusal(args, "the verify key is not PEM text \"PUBLIC KEY\" but \"PRIVATE KEY\"");
}

TEST_F(Verifying, ATrainingKeyPairVerifiesOnlyItsOwnSignatures) {
  Args args = Request(1, 2);
  args.nKeyPairIndex = 3;
  ASSERT_TRUE(Sign(args));
  EXPECT_TRUE(Verify(args));
  EXPECT_EQ(Printed(), "Reference signer: training key pair 3, never for production\n");
  args.nKeyPairIndex = 4;
  EXPECT_FALSE(Verify(args));
  EXPECT_EQ(
      Printed(),
      std::string("Reference signer: training key pair 4, never for production\n") + kNotGenuine);
}

TEST_F(Verifying, ASubCertificateThatTheVerifyKeySignedVerifies) {
  GivenSignatureOf("line");
  for (const char* certificate : {"line.crt", "signer.crt"}) {
    EXPECT_TRUE(Verify(CertifiedRequest(certificate))) << Printed();
    EXPECT_EQ(Printed(), "");
  }
}

TEST_F(Verifying, TheVerifyKeyItselfDoesNotStandInForTheSubCertificate) {
  GivenSignatureOf("sign");
  EXPECT_FALSE(Verify(CertifiedRequest("line.crt")));
  EXPECT_EQ(Printed(), kNotGenuine);
}

TEST_F(Verifying, RefusesSubCertificatesThatProveNothing) {
  GivenSignatureOf("line");
  constexpr struct {
    const char *file, *reason;
  } kCases[] = {
      {"foreign.crt", "the sub-certificate is not signed by the verify key"},
      {"expired.crt", "the sub-certificate is not valid today"},
      {"future.crt", "the sub-certificate is not valid today"},
      {"encipher.crt", "the sub-certificate may not be used for signatures"},
      {"critical.crt", "the sub-certificate may not be used for signatures"},
      {"ec.crt", "the sub-certificate certifies a key of another kind, not Ed25519"},
      {"root.pub", "the sub-certificate is not PEM text \"CERTIFICATE\" but \"PUBLIC KEY\""},
  };
  for (const auto& [file, reason] : kCases)
    ExpectRefusal(CertifiedRequest(file), reason);
}

TEST_F(Verifying, AnExtendedKeyUsageHasToNameCodeSigning) {
  GivenSignatureOf("line");
  for (const char* certificate : {"code.crt", "code-and-tls.crt"}) {
    EXPECT_TRUE(Verify(CertifiedRequest(certificate, "house.pub"))) << Printed();
  }
  for (const char* certificate : {"tls.crt", "any.crt"}) {
    ExpectRefusal(CertifiedRequest(certificate, "house.pub"),
                  "the sub-certificate may not be used for code signing: its extended key usage "
                  "names other purposes");
  }
}

TEST_F(Verifying, RefusesASubCertificateThatNamesItselfAsItsIssuer) {
  GivenSignatureOf("line");
  ExpectRefusal(CertifiedRequest("own-name.crt", "house.pub"),
                "the sub-certificate names itself as its issuer, but the verify key has signed it");
}

TEST_F(Verifying, WarnsOfAVerifyKeyThatOthersMayWrite) {
  GivenSignatureOf("sign");
  const Args args = VerifyRequest();
  chmod(args.szVerifyKeyFile, 0666);
  EXPECT_TRUE(Verify(args));
  EXPECT_EQ(Printed(),
            "Reference signer: warning: others may write the verify key file: @/sign.pub has mode "
            "0666, a verify key should have 0644\n");
}

TEST_F(Verifying, RefusesACertificateBlockThatHoldsNoCertificate) {
  GivenSignatureOf("line");
  Args args = CertifiedRequest("line.crt");
  GivenFile(args.szSubCertFile, "-----BEGIN CERTIFICATE-----\nMAA=\n-----END CERTIFICATE-----\n");
  ExpectRefusal(args, "the sub-certificate is not an X.509 certificate in DER form");
}

TEST_F(Verifying, TheDevicesKeyVerifiesASignatureThatBindsTheNextOne) {
  GivenSignatureWithNextKey();
  DeviceKey key(ReadWholeFile(Key("sign.pub")));
  EXPECT_TRUE(Verify(Request(1, 4), key.bytes));
  EXPECT_EQ(Printed(), "");
  DeviceKey wrong(ReadWholeFile(Key("root.pub")));
  EXPECT_FALSE(Verify(Request(1, 4), wrong.bytes));
  EXPECT_EQ(Printed(), kNotGenuine);
}

TEST_F(Verifying, RefusesADeviceKeyThatIsNone) {
  GivenSignatureWithNextKey();
  const std::string text = ReadWholeFile(Key("sign.pub"));
  constexpr const char* kNoPem = "the verify key of the device is not PEM text \"PUBLIC KEY\"";
  DeviceKey empty("");
  ExpectRefusal(Request(1, 4), kNoPem, empty.bytes);
  DeviceKey full(std::string(1220, 'x'));
  ExpectRefusal(Request(1, 4), kNoPem, full.bytes);
  DeviceKey followed(text + std::string(1, '\0') + "x");
  ExpectRefusal(Request(1, 4), "the verify key of the device has something after its end",
                followed.bytes);
}

TEST_F(Verifying, WithoutADeviceTheVerifyKeyFileStandsInForItsKey) {
  GivenSignatureWithNextKey();
  Args args = Request(1, 4);
  Put(args.szNextVerifyKeyFile, Key("other.pub"));
  Put(args.szVerifyKeyFile, Key("sign.pub"));
  EXPECT_TRUE(Verify(args)) << Printed();
}

TEST_F(Verifying, WithoutAnyOtherKeyTheNextVerifyKeyHasToBeTheSigners) {
  GivenSignatureWithNextKey();
  Args args = Request(1, 4);
  Put(args.szNextVerifyKeyFile, Key("other.pub"));
  EXPECT_FALSE(Verify(args));
  EXPECT_EQ(Printed(), kNotGenuine);

  // A key that is not to change is its own next key.
  Put(args.szSignKeyFile, Key("sign.key"));
  Put(args.szNextVerifyKeyFile, Key("sign.pub"));
  ASSERT_TRUE(Sign(args));
  EXPECT_TRUE(Verify(args)) << Printed();
}

TEST_F(Verifying, RefusesANextVerifyKeyThatTheSignatureDoesNotBind) {
  GivenSignatureWithNextKey();
  Args args = Request(1, 4);
  Put(args.szNextVerifyKeyFile, Key("root.pub"));
  DeviceKey key(ReadWholeFile(Key("sign.pub")));
  ExpectRefusal(args, "the signature binds another next verify key than the one in @/root.pub",
                key.bytes);
}

TEST_F(Verifying, RefusesASignatureThatWasMadeForAnotherScheme) {
  GivenSignatureWithNextKey();
  ExpectRefusal(VerifyRequest(),
                "the signature binds a next verify key: verify it in software mode 4");
  DeviceKey key(ReadWholeFile(Key("sign.pub")));
  GivenSignatureOf("sign");
  ExpectRefusal(Request(1, 4),
                "the signature binds no next verify key, as software mode 4 requires", key.bytes);
  GivenSignatureWithNextKey(2);
  ExpectRefusal(Request(1, 4),
                "this is a hardware signature, which is verified by the display only", key.bytes);
}

TEST_F(Verifying, RefusesRequestsThatItCannotJudge) {
  GivenSignatureOf("sign");
  ExpectRefusal(Request(2, 1), "a hardware signature is verified by the display only");
  ExpectRefusal(Request(0, 0), "signature type 0 is neither software nor hardware");
  ExpectRefusal(Request(1, 0), "software mode 0 is none of 1 to 4");
  ExpectRefusal(Request(1, 5), "software mode 5 is none of 1 to 4");
  ExpectRefusal(Request(1, 3), "no verify key file was given");
}

TEST_F(Verifying, RefusesSignatureFilesOfAnotherForm) {
  GivenSignatureOf("sign");
  const std::string good = ReadWholeFile(m_directory / "fw.sig");
  const std::string body = good.substr(good.find('\n'));
  const struct {
    std::string content;
    const char* reason;
  } kCases[] = {
      {"", "the signature file is empty: @/fw.sig"},
      {"hello\n", "this is not a signature file: @/fw.sig"},
      {"Zorvane firmware signature 2" + body,
       "the signature file has another version than 1: @/fw.sig"},
      {"Zorvane firmware signature 01" + body,
       "the signature file has another version than 1: @/fw.sig"},
      {good + "\n", "the signature file is damaged: @/fw.sig"},
      {good.substr(0, good.size() - 1), "the signature file is damaged: @/fw.sig"},
  };
  for (const auto& [content, reason] : kCases) {
    GivenFile(m_directory / "fw.sig", content);
    ExpectRefusal(VerifyRequest(), reason);
  }
}

}  // namespace
