// SPDX-License-Identifier: MIT
#include "display/firmware_file.h"

#include <sys/stat.h>
#include <unistd.h>

#include "support/files.h"
#include "support/scratch_dir.h"

#include <gtest/gtest.h>

namespace {

class FirmwareFileTest : public testing::Test {
 protected:
  simulator::Outcome Read(const std::string& path, std::uint32_t bank) {
    if (simulator::Outcome opened = m_file.Open(path); !opened.Ok()) return opened;
    return m_file.ReadBank(bank, m_bytes);
  }
  std::string Bytes() const { return {m_bytes.begin(), m_bytes.end()}; }

  ScratchDir m_scratch;
  simulator::FirmwareFile m_file;
  simulator::BankBytes m_bytes;
};

TEST_F(FirmwareFileTest, ABankIsReadFromItsPlaceAndTheLastOnePadded) {
  const std::string path = GivenFirmware(m_scratch / "fw", 65536 + 3);
  const std::string content = ReadWholeFile(path);
  ASSERT_TRUE(Read(path, 0).Ok());
  EXPECT_EQ(Bytes(), content.substr(0, 65536));
  ASSERT_TRUE(Read(path, 1).Ok());
  EXPECT_EQ(Bytes(), content.substr(65536) + std::string(65533, '\xFF'));
}

TEST_F(FirmwareFileTest, AFileThatChangedSinceItWasOpenedIsRefused) {
  const std::string path = GivenFirmware(m_scratch / "fw", 2 * 65536);
  ASSERT_TRUE(Read(path, 0).Ok());
  EXPECT_TRUE(m_file.CheckUnchanged().Ok());
  GivenFirmware(path, 3 * 65536);
  const auto outcome = m_file.CheckUnchanged();
  EXPECT_EQ(outcome.code, 0x5A31u);
  EXPECT_EQ(outcome.why, path + " changed while it was read, nothing was programmed");
}

// What has the path in the end is not what was read.
TEST_F(FirmwareFileTest, AnotherFileInItsPlaceIsNotRead) {
  const std::string path = GivenFile(m_scratch / "fw", "old");
  ASSERT_TRUE(Read(path, 0).Ok());
  GivenFile(m_scratch / "other", "new");
  ASSERT_EQ(rename((m_scratch / "other").c_str(), path.c_str()), 0);
  ASSERT_TRUE(m_file.ReadBank(0, m_bytes).Ok());
  EXPECT_EQ(Bytes().substr(0, 3), "old");
}

TEST_F(FirmwareFileTest, ABankBeyondTheEndIsRefused) {
  const std::string path = GivenFirmware(m_scratch / "fw", 65536);
  for (const std::uint32_t bank : {1u, 0xFFFFFFFFu}) {
    const auto outcome = Read(path, bank);
    EXPECT_EQ(outcome.code, 0x5A25u);
    EXPECT_EQ(outcome.why, path + " ends before its bank " + std::to_string(bank));
  }
  EXPECT_EQ(Read(GivenFile(m_scratch / "empty", ""), 0).code, 0x5A25u);
}

TEST_F(FirmwareFileTest, AMissingFileIsRefused) {
  const auto outcome = Read(m_scratch / "none", 0);
  EXPECT_EQ(outcome.code, 0x5A24u);
  EXPECT_EQ(outcome.why, "cannot read " + m_scratch / "none" + ": No such file or directory");
  EXPECT_EQ(Read("", 0).code, 0x5A24u);
}

TEST_F(FirmwareFileTest, WhatIsNoOrdinaryFileIsRefusedWithoutWaiting) {
  ASSERT_EQ(mkfifo((m_scratch / "pipe").c_str(), 0600), 0);
  for (const std::string& path : {m_scratch.Path(), m_scratch / "pipe", std::string("/dev/zero")}) {
    const auto outcome = Read(path, 0);
    EXPECT_EQ(outcome.code, 0x5A24u);
    EXPECT_EQ(outcome.why, "cannot read " + path + ": not an ordinary file");
  }
}

// The superuser may read every file, so it reads this one as somebody else.
TEST_F(FirmwareFileTest, AFileWithoutReadPermissionIsRefused) {
  const std::string path = GivenFile(m_scratch / "fw", "x");
  ASSERT_EQ(chmod(m_scratch.Path().c_str(), 0755), 0);
  ASSERT_EQ(chmod(path.c_str(), 0), 0);
  const uid_t self = geteuid();
  ASSERT_TRUE(self != 0 || seteuid(65534) == 0);
  const auto outcome = Read(path, 0);
  ASSERT_EQ(seteuid(self), 0);
  EXPECT_EQ(outcome.code, 0x5A24u);
  EXPECT_EQ(outcome.why, "cannot read " + path + ": Permission denied");
}

}  // namespace
