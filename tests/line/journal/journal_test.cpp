// SPDX-License-Identifier: MIT
//
// The record: what is appended is there, whole, whatever happens around it.
#include "line/journal/journal.h"

#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <sstream>
#include <string>
#include <vector>

#include "line/event/session.h"
#include "support/files.h"
#include "support/scratch_dir.h"
#include "support/unprivileged.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace line {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

constexpr std::int64_t kNoon = 1795262400000;  // 2026-11-21T12:00:00.000Z
constexpr const char* kDay = "/journal/2026-11-21.jsonl";

Event At(const std::string& run, EventBody body) {
  Event event;
  event.time_ms = kNoon;
  event.session = "session";
  event.where.run = run;
  event.where.unit = "ZP1";
  event.body = std::move(body);
  return event;
}

Event Programming(const std::string& run) {
  return At(run, StateEvent{UnitState::kProgramming, UnitState::kUntouched, "IspFlash"});
}

std::vector<std::string> LinesOf(const std::string& path) {
  std::vector<std::string> lines;
  std::istringstream stream(ReadWholeFile(path));
  for (std::string text; std::getline(stream, text);)
    lines.push_back(text);
  return lines;
}

class JournalTest : public testing::Test {
 protected:
  std::unique_ptr<Journal> Open() { return Journal::Open(m_data, m_error); }

  // Appends and gives up the record.
  bool Append(const Event& event) {
    const std::unique_ptr<Journal> journal = Open();
    return journal != nullptr && journal->WaitFor(journal->Append(event));
  }

  ScratchDir m_directory;
  std::string m_data = m_directory / "data";
  std::string m_error;
};

TEST_F(JournalTest, ALineIsInTheFileOfItsDayOnceItIsWaitedFor) {
  ASSERT_TRUE(Append(Programming("r1")));
  EXPECT_EQ(ReadWholeFile(m_data + kDay),
            "{\"v\":1,\"type\":\"state\",\"time\":\"2026-11-21T12:00:00.000Z\",\"mono_ms\":0,"
            "\"session\":\"session\",\"seq\":0,\"run\":\"r1\",\"unit\":\"ZP1\","
            "\"state\":\"programming\",\"previous\":\"untouched\",\"call\":\"IspFlash\"}\n");
}

TEST_F(JournalTest, TheNextWriterEndsATornLine) {
  ASSERT_TRUE(Append(Programming("r1")));
  GivenFile(m_data + kDay, ReadWholeFile(m_data + kDay) + "{\"v\":1,\"type\":\"sta");
  ASSERT_TRUE(Append(Programming("r2")));
  const std::vector<std::string> lines = LinesOf(m_data + kDay);
  ASSERT_THAT(lines, SizeIs(3));
  EXPECT_EQ(lines[1], "{\"v\":1,\"type\":\"sta");
  EXPECT_THAT(lines[2], HasSubstr("\"run\":\"r2\""));
}

TEST_F(JournalTest, AfterTheClockWasSetBackLinesStillComeLast) {
  GivenDirectory(m_data);
  GivenDirectory(m_data + "/journal");
  const std::string later = GivenFile(m_data + "/journal/2026-11-22.jsonl", "");
  GivenFile(m_data + "/journal/notes.jsonl", "");
  GivenFile(m_data + "/journal/2026-11-2x.jsonl", "");
  ASSERT_TRUE(Append(Programming("r1")));
  EXPECT_FALSE(FileExists(m_data + kDay));
  EXPECT_THAT(LinesOf(later), ElementsAre(HasSubstr("\"run\":\"r1\"")));
}

TEST_F(JournalTest, ALinkThatSomebodyMadeIsNotFollowed) {
  GivenDirectory(m_data);
  GivenDirectory(m_data + "/journal");
  const std::string other = GivenFile(m_directory / "other", "theirs");
  ASSERT_EQ(symlink(other.c_str(), (m_data + kDay).c_str()), 0);
  EXPECT_FALSE(Append(Programming("r1")));
  ASSERT_EQ(symlink(other.c_str(), (m_data + "/journal/new-lock").c_str()), 0);
  ASSERT_EQ(rename((m_data + "/journal/new-lock").c_str(), (m_data + "/journal/lock").c_str()), 0);
  EXPECT_EQ(Open(), nullptr);
  EXPECT_EQ(ReadWholeFile(other), "theirs");
}

