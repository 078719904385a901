// SPDX-License-Identifier: MIT
//
// Every input of a verification with one bit turned over, or cut short. Small files are tried bit
// by bit and byte by byte; the bits of the firmware are drawn with a fixed seed.
#include "signer_fixture.h"

#include <algorithm>
#include <functional>
#include <random>

namespace {

constexpr std::size_t kFirmwareBytes = 200000;
constexpr std::size_t kFirmwareFlips = 600;

class Tampering : public Signer {
 protected:
  Tampering() { GivenFirmware(m_directory / "fw.bin", 100); }

  // The request of mode 1: firmware, signature, verify key and sub-certificate.
  Args GivenCertifiedSignature() {
    Args args = Request(1, 3);
    Put(args.szSignKeyFile, Key("line.key"));
    EXPECT_TRUE(Sign(args)) << Printed();
    args = Request(1, 1);
    Put(args.szVerifyKeyFile, Key("root.pub"));
    Put(args.szSubCertFile, Key("line.crt"));
    EXPECT_TRUE(Verify(args)) << Printed();
    return args;
  }

  // The request of mode 4: firmware, signature and next verify key, and the device's key.
  Args GivenSignatureWithNextKey() {
    Args args = Request(1, 4);
    Put(args.szSignKeyFile, Key("sign.key"));
    Put(args.szNextVerifyKeyFile, Key("other.pub"));
    EXPECT_TRUE(Sign(args)) << Printed();
    return args;
  }

  // Expects that `refused` holds for the file with each of these bits turned over, and that each
  // refusal has a line. Leaves the file as it was.
  void TurnBits(const std::string& path, const std::vector<std::size_t>& bits,
                const std::function<bool()>& refused) {
    const std::string good = ReadWholeFile(path);
    for (const std::size_t bit : bits) {
      std::string bad = good;
      bad[bit / 8] = static_cast<char>(bad[bit / 8] ^ (1 << bit % 8));
      GivenFile(path, bad);
      EXPECT_TRUE(refused()) << path << " with bit " << bit << " turned over";
    }
    GivenFile(path, good);
    RecordProperty("flips", static_cast<int>(bits.size()));
  }

  void TurnEveryBit(const Args& args, const std::string& path) {
    TurnBits(path, EveryBitOf(path), [&] {
      return !Verify(args) && std::count(Printed().begin(), Printed().end(), '\n') == 1;
    });
    EXPECT_TRUE(Verify(args)) << Printed();
  }

  void CutShort(const std::string& path, const std::function<bool()>& refused) {
    const std::string good = ReadWholeFile(path);
    for (std::size_t length = 0; length < good.size(); ++length) {
      GivenFile(path, good.substr(0, length));
      EXPECT_TRUE(refused()) << path << " cut to " << length << " bytes";
    }
    GivenFile(path, good + good[0]);
    EXPECT_TRUE(refused()) << path << " with a byte more";
    GivenFile(path, good);
  }

  // Refused, with exactly one line on the reason.
  bool IsRefused(const Args& args, char* device_key = nullptr) {
    return !Verify(args, device_key) && Printed().find("Reference signer: the ") == 0 &&
           std::count(Printed().begin(), Printed().end(), '\n') == 1;
  }

  static std::vector<std::size_t> EveryBitOf(const std::string& path) {
    std::vector<std::size_t> bits(8 * ReadWholeFile(path).size());
    for (std::size_t bit = 0; bit < bits.size(); ++bit)
      bits[bit] = bit;
    return bits;
  }
};

TEST_F(Tampering, NoBitOfTheFirmwareCanBeTurnedOver) {
  GivenFirmware(m_directory / "fw.bin", kFirmwareBytes);
  const Args args = GivenCertifiedSignature();
  std::mt19937 random(20);
  std::vector<std::size_t> bits(kFirmwareFlips);
  for (std::size_t& bit : bits)
    bit = random() % (8 * kFirmwareBytes);
  TurnBits(args.szFwFile, bits, [&] { return IsRefused(args); });
  EXPECT_TRUE(Verify(args)) << Printed();
}

TEST_F(Tampering, NoByteOfTheFirmwareCanBeLostOrAdded) {
  const Args args = GivenCertifiedSignature();
  CutShort(args.szFwFile, [&] { return IsRefused(args); });
  EXPECT_TRUE(Verify(args)) << Printed();
}

TEST_F(Tampering, NoBitOfTheSignatureCanBeTurnedOver) {
  const Args args = GivenCertifiedSignature();
  TurnEveryBit(args, args.szSignatureFile);
}

TEST_F(Tampering, NoBitOfTheVerifyKeyCanBeTurnedOver) {
  const Args args = GivenCertifiedSignature();
  TurnEveryBit(args, args.szVerifyKeyFile);
}

TEST_F(Tampering, NoBitOfTheSubCertificateCanBeTurnedOver) {
  const Args args = GivenCertifiedSignature();
  TurnEveryBit(args, args.szSubCertFile);
}

TEST_F(Tampering, NoSmallFileCanBeCutShortOrMadeLonger) {
  const Args args = GivenCertifiedSignature();
  for (const char* path : {args.szSignatureFile, args.szVerifyKeyFile, args.szSubCertFile}) {
    CutShort(path, [&] {
      return !Verify(args) && std::count(Printed().begin(), Printed().end(), '\n') == 1;
    });
  }
  EXPECT_TRUE(Verify(args)) << Printed();
}

TEST_F(Tampering, NoBitOfTheDevicesKeyOrOfTheNextOneCanBeTurnedOver) {
  const Args args = GivenSignatureWithNextKey();
  const std::string text = ReadWholeFile(Key("sign.pub"));
  DeviceKey key(text);
  // Of the zeros behind the text, one bit in each byte.
  for (std::size_t bit = 0; bit < 8 * sizeof key.bytes; bit += bit < 8 * text.size() ? 1 : 9) {
    char& byte = key.bytes[bit / 8];
    byte = static_cast<char>(byte ^ (1 << bit % 8));
    EXPECT_TRUE(IsRefused(args, key.bytes)) << "bit " << bit << " of the device's key";
    byte = static_cast<char>(byte ^ (1 << bit % 8));
  }
  TurnBits(args.szNextVerifyKeyFile, EveryBitOf(args.szNextVerifyKeyFile),
           [&] { return !Verify(args, key.bytes); });
  TurnBits(args.szSignatureFile, EveryBitOf(args.szSignatureFile),
           [&] { return !Verify(args, key.bytes); });
  EXPECT_TRUE(Verify(args, key.bytes)) << Printed();
}

// The 32 secret bytes are any bytes, so some turned bits make another good key: what that signs is
// then refused by the verify key.
TEST_F(Tampering, NoBitOfASignKeyCanBeTurnedOverWithoutBeingFound) {
  const Args signing = SignRequest();
  const Args verifying = VerifyRequest();
  TurnBits(signing.szSignKeyFile, EveryBitOf(signing.szSignKeyFile),
           [&] { return !Sign(signing) || !Verify(verifying); });
  CutShort(signing.szSignKeyFile, [&] { return !Sign(signing); });
  EXPECT_TRUE(Sign(signing)) << Printed();
  EXPECT_TRUE(Verify(verifying)) << Printed();
}

}  // namespace
