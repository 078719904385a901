// SPDX-License-Identifier: MIT
#include "display/flash.h"

#include <fcntl.h>

#include <string>

#include "support/files.h"
#include "support/scratch_dir.h"

#include <gtest/gtest.h>

namespace {

using simulator::BankBytes;

class FlashTest : public testing::Test {
 protected:
  simulator::Flash Open() const {
    return simulator::Flash(simulator::OpenFile(m_path, O_RDWR | O_CREAT));
  }
  std::string Bank(std::uint32_t bank) const {
    BankBytes bytes;
    EXPECT_TRUE(Open().ReadBank(bank, bytes));
    return {bytes.begin(), bytes.end()};
  }
  static BankBytes Full(int byte) { return BankBytes(65536, static_cast<std::uint8_t>(byte)); }
  static std::string FullText(int byte) { return std::string(65536, static_cast<char>(byte)); }

  ScratchDir m_scratch;
  std::string m_path = m_scratch / "flash";
};

TEST_F(FlashTest, ANewFlashIsAnEmptyFileThatReadsAsErased) {
  EXPECT_EQ(Bank(0), FullText(0xFF));
  EXPECT_EQ(Bank(255), FullText(0xFF));
  EXPECT_EQ(ReadWholeFile(m_path), "");
}

TEST_F(FlashTest, AProgrammedBankIsThePlainBytesInTheFile) {
  const std::string firmware = Pattern(65536);
  ASSERT_TRUE(Open().ProgramBank(0, BankBytes(firmware.begin(), firmware.end())));
  EXPECT_EQ(ReadWholeFile(m_path), firmware);
}

TEST_F(FlashTest, ProgrammingOnlyClearsBits) {
  ASSERT_TRUE(Open().ProgramBank(3, Full(0xF0)));
  ASSERT_TRUE(Open().ProgramBank(3, Full(0x3C)));
  EXPECT_EQ(Bank(3), FullText(0x30));
}

TEST_F(FlashTest, ErasingSetsTheWholeBankAndNoOther) {
  for (const std::uint32_t bank : {1u, 2u, 3u})
    ASSERT_TRUE(Open().ProgramBank(bank, Full(0x00)));
  ASSERT_TRUE(Open().EraseBank(2));
  EXPECT_EQ(Bank(1), FullText(0x00));
  EXPECT_EQ(Bank(2), FullText(0xFF));
  EXPECT_EQ(Bank(3), FullText(0x00));
}

TEST_F(FlashTest, ErasingBeyondTheEndOfTheFileLeavesItsSize) {
  ASSERT_TRUE(Open().EraseBank(200));
  EXPECT_EQ(ReadWholeFile(m_path), "");
}

TEST_F(FlashTest, AGapBelowAProgrammedBankIsErased) {
  ASSERT_TRUE(Open().ProgramBank(2, Full(0x12)));
  EXPECT_EQ(ReadWholeFile(m_path), FullText(0xFF) + FullText(0xFF) + FullText(0x12));
}

TEST_F(FlashTest, TheLastBankCanBeProgrammed) {
  ASSERT_TRUE(Open().ProgramBank(255, Full(0x12)));
  EXPECT_EQ(Bank(255), FullText(0x12));
  EXPECT_EQ(Bank(254), FullText(0xFF));
  EXPECT_EQ(ReadWholeFile(m_path).size(), 16777216u);
}

TEST_F(FlashTest, AFileThatEndsInsideABankReadsAsErasedFromThere) {
  GivenFile(m_path, "abc");
  EXPECT_EQ(Bank(0), "abc" + FullText(0xFF).substr(3));
  ASSERT_TRUE(Open().ProgramBank(1, Full(0x00)));
  EXPECT_EQ(ReadWholeFile(m_path), "abc" + FullText(0xFF).substr(3) + FullText(0x00));
  ASSERT_TRUE(Open().EraseBank(0));
  EXPECT_EQ(Bank(0), FullText(0xFF));
}

TEST_F(FlashTest, ARangeMayBeginAndEndInsideBanks) {
  ASSERT_TRUE(Open().ProgramBank(0, Full(0x00)));
  std::uint8_t bytes[4] = {};
  ASSERT_TRUE(Open().Read(65534, 4, bytes));
  EXPECT_EQ(std::string(bytes, bytes + 4), std::string("\0\0\xFF\xFF", 4));
}

TEST_F(FlashTest, FlippingTurnsOneBitOver) {
  ASSERT_TRUE(Open().ProgramBank(1, Full(0x0F)));
  ASSERT_TRUE(Open().FlipBit(1, 8 * 2 + 7));
  ASSERT_TRUE(Open().FlipBit(1, 8 * 3 + 0));
  EXPECT_EQ(Bank(1).substr(0, 5), "\x0F\x0F\x8F\x0E\x0F");
}

TEST_F(FlashTest, AFileThatFailsIsReported) {
  simulator::Flash flash(simulator::OpenFile(m_scratch.Path(), O_RDONLY));
  BankBytes bytes;
  EXPECT_FALSE(flash.ReadBank(0, bytes));
  EXPECT_FALSE(flash.ProgramBank(0, Full(0)));
  EXPECT_FALSE(simulator::Flash(simulator::FileHandle()).EraseBank(0));
}

}  // namespace
