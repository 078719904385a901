// SPDX-License-Identifier: MIT
#include "display/display.h"

#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>

#include "display_fixture.h"

namespace {

using simulator::Display;

class OpenDisplayTest : public DisplayTest {
 protected:
  simulator::Outcome Open(unsigned comm_id = 1) { return Display::Open(comm_id, m_display); }

  std::unique_ptr<Display> m_display;
};

TEST_F(OpenDisplayTest, TheFirstUseMakesADirectoryAndItsFiles) {
  setenv("ZVISP_SIM_DIR", (m_scratch / "a/b").c_str(), 1);
  ASSERT_TRUE(Open(16).Ok());
  for (const char* const kind : {"flash", "journal", "counters", "state"})
    EXPECT_TRUE(FileExists(m_scratch / ("a/b/display-16." + std::string(kind)))) << kind;
}

TEST_F(OpenDisplayTest, ThereIsNoDisplayAbove16) {
  for (const unsigned comm_id : {17u, 0xFFFFFFFFu}) {
    const auto outcome = Open(comm_id);
    EXPECT_EQ(outcome.code, 0x5A22u);
    EXPECT_EQ(outcome.why, "there is no display above 16");
  }
}

TEST_F(OpenDisplayTest, ADisplayInUseIsRefusedUntilItIsGivenBack) {
  ASSERT_TRUE(Open().Ok());
  std::unique_ptr<Display> second;
  const auto outcome = Display::Open(1, second);
  EXPECT_EQ(outcome.code, 0x5A26u);
  EXPECT_EQ(outcome.why, "in use by another run");
  EXPECT_EQ(second, nullptr);
  EXPECT_TRUE(Display::Open(2, second).Ok());
  m_display.reset();
  EXPECT_TRUE(Open().Ok());
}

TEST_F(OpenDisplayTest, EachOpeningCountsACallAndARefusedOneDoesNot) {
  for (int i = 0; i < 3; ++i) {
    m_display.reset();
    ASSERT_TRUE(Open().Ok());
  }
  std::unique_ptr<Display> refused;
  EXPECT_FALSE(Display::Open(1, refused).Ok());
  EXPECT_EQ(Content("state").substr(0, 10), "calls = 3\n");
}

TEST_F(OpenDisplayTest, ADirectoryThatCannotBeMadeIsRefused) {
  GivenFile(m_scratch / "file", "");
  setenv("ZVISP_SIM_DIR", (m_scratch / "file/dir").c_str(), 1);
  const auto outcome = Open();
  EXPECT_EQ(outcome.code, 0x5A27u);
  EXPECT_EQ(outcome.why.find(m_scratch / "file/dir: "), 0u) << outcome.why;
}

TEST_F(OpenDisplayTest, AFileOfTheDisplayThatCannotBeUsedIsRefused) {
  for (const char* const kind : {"flash", "journal", "counters"}) {
    std::filesystem::remove_all(m_scratch.Path());
    GivenDirectory(FileOf(kind));
    EXPECT_EQ(Open().code, 0x5A27u) << kind;
  }
}

TEST_F(OpenDisplayTest, AStateThatCannotBeReadCountsAsANewOneWithAWord) {
  ASSERT_TRUE(Open().Ok());
  EXPECT_EQ(m_display->Warning(), "");
  m_display.reset();
  GivenFile(FileOf("state"), "calls = 7\nrecorded_version = " + std::string(65600, 'v') + "\n");
  ASSERT_TRUE(Open().Ok());
  EXPECT_EQ(m_display->Warning(), FileOf("state") + " cannot be read, the display counts as new");
  m_display.reset();
  EXPECT_EQ(Content("state").substr(0, 10), "calls = 1\n");
  ASSERT_TRUE(Open().Ok());
  EXPECT_EQ(m_display->Warning(), "");
}

TEST_F(OpenDisplayTest, NoFileThatItWritesIsOpenedThroughALink) {
  for (const char* const kind : {"flash", "journal", "counters"}) {
    std::filesystem::remove_all(m_scratch.Path());
    GivenFile(m_scratch / "victim", "victim");
    ASSERT_EQ(symlink("victim", FileOf(kind).c_str()), 0);
    const auto outcome = Open();
    EXPECT_EQ(outcome.code, 0x5A27u) << kind;
    EXPECT_EQ(outcome.why, FileOf(kind) + " is a symbolic link, which a display does not follow");
    EXPECT_EQ(ReadWholeFile(m_scratch / "victim"), "victim");
  }
}

TEST_F(OpenDisplayTest, ItsNewStateIsNotWrittenThroughALink) {
  GivenFile(m_scratch / "victim", "victim");
  for (const char* const kind : {"state", "state.new"}) {
    ASSERT_EQ(symlink("victim", FileOf(kind).c_str()), 0);
  }
  ASSERT_TRUE(Open().Ok());
  EXPECT_EQ(ReadWholeFile(m_scratch / "victim"), "victim");
  EXPECT_EQ(Content("state").substr(0, 10), "calls = 1\n");
  EXPECT_FALSE(std::filesystem::is_symlink(FileOf("state")));
}

TEST_F(OpenDisplayTest, AJournalLineThatWasCutShortIsEnded) {
  GivenFile(FileOf("journal"), "call n=1\nerase ba");
  ASSERT_TRUE(Open().Ok());
  ASSERT_TRUE(m_display->Note("call n=2").Ok());
  m_display.reset();
  ASSERT_TRUE(Open().Ok());
  EXPECT_EQ(Content("journal"), "call n=1\nerase ba\ncall n=2\n");
}

TEST_F(OpenDisplayTest, EveryFileOfEveryDisplayIsKnown) {
  ASSERT_TRUE(Open().Ok());
  const auto is_known = [&](const std::string& path) {
    struct stat look = {};
    EXPECT_EQ(stat(path.c_str(), &look), 0) << path;
    return m_display->IsFileOfADisplay(look);
  };
  for (const char* const kind :
       {"flash", "journal", "counters", "state", "identity", "key", "faults"}) {
    EXPECT_TRUE(is_known(GivenFile(FileOf(kind), ""))) << kind;
    const std::string other = m_scratch / ("display-16." + std::string(kind));
    EXPECT_TRUE(is_known(GivenFile(other, ""))) << kind;
  }
  EXPECT_FALSE(is_known(GivenFile(m_scratch / "display-17.flash", "")));
  EXPECT_FALSE(is_known(m_scratch.Path()));
}

TEST_F(OpenDisplayTest, ASettingsFileThatCannotBeReadOrUnderstoodIsRefused) {
  for (const char* const kind : {"identity", "faults"}) {
    GivenDirectory(FileOf(kind));
    EXPECT_EQ(Open().why, FileOf(kind) + " cannot be read");
    std::filesystem::remove(FileOf(kind));
    GivenFile(FileOf(kind), "\nnonsense\n");
    EXPECT_EQ(Open().why, "line 2 of its " + std::string(kind) + " file is illegal");
    EXPECT_EQ(Open().code, 0x5A2Du);
    std::filesystem::remove(FileOf(kind));
  }
}

TEST_F(OpenDisplayTest, ProgrammingABankCountsAndNotesItsSteps) {
  ASSERT_TRUE(Open().Ok());
  const simulator::BankBytes bytes(65536, 0x5A);
  ASSERT_TRUE(m_display->EraseBank(4).Ok());
  ASSERT_TRUE(m_display->WriteBank(4, bytes).Ok());
  ASSERT_TRUE(m_display->VerifyBank(4, bytes).Ok());
  EXPECT_EQ(Content("journal"), "erase bank=4\nwrite bank=4\nverify bank=4 ok\n");
  EXPECT_EQ(Counts(4), "4 1 1");
}

TEST_F(OpenDisplayTest, ABankThatWasNotErasedFailsItsVerification) {
  ASSERT_TRUE(Open().Ok());
  ASSERT_TRUE(m_display->WriteBank(4, simulator::BankBytes(65536, 0xF0)).Ok());
  const simulator::BankBytes bytes(65536, 0x0F);
  ASSERT_TRUE(m_display->WriteBank(4, bytes).Ok());
  const auto outcome = m_display->VerifyBank(4, bytes);
  EXPECT_EQ(outcome.code, 0x5A28u);
  EXPECT_EQ(outcome.why, "bank 4 differs from what was written");
  EXPECT_NE(Content("journal").find("verify bank=4 mismatch\n"), std::string::npos);
}

TEST_F(OpenDisplayTest, TheKeyIsTheKeyFilesBytes) {
  ASSERT_TRUE(Open().Ok());
  const std::string raw("\0key\n\xFF", 6);
  GivenFile(FileOf("key"), raw);
  std::string key;
  ASSERT_TRUE(m_display->ReadKey(6, key).Ok());
  EXPECT_EQ(key, raw);
}

TEST_F(OpenDisplayTest, AMissingEmptyOrTooLongKeyIsRefused) {
  ASSERT_TRUE(Open().Ok());
  std::string key;
  EXPECT_EQ(m_display->ReadKey(6, key).code, 0x5A2Au);
  GivenFile(FileOf("key"), "");
  EXPECT_EQ(m_display->ReadKey(6, key).why, FileOf("key") + " holds no verify key");
  GivenFile(FileOf("key"), "seven..");
  EXPECT_EQ(m_display->ReadKey(6, key).why, FileOf("key") + " cannot be used as a verify key");
}

}  // namespace
