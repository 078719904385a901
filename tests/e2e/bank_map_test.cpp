// SPDX-License-Identifier: MIT
//
// Firmware files and start banks into the record's map of banks, and every refusal on the way.
//
// The map is at offset 72 of the record: the count, 256 target banks from 76, and from 1104 on
// 256 entries of 1056 bytes with the bank inside the file at 8 and the path at 12.
#include <sys/stat.h>
#include <unistd.h>

#include "support/end_to_end.h"
#include "support/record_offsets.h"

namespace {

class BankMap : public EndToEnd {
 protected:
  RecordBytes Plain(std::uint32_t action) const {
    return PlainCommandSetting(action, m_tool.ToolDir());
  }

  // Writes entry i of the map and counts it.
  static RecordBytes& PutBank(RecordBytes& record, std::uint32_t target_bank,
                              std::uint32_t file_bank, const std::string& path) {
    const std::uint32_t i = record.U32(setting_at::ulCount);
    record.PutU32(setting_at::ulCount, i + 1).PutU32(setting_at::ulTargetBank + 4 * i, target_bank);
    return record.PutU32(setting_at::stBank + 1056 * i + 8, file_bank)
        .PutWide(setting_at::stBank + 1056 * i + 12, path);
  }

  // The line that refuses a file.
  std::string CannotOpen(const std::string& path) const { return "File open fail! " + path + "\n"; }
};

TEST_F(BankMap, AFileOfThreeBanksAndAByteAtBankTenTakesFour) {
  const std::string path = GivenFirmware(m_tool / "a.bin", 65536 * 3 + 1);
  RecordBytes record = Plain(4);
  PutBank(record, 10, 0, path);
  PutBank(record, 11, 1, path);
  PutBank(record, 12, 2, path);
  PutBank(record, 13, 3, path);
  ExpectRecord({"--isp", "--fw1", "a.bin", "--bank1", "10"}, record);
  ExpectRecord({"--isp", "--bank1", "10", "--fw1", "a.bin"}, record);
  ExpectRecord({"--bank1", "0xA", "--fw1", path, "--isp"}, record);
}

TEST_F(BankMap, SizesAreRoundedUpToWholeBanks) {
  // clang-format off
  const struct { std::uint64_t bytes; std::uint32_t banks; } kCases[] = {
    {0, 0}, {1, 1}, {65535, 1}, {65536, 1}, {65537, 2}, {131072, 2}, {16777216, 256},
    // only the low 32 bits of a size count
    {4294967296, 0}, {4294967297, 1}, {4295032833, 2}, {8589934592 + 65536 * 5, 5},
  };
  // clang-format on
  for (const auto& row : kCases) {
    GivenSparseFile(m_tool / "a.bin", row.bytes);
    ExpectSuccess({"--isp", "--fw", "a.bin"});
    EXPECT_EQ(m_tool.TakeRecord().U32(setting_at::ulCount), row.banks) << row.bytes;
  }
}

TEST_F(BankMap, TenFilesStandInTheOrderOfTheirBanks) {
  RecordBytes record = Plain(4);
  Words words = {"--isp"};
  for (std::uint32_t slot = 0; slot < 10; ++slot) {
    const std::string number = slot == 0 ? "" : std::to_string(slot);
    const std::string path = GivenFirmware(m_tool / (number + ".bin"), 100, slot);
    words.insert(words.end(), {"--fw" + number, number + ".bin"});
    words.insert(words.end(), {"--bank" + number, std::to_string(90 - 9 * slot)});
  }
  for (std::uint32_t slot = 10; slot-- > 0;) {
    const std::string number = slot == 0 ? "" : std::to_string(slot);
    PutBank(record, 90 - 9 * slot, 0, m_tool / (number + ".bin"));
  }
  ExpectRecord(words, record);
}

TEST_F(BankMap, TheLastOfSeveralStartBanksCounts) {
  const std::string path = GivenFirmware(m_tool / "a.bin", 1);
  RecordBytes record = Plain(6);
  ExpectRecord({"--ispdiff", "--bank", "5", "--fw", "a.bin", "--bank", "7"},
               PutBank(record, 7, 0, path));
}

TEST_F(BankMap, OnlyTheStartBankIsLimited) {
  const std::string path = GivenFirmware(m_tool / "a.bin", 65536 * 10);
  RecordBytes record = Plain(7);
  for (std::uint32_t i = 0; i < 10; ++i)
    PutBank(record, 250 + i, i, path);
  ExpectRecord({"--ispcopy", "--fw1", "a.bin", "--bank1", "250"}, record);
}

TEST_F(BankMap, AnEmptyFileNeverCollides) {
  const std::string path = GivenFirmware(m_tool / "a.bin", 1);
  GivenFile(m_tool / "empty.bin", "");
  RecordBytes record = Plain(4);
  ExpectRecord({"--isp", "--fw", "a.bin", "--fw1", "empty.bin"}, PutBank(record, 0, 0, path));
}

TEST_F(BankMap, FirmwareOfARecordedVersionIsMappedOnlyForTheFileLocations) {
  const std::string path = GivenFirmware(m_tool / "a.bin", 1);
  RecordBytes record = Plain(8);
  PutBank(record, 2, 0, path);
  const Words file = {"--recordver", "--fw", "a.bin", "--bank", "2"};
  const auto with = [&file](const char* location) {
    Words words = file;
    words.push_back(location);
    return words;
  };
  ExpectRecord(with("--fwbin"), RecordBytes(record).PutU32(setting_at::enumVersionLocationType, 4));
  ExpectRecord(with("--fwbincmd"),
               RecordBytes(record).PutU32(setting_at::enumVersionLocationType, 6));
  ExpectRecord(with("--reg"), Plain(8).PutU32(setting_at::enumVersionLocationType, 1));
}

TEST_F(BankMap, ActionsThatProgramNothingDoNotLookAtTheFiles) {
  ExpectRecord({"--resetmcu", "--fw", "missing.bin", "--bank3", "7"}, Plain(15));
}

TEST_F(BankMap, PathsAreFullAndResolved) {
  const std::string path = GivenFirmware(m_tool / "f\u00FCr/\u4E2D.bin", 1);
  ASSERT_EQ(symlink(path.c_str(), (m_tool / "link.bin").c_str()), 0);
  RecordBytes record = Plain(4);
  PutBank(record, 0, 0, path);
  ExpectRecord({"--isp", "--fw", "f\u00FCr/../f\u00FCr/./\u4E2D.bin"}, record);
  ExpectRecord({"--isp", "--fw", "link.bin"}, record);
  ExpectRecord({"--isp", "--fw", path}, record);
}

TEST_F(BankMap, AnAbsolutePathIsKeptAsItIs) {
  GivenFirmware(m_tool / "a.bin", 1);
  const std::string path = m_tool.WorkDir() + "/./a.bin";
  RecordBytes record = Plain(4);
  ExpectRecord({"--isp", "--fw", path}, PutBank(record, 0, 0, path));
}

TEST_F(BankMap, APathKeepsIts256FirstCharacters) {
  const std::string directory = m_tool / (std::string(100, 'a') + "/" + std::string(100, 'b'));
  const std::string path = GivenFirmware(directory + "/" + std::string(100, 'c') + ".bin", 1);
  RecordBytes record = Plain(4);
  ExpectRecord({"--isp", "--fw", path}, PutBank(record, 0, 0, path.substr(0, 256)));
}

TEST_F(BankMap, AFullFlashOf256BanksIsAccepted) {
  const std::string path = GivenSparseFile(m_tool / "a.bin", 65536 * 256);
  RecordBytes record = Plain(4);
  for (std::uint32_t i = 0; i < 256; ++i)
    PutBank(record, i, i, path);
  ExpectRecord({"--isp", "--fw", "a.bin"}, record);
}

TEST_F(BankMap, MoreBanksThanTheRecordHoldsAreRefused) {
  GivenSparseFile(m_tool / "a.bin", 65536 * 256 + 1);
  GivenSparseFile(m_tool / "b.bin", 4294967295);
  GivenSparseFile(m_tool / "c.bin", 65536 * 200);
  GivenSparseFile(m_tool / "d.bin", 65536 * 57);
  ExpectRejected({"--isp", "--fw", "a.bin"},
                 "Program fw bank count out of range! 257 banks, at most 256\n");
  ExpectRejected({"--isp", "--fw", "b.bin", "--bank", "255"},
                 "Program fw bank count out of range! 65536 banks, at most 256\n");
  ExpectRejected({"--isp", "--fw", "c.bin", "--fw1", "d.bin", "--bank1", "200"},
                 "Program fw bank count out of range! 257 banks, at most 256\n");
}

TEST_F(BankMap, ABankThatIsClaimedTwiceIsRefused) {
  GivenFirmware(m_tool / "a.bin", 65536 * 2);
  GivenFirmware(m_tool / "b.bin", 65536 * 3);
  const std::string duplicate = "Program fw bank duplicate!\n";
  ExpectRejected({"--isp", "--fw", "a.bin", "--fw1", "b.bin", "--bank1", "1"}, duplicate);
  ExpectRejected({"--isp", "--fw", "a.bin", "--fw1", "a.bin"}, duplicate);
  ExpectRejected({"--isp", "--fw9", "b.bin", "--bank9", "7", "--fw2", "a.bin", "--bank2", "9"},
                 duplicate);
  ExpectRejected({"--isp", "--fw", "b.bin", "--bank", "4", "--fw1", "a.bin", "--bank1", "3"},
                 duplicate);
}

TEST_F(BankMap, NeighboursDoNotCollide) {
  GivenFirmware(m_tool / "a.bin", 65536 * 2);
  GivenFirmware(m_tool / "b.bin", 65536 * 3);
  ExpectSuccess({"--isp", "--fw", "a.bin", "--bank", "3", "--fw1", "b.bin", "--fw2", "b.bin",
                 "--bank2", "5"});
  const RecordBytes record = m_tool.TakeRecord();
  EXPECT_EQ(record.U32(setting_at::ulCount), 8u);
  for (std::uint32_t i = 0; i < 8; ++i)
    EXPECT_EQ(record.U32(setting_at::ulTargetBank + 4 * i), i);
}

TEST_F(BankMap, AFileThatCannotBeOpenedIsNamedInFull) {
  GivenFirmware(m_tool / "a.bin", 1);
  ExpectRejected({"--isp", "--fw", "missing.bin"}, CannotOpen(m_tool / "missing.bin"));
  ExpectRejected({"--isp", "--fw", "/missing/x.bin"}, CannotOpen("/missing/x.bin"));
  ExpectRejected({"--isp", "--fw", "a.bin", "--fw2", "missing.bin", "--bank2", "4"},
                 CannotOpen(m_tool / "missing.bin"));
}

TEST_F(BankMap, ADirectoryAPipeAndADeviceAreNoFirmware) {
  GivenDirectory(m_tool / "folder.bin");
  ASSERT_EQ(mkfifo((m_tool / "pipe.bin").c_str(), 0600), 0);
  ExpectRejected({"--isp", "--fw", "folder.bin"}, CannotOpen(m_tool / "folder.bin"));
  ExpectRejected({"--isp", "--fw", "pipe.bin"}, CannotOpen(m_tool / "pipe.bin"));
  ExpectRejected({"--isp", "--fw", "/dev/null"}, CannotOpen("/dev/null"));
}

// Root reads every file, so the runs are an ordinary user's.
TEST_F(BankMap, AnUnreadableFileIsRefused) {
  GivenFirmware(m_tool / "a.bin", 1);
  ASSERT_EQ(chmod(m_tool.Elsewhere("").c_str(), 0755), 0);
  Command command = m_tool.Line({"--isp", "--fw", "a.bin"});
  command.without_privileges = true;
  command.environment["ZVISP_RECORD_DIR"] = std::nullopt;
  ASSERT_EQ(chmod((m_tool / "a.bin").c_str(), 0644), 0);
  EXPECT_EQ(RunCommand(command).out, kBanner + std::string(kSuccess));
  ASSERT_EQ(chmod((m_tool / "a.bin").c_str(), 0), 0);
  EXPECT_EQ(RunCommand(command).out, CannotOpen(m_tool / "a.bin") + kRejected);
}

TEST_F(BankMap, AStartBankWithoutAFileNamesTheDirectoryThatItWouldOpen) {
  ExpectRejected({"--isp", "--bank", "3"}, CannotOpen(m_tool.WorkDir()));
  GivenFirmware(m_tool / "a.bin", 1);
  ExpectRejected({"--isp", "--fw", "a.bin", "--bank1", "3"}, CannotOpen(m_tool.WorkDir()));
}

TEST_F(BankMap, ProgrammingWithoutAnyFileIsRefused) {
  for (const char* action : {"--isp", "--ispuser", "--ispdiff", "--ispcopy"}) {
    ExpectRejected({action}, "Program fw bin path should not be empty!\n");
  }
  ExpectRejected({"--recordver", "--fwbin"}, "Program fw bin path should not be empty!\n");
  ExpectRejected({"--recordver", "--fwbincmd"}, "Program fw bin path should not be empty!\n");
}

TEST_F(BankMap, ASecondFileInASlotIsRefusedByTheSlotsNumber) {
  ExpectRejected({"--isp", "--fw", "a.bin", "--fw", "b.bin"},
                 "Parameter has been detected two or more times! --fw0 \n");
  for (int slot = 1; slot <= 9; ++slot) {
    const std::string option = "--fw" + std::to_string(slot);
    ExpectRejected({"--isp", option, "a.bin", option, "a.bin"},
                   "Parameter has been detected two or more times! " + option + " \n");
  }
}

TEST_F(BankMap, StartBanksAreCheckedAsTheyAreRead) {
  // clang-format off
  const struct { const char* text; const char* before; const char* after; } kCases[] = {
    {"x1",   "Parameter illegal! --bank",                            " x1 \n"},
    {"3 ",   "Parameter illegal! --bank",                            " 3  \n"},
    {"-1",   "Parameter illegal, start bank value is loss! --bank",  " -1 \n"},
    {"-2",   "Parameter out of range 0~255! --bank",                 " -2\n"},
    {"256",  "Parameter out of range 0~255! --bank",                 " 256\n"},
    {"0x100", "Parameter out of range 0~255! --bank",                " 0x100\n"},
  };
  // clang-format on
  for (const auto& row : kCases) {
    ExpectRejected({"--isp", "--bank", row.text}, std::string(row.before) + "0" + row.after);
    ExpectRejected({"--isp", "--bank1", row.text}, std::string(row.before) + "1" + row.after);
    ExpectRejected({"--isp", "--bank9", row.text}, std::string(row.before) + "9" + row.after);
  }
}

}  // namespace
