// SPDX-License-Identifier: MIT
#include "base/file_identity.h"

#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <functional>
#include <string>

#include "support/files.h"
#include "support/scratch_dir.h"

#include <gtest/gtest.h>

using namespace zvisp;

namespace {

class FileIdentityOf : public testing::Test {
 protected:
  FileIdentityOf() { GivenFile(m_path, "firmware"); }

  // Whether two looks differ with this in between, more than a tick of the system's clock apart.
  bool Differs(const std::function<void()>& change) {
    const FileIdentity before = LookAtFile(m_path);
    usleep(20'000);
    change();
    return !(LookAtFile(m_path) == before);
  }

  ScratchDir m_scratch;
  std::string m_path = m_scratch / "fw.bin";
};

TEST_F(FileIdentityOf, TellsWhatTheSystemTells) {
  struct stat status = {};
  ASSERT_EQ(stat(m_path.c_str(), &status), 0);
  const FileIdentity identity = LookAtFile(m_path);
  EXPECT_TRUE(identity.found);
  EXPECT_EQ(identity.device, status.st_dev);
  EXPECT_EQ(identity.inode, status.st_ino);
  EXPECT_EQ(identity.bytes, 8u);
  EXPECT_EQ(identity.change_seconds, status.st_ctime);
}

TEST_F(FileIdentityOf, IsTheSameAfterReading) {
  EXPECT_FALSE(Differs([&] { ReadWholeFile(m_path); }));
}

TEST_F(FileIdentityOf, IsAnotherAfterAnyChange) {
  EXPECT_TRUE(Differs([&] { GivenFile(m_path, "FIRMWARE"); })) << "other bytes, the same size";
  EXPECT_TRUE(Differs([&] { GivenFile(m_path, "firm"); })) << "another size";
  EXPECT_TRUE(Differs([&] { chmod(m_path.c_str(), 0600); })) << "another mode";
  EXPECT_TRUE(Differs([&] { std::filesystem::create_hard_link(m_path, m_scratch / "link"); }))
      << "a new link";
  EXPECT_TRUE(Differs([&] { std::filesystem::remove(m_path); })) << "gone";
  EXPECT_TRUE(Differs([&] { GivenFile(m_path, "firmware"); })) << "new";
}

// Both exist from the start, so that the looks differ by the file alone.
TEST_F(FileIdentityOf, IsAnotherForEachFileOfThePathOrTheLink) {
  GivenFile(m_scratch / "other", "firmware");
  EXPECT_TRUE(Differs([&] { std::filesystem::rename(m_scratch / "other", m_path); }));
  GivenFile(m_scratch / "third", "firmware");
  std::filesystem::rename(m_path, m_scratch / "second");
  std::filesystem::create_symlink("second", m_path);
  std::filesystem::create_symlink("third", m_scratch / "link");
  EXPECT_TRUE(Differs([&] { std::filesystem::rename(m_scratch / "link", m_path); }));
}

TEST_F(FileIdentityOf, IsTheSameWhereThereIsNoFile) {
  EXPECT_EQ(LookAtFile(m_scratch / "missing"), FileIdentity());
  EXPECT_EQ(LookAtFile(""), FileIdentity());
  EXPECT_EQ(LookAtFile(m_path + "/x"), LookAtFile(m_scratch / "missing"));
}

// Each field counts: a file that comes and goes can have any of them in common.
TEST_F(FileIdentityOf, EachFieldCounts) {
  const FileIdentity same = {true, 1, 2, 3, 4, 5};
  EXPECT_EQ(same, (FileIdentity{true, 1, 2, 3, 4, 5}));
  for (const FileIdentity& other :
       {FileIdentity{false, 1, 2, 3, 4, 5}, FileIdentity{true, 9, 2, 3, 4, 5},
        FileIdentity{true, 1, 9, 3, 4, 5}, FileIdentity{true, 1, 2, 9, 4, 5},
        FileIdentity{true, 1, 2, 3, 9, 5}, FileIdentity{true, 1, 2, 3, 4, 9}}) {
    EXPECT_FALSE(same == other);
  }
}

}  // namespace