TEST_F(JournalTest, DirectoriesAreMadeForThisAccountAlone) {
  ASSERT_NE(Open(), nullptr);
  struct stat status = {};
  ASSERT_EQ(stat(m_data.c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 07777, 0700u);
}

TEST_F(JournalTest, FilesInASharedDirectoryAreShared) {
  ASSERT_EQ(mkdir(m_data.c_str(), 0770), 0);
  SetMode(m_data, 0770);
  ASSERT_TRUE(Append(Programming("r1")));
  struct stat status = {};
  ASSERT_EQ(stat((m_data + kDay).c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 07777, 0660u);
}

TEST_F(JournalTest, AReadOnlyDirectoryIsRefusedWithASentence) {
  ASSERT_EQ(mkdir(m_data.c_str(), 0755), 0);
  SetMode(m_directory.Path(), 0755);
  SetMode(m_data, 0555);
  const int opened = AsOrdinaryUser([this] {
    const bool refused = Open() == nullptr;
    const bool says = m_error == "The record " + m_data +
                                     "/journal cannot be written: No such file or directory; let "
                                     "this account write there, or name another directory with "
                                     "--data.";
    return refused ? (says ? 0 : 2) : 1;
  });
  EXPECT_EQ(opened, 0) << m_error;
}

TEST_F(JournalTest, WithoutADirectoryNothingOpens) {
  EXPECT_EQ(Journal::Open("", m_error), nullptr);
  EXPECT_EQ(m_error, "The record has no directory: HOME is not set; name one with --data.");
}

TEST_F(JournalTest, ALineThatDoesNotFitLeavesNoTraceAndIsReportedLost) {
  ASSERT_TRUE(Append(Programming("r1")));
  const std::string before = ReadWholeFile(m_data + kDay);
  const int result = InChild([&] {
    const std::unique_ptr<Journal> journal = Open();
    if (journal == nullptr) return 1;
    const rlimit limit = {before.size() + 10, before.size() + 10};
    if (setrlimit(RLIMIT_FSIZE, &limit) != 0) return 2;
    const Journal::Ticket ticket = journal->Append(Programming("r2"));
    if (journal->WaitFor(ticket)) return 3;
    if (journal->FateOf(ticket) != Journal::Fate::kLost || journal->IsHealthy()) return 4;
    return journal->Failure().find("cannot be written: File too large;") != std::string::npos ? 0
                                                                                              : 5;
  });
  EXPECT_EQ(result, 0);
  EXPECT_EQ(ReadWholeFile(m_data + kDay), before);
}

TEST_F(JournalTest, OfProgressOnlyTheFirstLineOfEachTenPercentIsKept) {
  const std::unique_ptr<Journal> journal = Open();
  Journal::Ticket last = 0;
  std::vector<bool> kept;
  for (const int percent : {0, 1, 9, 10, 19, 35, 36, 100, 100}) {
    const Journal::Ticket ticket = journal->Append(At("r1", ProgressEvent{percent, 5}));
    kept.push_back(ticket != 0);
    if (ticket != 0) last = ticket;
  }
  EXPECT_TRUE(journal->WaitFor(last));
  EXPECT_EQ(kept, (std::vector<bool>{true, false, false, true, false, true, false, true, false}));
  EXPECT_THAT(LinesOf(m_data + kDay), SizeIs(4));
}

TEST_F(JournalTest, APlanIsRecordedWithoutItsBanks) {
  PlanEvent plan;
  plan.action = "--isp";
  plan.files.push_back({1, "/fw/a.bin", 3, "00", 7});
  plan.banks.push_back({7, 1, 0, 3, "00"});
  ASSERT_TRUE(Append(At("r1", plan)));
  const std::string text = ReadWholeFile(m_data + kDay);
  EXPECT_THAT(text, HasSubstr("\"start_bank\":7"));
  EXPECT_THAT(text, testing::Not(HasSubstr("banks")));
}

TEST_F(JournalTest, WhoPollsIsWokenWhenALineHasSettled) {
  const std::unique_ptr<Journal> journal = Open();
  char byte = 0;
  EXPECT_LT(read(journal->WakeUpDescriptor(), &byte, 1), 0);
  const Journal::Ticket ticket = journal->Append(Programming("r1"));
  ASSERT_TRUE(journal->WaitFor(ticket));
  EXPECT_EQ(journal->FateOf(ticket), Journal::Fate::kOnDisk);
  EXPECT_EQ(journal->FateOf(ticket + 1), Journal::Fate::kPending);
  // The pipe is written right after the ticket is settled.
  for (int i = 0; i < 1000 && read(journal->WakeUpDescriptor(), &byte, 1) < 0; ++i)
    usleep(1000);
  journal->ClearWakeUp();
  EXPECT_LT(read(journal->WakeUpDescriptor(), &byte, 1), 0);
}

// Each child appends lines that differ in length, so that a mixture would show.
TEST_F(JournalTest, ManyAppendersAtOnceLoseAndMixNothing) {
  constexpr int kWriters = 4;
  constexpr int kLines = 100;
  ASSERT_NE(Open(), nullptr);
  std::vector<pid_t> children;
  for (int writer = 0; writer < kWriters; ++writer) {
    children.push_back(fork());
    if (children.back() != 0) continue;
    std::string error;
    const std::unique_ptr<Journal> journal = Journal::Open(m_data, error);
    bool fine = journal != nullptr;
    for (int i = 0; fine && i < kLines; ++i) {
      const std::string run = std::to_string(writer) + "-" + std::to_string(i) + "-" +
                              std::string(static_cast<std::size_t>(i * 40), 'x');
      fine = journal->WaitFor(journal->Append(Programming(run)));
    }
    _exit(fine ? 0 : 1);
  }
  for (const pid_t child : children) {
    int status = -1;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);
  }
  const std::vector<std::string> lines = LinesOf(m_data + kDay);
  EXPECT_THAT(lines, SizeIs(kWriters * kLines));
  for (const std::string& text : lines) {
    EXPECT_EQ(text.rfind("{\"v\":1,\"type\":\"state\"", 0), 0u) << text;
    EXPECT_EQ(text.back(), '}') << text;
  }
}

}  // namespace
}  // namespace line
