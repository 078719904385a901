// SPDX-License-Identifier: MIT
#include "base/path.h"

#include <dlfcn.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include <clocale>
#include <cstdint>
#include <filesystem>
#include <string>

#include "support/files.h"
#include "support/run_tool.h"
#include "support/scratch_dir.h"

#include <gtest/gtest.h>

using namespace zvisp;

namespace {

namespace fs = std::filesystem;

constexpr uid_t kOrdinaryUser = 65534;

std::wstring ProcessDir(void* address) {
  return GetCurrentProcessDir(address).GetString();
}

// The file of the image that holds an address, as the loader names it.
fs::path ImageOf(const void* address) {
  Dl_info image = {};
  return dladdr(address, &image) != 0 ? image.dli_fname : "";
}

TEST(GetCurrentProcessDir, IsTheDirectoryOfTheExecutableWithOneSlash) {
  const fs::path executable = "/proc/self/exe";
  if (!fs::exists(executable)) GTEST_SKIP() << "this platform has no " << executable;
  EXPECT_EQ(ProcessDir(nullptr), fs::read_symlink(executable).parent_path().wstring() + L"/");
}

TEST(GetCurrentProcessDir, IsTheDirectoryOfTheLibraryThatHoldsTheAddress) {
  void* const address = dlsym(RTLD_DEFAULT, "fopen");
  ASSERT_NE(address, nullptr);
  EXPECT_EQ(ProcessDir(address), ImageOf(address).parent_path().wstring() + L"/");
}

TEST(GetCurrentProcessDir, IsEmptyForAnAddressOfNoImage) {
  int on_the_stack = 0;
  EXPECT_EQ(ProcessDir(&on_the_stack), L"");
}

// Only some loaders call an executable by the name that it was started with.
TEST(GetCurrentProcessDir, IsCutAtABackslashOrIsTheWorkingDirectoryForANameWithoutASlash) {
  Command command;
  command.program = PRINT_IMAGE_DIRECTORY;
  command.name = "no-separator";
  const std::string directory = RunCommand(command).out;
  if (directory == fs::path(PRINT_IMAGE_DIRECTORY).parent_path().string() + "/") {
    GTEST_SKIP() << "this platform's loader gives the full path";
  }
  EXPECT_EQ(directory, "./");
  command.name = "some\\where";
  EXPECT_EQ(RunCommand(command).out, "some\\/");
}

TEST(GetCurrentProcessDir, TakesNoMoreThan260BytesOfALibrarysName) {
  void* const library = dlopen("libm.so.6", RTLD_NOW);
  if (library == nullptr) GTEST_SKIP() << "this platform has no libm.so.6 to copy";
  const ScratchDir scratch;
  const std::string inner = scratch / std::string(200, 'd');
  const std::string copy = inner + "/" + std::string(200, 'e') + "/libcopy.so";
  fs::create_directories(fs::path(copy).parent_path());
  fs::copy_file(ImageOf(dlsym(library, "cosf")), copy);
  void* const loaded = dlopen(copy.c_str(), RTLD_NOW);
  ASSERT_NE(loaded, nullptr) << dlerror();
  EXPECT_EQ(ProcessDir(dlsym(loaded, "cosf")), fs::path(inner).wstring() + L"/");
  dlclose(loaded);
  dlclose(library);
}

TEST(GetAbsolutePath, ResolvesLinksAndDots) {
  const ScratchDir scratch;
  GivenFile(scratch / "real/fw.bin", "x");
  fs::create_directory_symlink(scratch / "real", scratch / "link");
  EXPECT_EQ(GetAbsolutePath(scratch / "real/fw.bin"), scratch / "real/fw.bin");
  EXPECT_EQ(GetAbsolutePath(scratch / "link/fw.bin"), scratch / "real/fw.bin");
  EXPECT_EQ(GetAbsolutePath(scratch / "link/.././real//fw.bin"), scratch / "real/fw.bin");
}

TEST(GetAbsolutePath, ResolvesAgainstTheWorkingDirectory) {
  const ScratchDir scratch;
  GivenFile(scratch / "fw.bin", "x");
  const fs::path before = fs::current_path();
  fs::current_path(scratch.Path());
  EXPECT_EQ(GetAbsolutePath("fw.bin"), scratch / "fw.bin");
  fs::current_path(before);
}

TEST(GetAbsolutePath, NamesAMissingFileAsFarAsThePlatformResolvedIt) {
  const ScratchDir scratch;
  EXPECT_EQ(GetAbsolutePath(scratch / "missing.bin"), scratch / "missing.bin");
}

TEST(GetAbsolutePath, IsEmptyForTheEmptyPath) {
  EXPECT_EQ(GetAbsolutePath(""), "");
}

TEST(GetAbsolutePath, SurvivesPathsBeyondThePlatformsLimits) {
  EXPECT_LT(GetAbsolutePath("/" + std::string(300, 'x')).size(), 40960u);
  EXPECT_LT(GetAbsolutePath("/" + std::string(100000, 'x')).size(), 40960u);
}

TEST(IsAbsolutePath, KnowsRootsAndDriveLetters) {
  for (const char* const path : {"/x", "/", "C:\\x", "C:\\", "C://x", "/a:\\b", "1:\\"}) {
    EXPECT_TRUE(IsAbsolutePath(path)) << path;
  }
}

TEST(IsAbsolutePath, TakesEverythingElseForRelative) {
  for (const char* const path :
       {"", "x", "x/y", "./x", "../x", "ab:\\x", "C:x", "C:/x", "http://x", ":\\x", " /x", "\\x"}) {
    EXPECT_FALSE(IsAbsolutePath(path)) << path;
  }
}

TEST(GetFileFullPath, ResolvesARelativePathAfterTheBase) {
  const ScratchDir scratch;
  GivenFile(scratch / "fw.bin", "x");
  EXPECT_EQ(GetFileFullPath("fw.bin", scratch / ""), scratch / "fw.bin");
  EXPECT_EQ(GetFileFullPath("./sub/../fw.bin", scratch / ""), scratch / "sub")
      << "resolving stops at the name that does not exist";
}

TEST(GetFileFullPath, LeavesAnAbsolutePathUntouched) {
  EXPECT_EQ(GetFileFullPath("/x/../x/fw.bin", "/opt/t/"), "/x/../x/fw.bin");
  EXPECT_EQ(GetFileFullPath("C:\\fw.bin", "/opt/t/"), "C:\\fw.bin");
}

TEST(GetFileFullPath, PutsNoSeparatorAfterTheBase) {
  const ScratchDir scratch;
  GivenFile(scratch / "basefw.bin", "x");
  EXPECT_EQ(GetFileFullPath("fw.bin", scratch / "base"), scratch / "basefw.bin");
}

TEST(PathFileExist, IsTrueForAFileThatOpens) {
  const ScratchDir scratch;
  EXPECT_TRUE(PathFileExist(GivenFile(scratch / "empty.bin", "")));
  EXPECT_TRUE(PathFileExist(GivenFile(scratch / "\xC3\xBC.bin", "x")));
}

TEST(PathFileExist, IsFalseForWhatIsMissingOrADirectory) {
  const ScratchDir scratch;
  EXPECT_FALSE(PathFileExist(scratch / "missing.bin"));
  EXPECT_FALSE(PathFileExist(scratch.Path()));
  EXPECT_FALSE(PathFileExist(GivenFile(scratch / "file", "x") + "/below"));
  EXPECT_FALSE(PathFileExist(""));
}

TEST(PathFileExist, DoesNotWaitForTheOtherEndOfAPipe) {
  const ScratchDir scratch;
  const std::string pipe = scratch / "pipe";
  ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
  EXPECT_TRUE(PathFileExist(pipe));
}

TEST(PathFileExistDeathTest, IsFalseForAFileThatTheUserMayNotRead) {
  const ScratchDir scratch;
  const std::string readable = GivenFile(scratch / "readable", "x");
  const std::string secret = GivenFile(scratch / "secret", "x");
  fs::permissions(scratch.Path(),
                  fs::perms::owner_all | fs::perms::group_exec | fs::perms::others_exec);
  fs::permissions(readable, fs::perms::all);
  fs::permissions(secret, fs::perms::none);
  EXPECT_EXIT(
      {
        if (geteuid() == 0 && setuid(kOrdinaryUser) != 0) _exit(3);
        _exit(PathFileExist(readable) && !PathFileExist(secret) ? 0 : 1);
      },
      testing::ExitedWithCode(0), "");
}

TEST(GetRegularFileSize, TellsTheBytesOfARegularFile) {
  const ScratchDir scratch;
  std::uint64_t bytes = 7;
  EXPECT_TRUE(GetRegularFileSize(GivenFile(scratch / "empty", ""), bytes));
  EXPECT_EQ(bytes, 0u);
  EXPECT_TRUE(GetRegularFileSize(GivenFile(scratch / "three", "abc"), bytes));
  EXPECT_EQ(bytes, 3u);
}

TEST(GetRegularFileSize, TellsSizesBeyond32Bits) {
  const ScratchDir scratch;
  std::uint64_t bytes = 0;
  EXPECT_TRUE(GetRegularFileSize(GivenSparseFile(scratch / "huge", 5000000000u), bytes));
  EXPECT_EQ(bytes, 5000000000u);
}

TEST(GetRegularFileSize, RefusesEverythingElseAndLeavesTheSize) {
  const ScratchDir scratch;
  const std::string pipe = scratch / "pipe";
  ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
  for (const std::string& path :
       {scratch / "missing", scratch.Path(), pipe, std::string("/dev/null"), std::string()}) {
    std::uint64_t bytes = 7;
    EXPECT_FALSE(GetRegularFileSize(path, bytes)) << path;
    EXPECT_EQ(bytes, 7u) << path;
  }
}

TEST(PopupDlgToGetOpenFilePath, LeavesThePathAndReturnsTrue) {
  CCpZvString path(L"kept");
  EXPECT_TRUE(PopupDlgToGetOpenFilePath(L"title", path));
  EXPECT_TRUE(path == L"kept");
}

}  // namespace
